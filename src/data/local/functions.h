// The SQL functions and collations that translated statements use.
#pragma once

struct sqlite3;

namespace zov::local {

class ServerStore;
struct Database;

/// Registers T-SQL's functions and text comparison on a fresh handle. To be called once per handle,
/// before anything is read from it: indexes depend on the collation. `database` must stay where it
/// is for the handle's life.
void installFunctions(sqlite3* handle, Database& database, ServerStore& store);

}  // namespace zov::local
