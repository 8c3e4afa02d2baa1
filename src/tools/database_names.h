// What a database has under which names, and the texts of its modules: what the search for
// references that can't be found rests on. Read in a fixed number of statements.
#pragma once

#include "catalog/object_ref.h"
#include "core/server_info.h"

#include <QHash>
#include <QSet>

#include <memory>
#include <vector>

namespace zov {

class Recordset;

/// Which names a database takes for one and the same.
class NameFolding {
 public:
    /// `collation`: the database's, "Latin1_General_CI_AS"; one that isn't known tells neither case
    /// nor accents apart. Where a collation's rules aren't known to the letter (width, ligatures),
    /// two names rather pass for one than for two.
    explicit NameFolding(const QString& collation = {});
    /// Equal for names that are the same.
    QString fold(const QString& name) const;

 private:
    bool isBinary_ = false;
    bool tellsCase_ = false;
    bool tellsAccents_ = false;
    bool isTurkish_ = false;
};

struct NamedObject {
    QString schema;
    QString name;
    QString type;           ///< as sysobjects.xtype has it: "U", "V", "P", "FN", "SN"
    QSet<QString> columns;  ///< folded; none: not known
};

class DatabaseNames {
 public:
    /// Asks the server, silently; what fails goes into the account that is kept. `read` says
    /// whether all came.
    static DatabaseNames read(const ServerInfo& server, const QString& database, bool& read);

    /// Nothing but the database's name, to be filled by the add...s.
    explicit DatabaseNames(const QString& database = {}, const QString& collation = {});
    NamedObject& addObject(const QString& schema, const QString& name, const QString& type);
    void addColumn(NamedObject& object, const QString& column);
    void addType(const QString& schema, const QString& name);
    void addSchema(const QString& schema);

    QString fold(const QString& name) const { return folding_.fold(name); }
    /// Null when there is none.
    const NamedObject* object(const QString& schema, const QString& name) const;
    bool hasSchema(const QString& name) const { return schemas_.contains(fold(name)); }
    bool hasType(const QString& schema, const QString& name) const;
    bool isThisDatabase(const QString& name) const { return fold(name) == fold(database_); }

 private:
    QString key(const QString& schema, const QString& name) const;
    bool readObjects(const ServerInfo& server, QHash<qint32, NamedObject*>& byId);
    bool readColumns(const ServerInfo& server, const QHash<qint32, NamedObject*>& byId);
    bool readTypesAndSchemas(const ServerInfo& server);

    QString database_;
    NameFolding folding_;
    std::vector<std::unique_ptr<NamedObject>> objects_;
    QHash<QString, NamedObject*> byName_;
    QSet<QString> schemas_;
    QSet<QString> types_;
};

/// A procedure, function, view or trigger with its text.
struct ModuleText {
    ObjectRef object;
    QString text;
    bool isReadable = true;   ///< false: encrypted, or hidden from the login
    bool quotedNames = true;  ///< "x" is a name in it, not a text
};

/// All modules of the database, by kind and full name; silently, as above.
std::vector<ModuleText> readModuleTexts(const ServerInfo& server, const QString& database,
                                        bool& read);

}  // namespace zov
