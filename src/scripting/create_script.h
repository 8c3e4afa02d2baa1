// A script that makes objects of a database and that a server runs as it stands: of one object, of
// a kind, of the whole database. Enter at makeCreateScript.
#pragma once

#include "scripting/database_facts.h"

#include <functional>

namespace zov {

/// What one file of a script that goes into a folder holds.
struct ScriptUnit {
    QString what;  ///< "table", "procedure", "foreign keys of table" ...
    QString name;  ///< "dbo.Orders"; empty for the schemas
    QString text;  ///< batches, each with its GO
};

struct CreateScript {
    std::vector<ScriptUnit> units;  ///< in an order that runs
    /// What could not be made a statement of: each stands in the script as a comment, too.
    QStringList missing;
    int objects = 0;

    /// All units below a heading.
    QString text(const QString& heading) const;
};

struct CreateScriptChoice {
    /// Whether an object is wanted; empty for the whole database. Of a table its keys, indexes,
    /// foreign keys and checks come along, of an object chosen the schemas and types that it needs.
    std::function<bool(const ObjectRef&)> wants;
    bool dropFirst = false;  ///< what is made is dropped first where it exists
    QString lineBreak =
        QStringLiteral("\r\n");  ///< of the frame; texts of modules stay as they are
};

CreateScript makeCreateScript(const DatabaseFacts& facts, const CreateScriptChoice& choice);
/// The objects that a choice can name, without what comes along with them.
std::vector<ObjectRef> scriptableObjects(const DatabaseFacts& facts);

/// What stands at the head of a script and of each of its files: a comment that names the database,
/// and the settings that its statements need.
QString createScriptHeading(const QString& database, const QString& lineBreak);

}  // namespace zov
