// What to change so that one table gets the structure of another: the columns and indexes of two
// tables with a verdict on each, and a script from it. Enter at GenerateUpdateScript.
// runnable_update.h makes a script that a server runs as it stands.
#pragma once

#include "scripting/modNew.h"

namespace zov {

/// `lngStatus` of a ColumnRecord.
namespace update_status {
inline constexpr qint32 NotLookedAt = 0, OnlyTarget = 1, OnlySource = 2, Differs = 3, Same = 4,
                        /// The same index; one of its key columns changes, so it is rebuilt.
    Rebuilt = 5;
}

struct ColumnChanges {
    qint32 dropped = 0, added = 0, changed = 0, same = 0;
    QString script;  ///< empty when nothing is to be changed

    bool any() const { return dropped + added + changed > 0; }
};
/// Sets the status of every column; names are matched whatever their case. The result tells that it
/// ran to its end.
bool UpdateScript_Tables(const QString& tableName, std::vector<ColumnRecord>& source,
                         std::vector<ColumnRecord>& target, ColumnChanges& changes);
/// "ALTER COLUMN " and the source's line.
QString ScriptColDiffs(const QString& tableName, const ColumnRecord& source,
                       const ColumnRecord& target);

struct IndexChanges {
    qint32 onlyTarget = 0, onlySource = 0, changed = 0, same = 0;
};
/// Sets the status of every index. With `columnsSame` all count as the same, whatever their texts.
bool CompareIndexes(std::vector<ColumnRecord>& source, std::vector<ColumnRecord>& target,
                    bool columnsSame, IndexChanges& changes);

/// One side of an update: a table of a database.
struct UpdateSide {
    ServerInfo server;
    QString database;
    ObjectRef table;
};
/// Changes of `target`'s columns and indexes as ALTER TABLE texts, empty when there are none.
/// False, after a report or an entry in the account, when one of the tables can't be read.
bool GenerateUpdateScript(const UpdateSide& source, const UpdateSide& target, QString& script);

}  // namespace zov
