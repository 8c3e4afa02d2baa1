// What one column needs to become another, and whether its values survive.
#pragma once

#include "scripting/database_facts.h"

namespace zov {

enum class ColumnUpdate {
    Nothing,  ///< the definitions are the same, but perhaps for the default and what is bound
    Alter,    ///< ALTER COLUMN can do it
    Replace,  ///< dropped and added: it is computed, or no conversion leads from one to the other
    Rebuild,  ///< only a new table can have it
};
ColumnUpdate updateOf(const ColumnFacts& source, const ColumnFacts& target);

/// Whether the server turns values of one type into the other where a statement doesn't say so.
bool convertsByItself(const ColumnFacts& from, const ColumnFacts& to);
/// Words for a warning when values of the column may not survive; empty when they do.
QString lossOf(const ColumnFacts& from, const ColumnFacts& to);
/// A value for rows that have none yet, for a column that takes no nulls and has no default.
QString fillerOf(const ColumnFacts& column);

}  // namespace zov
