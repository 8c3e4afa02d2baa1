// The main window's guards: what must be selected before an operation can run,
// and what the user is told when it isn't.
#include "catalog/modOwner.h"
#include "core/main/frmMain.h"
#include "shell/shell.h"

namespace zov {
namespace {

void tell(const QString& text, const QString& title) {
    shell().messageBox(text, title);
}

const QString ToSelectOtherType = QStringLiteral("(using mouse or by pressing key F6) and select ");

}  // namespace

bool frmMain::TablesAreActive() {
    if (selectedType() == ObjectType::Table) return true;
    tell(
        QStringLiteral(
            "This functionality is enabled only when Tables are selected as active objects.\r\n\r\n"
            "To set Tables as active objects set focus to Objects Type combo box ") +
            ToSelectOtherType + QStringLiteral("first item from the list."),
        {});
    return false;
}

bool frmMain::ProgrammableObjectsAreActive() {
    const ObjectType type = selectedType();
    if (type == ObjectType::Procedure || type == ObjectType::Function || type == ObjectType::View)
        return true;
    tell(QStringLiteral(
             "This functionality is enabled only when procedures, functions or views are selected "
             "as active objects.\r\n\r\n"
             "To set active objects, set focus to Objects Type combo box ") +
             ToSelectOtherType + QStringLiteral("the desired item from the list."),
         {});
    return false;
}

bool frmMain::CanFilter(int Index, FilterType Type) {
    if (!dataAccessUsable()) return false;
    if (Type != FilterType::Schema && Type != FilterType::Owner) {
        tell(QStringLiteral("Function CanFilter - wrong parameter passed (penmFilterType = %1).")
                 .arg(qint32(Type)),
             {});
        return false;
    }
    const QString title = QStringLiteral("Cannot Filter");
    const QString cannot =
        QStringLiteral("Cannot filter by ") +
        (Type == FilterType::Schema ? QStringLiteral("schema") : QStringLiteral("owner"));
    Panel& panel = view_.panels()[Index];
    if (panel.pvlDb.text().isEmpty()) {
        tell(cannot + QStringLiteral(" - the list of databases is empty."), title);
        return false;
    }
    if (panel.pvlSqlObj.rowCount() == 0) {
        tell(cannot + QStringLiteral(" - the list of ") + GetObjectTypeName(selectedType(), true) +
                 QStringLiteral(" is empty."),
             title);
        return false;
    }
    if (Type == FilterType::Schema && GetMajorVersion(server(Index).Version) < 9) {
        tell(
            QStringLiteral("Cannot filter by schema - schemas were introduced in SQL Server 2005."),
            title);
        return false;
    }
    return true;
}

bool frmMain::CanSearchForObject(int Index) {
    if (!dataAccessUsable()) return false;
    const QString title = QStringLiteral("Cannot Search");
    Panel& panel = view_.panels()[Index];
    if (panel.pvlDb.text().isEmpty()) {
        tell(QStringLiteral("Cannot search for object - the list of databases is empty."), title);
        return false;
    }
    if (panel.pvlSqlObj.rowCount() == 0) {
        tell(QStringLiteral("Cannot search for object - the list of ") +
                 GetObjectTypeName(selectedType(), true) + QStringLiteral(" is empty."),
             title);
        return false;
    }
    return true;
}

bool frmMain::CanViewAnalyzeData(int Action, int Index, TableChoice& choice) {
    if (!dataAccessUsable()) return false;
    if (Action != 0 && Action != 1) {
        tell(QStringLiteral("Function CanViewAnalyzeData - wrong parameter passed."), {});
        return false;
    }
    const QString verb = Action == 0 ? QStringLiteral("view") : QStringLiteral("analyze");
    const QString title = Action == 0 ? QStringLiteral("View") : QStringLiteral("Analyze");
    Panel& panel = view_.panels()[Index];
    if (panel.pvlDb.text().isEmpty()) {
        tell(
            QStringLiteral("Cannot ") + verb + QStringLiteral(" - the list of databases is empty."),
            title);
        return false;
    }
    if (!TablesAreActive()) return false;
    const int row = panel.pvlSqlObj.selectedIndex();
    if (panel.pvlSqlObj.rowCount() == 0 || row < 0) {
        tell(QStringLiteral("Cannot ") + verb + QStringLiteral(" - the list of tables is empty."),
             title);
        return false;
    }
    const ObjectListRow& object = panel.pvlSqlObj.row(row);
    choice.server = server(Index);
    choice.database = database(Index);
    const qsizetype dot = object.name.indexOf(u'.');
    choice.schema = dot < 0 ? QString() : object.name.left(dot);
    choice.table = object.name.mid(dot + 1);
    choice.id = object.id;
    choice.extendedName = GetExtendedObjectName(choice.server, choice.database, object.name,
                                                ObjectType::Table, object.id);
    return true;
}

}  // namespace zov
