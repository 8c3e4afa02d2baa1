// The types that a SQL Server column can have, and what a result says of one of
// its columns. Both providers describe their results in these terms.
#pragma once

#include <QString>

namespace zov {

enum class SqlType {
    Bit,
    TinyInt,
    SmallInt,
    Int,
    BigInt,
    Decimal,
    Numeric,
    Money,
    SmallMoney,
    Real,
    Float,
    Date,
    Time,
    SmallDateTime,
    DateTime,
    DateTime2,
    DateTimeOffset,
    Char,
    VarChar,
    Text,
    NChar,
    NVarChar,
    NText,
    Xml,
    Binary,
    VarBinary,
    Image,
    RowVersion,
    UniqueIdentifier,
    Variant,
};

/// One column of a result.
struct ColumnInfo {
    QString name;
    SqlType type = SqlType::NVarChar;
    /// Characters for texts, bytes for binaries; -1 for a `max` type, 0 when unknown or fixed.
    int size = 0;
    /// Digits of decimal, numeric and money.
    int precision = 0;
    /// Digits behind the point of decimal, numeric, money; fraction digits of time, datetime2 and
    /// datetimeoffset (0 to 7).
    int scale = 0;
    bool nullable = true;
};

/// How the cells of a column are kept in memory (RowStore).
enum class Storage {
    Int8,  ///< bit, tinyint (unsigned)
    Int16,
    Int32,
    Int64,
    Float32,
    Float64,
    Scaled64,  ///< decimals of at most 18 digits and money: the digits as one integer, scale in
               ///< ColumnInfo
    Ticks,  ///< date and time family: units of 100 ns since 0001-01-01 00:00 (time: since midnight)
    TicksOffset,  ///< datetimeoffset: local ticks and the offset in minutes
    Guid,         ///< 16 bytes in the order of the printed form
    Text,         ///< UTF-16; also decimals of more than 18 digits, in plain canonical notation
    Bytes,
};

Storage storageOf(const ColumnInfo& column);

/// The `DataTypeEnum` number that `Field.Type` gives for a column, as OLE DB's provider for
/// SQL Server reports it: 11 bit, 3 int, 202 nvarchar, 135 datetime ...
int adoTypeOf(SqlType type);

/// The type's name in the catalogue: "nvarchar", "datetime2" ...
QString sqlTypeName(SqlType type);

bool isTextType(SqlType type);
bool isNumericType(SqlType type);
bool isDateTimeType(SqlType type);

}  // namespace zov
