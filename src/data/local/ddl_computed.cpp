// The types of computed columns. What an expression calls and isn't run here has a type all the
// same: the database's own functions by their RETURNS, methods of xml and of the CLR types by what
// they are documented to give. Each such call is replaced by a NULL of its type, and the query side
// infers the rest.
#include "data/local/ddl.h"
#include "data/local/query_engine.h"
#include "data/local/server_store.h"

#include <algorithm>

namespace zov::local {
namespace {

bool same(const QString& a, const char* b) {
    return a.compare(QLatin1String(b), Qt::CaseInsensitive) == 0;
}

bool isOneOf(const QString& name, std::initializer_list<const char*> names) {
    return std::any_of(names.begin(), names.end(),
                       [&](const char* one) { return same(name, one); });
}

bool isSpatial(const QString& type) {
    return same(type, "geometry") || same(type, "geography");
}

/// What a method or a property gives, by its name and the type that it belongs to; null when it
/// isn't known. Methods that the types share give the same.
QString typeOfMethod(const QString& base, const QString& name) {
    if (isOneOf(name, {"GetLevel"})) return QStringLiteral("smallint");
    if (isOneOf(name, {"GetAncestor", "GetDescendant", "GetReparentedValue", "GetRoot"}))
        return QStringLiteral("hierarchyid");
    if (isOneOf(name, {"Parse"})) return isSpatial(base) ? base : QStringLiteral("hierarchyid");
    if (isOneOf(name, {"ToString"}))
        return isSpatial(base) ? QStringLiteral("nvarchar(max)") : QStringLiteral("nvarchar(4000)");
    if (isOneOf(name, {"exist",     "IsDescendantOf", "STIsEmpty",  "STIsClosed",   "STIsSimple",
                       "STIsValid", "STIsRing",       "STEquals",   "STIntersects", "STContains",
                       "STWithin",  "STTouches",      "STOverlaps", "STCrosses",    "STDisjoint",
                       "STRelate",  "InstanceOf",     "HasZ",       "HasM",         "IsNull",
                       "Filter"}))
        return QStringLiteral("bit");
    if (isOneOf(name, {"query", "AsGml"})) return QStringLiteral("xml");
    if (isOneOf(name, {"STArea", "STLength", "STDistance", "STX", "STY", "Lat", "Long", "Z", "M",
                       "EnvelopeAngle"}))
        return QStringLiteral("float");
    if (isOneOf(name, {"STSrid", "STNumPoints", "STNumGeometries", "STDimension",
                       "STNumInteriorRing", "NumRings"}))
        return QStringLiteral("int");
    if (isOneOf(name, {"STGeometryType"})) return QStringLiteral("nvarchar(4000)");
    if (isOneOf(name, {"STAsText", "AsTextZM"})) return QStringLiteral("nvarchar(max)");
    if (isOneOf(name, {"STAsBinary", "AsBinaryZM", "Serialize"}))
        return QStringLiteral("varbinary(max)");
    return isSpatial(base) ? base : QString();
}

/// An expression that the query side can type; `whole` names the type when one call of a CLR type's
/// method is all there is.
struct Describable {
    QString text;
    QString whole;
};

class CallReplacer {
 public:
    CallReplacer(const Catalog& catalog, const std::vector<ColumnFacts>& columns)
        : catalog_(catalog), columns_(columns) {}

    Describable run(std::span<const Token> tokens) {
        while (tokens.size() > 2 && tokens.front().is("(") &&
               matching(tokens, 0) == tokens.size() - 1)
            tokens = tokens.subspan(1, tokens.size() - 2);
        Describable result;
        for (size_t at = 0; at < tokens.size();) {
            QString type;
            const size_t end = callAt(tokens, at, type);
            if (end == at) {
                result.text += tokens[at++].source;
                result.text += u' ';
                continue;
            }
            if (at == 0 && end == tokens.size()) result.whole = type;
            result.text += QStringLiteral("CAST(NULL AS %1) ").arg(type);
            at = end;
        }
        return result;
    }

 private:
    /// The index of the parenthesis that closes the one at `open`.
    static size_t matching(std::span<const Token> tokens, size_t open) {
        int depth = 0;
        for (size_t at = open; at < tokens.size(); ++at) {
            if (tokens[at].is("(")) ++depth;
            if (tokens[at].is(")") && --depth == 0) return at;
        }
        return tokens.size() - 1;
    }

    const ColumnFacts* column(const QString& name) const {
        for (const ColumnFacts& one : columns_)
            if (one.name.compare(name, Qt::CaseInsensitive) == 0) return &one;
        return nullptr;
    }

    /// The end of a call that begins at `at` and that the query side doesn't know; `at` without
    /// one.
    size_t callAt(std::span<const Token> tokens, size_t at, QString& type) {
        const auto is = [&](size_t index, const char* text) {
            return index < tokens.size() && tokens[index].is(text);
        };
        size_t end = at;
        if (is(at, "(") || (tokens[at].kind == TokenKind::Word && is(at + 1, "("))) {
            // (x).m(...), CAST(x AS xml).m(...)
            const bool function = !is(at, "(");
            end = matching(tokens, at + function) + 1;
            if (!is(end, ".")) return at;
            if (function && tokens[at].is("CAST"))
                type = typeBehindAs(tokens.subspan(at, end - at));
        } else if (tokens[at].isName()) {
            std::vector<QString> path{tokens[at].name()};
            for (end = at + 1; is(end, ".") && end + 1 < tokens.size() && tokens[end + 1].isName();
                 end += 2)
                path.push_back(tokens[end + 1].name());
            if (is(end, "::")) {
                type = path.back();
            } else if (path.size() == 1) {
                return at;
            } else if (const ColumnFacts* base = column(path[0]);
                       base && (isClr(*base) || is(end, "("))) {
                type = typeName(*base);
                end = at + 1;
            } else if (is(end, "(")) {
                type = returnType(path, tokens[at].line);
                end = matching(tokens, end) + 1;
            } else {
                return at;
            }
        } else {
            return at;
        }
        return chainEnd(tokens, end, type);
    }

    /// Behind all ".method(...)", ".property" and "::method(...)" that follow.
    size_t chainEnd(std::span<const Token> tokens, size_t end, QString& type) {
        while (end + 1 < tokens.size() && (tokens[end].is(".") || tokens[end].is("::")) &&
               tokens[end + 1].isName()) {
            const QString method = tokens[end + 1].name();
            end += 2;
            std::span<const Token> arguments;
            if (end < tokens.size() && tokens[end].is("(")) {
                const size_t close = matching(tokens, end);
                arguments = tokens.subspan(end + 1, close - end - 1);
                end = close + 1;
            }
            if (same(method, "value"))
                type = !arguments.empty() && arguments.back().kind == TokenKind::String
                           ? arguments.back().value
                           : QString();
            else
                type = typeOfMethod(type, method);
            if (type.isEmpty()) type = QStringLiteral("sql_variant");
        }
        return end;
    }

    static QString typeBehindAs(std::span<const Token> cast) {
        for (size_t at = cast.size(); at-- > 1;)
            if (cast[at].is("AS")) return sourceText(cast.subspan(at + 1, cast.size() - at - 2));
        return {};
    }

    static bool isClr(const ColumnFacts& column) { return column.type.xtype == 240; }

    QString typeName(const ColumnFacts& column) const {
        CatalogQuery query(catalog_.handle(), "SELECT name FROM \"zov$types\" WHERE xusertype=?");
        query.add(column.type.xusertype);
        return query.step() ? query.text(0) : QString();
    }

    /// What a scalar function of the database returns.
    QString returnType(const std::vector<QString>& path, int line) const {
        ObjectName name;
        name.name = path.back();
        if (path.size() > 1) name.schema = path[path.size() - 2];
        if (path.size() > 2) name.database = path[path.size() - 3];
        const QString called = name.display();
        if (!name.database.isEmpty() &&
            name.database.compare(catalog_.database().name, Qt::CaseInsensitive) != 0)
            return QStringLiteral("sql_variant");
        const std::optional<ObjectFacts> function = catalog_.find(name);
        if (!function || function->xtype != QLatin1String("FN"))
            fail(4121,
                 QStringLiteral("Cannot find either column \"%1\" or the user-defined function or "
                                "aggregate \"%2\", or the name is ambiguous.")
                     .arg(path.front(), called),
                 line);
        const QString text = catalog_.text(function->id);
        const std::vector<Token> tokens = tokenize(text);
        size_t at = 0;
        while (at < tokens.size() && !tokens[at].is("(")) ++at;
        if (at < tokens.size()) at = matching(tokens, at) + 1;
        if (at >= tokens.size() || !tokens[at].is("RETURNS")) return QStringLiteral("sql_variant");
        const size_t begin = at + 1;
        TokenCursor cursor(std::span<const Token>(tokens).subspan(begin));
        const TypeFacts type = readType(catalog_, cursor);
        const QString written =
            sourceText(std::span<const Token>(tokens).subspan(begin, cursor.position()));
        // A declaration without a size means one, a CAST thirty.
        const bool sized = type.xusertype == type.xtype &&
                           (type.isText() || type.xtype == 165 || type.xtype == 173) &&
                           type.xtype != 35 && type.xtype != 99;
        return sized && !written.contains(u'(') ? written + QStringLiteral("(1)") : written;
    }

    const Catalog& catalog_;
    const std::vector<ColumnFacts>& columns_;
};

/// The column that an expression is nothing but a mention of.
const ColumnFacts* mentionedColumn(const Catalog& catalog, std::span<const Token> tokens,
                                   const std::vector<ColumnFacts>& columns) {
    while (tokens.size() > 2 && tokens.front().is("(") && tokens.back().is(")"))
        tokens = tokens.subspan(1, tokens.size() - 2);
    if (tokens.size() != 1 || !tokens.front().isName()) return nullptr;
    for (const ColumnFacts& column : columns)
        if (catalog.sameName(column.name, tokens.front().name())) return &column;
    return nullptr;
}

}  // namespace

void typeComputedColumn(Catalog& catalog, const ObjectFacts& table, ColumnFacts& column) {
    const std::vector<Token> tokens = tokenize(column.computed);
    const std::span<const Token> all = std::span<const Token>(tokens).first(tokens.size() - 1);
    const std::vector<ColumnFacts> columns = catalog.columns(table.id);
    catalogChanged(catalog.database());
    if (const ColumnFacts* base = mentionedColumn(catalog, all, columns)) {
        column.type = base->type;
        column.nullable = base->nullable;
        column.collation = base->collation;
        return;
    }
    const Describable described = CallReplacer(catalog, columns).run(all);
    column.nullable = true;
    if (isOneOf(described.whole, {"hierarchyid", "geometry", "geography"})) {
        column.type = readType(catalog, described.whole);
        return;
    }
    ColumnInfo info;
    info.type = SqlType::Variant;
    info.nullable = true;
    QString collation;
    const std::vector<Token> describable = tokenize(described.text);
    try {
        translateForSqlite(catalog.session(),
                           std::span<const Token>(describable).first(describable.size() - 1),
                           table.id, &info, &collation);
    } catch (const DbError& error) {
        if (error.native == 207) throw;  // an unknown column is the user's mistake
    }
    column.type = typeFacts(info);
    column.nullable = info.nullable;
    if (column.type.isText())
        column.collation = collation.isEmpty() ? catalog.names().name() : collation;
}

}  // namespace zov::local
