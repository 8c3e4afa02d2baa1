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

/// What a pane shows of a list that is empty or has several rows selected.
const QString NothingToShow = QStringLiteral("<<Nothing to show>>");

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

bool frmMain::showsNothing(int Index) const {
    return !hasText(Index) || view_.panels()[Index].txtTXProc.text() == NothingToShow;
}

bool frmMain::CanCompare() {
    if (!dataAccessUsable()) return false;
    const QString title = QStringLiteral("Cannot Compare");
    if (database(SourcePanel).isEmpty() || database(TargetPanel).isEmpty()) {
        tell(QStringLiteral("Cannot compare - the list of databases is empty."), title);
        return false;
    }
    // An object whose text can't be read is there; the comparison says what the matter is.
    const Panels& panels = view_.panels();
    const bool troubled =
        !panels.source.txtTXProc.Trouble.isEmpty() || !panels.target.txtTXProc.Trouble.isEmpty();
    if (!troubled && showsNothing(SourcePanel) && showsNothing(TargetPanel)) {
        tell(QStringLiteral("Cannot compare - the list of objects is empty."), title);
        return false;
    }
    return true;
}

bool frmMain::CanCompareData(SelectedPair& pair) {
    if (!CanCompare() || !TablesAreActive()) return false;
    const Panels& panels = view_.panels();
    const bool oneEach = panels.source.pvlSqlObj.selectedCount() == 1 &&
                         panels.target.pvlSqlObj.selectedCount() == 1;
    if (!oneEach) {
        tell(QStringLiteral("Cannot compare - the list of objects is empty."),
             QStringLiteral("Cannot Compare"));
        return false;
    }
    pair = GetNamesOfSelected();
    const TextPane& source = panels.source.txtTXProc;
    const TextPane& target = panels.target.txtTXProc;
    return AreIdentical(ObjectType::Table, source.text(), target.text(), source, target) ||
           shell().askYesNo(QStringLiteral("Compared tables have different structures.\r\n\r\nDo "
                                           "you still want to compare them?"),
                            QStringLiteral("Different Structures"));
}

bool frmMain::CanDisplayDbInfo(int Index) {
    if (!dataAccessUsable()) return false;
    if (!database(Index).isEmpty()) return true;
    tell(QStringLiteral("Cannot display database info - the list of databases is empty."),
         QStringLiteral("Cannot Display Info"));
    return false;
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
    choice.schema = object.schema;
    choice.table = object.bareName();
    choice.id = object.id;
    choice.object = objectOf(object, ObjectType::Table);
    choice.extendedName = GetExtendedObjectName(choice.server, choice.database, choice.object);
    return true;
}

}  // namespace zov
