// How two tables' data is compared: by which method, sorted how, matched on
// which keys, from which record on; and the file where each table's choice is
// kept, zov_tables_comps.ini. Ignored columns are elsewhere (core/modIgnoreColumns.h).
#pragma once

#include <QString>

namespace zov {

namespace CompMethod {
inline constexpr qint32 RecordByRecord = 0;
inline constexpr qint32 PrimaryKey = 1;
}  // namespace CompMethod

/// "Record by Record", "Primary Key"; "N/A" for any other number.
QString CompMethodToText(qint32 Method);

/// What a key's box holds when no column is chosen; it is stored and passed on as it is.
inline const QString NoField = QStringLiteral("No Field");
/// A key names a column: it is neither empty nor "No Field".
bool isKeyField(const QString& key);

/// One table's half of the settings, as a section of the file keeps it.
struct TableCompSettings {
    QString PrimarySortKey;  ///< empty: the table's natural order
    QString SecondarySortKey;
    QString TertiarySortKey;
    qint32 Offset = 0;  ///< record at which comparing starts, from 1; 0 is the first, too
    QString CompKey;    ///< a column or "No Field"; empty when never stored
    QString SecondaryCompKey;
    QString TertiaryCompKey;
    qint32 Method = CompMethod::RecordByRecord;
};

/// Both halves. 1 is Source, 2 Target.
struct DataCompSettings {
    qint32 Method = CompMethod::RecordByRecord;
    bool DefaultOrder = false;  ///< no sort keys: both tables are read in their natural order
    QString PrimarySortKey1, SecondarySortKey1, TertiarySortKey1;
    QString PrimarySortKey2, SecondarySortKey2, TertiarySortKey2;
    qint32 Offset1 = 0, Offset2 = 0;
    QString CompKey1, SecondaryCompKey1, TertiaryCompKey1;
    QString CompKey2, SecondaryCompKey2, TertiaryCompKey2;
};

/// What is stored for a table of the Source or the Target server, named as its key has it
/// (ObjectRef::storedName): empty keys, offset 0 and method 0
/// when nothing is, or when the file can't be read (which goes into the account of the run).
TableCompSettings ReadTableCompSettings(bool IsSource, const QString& Db, const QString& TableKey);

/// Both tables' settings; the method is the Target's. `DefaultOrder` stays false.
DataCompSettings ReadDataCompSettings(const QString& Db1, const QString& Db2,
                                      const QString& TableKey1, const QString& TableKey2);

/// Writes a table's section, in one rewrite of the file. The result is a sentence that names the
/// file and the reason of a failure; empty on success.
QString SaveTableCompSettings(bool IsSource, const QString& Db, const QString& TableKey,
                              const TableCompSettings& settings);

}  // namespace zov
