#include "structcompare/column_update.h"

#include "data/sql_names.h"

#include <QRegularExpression>

namespace zov {
namespace {

enum class Family {
    Number,
    Bit,
    Letters,
    LongLetters,
    Bytes,
    LongBytes,
    DateTime,
    Date,
    Time,
    Guid,
    Other
};

Family familyOf(const ColumnFacts& column) {
    const QString& type = column.baseType;
    const auto any = [&](std::initializer_list<const char*> names) {
        for (const char* name : names)
            if (type == QLatin1StringView(name)) return true;
        return false;
    };
    if (any({"bigint", "int", "smallint", "tinyint", "decimal", "numeric", "money", "smallmoney",
             "float", "real"}))
        return Family::Number;
    if (type == u"bit") return Family::Bit;
    if (any({"varchar", "nvarchar", "char", "nchar", "sysname"})) return Family::Letters;
    if (any({"text", "ntext"})) return Family::LongLetters;
    if (any({"binary", "varbinary"})) return Family::Bytes;
    if (type == u"image") return Family::LongBytes;
    if (any({"datetime", "smalldatetime", "datetime2", "datetimeoffset"})) return Family::DateTime;
    if (type == u"date") return Family::Date;
    if (type == u"time") return Family::Time;
    if (type == u"uniqueidentifier") return Family::Guid;
    return Family::Other;
}

bool sameStorage(const ColumnFacts& a, const ColumnFacts& b) {
    return a.type == b.type && a.collation == b.collation && a.nullable == b.nullable;
}

/// ALTER COLUMN takes none of these, neither from nor to another type.
bool staysAsItIs(Family family) {
    return family == Family::LongLetters || family == Family::LongBytes || family == Family::Other;
}

struct Sizes {
    int first = -1, second = 0;  ///< "decimal(9,2)"; max counts as the largest
};
Sizes sizesOf(const QString& type) {
    static const QRegularExpression form(QStringLiteral("\\((max|\\d+)(?:,(\\d+))?\\)$"));
    const QRegularExpressionMatch match = form.match(type);
    if (!match.hasMatch()) return {};
    constexpr int Largest = 1 << 30;
    return {match.captured(1) == u"max" ? Largest : match.captured(1).toInt(),
            match.captured(2).toInt()};
}

int rankOf(const QString& type) {
    static const QStringList ranks = {QStringLiteral("bit"), QStringLiteral("tinyint"),
                                      QStringLiteral("smallint"), QStringLiteral("int"),
                                      QStringLiteral("bigint")};
    return int(ranks.indexOf(type));
}

bool holdsAll(const ColumnFacts& from, const ColumnFacts& to) {
    if (from.type == to.type) return true;
    if (from.baseType != to.baseType) {
        const int wide = rankOf(to.baseType), narrow = rankOf(from.baseType);
        if (wide >= 0 && narrow >= 0) return wide >= narrow;
        const bool letters = to.baseType == u'n' + from.baseType ||
                             (from.baseType == u"char" && to.baseType == u"varchar") ||
                             (from.baseType == u"nchar" && to.baseType == u"nvarchar");
        return letters && sizesOf(to.type).first >= sizesOf(from.type).first;
    }
    // An alias type hides its size.
    if (from.type.startsWith(u'[') || to.type.startsWith(u'[')) return false;
    const Sizes a = sizesOf(from.type), b = sizesOf(to.type);
    if (from.baseType == u"decimal" || from.baseType == u"numeric")
        return b.second >= a.second && b.first - b.second >= a.first - a.second;
    return b.first >= a.first;
}

}  // namespace

bool convertsByItself(const ColumnFacts& from, const ColumnFacts& to) {
    const Family a = familyOf(from), b = familyOf(to);
    if (a == b) return a != Family::Other || from.baseType == to.baseType;
    const auto pair = [&](Family one, Family other) {
        return (a == one && b == other) || (a == other && b == one);
    };
    if (pair(Family::Number, Family::Bit) || pair(Family::Letters, Family::LongLetters) ||
        pair(Family::Bytes, Family::LongBytes) || pair(Family::DateTime, Family::Date) ||
        pair(Family::DateTime, Family::Time))
        return true;
    // Money turns into letters, and no letters into money or bytes without being asked.
    if (a == Family::Letters)
        return (b == Family::Number && !to.baseType.contains(u"money")) || b == Family::Bit ||
               b == Family::DateTime || b == Family::Date || b == Family::Time || b == Family::Guid;
    if (b == Family::Letters)
        return (a == Family::Number && !from.baseType.contains(u"money")) || a == Family::Bit ||
               a == Family::DateTime || a == Family::Date || a == Family::Time || a == Family::Guid;
    return false;
}

ColumnUpdate updateOf(const ColumnFacts& source, const ColumnFacts& target) {
    const bool computed = !source.computed.isEmpty(), wasComputed = !target.computed.isEmpty();
    if (computed && wasComputed)
        return source.computed == target.computed && source.isPersisted == target.isPersisted &&
                       (!source.isPersisted || source.nullable == target.nullable)
                   ? ColumnUpdate::Nothing
                   : ColumnUpdate::Replace;
    if (computed) return ColumnUpdate::Replace;
    if (wasComputed || source.isIdentity != target.isIdentity || source.seed != target.seed ||
        source.increment != target.increment ||
        source.notForReplication != target.notForReplication ||
        source.isRowVersion != target.isRowVersion || source.isRowGuid != target.isRowGuid ||
        source.isSparse != target.isSparse || source.isColumnSet != target.isColumnSet ||
        source.mask != target.mask)
        return ColumnUpdate::Rebuild;
    if (sameStorage(source, target)) return ColumnUpdate::Nothing;
    // A rowversion's nullability can't be altered either.
    if (source.isRowVersion) return ColumnUpdate::Rebuild;
    if (!convertsByItself(target, source)) return ColumnUpdate::Replace;
    const Family from = familyOf(target), to = familyOf(source);
    if (source.type != target.type && (staysAsItIs(from) || staysAsItIs(to)))
        return ColumnUpdate::Rebuild;
    return ColumnUpdate::Alter;
}

QString lossOf(const ColumnFacts& from, const ColumnFacts& to) {
    if (!from.computed.isEmpty() && !to.computed.isEmpty()) return {};
    QStringList words;
    const QString name = quoteName(from.name);
    if (!to.computed.isEmpty())
        words += QStringLiteral("the values of %1 are lost: it becomes computed").arg(name);
    else if (!convertsByItself(from, to))
        words += QStringLiteral("the values of %1 are lost: %2 doesn't turn into %3")
                     .arg(name, from.type, to.type);
    else if (!holdsAll(from, to))
        words += QStringLiteral("values of %1 that %2 can't hold are cut, or stop the script")
                     .arg(name, to.type);
    if (to.computed.isEmpty() && from.nullable && !to.nullable)
        words += QStringLiteral("nulls in %1 stop the script").arg(name);
    return words.join(QStringLiteral("; "));
}

QString fillerOf(const ColumnFacts& column) {
    switch (familyOf(column)) {
        case Family::Number:
        case Family::Bit:
            return QStringLiteral("0");
        case Family::Letters:
        case Family::LongLetters:
            return QStringLiteral("N''");
        case Family::Bytes:
        case Family::LongBytes:
            return QStringLiteral("0x");
        case Family::DateTime:
        case Family::Date:
            return QStringLiteral("'19000101'");
        case Family::Time:
            return QStringLiteral("'00:00:00'");
        case Family::Guid:
            return QStringLiteral("'00000000-0000-0000-0000-000000000000'");
        case Family::Other:
            break;
    }
    if (column.baseType == u"sql_variant") return QStringLiteral("0");
    if (column.baseType == u"hierarchyid") return QStringLiteral("'/'");
    if (column.baseType.startsWith(u"geo")) return QStringLiteral("'POINT EMPTY'");
    return QStringLiteral("N''");
}

}  // namespace zov
