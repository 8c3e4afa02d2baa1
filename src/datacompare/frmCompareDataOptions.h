// How two tables' data is to be compared: method and keys, sort order, offset,
// ignored columns. Checks the choice, stores it, hands it back. Enter at ShowUp.
#pragma once

#include "datacompare/compare_tables.h"
#include "datacompare/data_comp_settings.h"
#include "shell/screen.h"

#include <QStringList>

#include <array>
#include <vector>

namespace zov {

class frmCompareDataOptions : public Screen {
 public:
    /// What the sort boxes hold first, and when nothing is chosen.
    static const QString DefaultOrderText;
    /// "text", "ntext" or "image", in any case: the server can neither sort nor compare them.
    static bool isLargeObjectType(const QString& dataType);

    QString screenName() const override { return QStringLiteral("frmCompareDataOptions"); }
    QString caption() const override { return QStringLiteral("Data Comparison Options"); }

    /// Modal; true when the user went on. `settings` are filled then; its sort keys stay empty with
    /// `DefaultOrder`.
    bool ShowUp(const CompareDataPair& pair, DataCompSettings& settings);

    // Fields. "Position" 0 is primary, 1 secondary, 2 tertiary.
    int optGen = 0;               ///< 0 record by record, 1 by key
    std::array<int, 6> cmbPK{};   ///< selected entries: Source at 0, 2, 4, Target at 1, 3, 5
    std::array<int, 6> cmbGen{};  ///< selected entries: Source at 0 to 2, Target at 3 to 5
    QString txtOffset[2];
    struct ColumnRow {
        QString column;
        QString type;
        bool checked = true;
    };
    std::vector<ColumnRow> pvlSqlObj[2];
    bool chkDoNotShowDialog = false;

    /// The entries of a side's boxes: "No Field" or "Default Order", then the columns.
    QStringList cmbPKItems(int Side) const;
    QStringList cmbGenItems(int Side) const;
    QString cmbPKText(int Index) const;
    QString cmbGenText(int Index) const;
    static int sideOfPK(int Index) { return Index % 2; }
    static int sideOfGen(int Index) { return Index / 3; }
    /// "Primary Field" ..., "Primary Sort Key" ...
    static QString lblPK(int Position);
    static QString lblSortKey(int Position);
    /// Keys, their labels, frames and validation belong to comparing by key alone.
    bool keyControlsEnabled() const { return optGen == 1; }

    // Events. `Item` is the entry that was chosen.
    void optGen_Click(int Index);
    void cmbPK_Click(int Index, int Item);
    void cmbGen_Click(int Index, int Item);
    /// Takes the digits of the text.
    void txtOffset_Change(int Index, const QString& text);
    void pvlSqlObj_Click(int Side, int Row, bool checked);
    void cmdSelectAll_Click(int Side);
    void cmdDeselectAll_Click(int Side);
    void chkDoNotShowDialog_Click(bool checked);
    void cmdValidate_Click(int Index);
    void cmdOK_Click();
    void cmdCancel_Click();

    /// A column's definition behind its name, "[int] IDENTITY(1,1) NOT NULL", found by its name in
    /// any case; empty for "No Field" and for a column that isn't there.
    QString GetColumnString(const QString& Name, int ServerIndex) const;

 private:
    struct Column {
        QString name;
        QString type;        ///< "varchar (50)"
        QString dataType;    ///< "varchar"
        QString definition;  ///< the line of the table's structure behind the name
    };
    struct KeyCheck {
        QStringList ignored[2];
        int selected[2] = {0, 0};
    };

    void load();
    void loadColumns(int side);
    void showStored(int side, const TableCompSettings& stored);
    /// False, and told, for a column that the server can neither compare nor sort.
    bool CheckFieldType(int side, const QString& column);
    /// `ending` follows the field's name in the message of a repetition.
    bool SelectedPKFieldsAreUnique(int side, const QString& ending);
    bool SelectedSortFieldsAreUnique(int side, const QString& ending);
    bool FieldsSelectionIsValid();
    bool ValidateIgnoredSelection(const KeyCheck& check);
    bool CheckIgnoredKey(const QStringList& IgnoredList, const QString& Column,
                         const QString& Caption, bool IsSource);
    bool storeIgnoredColumns();
    void ValidateFieldsSelection(int Index);
    QStringList pkTexts(int side) const;
    /// The sort keys of a side up to the first that isn't set.
    QStringList sortChain(int side) const;
    void saveSettings(const DataCompSettings& settings);

    CompareDataPair pair_;
    DataCompSettings* settings_ = nullptr;
    std::vector<Column> columns_[2];
    bool ignoreListChanged_ = false;
    bool accepted_ = false;
    bool filling_ = false;
};

}  // namespace zov
