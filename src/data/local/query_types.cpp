#include "data/local/query_types.h"

#include <algorithm>

namespace zov::local {

ColumnInfo makeType(SqlType type, int size, int precision, int scale, bool nullable) {
    ColumnInfo info;
    info.type = type;
    info.size = size;
    info.precision = precision;
    info.scale = scale;
    info.nullable = nullable;
    switch (type) {
        case SqlType::Money:
            info.precision = 19;
            info.scale = 4;
            break;
        case SqlType::SmallMoney:
            info.precision = 10;
            info.scale = 4;
            break;
        case SqlType::Bit:
            info.precision = 1;
            break;
        case SqlType::TinyInt:
            info.precision = 3;
            break;
        case SqlType::SmallInt:
            info.precision = 5;
            break;
        case SqlType::Int:
            info.precision = 10;
            break;
        case SqlType::BigInt:
            info.precision = 19;
            break;
        case SqlType::DateTime:
            info.scale = 3;
            break;
        case SqlType::Text:
        case SqlType::NText:
        case SqlType::Image:
        case SqlType::Xml:
            // The catalogue gives their length as prec; on the wire they have none.
            info.size = -1;
            info.precision = info.scale = 0;
            break;
        case SqlType::RowVersion:
            info.size = 8;
            break;
        case SqlType::Char:
        case SqlType::VarChar:
        case SqlType::NChar:
        case SqlType::NVarChar:
        case SqlType::Binary:
        case SqlType::VarBinary:
            // The catalogue's prec of these is their length again.
            info.precision = info.scale = 0;
            break;
        default:
            break;
    }
    return info;
}

ValueType knownType(SqlType type, int size, int precision, int scale, bool nullable) {
    ValueType value;
    value.info = makeType(type, size, precision, scale, nullable);
    value.known = true;
    return value;
}

ValueType unknownType() {
    ValueType value;
    value.info = makeType(SqlType::NVarChar, 4000);
    return value;
}

int typePrecedence(SqlType type) {
    switch (type) {
        case SqlType::Variant:
            return 30;
        case SqlType::Xml:
            return 29;
        case SqlType::DateTimeOffset:
            return 28;
        case SqlType::DateTime2:
            return 27;
        case SqlType::DateTime:
            return 26;
        case SqlType::SmallDateTime:
            return 25;
        case SqlType::Date:
            return 24;
        case SqlType::Time:
            return 23;
        case SqlType::Float:
            return 22;
        case SqlType::Real:
            return 21;
        case SqlType::Decimal:
        case SqlType::Numeric:
            return 20;
        case SqlType::Money:
            return 19;
        case SqlType::SmallMoney:
            return 18;
        case SqlType::BigInt:
            return 17;
        case SqlType::Int:
            return 16;
        case SqlType::SmallInt:
            return 15;
        case SqlType::TinyInt:
            return 14;
        case SqlType::Bit:
            return 13;
        case SqlType::NText:
            return 12;
        case SqlType::Text:
            return 11;
        case SqlType::Image:
            return 10;
        case SqlType::RowVersion:
            return 9;
        case SqlType::UniqueIdentifier:
            return 8;
        case SqlType::NVarChar:
            return 7;
        case SqlType::NChar:
            return 6;
        case SqlType::VarChar:
            return 5;
        case SqlType::Char:
            return 4;
        case SqlType::VarBinary:
            return 3;
        case SqlType::Binary:
            return 2;
    }
    return 0;
}

namespace {

int largerSize(int a, int b) {
    return a < 0 || b < 0 ? -1 : std::max(a, b);
}

ValueType cappedDecimal(int precision, int scale, SqlType type, bool nullable) {
    // Above 38 digits the fraction gives way, down to six digits.
    if (precision > 38) {
        scale = std::max(std::min(scale, 6), scale - (precision - 38));
        precision = 38;
    }
    return knownType(type, 0, precision, scale, nullable);
}

}  // namespace

ValueType commonType(const ValueType& a, const ValueType& b) {
    if (a.untypedNull || !a.known) {
        ValueType result = b;
        result.info.nullable = true;
        return a.untypedNull || !b.known ? result : a;
    }
    if (b.untypedNull || !b.known) {
        ValueType result = b.untypedNull ? a : b;
        result.info.nullable = true;
        return result;
    }
    const bool nullable = a.info.nullable || b.info.nullable;
    ValueType result = typePrecedence(b.type()) > typePrecedence(a.type()) ? b : a;
    if (a.isText() && b.isText()) {
        result.info.size = largerSize(a.info.size, b.info.size);
        // Two fixed lengths that differ make a variable one.
        if (a.type() == b.type() && a.info.size != b.info.size) {
            if (a.type() == SqlType::Char) result.info.type = SqlType::VarChar;
            if (a.type() == SqlType::NChar) result.info.type = SqlType::NVarChar;
        }
    } else if (a.isBinary() && b.isBinary()) {
        result.info.size = largerSize(a.info.size, b.info.size);
    } else if (result.type() == SqlType::Decimal || result.type() == SqlType::Numeric) {
        int pa, sa, pb, sb;
        decimalShape(a, pa, sa);
        decimalShape(b, pb, sb);
        const int scale = std::max(sa, sb);
        result = cappedDecimal(std::max(pa - sa, pb - sb) + scale, scale, result.type(), nullable);
    } else if (a.isDate() && b.isDate() && a.type() == b.type()) {
        result.info.scale = std::max(a.info.scale, b.info.scale);
    }
    result.info.nullable = nullable;
    result.info.name.clear();
    return result;
}

void decimalShape(const ValueType& type, int& precision, int& scale) {
    precision = type.info.precision;
    scale = type.isExact() ? type.info.scale : 0;
    if (precision <= 0) precision = 18;
}

ValueType arithmeticType(QChar op, const ValueType& a, const ValueType& b) {
    if (!a.isNumber() || !b.isNumber()) {
        if (a.isNumber() && !b.known) return a;
        if (b.isNumber() && !a.known) return b;
        return unknownType();
    }
    const bool nullable = a.info.nullable || b.info.nullable;
    const SqlType winner =
        typePrecedence(b.type()) > typePrecedence(a.type()) ? b.type() : a.type();
    if (winner == SqlType::Decimal || winner == SqlType::Numeric) {
        int p1, s1, p2, s2;
        decimalShape(a, p1, s1);
        decimalShape(b, p2, s2);
        int precision, scale;
        switch (op.unicode()) {
            case '*':
                precision = p1 + p2 + 1;
                scale = s1 + s2;
                break;
            case '/':
                scale = std::max(6, s1 + p2 + 1);
                precision = p1 - s1 + s2 + scale;
                break;
            case '%':
                scale = std::max(s1, s2);
                precision = std::min(p1 - s1, p2 - s2) + scale;
                break;
            default:
                scale = std::max(s1, s2);
                precision = std::max(p1 - s1, p2 - s2) + scale + 1;
        }
        return cappedDecimal(precision, scale, winner, nullable);
    }
    return knownType(winner, 0, 0, 0, nullable);
}

qint64 packType(const ColumnInfo& type) {
    return qint64(type.type) | qint64(quint16(qint16(std::min(type.size, 32000)))) << 8 |
           qint64(quint8(type.precision)) << 24 | qint64(quint8(type.scale)) << 32;
}

ColumnInfo unpackType(qint64 packed) {
    ColumnInfo info;
    info.type = SqlType(packed & 0xFF);
    info.size = qint16(quint16(packed >> 8));
    info.precision = int(quint8(packed >> 24));
    info.scale = int(quint8(packed >> 32));
    return info;
}

ColumnInfo typeFromCatalogue(int xtype, int length, int precision, int scale, bool nullable) {
    const auto make = [&](SqlType type, int size = 0) {
        return makeType(type, size, precision, scale, nullable);
    };
    switch (xtype) {
        case 34:
            return make(SqlType::Image);
        case 35:
            return make(SqlType::Text);
        case 36:
            return make(SqlType::UniqueIdentifier);
        case 40:
            return makeType(SqlType::Date, 0, 0, 0, nullable);
        case 41:
            return make(SqlType::Time);
        case 42:
            return make(SqlType::DateTime2);
        case 43:
            return make(SqlType::DateTimeOffset);
        case 48:
            return make(SqlType::TinyInt);
        case 52:
            return make(SqlType::SmallInt);
        case 56:
            return make(SqlType::Int);
        case 58:
            return makeType(SqlType::SmallDateTime, 0, 0, 0, nullable);
        case 59:
            return makeType(SqlType::Real, 0, 0, 0, nullable);
        case 60:
            return make(SqlType::Money);
        case 61:
            return make(SqlType::DateTime);
        case 62:
            return makeType(SqlType::Float, 0, 0, 0, nullable);
        case 98:
            return make(SqlType::Variant);
        case 99:
            return make(SqlType::NText);
        case 104:
            return make(SqlType::Bit);
        case 106:
            return make(SqlType::Decimal);
        case 108:
            return make(SqlType::Numeric);
        case 122:
            return make(SqlType::SmallMoney);
        case 127:
            return make(SqlType::BigInt);
        case 165:
            return make(SqlType::VarBinary, length);
        case 167:
            return make(SqlType::VarChar, length);
        case 173:
            return make(SqlType::Binary, length);
        case 175:
            return make(SqlType::Char, length);
        case 189:
            return make(SqlType::RowVersion, 8);
        case 231:
            return make(SqlType::NVarChar, length < 0 ? -1 : length / 2);
        case 239:
            return make(SqlType::NChar, length / 2);
        case 241:
            return make(SqlType::Xml);
        default:
            return make(SqlType::VarBinary, length);
    }
}

bool typeByName(QStringView name, ColumnInfo& info) {
    struct Entry {
        const char* name;
        SqlType type;
        int size, precision, scale;
    };
    static const Entry entries[] = {
        {"int", SqlType::Int, 0, 0, 0},
        {"integer", SqlType::Int, 0, 0, 0},
        {"bigint", SqlType::BigInt, 0, 0, 0},
        {"smallint", SqlType::SmallInt, 0, 0, 0},
        {"tinyint", SqlType::TinyInt, 0, 0, 0},
        {"bit", SqlType::Bit, 0, 0, 0},
        {"decimal", SqlType::Decimal, 0, 18, 0},
        {"dec", SqlType::Decimal, 0, 18, 0},
        {"numeric", SqlType::Numeric, 0, 18, 0},
        {"money", SqlType::Money, 0, 0, 0},
        {"smallmoney", SqlType::SmallMoney, 0, 0, 0},
        {"real", SqlType::Real, 0, 0, 0},
        {"float", SqlType::Float, 0, 0, 0},
        {"double", SqlType::Float, 0, 0, 0},
        {"date", SqlType::Date, 0, 0, 0},
        {"time", SqlType::Time, 0, 16, 7},
        {"smalldatetime", SqlType::SmallDateTime, 0, 0, 0},
        {"datetime", SqlType::DateTime, 0, 0, 3},
        {"datetime2", SqlType::DateTime2, 0, 27, 7},
        {"datetimeoffset", SqlType::DateTimeOffset, 0, 34, 7},
        {"char", SqlType::Char, 1, 0, 0},
        {"character", SqlType::Char, 1, 0, 0},
        {"varchar", SqlType::VarChar, 1, 0, 0},
        {"text", SqlType::Text, -1, 0, 0},
        {"nchar", SqlType::NChar, 1, 0, 0},
        {"nvarchar", SqlType::NVarChar, 1, 0, 0},
        {"ntext", SqlType::NText, -1, 0, 0},
        {"sysname", SqlType::NVarChar, 128, 0, 0},
        {"xml", SqlType::Xml, -1, 0, 0},
        {"binary", SqlType::Binary, 1, 0, 0},
        {"varbinary", SqlType::VarBinary, 1, 0, 0},
        {"image", SqlType::Image, -1, 0, 0},
        {"rowversion", SqlType::RowVersion, 8, 0, 0},
        {"timestamp", SqlType::RowVersion, 8, 0, 0},
        {"uniqueidentifier", SqlType::UniqueIdentifier, 0, 0, 0},
        {"sql_variant", SqlType::Variant, 0, 0, 0},
    };
    for (const Entry& entry : entries) {
        if (name.compare(QLatin1String(entry.name), Qt::CaseInsensitive) == 0) {
            info = makeType(entry.type, entry.size, entry.precision, entry.scale);
            return true;
        }
    }
    return false;
}

}  // namespace zov::local
