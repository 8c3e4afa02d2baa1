#include "catalog/frmFilterBySchema.h"

#include "core/error_report.h"
#include "core/globals.h"
#include "shell/shell.h"

namespace zov {

bool frmFilterBySchema::ShowUp(const QStringList& Names, int Index, bool& Applied, QString& List,
                               FilterType Type) {
    names_ = Names;
    index_ = Index;
    confirmed_ = changed_ = false;
    switch (Type) {
        case FilterType::Schema:
            Caption = QStringLiteral("Filter by Schema");
            lblInfo = QStringLiteral(
                "Only objects belonging to selected Schemas will be analyzed/compared.");
            break;
        case FilterType::Owner:
            Caption = QStringLiteral("Filter by Owner");
            lblInfo = QStringLiteral(
                "Only objects belonging to selected Owners will be analyzed/compared.");
            break;
        default:
            Caption = lblInfo = QStringLiteral("Wrong Filter parameter");
            break;
    }
    LoadGrid();
    reopen();
    shell().showModal(*this);
    if (!confirmed_) return false;
    Applied = applied_;
    List = result_;
    return true;
}

void frmFilterBySchema::LoadGrid() {
    try {
        constexpr qint32 fontSize = 8;
        GridRepLoadEntities(rpcReport, SchemaFilterGridDefinition(), fontSize);
        ScreenWriteAllEntities_GridRep(rpcReport, names_);
        const bool filtered = globals().gblnFilterActive[index_];
        const QStringList chosen = globals().gstrFilterList[index_].split(u',');
        bool all = true;
        for (int row = 1; row <= names_.size(); ++row) {
            setChecked(row, !filtered || chosen.contains(names_[row - 1]));
            all = all && isChecked(row);
        }
        setChecked(0, all);
    } catch (...) {
        const CaughtError error = caughtError();
        shell().messageBox(
            QStringLiteral("Error in Sub ScreenWriteAllEntities_GridRep, error nr %1 (")
                    .arg(error.number) +
                error.description + QStringLiteral(")."),
            {}, BoxIcon::None);
    }
}

void frmFilterBySchema::rpcReport_ItemCheck(int row) {
    if (row < 0 || size_t(row) >= rpcReport.records.size()) return;
    setChecked(row, !isChecked(row));
    changed_ = true;
    if (row == 0) {
        for (int other = 1; other <= names_.size(); ++other) setChecked(other, isChecked(0));
    } else {
        bool all = true;
        for (int other = 1; other <= names_.size(); ++other) all = all && isChecked(other);
        setChecked(0, all);
    }
    refresh();
}

void frmFilterBySchema::cmdSave() {
    if (SaveData()) close();
}

void frmFilterBySchema::cmdCancel() {
    if (Form_QueryUnload()) close();
}

bool frmFilterBySchema::Form_QueryUnload() {
    if (!changed_ || confirmed_) return true;
    switch (shell().askYesNoCancel(
        QStringLiteral("Do you wish to filter objects according to your new Schema selection?"))) {
        case BoxAnswer::Yes:
            return SaveData();
        case BoxAnswer::No:
            return true;
        default:
            return false;
    }
}

bool frmFilterBySchema::SaveData() {
    QStringList chosen;
    for (int row = 1; row <= names_.size(); ++row)
        if (isChecked(row)) chosen.push_back(names_[row - 1]);
    if (chosen.isEmpty()) {
        shell().messageBox(QStringLiteral("At least one Schema needs to be selected."));
        return false;
    }
    applied_ = chosen.size() < names_.size();
    result_ = applied_ ? chosen.join(u',') : QString();
    confirmed_ = true;
    return true;
}

bool frmFilterBySchema::isChecked(int row) const {
    return rpcReport.records[size_t(row)][SchemaNameColumn].checked;
}

void frmFilterBySchema::setChecked(int row, bool checked) {
    rpcReport.records[size_t(row)][SchemaNameColumn].checked = checked;
}

}  // namespace zov
