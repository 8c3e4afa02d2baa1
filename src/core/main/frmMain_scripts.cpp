// The scripts that the main window makes of what its panels have selected: CREATE statements,
// scripts that a server runs, the update of one table to another, and the debug commands that run
// such statements in the Target database.
#include "catalog/run_checks.h"
#include "core/globals.h"
#include "core/main/frmMain.h"
#include "core/main/main_screens.h"
#include "core/run_account.h"
#include "scripting/create_script.h"
#include "scripting/modSql.h"
#include "shell/memory_controls.h"
#include "shell/shell.h"
#include "structcompare/runnable_update.h"
#include "util/text.h"

namespace zov {
namespace {

const QString UpdateTitle = QStringLiteral("Generate Update Script");

/// The account's entries below a sentence.
QString withReasons(QString text, const RunAccount& account) {
    for (const AccountEntry& entry : account.entries()) text += CRLF + CRLF + entry.sentence();
    return text;
}

/// A key goes by its name: lists have its table's id.
bool isAmong(const std::vector<ObjectRef>& rows, const ObjectRef& object) {
    for (const ObjectRef& row : rows) {
        if (row.kind != object.kind) continue;
        if (object.kind != ObjectType::Constraint && object.id > 0 && row.id > 0
                ? object.id == row.id
                : object.name == row.name && (row.schema.isEmpty() || row.schema == object.schema))
            return true;
    }
    return false;
}

}  // namespace

void frmMain::MenuSqlCreate(int Index) {
    if (dataAccessUsable()) BuildSQLCreateStatement(Index);
}

void frmMain::BuildSQLCreateStatement(int Index) {
    if (!hasText(SourcePanel) && !hasText(TargetPanel)) {
        shell().messageBox(
            QStringLiteral(
                "Cannot continue - there is no structure displayed for selected object."),
            QStringLiteral("Cannot Continue"));
        return;
    }
    CreateStatementRequest request;
    const SelectedPair pair = GetNamesOfSelected();
    request.dbName = Index == SourcePanel ? pair.sourceDb : pair.targetDb;
    request.objectName = Index == SourcePanel ? pair.sourceObject : pair.targetObject;
    request.objectId = Index == SourcePanel ? pair.sourceId : pair.targetId;
    request.object = Index == SourcePanel ? pair.sourceRow : pair.targetRow;
    request.objectType = pair.objectType;
    request.lineSuffix = QStringLiteral(",");
    bool ok = false;
    RunAccount account;
    QString text;
    {
        const KeepAccount keep(account);
        text = BuildObjectCreateStatement(server(Index), request, ok);
    }
    // What is missing from the text would be missing from the object that it makes.
    if (text.isEmpty() || !account.isWhole()) {
        shell().messageBox(
            withReasons(QStringLiteral("Couldn't generate SQL CREATE statement."), account));
        return;
    }
    const ScopedValue<QString> report(globals().gstrReport, text);
    screens_.showGenericReport(QStringLiteral("SQL CREATE Statement"));
}

std::vector<ObjectRef> frmMain::selectedObjects(int Index) {
    std::vector<ObjectRef> objects;
    const ObjectList& list = view_.panels()[Index].pvlSqlObj;
    for (const int row : view_.selectedRows(Index))
        objects.push_back(objectOf(list.row(row), selectedType()));
    return objects;
}

void frmMain::MenuRunnableScript(int Index, ScriptScope scope) {
    if (!dataAccessUsable()) return;
    const QString db = database(Index);
    const ObjectType type = selectedType();
    const QString title = QStringLiteral("Cannot Continue");
    if (db.isEmpty())
        return shell().messageBox(QStringLiteral("Please connect to the server first."), title);
    if (scope != ScriptScope::Database && type == ObjectType::Permission)
        return shell().messageBox(QStringLiteral("Permissions have no CREATE statement."), title);
    const std::vector<ObjectRef> selected = selectedObjects(Index);
    if (scope == ScriptScope::Selected && selected.empty())
        return shell().messageBox(
            QStringLiteral("Cannot continue - no object is selected in the list."), title);
    CreateScriptChoice choice;
    if (scope == ScriptScope::Selected)
        choice.wants = [&](const ObjectRef& object) { return isAmong(selected, object); };
    else if (scope == ScriptScope::Kind)
        choice.wants = [&](const ObjectRef& object) { return object.kind == type; };
    DatabaseFacts facts;
    RunAccount account;
    QString hidden;
    bool read = false, seesAll = true;
    {
        const KeepAccount keep(account);
        read = readDatabaseFacts(server(Index), db, facts);
        if (read && scope != ScriptScope::Selected)
            seesAll = seesWholeCatalogue(server(Index), db, hidden);
    }
    if (!read || !account.isWhole())
        return shell().messageBox(
            withReasons(QStringLiteral("Couldn't generate the script."), account), {},
            BoxIcon::Exclamation);
    const CreateScript script = makeCreateScript(facts, choice);
    if (script.units.empty())
        return shell().messageBox(
            QStringLiteral("There is nothing to script in database ") + db + u'.', title);
    // What isn't in the script is told before it is shown, and stands in it as a comment.
    QStringList missing = script.missing;
    if (!seesAll) missing.prepend(hidden);
    if (!missing.isEmpty())
        shell().messageBox(
            QStringLiteral("Not everything is in this script:") + CRLF + CRLF + missing.join(CRLF),
            {}, BoxIcon::Exclamation);
    const ScopedValue<QString> report(globals().gstrReport,
                                      script.text(createScriptHeading(db, CRLF)));
    screens_.showGenericReport(QStringLiteral("Runnable Script"));
}

void frmMain::GenerateUpdateScript() {
    if (!dataAccessUsable() || !TablesAreActive()) return;
    const SelectedPair pair = GetNamesOfSelected();
    if (pair.sourceDb.isEmpty() || pair.targetDb.isEmpty())
        return shell().messageBox(QStringLiteral("Please connect to the server first."));
    const bool noText = !hasText(SourcePanel) && !hasText(TargetPanel);
    if (noText || pair.sourceId < 1 || pair.targetId < 1)
        return shell().messageBox(
            QStringLiteral(
                "Cannot continue - there is no structure displayed for selected object."),
            UpdateTitle);
    const auto identical = [] {
        shell().messageBox(QStringLiteral("The selected tables are identical."), UpdateTitle);
    };
    if (pair.sourceServer.Name == pair.targetServer.Name && pair.sourceDb == pair.targetDb &&
        pair.sourceId == pair.targetId)
        return identical();
    const UpdateSide source{pair.sourceServer, pair.sourceDb, pair.source()};
    const UpdateSide target{pair.targetServer, pair.targetDb, pair.target()};
    TableUpdate update;
    RunAccount account;
    bool made = false;
    {
        const KeepAccount keep(account);
        made = makeTableUpdate(source, target, CRLF, update);
    }
    if (!made || !account.isWhole())
        return shell().messageBox(
            withReasons(QStringLiteral("Couldn't generate the update script."), account),
            UpdateTitle, BoxIcon::Exclamation);
    // Equal texts alone don't say so: they leave out foreign keys, checks and more.
    if (!update.differs && update.note.isEmpty() &&
        view_.panels().source.txtTXProc.text() == view_.panels().target.txtTXProc.text())
        return identical();
    if (!update.differs)
        return shell().messageBox(
            QStringLiteral("There is nothing to change.") +
                (update.note.isEmpty() ? QString() : CRLF + CRLF + update.note),
            UpdateTitle);
    if (!update.missing.isEmpty())
        shell().messageBox(QStringLiteral("The runnable statements leave something out:") + CRLF +
                               CRLF + update.missing.join(CRLF),
                           UpdateTitle, BoxIcon::Exclamation);
    const ScopedValue<QString> report(
        globals().gstrReport,
        update.listed.isEmpty() ? QStringLiteral("-- ") + update.note + CRLF : update.listed);
    screens_.showGenericReport(QStringLiteral("Update Script"),
                               {QStringLiteral("&Runnable statements"), update.runnable});
}

void frmMain::createInTarget(const std::vector<ObjectRef>& objects, const QString& what) {
    const QString title = what;
    const QString targetDb = database(TargetPanel);
    if (database(SourcePanel).isEmpty() || targetDb.isEmpty())
        return shell().messageBox(QStringLiteral("Please connect to the server first."));
    if (objects.empty())
        return shell().messageBox(
            QStringLiteral("Cannot continue - no object is selected in the list."), title);
    const QString place = server(TargetPanel).Name + u'.' + targetDb;
    const bool one = objects.size() == 1;
    const QString plural = GetObjectTypeName(objects.front().kind, !one).toLower();
    if (!shell().askYesNoDefaultNo(
            QStringLiteral("%1 %2 of the Source database %3 will be created in the Target database "
                           "%4. This changes that database.")
                    .arg(formatCount(qint64(objects.size())), plural,
                         server(SourcePanel).Name + u'.' + database(SourcePanel), place) +
                CRLF + CRLF + QStringLiteral("Go on?"),
            title))
        return;
    qint64 created = 0;
    const auto tell = [&](const QString& trouble, BoxIcon icon) {
        shell().messageBox(
            trouble + QStringLiteral("%1 of %2 were created in %3.")
                          .arg(formatCount(created), formatCount(qint64(objects.size())), place),
            title, icon);
    };
    for (const ObjectRef& object : objects) {
        CreateStatementRequest request;
        request.dbName = database(SourcePanel);
        request.objectName = object.shownName;
        request.object = object;
        request.objectId = object.id;
        request.objectType = object.kind;
        request.lineSuffix = QStringLiteral(",");
        // Nothing of the Target is dropped.
        request.bodyOnly = true;
        bool ok = false;
        RunAccount account;
        QString statement;
        {
            const KeepAccount keep(account);
            statement = BuildObjectCreateStatement(server(SourcePanel), request, ok);
        }
        if (!ok || !account.isWhole())
            return tell(withReasons(QStringLiteral("There is no CREATE statement of ") +
                                        object.fullName() + u'.',
                                    account) +
                            CRLF + CRLF,
                        BoxIcon::Exclamation);
        if (!SQL_Execute(server(TargetPanel), statement, targetDb))
            return tell(object.fullName() + QStringLiteral(" could not be created.") + CRLF + CRLF,
                        BoxIcon::Exclamation);
        ++created;
        shell().pumpEvents();
        if (globals().gblnStop) break;
    }
    tell({}, BoxIcon::Information);
}

void frmMain::CreateObjects() {
    createInTarget(selectedObjects(SourcePanel), QStringLiteral("Create Objects"));
}

void frmMain::CreateStoredProcedures() {
    std::vector<ObjectRef> procedures;
    if (!database(SourcePanel).isEmpty()) {
        MemoryObjectList list;
        MemoryTextPane pane;
        RunAccount account;
        {
            const KeepAccount keep(account);
            LoadObjects(server(SourcePanel), list, pane, ObjectType::Procedure,
                        database(SourcePanel), false, {}, SourcePanel, nullptr);
        }
        if (!account.isWhole()) return;
        for (int row = 0; row < list.rowCount(); ++row)
            procedures.push_back(objectOf(list.row(row), ObjectType::Procedure));
        if (procedures.empty())
            return shell().messageBox(QStringLiteral("There are no procedures in Source database."),
                                      QStringLiteral("Create Stored Procedures"));
    }
    createInTarget(procedures, QStringLiteral("Create Stored Procedures"));
}

}  // namespace zov
