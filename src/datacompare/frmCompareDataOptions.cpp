#include "datacompare/frmCompareDataOptions.h"

#include "core/error_report.h"
#include "core/globals.h"
#include "core/mdlMain.h"
#include "core/modIgnoreColumns.h"
#include "core/settings.h"
#include "datacompare/frmCompareDataValidation.h"
#include "datacompare/table_reading.h"
#include "scripting/mdlQueryCode.h"
#include "shell/shell.h"
#include "util/text.h"

namespace zov {
namespace {

constexpr const char* Module = "frmCompareDataOptions";

QString ordinal(int position) {
    static const char* const names[] = {"Primary", "Secondary", "Tertiary"};
    return QString::fromLatin1(names[position]);
}

void tell(const QString& text) {
    shell().messageBox(text, {}, BoxIcon::Exclamation);
}

/// Whether no column is chosen twice; the first that is gets told.
bool areUnique(const QStringList& names, const QString& ending) {
    for (qsizetype i = 1; i < names.size(); ++i)
        if (names[i] != NoField && names[i] != frmCompareDataOptions::DefaultOrderText &&
            names.indexOf(names[i]) < i) {
            shell().messageBox(QStringLiteral("Field ") + names[i] + ending +
                               QStringLiteral(" is selected more than once - please make sure "
                                              "that the selected fields are unique."));
            return false;
        }
    return true;
}

}  // namespace

bool frmCompareDataOptions::isLargeObjectType(const QString& dataType) {
    for (const char* type : {"text", "ntext", "image"})
        if (dataType.compare(QLatin1String(type), Qt::CaseInsensitive) == 0) return true;
    return false;
}

const QString frmCompareDataOptions::DefaultOrderText = QStringLiteral("Default Order");

QString frmCompareDataOptions::lblPK(int Position) {
    return ordinal(Position) + QStringLiteral(" Field");
}

QString frmCompareDataOptions::lblSortKey(int Position) {
    return ordinal(Position) + QStringLiteral(" Sort Key");
}

QStringList frmCompareDataOptions::cmbPKItems(int Side) const {
    QStringList items{NoField};
    for (const Column& column : columns_[Side]) items += column.name;
    return items;
}

QStringList frmCompareDataOptions::cmbGenItems(int Side) const {
    QStringList items = cmbPKItems(Side);
    items[0] = DefaultOrderText;
    return items;
}

QString frmCompareDataOptions::cmbPKText(int Index) const {
    const int at = cmbPK[size_t(Index)];
    return at < 1 ? NoField : columns_[sideOfPK(Index)][size_t(at - 1)].name;
}

QString frmCompareDataOptions::cmbGenText(int Index) const {
    const int at = cmbGen[size_t(Index)];
    return at < 1 ? DefaultOrderText : columns_[sideOfGen(Index)][size_t(at - 1)].name;
}

bool frmCompareDataOptions::ShowUp(const CompareDataPair& pair, DataCompSettings& settings) {
    return guarded(Module, "ShowUp", false, [&] {
        pair_ = pair;
        settings = {};
        settings.DefaultOrder = true;
        settings_ = &settings;
        accepted_ = ignoreListChanged_ = false;
        load();
        reopen();
        shell().showModal(*this);
        settings_ = nullptr;
        return accepted_;
    });
}

void frmCompareDataOptions::load() {
    const WaitPointer wait;
    // Giving up on a slow list of columns is no word on the comparison behind this screen.
    const ScopedValue<bool> ownStop(globals().gblnStop, false);
    cmbPK.fill(0);
    cmbGen.fill(0);
    for (const int side : {SourcePanel, TargetPanel}) {
        txtOffset[side].clear();
        loadColumns(side);
        const TableCompSettings stored = ReadTableCompSettings(
            side == SourcePanel, pair_[size_t(side)].Db, pair_[size_t(side)].storedName());
        showStored(side, stored);
        // Read last, the Target's counts.
        optGen = stored.Method == CompMethod::PrimaryKey ? 1 : 0;
    }
    chkDoNotShowDialog = !GetShowDataCompOpt();
}

void frmCompareDataOptions::loadColumns(int side) {
    const CompareDataTable& table = pair_[size_t(side)];
    columns_[side].clear();
    pvlSqlObj[side].clear();
    TableStructure structure;
    QString reason;
    try {
        GetTableStructure(table.Server, table.Db, table.Table, DoubleSingleQuotes(table.name()),
                          structure, false, IgnoreMode::DataComparison, table.ObjectId, {});
    } catch (...) {
        const CaughtError error = caughtError();
        reason = QStringLiteral("\r\nError %1 (").arg(error.number) + error.description +
                 QStringLiteral(").");
    }
    if (structure.columns.empty())
        tell(QStringLiteral("Error occured while attempting to load structure of table.") + reason);
    QStringList ignored;
    QString failure;
    GetIgnoredColumnsList(IgnoreMode::DataComparison, table.key(), ignored, &failure);
    if (!failure.isEmpty()) tell(QStringLiteral("The ignored columns can't be read. ") + failure);
    for (const ColumnRecord& record : structure.columns) {
        // "[Id] [int] NOT NULL CONSTRAINT [DF_Id] DEFAULT ((0))": the middle is the type.
        QString definition = record.strLine.mid(record.strName.size() + 3);
        const qsizetype constraint = definition.indexOf(QStringLiteral(" CONSTRAINT ["));
        if (constraint >= 0) definition.truncate(constraint);
        columns_[side].push_back(
            {record.strName, record.strTypeSpec, record.strDataType, definition});
        pvlSqlObj[side].push_back({record.strName, record.strTypeSpec.trimmed(),
                                   !IsColumnInList(ignored, record.strName)});
    }
}

void frmCompareDataOptions::showStored(int side, const TableCompSettings& stored) {
    // A column that is gone leaves its box at the first entry.
    const auto select = [&](int& box, const QString& name) {
        for (size_t i = 0; i < columns_[side].size(); ++i)
            if (columns_[side][i].name.compare(name, Qt::CaseInsensitive) == 0) box = int(i) + 1;
    };
    const QString sortKeys[] = {stored.PrimarySortKey, stored.SecondarySortKey,
                                stored.TertiarySortKey};
    const QString keys[] = {stored.CompKey, stored.SecondaryCompKey, stored.TertiaryCompKey};
    for (int position = 0; position < 3; ++position) {
        select(cmbGen[size_t(side * 3 + position)], sortKeys[position]);
        select(cmbPK[size_t(position * 2 + side)], keys[position]);
    }
    if (stored.Offset > 1) txtOffset[side] = QString::number(stored.Offset);
}

QString frmCompareDataOptions::GetColumnString(const QString& Name, int ServerIndex) const {
    if (ServerIndex != SourcePanel && ServerIndex != TargetPanel) {
        shell().messageBox(
            QStringLiteral("Wrong value of server index passed: %1").arg(ServerIndex));
        return {};
    }
    if (Name == NoField) return {};
    for (const Column& column : columns_[ServerIndex])
        if (column.name.compare(Name, Qt::CaseInsensitive) == 0) return column.definition;
    return {};
}

void frmCompareDataOptions::optGen_Click(int Index) {
    optGen = Index;
    refresh();
}

bool frmCompareDataOptions::CheckFieldType(int side, const QString& name) {
    for (const Column& column : columns_[side])
        if (column.name == name && isLargeObjectType(column.dataType)) {
            tell(QStringLiteral(
                "The text, ntext, and image data types cannot be compared or sorted."));
            return false;
        }
    return true;
}

void frmCompareDataOptions::cmbPK_Click(int Index, int Item) {
    if (filling_) return;
    const ScopedValue<bool> filling(filling_, true);
    int& box = cmbPK[size_t(Index)];
    box = Item;
    const int position = Index / 2;
    if (box > 0 && !CheckFieldType(sideOfPK(Index), cmbPKText(Index))) {
        box = 0;
    } else if (box > 0 && position > 0 && cmbPK[size_t(Index - 2)] < 1) {
        shell().messageBox(QStringLiteral("Please specify ") + lblPK(position - 1) +
                           QStringLiteral(" before specifying ") + lblPK(position) + u'.');
        box = 0;
    }
    refresh();
}

void frmCompareDataOptions::cmbGen_Click(int Index, int Item) {
    if (filling_) return;
    const ScopedValue<bool> filling(filling_, true);
    int& box = cmbGen[size_t(Index)];
    box = Item;
    const int position = Index % 3;
    if (box > 0 && !CheckFieldType(sideOfGen(Index), cmbGenText(Index))) {
        box = 0;
    } else if (box > 0 && position > 0 && cmbGen[size_t(Index - 1)] < 1) {
        shell().messageBox(QStringLiteral("Please specify ") + lblSortKey(position - 1) +
                           QStringLiteral(" before specifying ") + lblSortKey(position) + u'.');
        box = 0;
    }
    // Without this key those behind it have nothing to follow.
    if (box < 1)
        for (int behind = position + 1; behind < 3; ++behind)
            cmbGen[size_t(Index - position + behind)] = 0;
    refresh();
}

void frmCompareDataOptions::txtOffset_Change(int Index, const QString& text) {
    QString digits;
    for (const QChar letter : text)
        if (letter >= u'0' && letter <= u'9') digits += letter;
    txtOffset[Index] = digits;
    if (digits != text) refresh();
}

void frmCompareDataOptions::pvlSqlObj_Click(int Side, int Row, bool checked) {
    ignoreListChanged_ = true;
    pvlSqlObj[Side][size_t(Row)].checked = checked;
    for (const ColumnRow& row : pvlSqlObj[Side])
        if (row.checked) return;
    shell().messageBox(QStringLiteral("Please select at least one column."));
}

void frmCompareDataOptions::cmdSelectAll_Click(int Side) {
    ignoreListChanged_ = true;
    for (ColumnRow& row : pvlSqlObj[Side]) row.checked = true;
    refresh();
}

void frmCompareDataOptions::cmdDeselectAll_Click(int Side) {
    ignoreListChanged_ = true;
    for (ColumnRow& row : pvlSqlObj[Side]) row.checked = false;
    refresh();
}

void frmCompareDataOptions::chkDoNotShowDialog_Click(bool checked) {
    chkDoNotShowDialog = checked;
    writeSetting(QStringLiteral("ShowDataCompOpt"), checked ? 0 : 1);
    if (checked)
        shell().messageBox(QStringLiteral(
            "This dialog screen will not be shown anymore.\r\n\r\nTo enable showing 'Data "
            "Comparison Options' screen please open the Options screen (by clicking menu item "
            "Tools -> Options...), select tab 'Data Comparison' and click on appropriate check "
            "box."));
}

QStringList frmCompareDataOptions::pkTexts(int side) const {
    return {cmbPKText(side), cmbPKText(side + 2), cmbPKText(side + 4)};
}

QStringList frmCompareDataOptions::sortChain(int side) const {
    QStringList chain;
    for (int index = side * 3; index < side * 3 + 3 && cmbGen[size_t(index)] > 0; ++index)
        chain += cmbGenText(index);
    return chain;
}

bool frmCompareDataOptions::SelectedPKFieldsAreUnique(int side, const QString& ending) {
    return areUnique(pkTexts(side), ending);
}

bool frmCompareDataOptions::SelectedSortFieldsAreUnique(int side, const QString& ending) {
    return areUnique({cmbGenText(side * 3), cmbGenText(side * 3 + 1), cmbGenText(side * 3 + 2)},
                     ending);
}

bool frmCompareDataOptions::FieldsSelectionIsValid() {
    for (const int side : {SourcePanel, TargetPanel}) {
        const QString ending = side == SourcePanel ? QStringLiteral(" in source table")
                                                   : QStringLiteral(" in target table");
        if (!SelectedPKFieldsAreUnique(side, ending) || !SelectedSortFieldsAreUnique(side, ending))
            return false;
    }
    return true;
}

bool frmCompareDataOptions::CheckIgnoredKey(const QStringList& IgnoredList, const QString& Column,
                                            const QString& Caption, bool IsSource) {
    if (!IsColumnInList(IgnoredList, Column)) return true;
    shell().messageBox(QStringLiteral("Column '") + Column +
                       QStringLiteral("' is marked as the column to be ignored during "
                                      "comparison.\r\nThis column is also marked as ") +
                       Caption + QStringLiteral(" column (") +
                       (IsSource ? QStringLiteral("Source") : QStringLiteral("Target")) +
                       QStringLiteral(") for comparison.\r\n\r\nPlease remove this column from "
                                      "the list of ignored columns."));
    return false;
}

bool frmCompareDataOptions::ValidateIgnoredSelection(const KeyCheck& check) {
    if (check.selected[0] < 1 || check.selected[1] < 1) {
        shell().messageBox(
            QStringLiteral("All columns cannot be ignored.\r\n\r\nPlease select at least one "
                           "column to be processed during the comparison."));
        return false;
    }
    if (check.ignored[0].isEmpty() && check.ignored[1].isEmpty()) return true;
    if (check.selected[0] != check.selected[1]) {
        shell().messageBox(
            QStringLiteral("Currently there are %1 columns selected for comparison in Source and "
                           "%2 in Target.\r\n\r\nPlease make sure that the same number of columns "
                           "to compare is selected for Source and Target table.")
                .arg(check.selected[0])
                .arg(check.selected[1]));
        return false;
    }
    for (const int side : {SourcePanel, TargetPanel}) {
        const QStringList& ignored = check.ignored[side];
        if (ignored.isEmpty()) continue;
        if (optGen == 1) {
            if (!CheckIgnoredKey(ignored, cmbPKText(side), ordinal(0), side == SourcePanel))
                return false;
            continue;
        }
        const QStringList chain = sortChain(side);
        for (int position = 0; position < int(chain.size()); ++position)
            if (!CheckIgnoredKey(ignored, chain[position], lblSortKey(position),
                                 side == SourcePanel))
                return false;
    }
    return true;
}

bool frmCompareDataOptions::storeIgnoredColumns() {
    KeyCheck check;
    for (const int side : {SourcePanel, TargetPanel})
        for (const ColumnRow& row : pvlSqlObj[side]) {
            if (row.checked)
                ++check.selected[side];
            else
                check.ignored[side] += row.column;
        }
    if (!ValidateIgnoredSelection(check)) return false;
    for (const int side : {SourcePanel, TargetPanel}) {
        const CompareDataTable& table = pair_[size_t(side)];
        if (!SaveIgnoredColumnsList(IgnoreMode::DataComparison, table.key(), check.ignored[side]))
            return false;
    }
    return true;
}

void frmCompareDataOptions::cmdOK_Click() {
    guardedRun(Module, "cmdOK_Click", [&] {
        if (!FieldsSelectionIsValid()) return;
        if (ignoreListChanged_ && !storeIgnoredColumns()) return;
        const WaitPointer wait;
        accepted_ = true;
        DataCompSettings& s = *settings_;
        const QStringList source = sortChain(SourcePanel), target = sortChain(TargetPanel);
        s.DefaultOrder = std::all_of(cmbGen.begin(), cmbGen.end(), [](int at) { return at < 1; });
        s.PrimarySortKey1 = source.value(0);
        s.SecondarySortKey1 = source.value(1);
        s.TertiarySortKey1 = source.value(2);
        s.PrimarySortKey2 = target.value(0);
        s.SecondarySortKey2 = target.value(1);
        s.TertiarySortKey2 = target.value(2);
        s.Offset1 = ValInt32(txtOffset[SourcePanel]);
        s.Offset2 = ValInt32(txtOffset[TargetPanel]);
        s.Method = optGen == 0 ? CompMethod::RecordByRecord : CompMethod::PrimaryKey;
        s.CompKey1 = cmbPKText(0);
        s.CompKey2 = cmbPKText(1);
        s.SecondaryCompKey1 = cmbPKText(2);
        s.SecondaryCompKey2 = cmbPKText(3);
        s.TertiaryCompKey1 = cmbPKText(4);
        s.TertiaryCompKey2 = cmbPKText(5);
        saveSettings(s);
        close();
    });
}

void frmCompareDataOptions::saveSettings(const DataCompSettings& s) {
    const TableCompSettings sides[] = {
        {s.PrimarySortKey1, s.SecondarySortKey1, s.TertiarySortKey1, s.Offset1, s.CompKey1,
         s.SecondaryCompKey1, s.TertiaryCompKey1, s.Method},
        {s.PrimarySortKey2, s.SecondarySortKey2, s.TertiarySortKey2, s.Offset2, s.CompKey2,
         s.SecondaryCompKey2, s.TertiaryCompKey2, s.Method}};
    for (const int side : {SourcePanel, TargetPanel}) {
        const QString failure =
            SaveTableCompSettings(side == SourcePanel, pair_[size_t(side)].Db,
                                  pair_[size_t(side)].storedName(), sides[side]);
        if (failure.isEmpty()) continue;
        tell(QStringLiteral("The settings of this comparison can't be stored. ") + failure +
             QStringLiteral("\r\n\r\nThe comparison goes on with them all the same."));
        return;
    }
}

void frmCompareDataOptions::cmdCancel_Click() {
    close();
}

void frmCompareDataOptions::cmdValidate_Click(int Index) {
    guardedRun(Module, "cmdValidate_Click", [&] { ValidateFieldsSelection(Index); });
}

void frmCompareDataOptions::ValidateFieldsSelection(int Index) {
    const QString title = QStringLiteral("Validate Fields Selection");
    if (optGen == 0) {
        shell().messageBox(
            QStringLiteral("You can validlate fields selection only when Primary "
                           "Key/Index comparison method is used."));
        return;
    }
    if (!SelectedPKFieldsAreUnique(Index, {})) return;
    const QStringList keys = pkTexts(Index);
    if (keys[0] == NoField) {
        shell().messageBox(
            QStringLiteral("Please select Primary Field to be used by Primary "
                           "Key/Index comparison method."));
        return;
    }
    const CompareDataTable& table = pair_[size_t(Index)];
    frmCompareDataValidation::Request request;
    request.ServerIndex = Index;
    request.Db = table.Db;
    request.Table = table.Table;
    request.BareName = table.name();
    // The login's own schema is found by the name alone.
    if (table.HasNamesakes || table.Schema.compare(QStringLiteral("dbo"), Qt::CaseInsensitive) != 0)
        request.Schema = table.Schema;
    {
        const WaitPointer wait;
        const ScopedValue<bool> ownStop(globals().gblnStop, false);
        request.QualifiedTable = QualifiedTableName(table);
        request.RecordsCount =
            GetNumberOfRecordsInTable(table.Server, request.QualifiedTable, table.Db);
        if (globals().gblnStop) return;
    }
    if (request.RecordsCount < 0) {
        shell().messageBox(
            QStringLiteral("Error while reading data from table ") + table.Table + u'.', title);
        return;
    }
    if (request.RecordsCount == 0) {
        shell().messageBox(
            QStringLiteral("Table ") + table.Table + QStringLiteral(" doesn't contain any data."),
            title);
        return;
    }
    for (int position = 0; position < 3; ++position) {
        request.Keys[position] = keys[position];
        request.KeyDefs[position] = GetColumnString(keys[position], Index);
    }
    frmCompareDataValidation().ShowUp(request);
}

}  // namespace zov
