// The catalogue that every embedded database carries: plain SQLite tables named
// "zov$...", filled by the DDL statements and shown as SQL Server's catalogue by
// the views of catalog_views. One file holds one database: these tables and one
// SQLite table "schema.name" per user table.
#pragma once

struct sqlite3;

namespace zov::local {

/// Statements that make the catalogue tables in an empty file, with the system types, the schemas
/// and the users that every new database has.
const char* catalogTablesSql();

/// Catalogue tables that files of earlier versions of the program lack, made where they are
/// missing.
const char* laterCatalogTablesSql();

/// Fixed ids.
inline constexpr int DboUserId = 1;
inline constexpr int DboSchemaId = 1;
/// The first object id that a new database hands out; ids then grow as SQL Server's do.
inline constexpr int FirstObjectId = 245575913;
inline constexpr int ObjectIdStep = 16000057;  // wraps below 2^31, skipping ids in use

}  // namespace zov::local
