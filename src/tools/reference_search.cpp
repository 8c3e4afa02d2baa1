#include "tools/reference_search.h"

#include "catalog/mdlObjects.h"
#include "catalog/run_checks.h"
#include "core/globals.h"
#include "shell/shell.h"
#include "util/text.h"

namespace zov {

SearchedDatabase readSearchedDatabase(const ServerInfo& server, const QString& database) {
    SearchedDatabase searched;
    const KeepAccount keep(searched.account);
    bool namesRead = false, modulesRead = false;
    QString hidden;
    const bool seesAll = seesWholeCatalogue(server, database, hidden);
    searched.names = DatabaseNames::read(server, database, namesRead);
    if (namesRead) searched.modules = readModuleTexts(server, database, modulesRead);
    if (!modulesRead && searched.account.isWhole())
        addToAccount({server.Name + u'.' + database, QStringLiteral("reading the catalogue"),
                      QStringLiteral("The names and texts of this database couldn't be read."), 0,
                      false, false});
    if (!seesAll)
        searched.doubt = QStringLiteral(
                             "The login may not see all objects of %1; what it can't see "
                             "is told as missing.")
                             .arg(database);
    return searched;
}

QString moduleTitle(const ObjectRef& module) {
    return GetObjectTypeName(module.kind, false).toLower() + u' ' + module.fullName();
}

QString unreadModule(const ObjectRef& module) {
    return moduleTitle(module) + QStringLiteral(": its text can't be read");
}

ReferenceFindings findMissingReferences(const SearchedDatabase& searched,
                                        const std::function<bool(const ModuleText&)>& chosen) {
    ReferenceFindings findings;
    for (const ModuleText& module : searched.modules) {
        if (!chosen(module)) continue;
        shell().pumpEvents();
        if (globals().gblnStop) {
            findings.stopped = true;
            break;
        }
        ++findings.searched;
        const ModuleReferences references = FindMissingReferences(module, searched.names);
        const QString title = moduleTitle(module.object);
        for (const MissingReference& reference : references.missing)
            findings.missing +=
                title + QStringLiteral(":%1: ").arg(reference.line) + reference.sentence();
        if (!references.trouble.isEmpty())
            findings.trouble += title + QStringLiteral(": ") + references.trouble;
    }
    return findings;
}

QString referenceReport(const QString& subject, const QString& database,
                        const SearchedDatabase& searched, const ReferenceFindings& findings) {
    QStringList lines{QStringLiteral("References that can't be found"),
                      {},
                      QStringLiteral("Database: ") + database,
                      QStringLiteral("Searched: ") + subject,
                      {}};
    if (!findings.missing.isEmpty())
        lines += findings.missing;
    else if (findings.searched == 0)
        lines += QStringLiteral("There is nothing to search.");
    else if (findings.trouble.isEmpty() && !findings.stopped && searched.doubt.isEmpty())
        lines += QStringLiteral("Every name that it refers to was found.");
    else
        lines += QStringLiteral("In what could be read, every name was found.");
    QStringList unread = findings.trouble;
    if (!searched.doubt.isEmpty()) unread += searched.doubt;
    if (findings.stopped) unread += QStringLiteral("The search was stopped before its end.");
    if (!unread.isEmpty())
        lines += QStringList{QString(), QStringLiteral("Not searched whole:")} + unread;
    return lines.join(CRLF) + CRLF;
}

}  // namespace zov
