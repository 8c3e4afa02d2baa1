// The search for references that can't be found through many modules: reads what it needs of a
// database, looks through the chosen ones, tells what it found and what it couldn't read. The
// window and the command line show the same lines.
#pragma once

#include "core/run_account.h"
#include "tools/missing_references.h"

#include <functional>

namespace zov {

/// A database's names and modules; what couldn't be had is in the account.
struct SearchedDatabase {
    DatabaseNames names;
    std::vector<ModuleText> modules;  ///< by kind and full name
    RunAccount account;
    /// Why something that is told as missing may be there after all; empty: it is not.
    QString doubt;

    /// Without it nothing can be said.
    bool isRead() const { return account.isWhole(); }
};
SearchedDatabase readSearchedDatabase(const ServerInfo& server, const QString& database);

struct ReferenceFindings {
    QStringList missing;  ///< "procedure dbo.P:12: table or view dbo.Gone can't be found"
    QStringList trouble;  ///< "procedure dbo.Q: its text can't be read"
    int searched = 0;     ///< modules
    bool stopped = false;
};
/// Looks through the modules that are `chosen`; the event pump runs between them, and the stop flag
/// ends it.
ReferenceFindings findMissingReferences(const SearchedDatabase& searched,
                                        const std::function<bool(const ModuleText&)>& chosen);

/// "procedure dbo.P"
QString moduleTitle(const ObjectRef& module);
/// "procedure dbo.Q: its text can't be read"
QString unreadModule(const ObjectRef& module);

/// The findings as the report screen shows them. `subject` says what was searched: "View 'dbo.V'".
QString referenceReport(const QString& subject, const QString& database,
                        const SearchedDatabase& searched, const ReferenceFindings& findings);

}  // namespace zov
