// What the order of texts means for a database's file: its indexes rest on ICU's order, which
// changes between versions, and its catalogue's names are compared by the database's collation.
#pragma once

#include "data/local/collation.h"

struct sqlite3;

namespace zov::local {

/// Whether the file's indexes were made by this version of the order.
bool sortingIsCurrent(sqlite3* handle);
/// Makes the indexes of texts anew and notes the version, in a transaction of its own. A unique
/// index that finds values equal now that were different before goes on without being unique.
/// Throws DbError when the file can't be written, or when two names of the catalogue became one.
void renewSorting(sqlite3* handle);
/// To be called when a file is made.
void noteSorting(sqlite3* handle);
/// The database's texts in a private file that goes with the handle, for a file that can't be
/// written and whose indexes can't be used. `source` stays open.
sqlite3* privateCopy(sqlite3* source);

/// Makes the catalogue's names compare by `collation`, within the running statement, and calls
/// tables and columns in SQLite as it wants. Throws DbError 5072 when two names would become one.
void setNameCollation(sqlite3* handle, const Collation& collation, const QString& database);
/// The collation that the catalogue's names have in the file.
const Collation* storedCollation(sqlite3* handle, const char* table, const char* column);

}  // namespace zov::local
