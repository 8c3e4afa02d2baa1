// Columns that the user has marked as ignored, for data comparison, structure
// comparison and data analysis apart: three INI files with one section a table,
// "Server.Db.Table", and in it the columns' names under counters from "0".
// Other settings of single tables are kept under the same keys.
#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace zov {

class IniDocument;

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

/// A name as keys hold it: as it stands, or in brackets, those in it doubled, where a dot, a
/// bracket or a line break in it could make one key of two tables' names.
QString KeyPart(const QString& Name);
/// "Server.Db.Table", or "Server.Db" when the table's name is empty. `TableKey` is the table's name
/// as KeyPart gives it, with "Schema." in front where lists show it so (ObjectRef::storedName). A
/// server's name stands as it is: what follows it can be told from behind.
QString GetObjectKeyName(const QString& Server, const QString& Db, const QString& TableKey);
/// Splits a key behind its first two parts (a server's name with a dot is split wrongly, as is
/// known); the table's part stays as the key has it.
void GetObjectKeyParts(const QString& Key, QString& Server, QString& Db, QString& TableKey);
/// The section of a file that a key means: server and database in any letters, the table in those
/// of the key, since a database may tell cases apart. The key itself when there is none. The
/// document is one that tells sections apart by letter case.
QString SectionOfKey(const IniDocument& Document, const QString& Key);
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
