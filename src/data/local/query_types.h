// Static types of T-SQL expressions: precedence, the types of arithmetic, and the
// form in which a type travels to the SQL functions as one number.
#pragma once

#include "data/base/sql_type.h"

#include <QString>

namespace zov::local {

/// What is known of an expression before it runs.
struct ValueType {
    ColumnInfo info;
    bool known = false;        ///< false: anything may come (a NULL, an untyped function)
    bool untypedNull = false;  ///< the word NULL itself

    SqlType type() const { return info.type; }
    bool isText() const { return known && isTextType(info.type); }
    bool isNumber() const { return known && isNumericType(info.type); }
    bool isDate() const { return known && isDateTimeType(info.type); }
    bool isBinary() const {
        return known && info.type >= SqlType::Binary && info.type <= SqlType::RowVersion;
    }
    bool isGuid() const { return known && info.type == SqlType::UniqueIdentifier; }
    bool isInteger() const { return known && info.type <= SqlType::BigInt; }
    /// decimal, numeric, money, smallmoney
    bool isExact() const {
        return known && info.type >= SqlType::Decimal && info.type <= SqlType::SmallMoney;
    }
    bool isFloat() const {
        return known && (info.type == SqlType::Real || info.type == SqlType::Float);
    }
    /// Its values may have more digits than a double holds, and are then kept as text.
    bool isWide() const {
        return known &&
               (info.type == SqlType::Decimal || info.type == SqlType::Numeric ||
                info.type == SqlType::Money) &&
               info.precision > 15;
    }
    bool isUnicode() const {
        return known && (info.type == SqlType::NChar || info.type == SqlType::NVarChar ||
                         info.type == SqlType::NText || info.type == SqlType::Xml);
    }
};

/// A column type with the size, precision and scale that belong to it.
ColumnInfo makeType(SqlType type, int size = 0, int precision = 0, int scale = 0,
                    bool nullable = true);
ValueType knownType(SqlType type, int size = 0, int precision = 0, int scale = 0,
                    bool nullable = true);
ValueType unknownType();

/// Higher wins when two types meet; SQL Server's order.
int typePrecedence(SqlType type);
/// The type of a CASE, a COALESCE, a UNION column of these two.
ValueType commonType(const ValueType& a, const ValueType& b);
/// The type of a + - * / % & | ^ b for numbers.
ValueType arithmeticType(QChar op, const ValueType& a, const ValueType& b);
/// Digits in front of and behind the point when the type meets a decimal.
void decimalShape(const ValueType& type, int& precision, int& scale);

qint64 packType(const ColumnInfo& type);
ColumnInfo unpackType(qint64 packed);

/// The type of a catalogue number (systypes.xtype) with a column's size as the catalogue tells it.
ColumnInfo typeFromCatalogue(int xtype, int length, int precision, int scale, bool nullable);
/// By its name without size ("int", "numeric"); false for an unknown one. `info` gets the default
/// size of a declaration without one (varchar 1, decimal 18,0, datetime2 7).
bool typeByName(QStringView name, ColumnInfo& info);

}  // namespace zov::local
