#include "datacompare/frmCompareDataValidation.h"

#include "core/error_report.h"
#include "core/globals.h"
#include "data/mdlData.h"
#include "data/sql_names.h"
#include "datacompare/data_comp_settings.h"
#include "shell/shell.h"
#include "util/text.h"

#include <algorithm>

namespace zov {
namespace {

constexpr const char* Module = "frmCompareDataValidation";

const QString Advice = QStringLiteral(
    "Please select different fields if possible, or change comparison method to 'Record by record' "
    "(although the 'Primary Key/Index' comparison method is preferred because it is usually "
    "faster).");

/// A value of a key as statements hold it.
QString literalOf(const Field& field, const QString& value) {
    if (storageOf(field.info()) == Storage::Bytes) return value;
    QString text = value;
    text.replace(u'\'', QLatin1StringView("''"));
    const bool plain =
        std::all_of(text.begin(), text.end(), [](QChar letter) { return letter.unicode() < 0x80; });
    return (plain ? QStringLiteral("'") : QStringLiteral("N'")) + text + u'\'';
}

QStringList keyOf(const Recordset& rs) {
    QStringList values;
    for (int key = 0; key < rs.fieldCount(); ++key) values += rs.field(key).text();
    return values;
}

}  // namespace

bool ColumnCanContainNulls(const QString& KeyDef) {
    return !(KeyDef.size() > 8 && KeyDef.endsWith(QStringLiteral("NOT NULL"), Qt::CaseInsensitive));
}

bool ColumnIsIdentity(const QString& KeyDef) {
    return KeyDef.size() > 9 && KeyDef.contains(QStringLiteral("IDENTITY("), Qt::CaseInsensitive);
}

void frmCompareDataValidation::ShowUp(const Request& request) {
    if (request.ServerIndex != SourcePanel && request.ServerIndex != TargetPanel) {
        shell().messageBox(
            QStringLiteral("Wrong source-target parameter passed: %1").arg(request.ServerIndex), {},
            BoxIcon::Exclamation);
        return;
    }
    request_ = request;
    for (QString& key : request_.Keys)
        if (key.isEmpty()) key = NoField;
    server_ = globals().gtCurrentServers[request.ServerIndex];
    lblServer1 = server_.Name;
    lblDb1 = request.Db;
    lblTable1 = request.Table;
    lblRecsCount1 = formatCount(request.RecordsCount);
    activated_ = false;
    // Stopping these checks is no word on the comparison behind them.
    const ScopedValue<bool> ownStop(globals().gblnStop, false);
    reopen();
    shell().showModal(*this);
}

void frmCompareDataValidation::Form_Activate() {
    if (activated_) return;
    activated_ = true;
    running_ = true;
    cmdOKEnabled = false;
    elapsed_.start();
    refresh();
    guardedRun(Module, "ValidateFields", [&] {
        const WaitPointer wait;
        ValidateFields();
    });
    running_ = false;
    if (!isClosed()) close();
}

void frmCompareDataValidation::cmdCancel_Click() {
    globals().gblnStop = true;
    // The checks close the screen when they have noticed.
    if (!running_) close();
}

bool frmCompareDataValidation::cancelled() const {
    return globals().gblnStop;
}

void frmCompareDataValidation::tell(const QString& text, bool bad) {
    shell().messageBox(text, {}, bad ? BoxIcon::Exclamation : BoxIcon::Information);
}

void frmCompareDataValidation::ValidateFields() {
    const QString nulls = QStringLiteral("Checking if selected fields contain nulls...");
    const QString unique = QStringLiteral("Checking if selected fields contain unique values...");
    lblInfo[0] = nulls;
    refresh();
    const NullCheck nullCheck = CheckForNulls();
    if (cancelled()) return;
    if (!nullCheck.Ok)
        return tell(QStringLiteral("Cannot check for nulls - aborting validating fields."));
    if (nullCheck.Found)
        return tell(QStringLiteral("Field ") + nullCheck.FieldName +
                    QStringLiteral(" contains Nulls and shouldn't be used for Primary Key/Index "
                                   "comparison method.\r\n\r\n") +
                    Advice);
    lblInfo[0] = nulls + QStringLiteral(" Done");
    lblInfo[1] = unique;
    refresh();
    const DuplicateCheck duplicates = CheckForDuplications();
    if (!duplicates.Ok || cancelled()) return;
    if (duplicates.Found) {
        int count = 0;
        return tell(QStringLiteral("Selected fields (") + BuildColumnNamesString(false, count) +
                    QStringLiteral(") contain duplicate values (") + duplicates.Values +
                    QStringLiteral(") and shouldn't be used for Primary Key/Index comparison "
                                   "method.\r\n\r\n") +
                    Advice);
    }
    lblInfo[1] = unique + QStringLiteral(" Done");
    prbProgressBar = 100;
    refresh();
    tell(QStringLiteral("Fields selection is valid - data stored in selected fields is unique and "
                        "doesn't contain nulls."),
         false);
}

// The check puts its own brackets around the name.
QString frmCompareDataValidation::tableForNullCheck() const {
    const QString quoted = quotedName(
        request_.Schema, request_.BareName.isEmpty() ? request_.Table : request_.BareName);
    return quoted.mid(1, quoted.size() - 2);
}

frmCompareDataValidation::NullCheck frmCompareDataValidation::CheckForNulls() {
    return guarded(Module, "CheckForNulls", NullCheck{false, false, {}}, [&] {
        NullCheck check;
        for (int i = 0; i < 3 && isKeyField(request_.Keys[i]); ++i) {
            if (ColumnCanContainNulls(request_.KeyDefs[i])) {
                bool failed = false;
                check.Found = NullExistsInColumn(server_, request_.Db, tableForNullCheck(),
                                                 request_.Keys[i], &failed);
                check.Ok = !failed;
                if (check.Found) check.FieldName = request_.Keys[i];
                if (check.Found || failed) return check;
            }
            shell().pumpEvents();
            if (cancelled()) return check;
        }
        return check;
    });
}

QString frmCompareDataValidation::BuildColumnNamesString(bool UseBrackets, int& Count) const {
    QStringList names;
    for (const QString& key : request_.Keys)
        if (isKeyField(key)) names += UseBrackets ? quoteName(key) : key;
    Count = int(names.size());
    return names.join(QStringLiteral(", "));
}

frmCompareDataValidation::DuplicateCheck frmCompareDataValidation::CheckForDuplications() {
    return guarded(Module, "CheckForDuplications", DuplicateCheck{false, false, {}}, [&] {
        prbProgressBar = 0;
        refresh();
        DuplicateCheck check;
        if (request_.RecordsCount < 2 || !isKeyField(request_.Keys[0])) return check;
        int keyCount = 0;
        const QString names = BuildColumnNamesString(true, keyCount);
        if (names.isEmpty()) {
            tell(QStringLiteral("Cannot check for duplicates - cannot find fields names."));
            check.Ok = false;
            return check;
        }
        // An identity column is unique by nature.
        for (int i = 0; i < 3; ++i)
            if (isKeyField(request_.Keys[i]) && ColumnIsIdentity(request_.KeyDefs[i])) return check;
        std::shared_ptr<Connection> connection;
        if (!ADO_Connection_Open(connection, server_, request_.Db)) {
            tell(QStringLiteral("Cannot connect to database ") + request_.Db +
                 QStringLiteral(" - aborting."));
            check.Ok = false;
            return check;
        }
        check = walkKeys(connection, names);
        connection->Close();
        return check;
    });
}

frmCompareDataValidation::DuplicateCheck frmCompareDataValidation::walkKeys(
    const std::shared_ptr<Connection>& connection, const QString& names) {
    DuplicateCheck check;
    std::unique_ptr<Recordset> rs;
    {
        // Each key costs a statement on this connection: the rows must not be a stream on it.
        const ScopedValue<qint32> client(globals().glngCursorLocation, adUseClient);
        check.Ok = GetAdoRS_OnConnection(connection, adCmdText,
                                         QStringLiteral("SELECT ") + names +
                                             QStringLiteral(" FROM ") + request_.QualifiedTable,
                                         rs) != -1 &&
                   rs && rs->isOpen();
    }
    if (!check.Ok || cancelled()) return check;
    keysRead_.clear();
    rs->MoveFirst();
    for (qint32 i = 1; i <= request_.RecordsCount && !rs->isEof(); ++i, rs->MoveNext()) {
        lblCurRec = formatCount(i);
        lblTime = formatElapsed(elapsed_.elapsed());
        prbProgressBar = int(qint64(i) * 100 / request_.RecordsCount);
        refresh();
        shell().pumpEvents();
        if (cancelled()) break;
        const QStringList values = keyOf(*rs);
        if (!AreFieldsDuplicated(check.Found, connection, *rs, values)) {
            if (!cancelled())
                tell(
                    QStringLiteral("Database connection problem; cannot determine if the fields "
                                   "are unique."));
            check.Ok = false;
            break;
        }
        if (check.Found) {
            check.Values = values.join(u',');
            break;
        }
    }
    rs->Close();
    return check;
}

bool frmCompareDataValidation::AreFieldsDuplicated(bool& Duplicated,
                                                   const std::shared_ptr<Connection>& Connection,
                                                   Recordset& Rs, const QStringList& Values) {
    QString text = QStringLiteral("SELECT COUNT(*) AS RecsCount FROM ") + request_.QualifiedTable;
    int value = 0;
    for (const QString& key : request_.Keys)
        if (isKeyField(key)) {
            text += value == 0 ? QStringLiteral(" WHERE ") : QStringLiteral(" AND ");
            text +=
                quoteName(key) + QStringLiteral(" = ") + literalOf(Rs.field(value), Values[value]);
            ++value;
        }
    std::unique_ptr<Recordset> rs;
    if (GetAdoRS_OnConnection(Connection, adCmdText, text, rs) == -1 || !rs || rs->isEof())
        return false;
    const qint64 count = rs->field(QStringLiteral("RecsCount")).toInt64();
    rs->Close();
    // A server that doesn't find the very row that the key was read from (a variant that holds no
    // text, a number that its text doesn't hold whole) can't tell: the rows themselves do.
    Duplicated = count > 1 || (count < 1 && comesTwiceAmongRows(Rs, Values));
    return true;
}

bool frmCompareDataValidation::comesTwiceAmongRows(Recordset& Rs, const QStringList& Values) {
    if (keysRead_.isEmpty()) {
        Recordset rows = Rs.Clone();
        for (rows.MoveFirst(); !rows.isEof(); rows.MoveNext()) ++keysRead_[keyOf(rows)];
    }
    return keysRead_.value(Values) > 1;
}

}  // namespace zov
