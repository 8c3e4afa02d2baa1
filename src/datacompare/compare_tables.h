// The two tables of a data comparison.
#pragma once

#include "catalog/object_ref.h"
#include "core/server_info.h"

#include <array>

namespace zov {

/// One table of a comparison.
struct CompareDataTable {
    ServerInfo Server;
    QString Db;
    QString Table;              ///< as the lists show it
    qint32 ObjectId = 0;        ///< 0 when unknown
    QString Schema = {};        ///< empty: not known
    QString BareName = {};      ///< as the catalogue has it; empty: `Table` is that
    bool HasNamesakes = false;  ///< other objects of the database may have this name

    const QString& name() const { return BareName.isEmpty() ? Table : BareName; }
    ObjectRef object() const {
        return {Schema, name(), ObjectType::Table, ObjectId, HasNamesakes, Table};
    }
    /// Its name in the keys of stored settings, and the key.
    QString storedName() const { return object().storedName(); }
    QString key() const { return GetObjectKeyName(Server.Name, Db, storedName()); }
};
inline CompareDataTable TableOf(const ServerInfo& server, const QString& database,
                                const ObjectRef& table) {
    return {server,       database,   table.shownName,   table.id,
            table.schema, table.name, table.hasNamesakes};
}
/// Source and Target.
using CompareDataPair = std::array<CompareDataTable, 2>;

}  // namespace zov
