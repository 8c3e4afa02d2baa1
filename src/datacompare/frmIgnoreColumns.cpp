#include "datacompare/frmIgnoreColumns.h"

#include "core/error_report.h"
#include "core/globals.h"
#include "reports/copy_to_file.h"
#include "scripting/mdlQueryCode.h"
#include "shell/shell.h"
#include "util/text.h"

#include <QDir>
#include <QTemporaryFile>

#include <algorithm>

namespace zov {
namespace {

QString purposeCaption(qint32 mode) {
    switch (mode) {
        case IgnoreMode::DataComparison:
            return QStringLiteral("Ignore Columns - Data Comparison");
        case IgnoreMode::StructureComparison:
            return QStringLiteral("Ignore Columns - Structure Comparison");
        case IgnoreMode::DataAnalysis:
            return QStringLiteral("Ignore Columns - Data Analysis");
        default:
            return {};
    }
}

}  // namespace

bool frmIgnoreColumnsAdd::ShowUp(qint32 Mode, const ServerInfo& Server, const QString& Db,
                                 const QString& Table, qint32 ObjectId, qint32& IgnoredCount,
                                 const QString& StoredName) {
    return guarded("frmIgnoreColumnsAdd", "ShowUp", false, [&] {
        mode_ = Mode;
        changed_ = false;
        Caption = purposeCaption(Mode);
        if (Caption.isEmpty()) {
            shell().messageBox(QStringLiteral("menmMode not set"));
            return false;
        }
        static const char* const purposes[] = {"data comparison", "structure comparison",
                                               "data analysis"};
        lblInfo = QStringLiteral("Deselect columns which you want to be ignored during %1.")
                      .arg(QLatin1String(purposes[Mode - 1]));
        lblTableName = QStringLiteral("Table: ") + GetObjectDisplayName(Server.Name, Db, Table);
        key_ =
            GetObjectKeyName(Server.Name, Db, StoredName.isEmpty() ? KeyPart(Table) : StoredName);
        if (!load(Server, Db, Table, ObjectId)) return false;
        reopen();
        shell().showModal(*this);
        if (changed_) IgnoredCount = ignored_;
        return changed_;
    });
}

bool frmIgnoreColumnsAdd::load(const ServerInfo& server, const QString& db, const QString& table,
                               qint32 objectId) {
    TableStructure structure;
    if (!GetTableStructure(server, db, table, DoubleSingleQuotes(table), structure, false, mode_,
                           objectId, {}))
        return false;
    if (structure.columns.empty()) {
        shell().messageBox(QStringLiteral("The columns of table '%1' can't be read.\r\n\r\nPlease "
                                          "refresh the list of tables: it may have been dropped.")
                               .arg(table),
                           Caption);
        return false;
    }
    QStringList ignored;
    QString failure;
    GetIgnoredColumnsList(mode_, key_, ignored, &failure);
    if (!failure.isEmpty()) {
        // Shown without its marks, the list would be stored without them.
        shell().messageBox(QStringLiteral("The ignored columns can't be read. ") + failure, Caption,
                           BoxIcon::Exclamation);
        return false;
    }
    pvlSqlObj.clear();
    for (const ColumnRecord& column : structure.columns)
        pvlSqlObj.push_back({column.strName, !ignored.contains(column.strName)});
    return true;
}

void frmIgnoreColumnsAdd::selectAll(bool checked) {
    for (Row& row : pvlSqlObj) row.checked = checked;
    refresh();
}

void frmIgnoreColumnsAdd::cmdOK() {
    QStringList ignored;
    for (const Row& row : pvlSqlObj)
        if (!row.checked) ignored += row.column;
    if (ignored.size() == qsizetype(pvlSqlObj.size())) {
        shell().messageBox(
            QStringLiteral("Please select at least one column or click Cancel button."));
        return;
    }
    if (!SaveIgnoredColumnsList(mode_, key_, ignored)) return;
    ignored_ = qint32(ignored.size());
    changed_ = true;
    close();
}

void frmIgnoreColumnsAdd::cmdCancel() {
    close();
}

void frmIgnoreColumnsView::ShowUp(qint32 Mode) {
    mode_ = Mode;
    Caption = purposeCaption(Mode);
    lblInfo =
        Mode == IgnoreMode::DataComparison
            ? QStringLiteral("The columns listed below are ignored during data comparisons.")
            : QStringLiteral("The columns listed below are ignored during structure comparisons.");
    ScreenWriteAllIgnoredCols();
    reopen();
    shell().showModal(*this);
}

void frmIgnoreColumnsView::ScreenWriteAllIgnoredCols() {
    try {
        GetAllIgnoredColumns(mode_, vsfGrid);
        lblCount = QStringLiteral("Number of columns listed: %1").arg(vsfGrid.size());
    } catch (...) {
        const CaughtError error = caughtError();
        shell().messageBox(QStringLiteral("Error in Sub ScreenWriteAllIgnoredCols, error nr %1 (")
                               .arg(error.number) +
                           error.description + QStringLiteral(")."));
    }
}

QString frmIgnoreColumnsView::listing() const {
    QString text;
    for (const IgnoredColumnRow& row : vsfGrid)
        text += QStringList{row.Server, row.Db, row.Table, row.Column}.join(QStringLiteral(", ")) +
                CRLF;
    return text;
}

void frmIgnoreColumnsView::cmdExit() {
    close();
}

void frmIgnoreColumnsView::cmdCopyClip() {
    if (vsfGrid.empty())
        shell().messageBox(QStringLiteral("There is nothing to copy to the Clipboard."));
    else
        shell().setClipboardText(listing());
}

void frmIgnoreColumnsView::cmdCopyToFile() {
    if (vsfGrid.empty()) {
        shell().messageBox(QStringLiteral("There is nothing to copy to file."));
        return;
    }
    QString path;
    CopyToFile(listing(), QStringLiteral("IgnoredColumns"), path);
}

void frmIgnoreColumnsView::cmdSendToNotepad() {
    if (vsfGrid.empty()) {
        shell().messageBox(QStringLiteral("There is nothing to copy to file."));
        return;
    }
    // The desktop's own text editor opens it, and may do so after this program has ended.
    QTemporaryFile file(QDir::tempPath() + QStringLiteral("/zov_ignored_columns_XXXXXX.txt"));
    file.setAutoRemove(false);
    const QByteArray text = listing().toUtf8();
    if (!file.open() || file.write(text) != text.size() || !file.flush()) {
        shell().messageBox(QStringLiteral("The list can't be written for the editor: ") +
                               file.errorString() +
                               QStringLiteral(".\r\n\r\nUse 'Copy To File' "
                                              "to save it elsewhere."),
                           Caption, BoxIcon::Exclamation);
        return;
    }
    file.close();
    shell().openWithDesktop(file.fileName());
}

}  // namespace zov
