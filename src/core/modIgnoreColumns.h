// Columns that the user has marked as ignored, for data comparison, structure
// comparison and data analysis apart: three INI files with one section a table,
// "Server.Db.Table", and in it the columns' names under counters from "0".
#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace zov {

/// The purposes; each has a file of its own.
namespace IgnoreMode {
inline constexpr qint32 DataComparison = 1;
inline constexpr qint32 StructureComparison = 2;
inline constexpr qint32 DataAnalysis = 3;
}  // namespace IgnoreMode

struct IgnoredColumnRow {
    QString Server;
    QString Db;
    QString Table;
    QString Column;
};

/// "Server.Db.Table", or "Server.Db" when the table's name is empty; names as they stand.
QString GetObjectKeyName(const QString& Server, const QString& Db, const QString& Table);
/// Splits a key at its first two dots (a server's name with a dot is split wrongly, as is known).
void GetObjectKeyParts(const QString& Key, QString& Server, QString& Db, QString& Table);
/// "Table (Database: Db, Server: Server)"
QString GetObjectDisplayName(const QString& Server, const QString& Db, const QString& Table);

/// The columns ignored in the table of this key; their number is the result. A file that can't be
/// read gives none; that goes into the account of the run, and as a sentence to `Failure`.
qint32 GetIgnoredColumnsList(qint32 Mode, const QString& Key, QStringList& Columns,
                             QString* Failure = nullptr);
/// Replaces the table's list; an empty one leaves no section. False, and told, when it can't be
/// written.
bool SaveIgnoredColumnsList(qint32 Mode, const QString& Key, const QStringList& Columns);
/// Every mark of a purpose, in the file's order; their number is the result.
qint32 GetAllIgnoredColumns(qint32 Mode, std::vector<IgnoredColumnRow>& Rows);

/// To the letter.
bool IsColumnInList(const QStringList& List, const QString& Column);

}  // namespace zov
