// The types of columns: reading them from tokens, and their catalogue facts.
#include "data/local/ddl_catalog.h"
#include "data/local/query_types.h"

namespace zov::local {

bool TypeFacts::isText() const {
    switch (xtype) {
        case 35:
        case 99:
        case 167:
        case 175:
        case 231:
        case 239:
            return true;
        default:
            return false;
    }
}
bool TypeFacts::isInteger() const {
    return xtype == 48 || xtype == 52 || xtype == 56 || xtype == 127;
}
bool TypeFacts::sameStorage(const TypeFacts& other) const {
    return xtype == other.xtype && length == other.length && prec == other.prec &&
           scale == other.scale;
}

namespace {

struct SystemType {
    const char* name;
    int xtype;
    int xusertype;
    int length;
    int prec;    // -2: none
    int scale;   // -2: none
    char sizes;  // c characters, n national characters, b bytes, d decimal, f float, t fraction
};

constexpr SystemType SystemTypes[] = {
    {"bit", 104, 104, 1, 1, -2, 0},
    {"tinyint", 48, 48, 1, 3, 0, 0},
    {"smallint", 52, 52, 2, 5, 0, 0},
    {"int", 56, 56, 4, 10, 0, 0},
    {"integer", 56, 56, 4, 10, 0, 0},
    {"bigint", 127, 127, 8, 19, 0, 0},
    {"decimal", 106, 106, 9, 18, 0, 'd'},
    {"dec", 106, 106, 9, 18, 0, 'd'},
    {"numeric", 108, 108, 9, 18, 0, 'd'},
    {"money", 60, 60, 8, 19, 4, 0},
    {"smallmoney", 122, 122, 4, 10, 4, 0},
    {"float", 62, 62, 8, 53, -2, 'f'},
    {"real", 59, 59, 4, 24, -2, 0},
    {"date", 40, 40, 3, 10, 0, 0},
    {"time", 41, 41, 5, 16, 7, 't'},
    {"smalldatetime", 58, 58, 4, 16, 0, 0},
    {"datetime", 61, 61, 8, 23, 3, 0},
    {"datetime2", 42, 42, 8, 27, 7, 't'},
    {"datetimeoffset", 43, 43, 10, 34, 7, 't'},
    {"char", 175, 175, 1, 1, -2, 'c'},
    {"character", 175, 175, 1, 1, -2, 'c'},
    {"varchar", 167, 167, 1, 1, -2, 'c'},
    {"nchar", 239, 239, 2, 1, -2, 'n'},
    {"nvarchar", 231, 231, 2, 1, -2, 'n'},
    {"sysname", 231, 256, 256, 128, -2, 0},
    {"text", 35, 35, 16, 2147483647, -2, 0},
    {"ntext", 99, 99, 16, 1073741823, -2, 0},
    {"image", 34, 34, 16, 2147483647, -2, 0},
    {"binary", 173, 173, 1, 1, -2, 'b'},
    {"varbinary", 165, 165, 1, 1, -2, 'b'},
    {"timestamp", 189, 189, 8, 8, -2, 0},
    {"rowversion", 189, 189, 8, 8, -2, 0},
    {"uniqueidentifier", 36, 36, 16, -2, -2, 0},
    {"sql_variant", 98, 98, 8016, 0, -2, 0},
    {"xml", 241, 241, -1, -1, -2, 0},
    {"hierarchyid", 240, 128, 892, 892, -2, 0},
    {"geometry", 240, 129, -1, -1, -2, 0},
    {"geography", 240, 130, -1, -1, -2, 0},
};

const SystemType* systemType(const QString& name) {
    for (const SystemType& type : SystemTypes)
        if (name.compare(QLatin1String(type.name), Qt::CaseInsensitive) == 0) return &type;
    return nullptr;
}

void sizeDecimal(TypeFacts& facts, int precision, int scale) {
    facts.prec = precision;
    facts.scale = scale;
    facts.length = precision <= 9 ? 5 : precision <= 19 ? 9 : precision <= 28 ? 13 : 17;
}

void sizeFraction(TypeFacts& facts, int digits) {
    facts.scale = digits;
    const int extra = digits == 0 ? 0 : digits + 1;
    const int bytes = digits <= 2 ? 0 : digits <= 4 ? 1 : 2;
    switch (facts.xtype) {
        case 41:
            facts.prec = 8 + extra;
            facts.length = 3 + bytes;
            break;
        case 42:
            facts.prec = 19 + extra;
            facts.length = 6 + bytes;
            break;
        default:
            facts.prec = 26 + extra;
            facts.length = 8 + bytes;
            break;
    }
}

void readSizes(TypeFacts& facts, const SystemType& type, TokenCursor& cursor) {
    const int line = cursor.peek().line;
    if (type.sizes == 0) {
        if (!cursor.is("(")) return;
        // xml(collection) is accepted: schema collections are not checked.
        if (facts.xtype == 241) {
            cursor.parenthesised();
            return;
        }
        fail(2716,
             QStringLiteral("Cannot specify a column width on data type %1.")
                 .arg(QLatin1String(type.name)),
             line);
    }
    if (!cursor.accept("(")) return;
    if (cursor.accept("max")) {
        if (facts.xtype != 167 && facts.xtype != 231 && facts.xtype != 165) cursor.failHere();
        facts.length = -1;
        facts.prec = -1;
        cursor.expect(")");
        return;
    }
    const auto number = [&cursor] {
        const Token& token = cursor.next();
        bool good = false;
        const int value = token.source.toInt(&good);
        if (token.kind != TokenKind::Number || !good) failSyntax(token);
        return value;
    };
    const int first = number();
    std::optional<int> second;
    if (type.sizes == 'd' && cursor.accept(",")) second = number();
    cursor.expect(")");
    const auto tooLarge = [&](int limit) {
        if (first < 1)
            fail(1001,
                 QStringLiteral("Line %1: Length or precision specification %2 is invalid.")
                     .arg(line)
                     .arg(first),
                 line);
        if (first > limit)
            fail(131,
                 QStringLiteral(
                     "The size (%1) given to the type '%2' exceeds the maximum allowed for "
                     "any data type (%3).")
                     .arg(first)
                     .arg(QLatin1String(type.name))
                     .arg(limit),
                 line);
    };
    switch (type.sizes) {
        case 'c':
        case 'b':
            tooLarge(8000);
            facts.length = first;
            facts.prec = first;
            break;
        case 'n':
            tooLarge(4000);
            facts.length = first * 2;
            facts.prec = first;
            break;
        case 'd':
            if (first < 1 || first > 38)
                fail(2750,
                     QStringLiteral(
                         "Column or parameter #1: Specified column precision %1 is greater "
                         "than the maximum precision of 38.")
                         .arg(first),
                     line);
            if (second.value_or(0) > first)
                fail(2751,
                     QStringLiteral(
                         "Column or parameter #1: Specified column scale %1 is greater than "
                         "the specified precision of %2.")
                         .arg(*second)
                         .arg(first),
                     line);
            sizeDecimal(facts, first, second.value_or(0));
            break;
        case 'f':
            tooLarge(53);
            if (first <= 24) {
                facts.xtype = facts.xusertype = 59;
                facts.length = 4;
                facts.prec = 24;
            }
            break;
        case 't':
            if (first < 0 || first > 7)
                fail(1002,
                     QStringLiteral("Line %1: Specified scale %2 is invalid.").arg(line).arg(first),
                     line);
            sizeFraction(facts, first);
            break;
        default:
            break;
    }
}

TypeFacts factsOf(const SystemType& type) {
    TypeFacts facts;
    facts.xtype = type.xtype;
    facts.xusertype = type.xusertype;
    facts.length = type.length;
    if (type.prec != -2) facts.prec = type.prec;
    if (type.scale != -2) facts.scale = type.scale;
    facts.nullable = type.xtype != 189 && type.xusertype != 256;
    return facts;
}

}  // namespace

TypeFacts readType(const Catalog& catalog, TokenCursor& cursor) {
    const int line = cursor.peek().line;
    QString schema;
    // The standard's names of several words.
    const bool bare = cursor.peek().kind == TokenKind::Word;
    QString name;
    if (bare && cursor.accept({"double", "precision"})) {
        name = QStringLiteral("float");
    } else if (bare && (cursor.accept({"national", "character", "varying"}) ||
                        cursor.accept({"national", "char", "varying"}))) {
        name = QStringLiteral("nvarchar");
    } else if (bare &&
               (cursor.accept({"national", "character"}) || cursor.accept({"national", "char"}))) {
        name = QStringLiteral("nchar");
    } else if (bare && cursor.accept({"national", "text"})) {
        name = QStringLiteral("ntext");
    } else if (bare &&
               (cursor.accept({"character", "varying"}) || cursor.accept({"char", "varying"}))) {
        name = QStringLiteral("varchar");
    } else if (bare && cursor.accept({"binary", "varying"})) {
        name = QStringLiteral("varbinary");
    } else {
        name = cursor.name();
        if (cursor.accept(".")) {
            schema = name;
            name = cursor.name();
        }
    }
    if (schema.isEmpty() || schema.compare(QLatin1String("sys"), Qt::CaseInsensitive) == 0) {
        if (const SystemType* type = systemType(name)) {
            TypeFacts facts = factsOf(*type);
            readSizes(facts, *type, cursor);
            return facts;
        }
    }
    CatalogQuery query(catalog.handle(),
                       "SELECT t.xtype, t.xusertype, t.length, t.prec, t.scale, t.allownulls"
                       " FROM \"zov$types\" t JOIN \"zov$schemas\" s ON s.schema_id=t.schema_id"
                       " WHERE t.isuser=1 AND t.name=?1 AND (?2 IS NULL OR s.name=?2)"
                       " ORDER BY s.name='dbo' DESC");
    query.add(name).add(schema.isEmpty() ? QString() : schema);
    if (!query.step())
        fail(2715,
             QStringLiteral("Column, parameter, or variable #1: Cannot find data type %1.")
                 .arg(schema.isEmpty() ? name : schema + u'.' + name),
             line);
    TypeFacts facts;
    facts.xtype = query.number(0);
    facts.xusertype = query.number(1);
    facts.length = query.number(2);
    facts.prec = query.optional(3);
    facts.scale = query.optional(4);
    facts.nullable = query.number(5) != 0;
    return facts;
}

TypeFacts readType(const Catalog& catalog, const QString& text) {
    const std::vector<Token> tokens = tokenize(text);
    TokenCursor cursor(tokens);
    const TypeFacts facts = readType(catalog, cursor);
    cursor.expectEnd();
    return facts;
}

TypeFacts typeFacts(const ColumnInfo& info) {
    const SystemType* type = systemType(sqlTypeName(info.type));
    if (!type) type = systemType(QStringLiteral("sql_variant"));
    TypeFacts facts = factsOf(*type);
    facts.nullable = info.nullable;
    switch (type->sizes) {
        case 'c':
        case 'b':
        case 'n':
            if (info.size < 0) {
                facts.length = facts.prec.emplace(-1);
            } else {
                const int size = std::max(info.size, 1);
                facts.length = type->sizes == 'n' ? size * 2 : size;
                facts.prec = size;
            }
            break;
        case 'd':
            sizeDecimal(facts, info.precision > 0 ? info.precision : 18, info.scale);
            break;
        case 't':
            sizeFraction(facts, info.scale);
            break;
        default:
            break;
    }
    return facts;
}

ColumnInfo columnInfo(const TypeFacts& type, bool nullable) {
    return typeFromCatalogue(type.xtype, type.length, type.prec.value_or(0), type.scale.value_or(0),
                             nullable);
}

}  // namespace zov::local
