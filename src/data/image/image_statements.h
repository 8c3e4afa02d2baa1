// What is asked of a server to learn the whole catalogue of a database, whatever its size, and
// where the answers go. Only documented views are read, nothing but the catalogue, on servers of
// version 9 and later.
#pragma once

#include <QString>

#include <span>

namespace zov::image {

/// The first version whose servers have all of these views.
inline constexpr int FirstVersion = 9;
/// Why there is no image of an older server's database, without a full stop.
QString oldVersionReason();

/// Rows that are put into the embedded server's catalogue as they come.
struct FillStatement {
    const char* title;   ///< what is read, for progress: "columns"
    const char* select;  ///< for the server
    const char* insert;  ///< for SQLite, once a row; ?1 is the row's first cell
};
std::span<const FillStatement> fillStatements();

/// A statement that server and image must answer alike, or the image isn't used: what the image
/// doesn't copy but works out.
struct ProbeStatement {
    const char* title;
    const char* select;
    bool names;  ///< rows of one name: the same by the database's collation is enough
};
std::span<const ProbeStatement> probeStatements();

/// Name, collation, default schema, version and name of the server.
extern const char* const databaseStatement;
/// Whether the login sees the whole catalogue.
extern const char* const rightsStatement;
/// How many rows there are of what an alteration needn't show in a date of an object.
extern const char* const countsStatement;
/// Every object with the date of its last alteration: asked first and last.
extern const char* const objectsStatement;

/// Run before the first row is put in: what a new database has by itself goes.
extern const char* const emptyCatalogueSql;

}  // namespace zov::image
