// The tools of the main window: data analyzer, database information, words that
// nothing accounts for.
#include "core/globals.h"
#include "core/main/frmMain.h"
#include "core/main/main_screens.h"
#include "shell/shell.h"
#include "tools/modNonExistObjects.h"
#include "tools/reference_search.h"
#include "util/text.h"

#include <QSet>

namespace zov {

void frmMain::cmdAnalyzeData_Click(int Index) {
    whileBusy("cmdAnalyzeData_Click", [&] {
        TableChoice choice;
        if (CanViewAnalyzeData(1, Index, choice))
            screens_.analyzeData(Index, choice.database, choice.object, choice.extendedName);
    });
}

void frmMain::cmdDbInfo_Click(int Index) {
    whileBusy("cmdDbInfo_Click", [&] {
        if (!CanDisplayDbInfo(Index) || !screens_.databaseInfo(Index, database(Index))) return;
        screens_.showGenericReport(QStringLiteral("Database Information"));
        globals().gstrReport.clear();
    });
}

void frmMain::cmdNonExistent_Click(int Index) {
    whileBusy("cmdNonExistent_Click", [&] { SearchRefToNonExistentObjects(Index); });
}

void frmMain::MenuToolsAttachDb() {
    if (!dataAccessUsable()) return;
    if (database(SourcePanel).isEmpty())
        return shell().messageBox(QStringLiteral("Please connect to the server first."));
    screens_.attachDatabase(server(SourcePanel));
}

void frmMain::SearchRefToNonExistentObjects(int Index) {
    if (!dataAccessUsable() || !ProgrammableObjectsAreActive()) return;
    const ObjectType type = selectedType();
    const QString typeName = GetObjectTypeName(type, false);
    const QString text = view_.panels()[Index].txtTXProc.text();
    const int row = view_.panels()[Index].pvlSqlObj.selectedIndex();
    if (text.isEmpty() || row < 0)
        return shell().messageBox(
            QStringLiteral("Cannot continue - there is no structure displayed for selected ") +
                typeName + u'.',
            QStringLiteral("Cannot Continue"));
    const WaitPointer wait;
    std::vector<ObjectListEntry> objects;
    if (!GetListOfAllObjects(server(Index), database(Index), objects, Index))
        return shell().messageBox(QStringLiteral("Couldn't retrieve list of all objects."), {},
                                  BoxIcon::Exclamation);
    // The columns take the place of the objects, and aren't kept: no word passes as a name, so that
    // all that a text names is told.
    GetListOfAllColumns(server(Index), database(Index), {});
    objects.clear();
    const QStringList references = FindRefToNonExistentObjects(type, text, objects);
    const QString subject = typeName + QStringLiteral(" '") +
                            view_.panels()[Index].pvlSqlObj.row(row).name + QStringLiteral("' ");
    if (references.isEmpty())
        return shell().messageBox(
            CRLF + CRLF + subject +
            QStringLiteral("doesn't contain any references to non-existent objects.") + CRLF +
            CRLF);
    QString told =
        subject + QStringLiteral("contains following references to non-existent objects:");
    for (const QString& reference : references) told += CRLF + reference;
    shell().messageBox(told, {}, BoxIcon::None);
}

bool frmMain::hasStatements(ObjectType type) {
    return type == ObjectType::Procedure || type == ObjectType::Function ||
           type == ObjectType::View || type == ObjectType::Trigger;
}

void frmMain::FindMissingReferencesIn(int Index, SearchedObjects objects) {
    whileBusy("FindMissingReferencesIn", [&] { searchMissingReferences(Index, objects); });
}

void frmMain::searchMissingReferences(int Index, SearchedObjects objects) {
    const QString title = QStringLiteral("Cannot Search");
    if (!dataAccessUsable()) return;
    if (database(Index).isEmpty())
        return shell().messageBox(
            QStringLiteral("Cannot search - connect to a server and choose a database first."),
            title);
    const ObjectType type = selectedType();
    if (objects != SearchedObjects::All && !hasStatements(type))
        return shell().messageBox(
            QStringLiteral("Cannot search - choose procedures, functions, views or triggers as "
                           "Objects Type first: other objects have no statements."),
            title);
    const ObjectList& list = view_.panels()[Index].pvlSqlObj;
    std::vector<ObjectRef> asked;
    for (int row = 0; row < list.rowCount() && objects != SearchedObjects::All; ++row)
        if (objects == SearchedObjects::Listed || row == list.selectedIndex())
            asked.push_back(objectOf(list.row(row), type));
    if (objects != SearchedObjects::All && asked.empty())
        return shell().messageBox(QStringLiteral("Cannot search - select a %1 in the list first.")
                                      .arg(GetObjectTypeName(type, false).toLower()),
                                  title);
    SearchedDatabase searched;
    ReferenceFindings findings;
    {
        const WaitPointer wait;
        globals().gblnStop = false;
        searched = readSearchedDatabase(server(Index), database(Index));
        if (searched.isRead()) {
            QSet<qint32> ids;
            for (const ObjectRef& object : asked) ids.insert(object.id);
            findings = findMissingReferences(searched, [&](const ModuleText& module) {
                return objects == SearchedObjects::All || ids.remove(module.object.id);
            });
            for (const ObjectRef& object : asked)
                if (ids.contains(object.id) && !findings.stopped)
                    findings.trouble += unreadModule(object);
        }
    }
    if (!searched.isRead())
        return shell().messageBox(QStringLiteral("Cannot search - the database can't be read.") +
                                      CRLF + CRLF + searched.account.entries().front().sentence(),
                                  title, BoxIcon::Exclamation);
    const QString subject =
        objects == SearchedObjects::All
            ? QStringLiteral("all procedures, functions, views and triggers")
        : objects == SearchedObjects::Listed
            ? QStringLiteral("the %1 listed").arg(GetObjectTypeName(type, true).toLower())
            : moduleTitle(asked.front());
    globals().gstrReport = referenceReport(subject, database(Index), searched, findings);
    screens_.showGenericReport(QStringLiteral("Missing References"));
    globals().gstrReport.clear();
}

}  // namespace zov
