// Reads what database_facts.h holds: tables with all that hangs on them in table_facts.cpp, the
// rest in facts_reader.cpp. For these two alone; others enter at readDatabaseFacts.
#pragma once

#include "data/mdlData.h"
#include "data/sql_names.h"
#include "scripting/database_facts.h"

#include <QHash>

#include <functional>

namespace zov::facts {

inline constexpr int FirstVersionWithViews = 9;
inline constexpr int FirstVersionWithSparse = 10;
inline constexpr int FirstVersionWithSequences = 11;
inline constexpr int FirstVersionWithMasks = 13;

inline QString s(const char* text) {
    return QString::fromLatin1(text);
}

inline QString textOf(const Recordset& row, const char* field) {
    return row.field(s(field)).text();
}
inline bool flagOf(const Recordset& row, const char* field) {
    return row.field(s(field)).toInt64() != 0;
}
inline qint32 numberOf(const Recordset& row, const char* field) {
    return qint32(row.field(s(field)).toInt64());
}
inline QString nameOrNone(const Recordset& row, const char* schema, const char* name) {
    const QString text = textOf(row, name);
    return text.isEmpty() ? QString() : quotedName(textOf(row, schema), text);
}

/// The reading of one database. Statements are silent about nothing: what fails was reported, and
/// ends the reading.
class FactsReader {
 public:
    FactsReader(const ServerInfo& server, const QString& database, qint32 tableId)
        : server_(server),
          database_(database),
          tableId_(tableId),
          version_(GetMajorVersion(server.Version)) {}

    bool readTables();
    bool readAll(DatabaseFacts& facts);
    /// Of the one table that is read.
    bool readHangers(TableHangers& hangers);
    std::vector<TableFacts> tables;  ///< tables, views and table types, told apart by kinds_

    /// One row of an object, as sys.objects has it.
    struct Object {
        QString schema, name, type;
        qint32 parent = 0;
    };

 private:
    using Row = const Recordset&;
    bool each(const QString& sql, const std::function<void(Row)>& take);
    /// " AND column = id" when one table alone is read.
    QString only(const char* column) const {
        return tableId_ < 1 ? QString()
                            : QStringLiteral(" AND %1 = %2").arg(s(column)).arg(tableId_);
    }
    TableFacts* tableOf(qint32 id) {
        const auto found = tableAt_.constFind(id);
        return found == tableAt_.constEnd() ? nullptr : &tables[size_t(*found)];
    }
    bool readObjects();
    std::pair<qint32, Object> addObject(Row row);
    bool readColumns();
    bool readIndexes();
    bool eachForeignKey(const QString& condition,
                        const std::function<void(Row, ConstraintFacts&&)>& take);
    bool readForeignKeys();
    bool readChecks();
    bool readBeyond();
    bool readModules(DatabaseFacts& facts);
    bool readTriggers(DatabaseFacts& facts);
    bool readTypes(DatabaseFacts& facts);
    bool readSequences(DatabaseFacts& facts);
    bool readRest(DatabaseFacts& facts);
    void noteUnknownObject(const Object& object, DatabaseFacts& facts) const;
    static ColumnFacts columnOf(Row row);

    const ServerInfo& server_;
    const QString& database_;
    qint32 tableId_;
    qint32 version_;
    QHash<qint32, Object> objects_;
    QHash<qint32, qsizetype> tableAt_;
    QString databaseCollation_;
};

}  // namespace zov::facts
