// T-SQL's functions as the translator sees them: how many arguments, what type
// comes back, and what stands for them in SQLite. What SQLite lacks is registered
// by functions_*.cpp.
#include "data/local/query_translator.h"
#include "data/local/query_values.h"
#include "data/local/server_store.h"

#include <limits>

namespace zov::local {
namespace {

Sql made(QString text, ValueType type) {
    Sql sql;
    sql.text = std::move(text);
    sql.type = std::move(type);
    sql.type.info.name.clear();
    return sql;
}

QString call(const char* name, const QStringList& arguments) {
    return QLatin1String(name) + u'(' + arguments.join(QLatin1String(", ")) + u')';
}

/// A function's result that keeps the collation of the text that it was made of.
Sql collatedAs(const Sql& text, Sql result) {
    result.collating = text.collating;
    return result;
}

/// Functions that look for one text in another: how many arguments stand before the collation.
int searches(const QString& name) {
    return name == u"charindex" || name == u"replace" ? 3 : name == u"patindex" ? 2 : 0;
}

/// The text type that a function makes of its argument: varchar stays varchar, the rest is
/// nvarchar.
ValueType textLike(const ValueType& argument, int size) {
    const bool narrow = argument.known &&
                        (argument.type() == SqlType::Char || argument.type() == SqlType::VarChar ||
                         argument.type() == SqlType::Text || argument.isNumber());
    return knownType(narrow ? SqlType::VarChar : SqlType::NVarChar, size     ? size
                                                                    : narrow ? 8000
                                                                             : 4000);
}

enum class Result {
    Int,
    BigInt,
    Float,
    DateTime,
    DateTime2,
    NVarChar,
    VarChar,
    Bit,
    Guid,
    First,      ///< the type of the first argument
    FirstText,  ///< a text of the first argument's size
    LongText,   ///< a text as long as there is
    Numeric38,
    Variant,
};

struct Rule {
    const char* name;
    int least, most;
    const char* sqlite;  ///< the function called with the arguments in their order
    Result result;
    int size;    ///< of NVarChar and VarChar
    bool texts;  ///< arguments are texts, others are converted
    bool bind;   ///< literals become parameters (look-ups by name)
    int minVersion;
};

/// What a text of this type can hold.
qint64 mostLetters(const ColumnInfo& type) {
    const bool isUnicode = type.type == SqlType::NVarChar || type.type == SqlType::NChar;
    if (type.size < 0) return isUnicode ? (1 << 30) - 1 : std::numeric_limits<qint32>::max();
    return isUnicode ? 4000 : 8000;
}

const Rule rules[] = {
    // texts
    {"len", 1, 1, "zov_len", Result::Int, 0, true, false, 0},
    {"substring", 3, 3, "zov_substring", Result::FirstText, 0, false, false, 0},
    {"ltrim", 1, 1, "ltrim", Result::FirstText, 0, true, false, 0},
    {"rtrim", 1, 1, "rtrim", Result::FirstText, 0, true, false, 0},
    {"trim", 1, 1, "trim", Result::FirstText, 0, true, false, 14},
    {"upper", 1, 1, "zov_upper", Result::FirstText, 0, true, false, 0},
    {"lower", 1, 1, "zov_lower", Result::FirstText, 0, true, false, 0},
    {"reverse", 1, 1, "zov_reverse", Result::FirstText, 0, true, false, 0},
    {"left", 2, 2, "zov_left", Result::FirstText, 0, true, false, 0},
    {"right", 2, 2, "zov_right", Result::FirstText, 0, true, false, 0},
    {"replace", 3, 3, "zov_replace", Result::LongText, 0, true, false, 0},
    {"stuff", 4, 4, "zov_stuff", Result::LongText, 0, true, false, 0},
    {"replicate", 2, 2, "zov_replicate", Result::LongText, 0, true, false, 0},
    {"charindex", 2, 3, "zov_charindex", Result::Int, 0, true, false, 0},
    {"patindex", 2, 2, "zov_patindex", Result::Int, 0, true, false, 0},
    {"space", 1, 1, "zov_space", Result::VarChar, 8000, false, false, 0},
    {"str", 1, 3, "zov_str", Result::VarChar, 8000, false, false, 0},
    {"quotename", 1, 2, "zov_quotename", Result::NVarChar, 258, true, false, 0},
    {"ascii", 1, 1, "zov_ascii", Result::Int, 0, true, false, 0},
    {"unicode", 1, 1, "zov_unicode", Result::Int, 0, true, false, 0},
    {"char", 1, 1, "zov_char", Result::VarChar, 1, false, false, 0},
    {"nchar", 1, 1, "zov_nchar", Result::NVarChar, 1, false, false, 0},
    {"isnumeric", 1, 1, "zov_isnumeric", Result::Int, 0, true, false, 0},
    {"checksum", 1, 100, "zov_checksum", Result::Int, 0, false, false, 0},
    {"binary_checksum", 1, 100, "zov_checksum", Result::Int, 0, false, false, 0},
    // numbers
    {"abs", 1, 1, "abs", Result::First, 0, false, false, 0},
    {"sign", 1, 1, "sign", Result::First, 0, false, false, 0},
    {"floor", 1, 1, "floor", Result::First, 0, false, false, 0},
    {"ceiling", 1, 1, "ceil", Result::First, 0, false, false, 0},
    {"power", 2, 2, "zov_power", Result::First, 0, false, false, 0},
    {"sqrt", 1, 1, "sqrt", Result::Float, 0, false, false, 0},
    {"square", 1, 1, "zov_square", Result::Float, 0, false, false, 0},
    {"exp", 1, 1, "exp", Result::Float, 0, false, false, 0},
    {"log10", 1, 1, "log10", Result::Float, 0, false, false, 0},
    {"pi", 0, 0, "pi", Result::Float, 0, false, false, 0},
    {"sin", 1, 1, "sin", Result::Float, 0, false, false, 0},
    {"cos", 1, 1, "cos", Result::Float, 0, false, false, 0},
    {"tan", 1, 1, "tan", Result::Float, 0, false, false, 0},
    // the server
    {"newid", 0, 0, "zov_newid", Result::Guid, 0, false, false, 0},
    {"suser_sname", 0, 1, "zov_login", Result::NVarChar, 128, false, true, 0},
    {"suser_name", 0, 1, "zov_login", Result::NVarChar, 128, false, true, 0},
    {"system_user", 0, 0, "zov_login", Result::NVarChar, 128, false, true, 0},
    {"original_login", 0, 0, "zov_login", Result::NVarChar, 128, false, true, 9},
    {"user_name", 0, 1, "user_name", Result::NVarChar, 128, false, true, 0},
    {"user", 0, 0, "user_name", Result::NVarChar, 128, false, true, 0},
    {"current_user", 0, 0, "user_name", Result::NVarChar, 128, false, true, 0},
    {"session_user", 0, 0, "user_name", Result::NVarChar, 128, false, true, 0},
    {"user_id", 0, 1, "user_id", Result::Int, 0, false, true, 0},
    {"database_principal_id", 0, 1, "user_id", Result::Int, 0, false, true, 9},
    {"db_id", 0, 1, "db_id", Result::Int, 0, false, true, 0},
    {"object_id", 1, 2, "object_id", Result::Int, 0, false, true, 0},
    {"object_name", 1, 2, "object_name", Result::NVarChar, 128, false, true, 0},
    {"object_schema_name", 1, 2, "object_schema_name", Result::NVarChar, 128, false, true, 9},
    {"object_definition", 1, 1, "object_definition", Result::NVarChar, -1, false, true, 9},
    {"schema_name", 0, 1, "schema_name", Result::NVarChar, 128, false, true, 9},
    {"schema_id", 0, 1, "schema_id", Result::Int, 0, false, true, 9},
    {"col_name", 2, 2, "col_name", Result::NVarChar, 128, false, true, 0},
    {"col_length", 2, 2, "col_length", Result::Int, 0, false, true, 0},
    {"type_name", 1, 1, "type_name", Result::NVarChar, 128, false, true, 0},
    {"type_id", 1, 1, "type_id", Result::Int, 0, false, true, 9},
    {"columnproperty", 3, 3, "columnproperty", Result::Int, 0, false, true, 0},
    {"indexproperty", 3, 3, "indexproperty", Result::Int, 0, false, true, 0},
    {"index_col", 3, 3, "index_col", Result::NVarChar, 128, false, true, 0},
    {"objectproperty", 2, 2, "objectproperty", Result::Int, 0, false, true, 0},
    {"objectpropertyex", 2, 2, "objectproperty", Result::Variant, 0, false, true, 9},
    {"typeproperty", 2, 2, "typeproperty", Result::Int, 0, false, true, 0},
    {"databasepropertyex", 2, 2, "databasepropertyex", Result::Variant, 0, false, true, 0},
    {"databaseproperty", 2, 2, "databasepropertyex", Result::Int, 0, false, true, 0},
    {"collationproperty", 2, 2, "zov_collationproperty", Result::Variant, 0, false, true, 0},
    {"serverproperty", 1, 1, "serverproperty", Result::Variant, 0, false, true, 0},
    {"fulltextserviceproperty", 1, 1, "serverproperty", Result::Int, 0, false, true, 0},
    {"ident_seed", 1, 1, "ident_seed", Result::Numeric38, 0, false, true, 0},
    {"ident_incr", 1, 1, "ident_incr", Result::Numeric38, 0, false, true, 0},
    {"ident_current", 1, 1, "ident_current", Result::Numeric38, 0, false, true, 0},
    {"is_member", 1, 1, "zov_is_member", Result::Int, 0, false, true, 0},
    {"is_srvrolemember", 1, 2, "zov_is_member", Result::Int, 0, false, true, 0},
    {"has_dbaccess", 1, 1, "zov_has_dbaccess", Result::Int, 0, false, true, 0},
    {"has_perms_by_name", 3, 5, "zov_has_perms", Result::Int, 0, false, true, 9},
    {"host_name", 0, 0, "zov_host", Result::NVarChar, 128, false, false, 0},
    {"app_name", 0, 0, "zov_app", Result::NVarChar, 128, false, false, 0},
    {"parsename", 2, 2, "zov_parsename", Result::NVarChar, 128, false, false, 0},
};

const QHash<QString, const Rule*>& ruleMap() {
    static const QHash<QString, const Rule*> map = [] {
        QHash<QString, const Rule*> result;
        for (const Rule& rule : rules) result.insert(QLatin1String(rule.name), &rule);
        return result;
    }();
    return map;
}

[[noreturn]] void wrongCount(const QString& name, int wanted) {
    failWith(174, QStringLiteral("The %1 function requires %2 argument(s).").arg(name).arg(wanted));
}

/// The name of a date part as DATEADD and its like take it; "dd" and "day" are one.
QString datePart(const Expr& expr) {
    static const struct {
        const char* name;
        const char* part;
    } parts[] = {{"year", "year"},       {"yy", "year"},
                 {"yyyy", "year"},       {"quarter", "quarter"},
                 {"qq", "quarter"},      {"q", "quarter"},
                 {"month", "month"},     {"mm", "month"},
                 {"m", "month"},         {"dayofyear", "dayofyear"},
                 {"dy", "dayofyear"},    {"y", "dayofyear"},
                 {"day", "day"},         {"dd", "day"},
                 {"d", "day"},           {"week", "week"},
                 {"wk", "week"},         {"ww", "week"},
                 {"weekday", "weekday"}, {"dw", "weekday"},
                 {"w", "weekday"},       {"hour", "hour"},
                 {"hh", "hour"},         {"minute", "minute"},
                 {"mi", "minute"},       {"n", "minute"},
                 {"second", "second"},   {"ss", "second"},
                 {"s", "second"},        {"millisecond", "millisecond"},
                 {"ms", "millisecond"},  {"microsecond", "microsecond"},
                 {"mcs", "microsecond"}, {"nanosecond", "nanosecond"},
                 {"ns", "nanosecond"},   {"iso_week", "iso_week"},
                 {"isowk", "iso_week"}};
    const QString word = expr.kind == Expr::Kind::Column && expr.path.isEmpty() ? expr.name
                         : expr.kind == Expr::Kind::Literal                     ? expr.token->value
                                                                                : QString();
    for (const auto& part : parts)
        if (word.compare(QLatin1String(part.name), Qt::CaseInsensitive) == 0)
            return quotedText(QLatin1String(part.part));
    failWith(155, QStringLiteral("'%1' is not a recognized date option.").arg(word));
}

}  // namespace

Sql Translator::windowed(Sql callText, const Expr& expr, Scope& scope) {
    if (!expr.window) return callText;
    QString over;
    for (const ExprPtr& part : expr.window->partition) {
        const Sql key = translate(*part, scope);
        over += (over.isEmpty() ? QStringLiteral("PARTITION BY ") : QStringLiteral(", ")) +
                orderKey(key);
    }
    QString order;
    for (const OrderItem& item : expr.window->order)
        order += (order.isEmpty() ? QStringLiteral("ORDER BY ") : QStringLiteral(", ")) +
                 orderKey(translate(*item.expr, scope)) +
                 (item.descending ? QStringLiteral(" DESC") : QString());
    callText.text += QStringLiteral(" OVER (") + over +
                     (over.isEmpty() || order.isEmpty() ? QString() : QStringLiteral(" ")) + order +
                     expr.window->frame + u')';
    return callText;
}

Sql Translator::aggregate(const Expr& expr, Scope& scope, bool& found) {
    const QString& name = expr.name;
    found = true;
    const QString distinct = expr.distinct ? QStringLiteral("DISTINCT ") : QString();
    if (name == u"count" || name == u"count_big") {
        if (expr.args.size() != 1) wrongCount(name, 1);
        const ValueType type =
            knownType(name == u"count" ? SqlType::Int : SqlType::BigInt, 0, 0, 0, false);
        if (expr.args[0]->kind == Expr::Kind::Star)
            return windowed(made(QStringLiteral("count(*)"), type), expr, scope);
        const Sql value = translate(*expr.args[0], scope);
        const QString text =
            expr.distinct && value.type.isText() ? sortable(value, "SELECT", 1) : use(value);
        return windowed(made(QStringLiteral("count(") + distinct + text + u')', type), expr, scope);
    }
    if (name == u"sum" || name == u"avg") {
        if (expr.args.size() != 1) wrongCount(name, 1);
        const Sql value = translate(*expr.args[0], scope);
        if (value.type.isText() || value.type.isDate())
            failWith(8117, QStringLiteral("Operand data type %1 is invalid for %2 operator.")
                               .arg(sqlTypeName(value.type.type()), name));
        const QString text = distinct + use(value);
        ValueType type = value.type;
        type.info.nullable = true;
        if (value.type.isInteger() && value.type.type() != SqlType::BigInt)
            type = knownType(SqlType::Int);
        if (value.type.type() == SqlType::Decimal || value.type.type() == SqlType::Numeric)
            type = knownType(
                value.type.type(), 0, 38,
                name == u"sum" ? value.type.info.scale : std::max(6, value.type.info.scale));
        if (value.type.type() == SqlType::SmallMoney) type = knownType(SqlType::Money);
        if (value.type.type() == SqlType::Real) type = knownType(SqlType::Float);
        if (name == u"sum") {
            if (value.type.isExact()) {
                // Fifteen digits add up in doubles; more are added digit by digit.
                if (value.type.isWide())
                    return windowed(made(QStringLiteral("zov_dsum(") + text + u')', type), expr,
                                    scope);
                return windowed(made(QStringLiteral("sum(") + text + u')', type), expr, scope);
            }
            return windowed(made(QStringLiteral("sum(") + text + u')', type), expr, scope);
        }
        if (value.type.isInteger()) {
            const Sql sum = windowed(made(QStringLiteral("sum(") + text + u')', type), expr, scope);
            const Sql count =
                windowed(made(QStringLiteral("count(") + text + u')', type), expr, scope);
            return made(u'(' + sum.text + QStringLiteral(" / ") + count.text + u')', type);
        }
        return windowed(made(QStringLiteral("avg(") + text + u')', type), expr, scope);
    }
    if (name == u"min" || name == u"max") {
        if (expr.args.size() != 1) wrongCount(name, 1);
        const Sql value = translate(*expr.args[0], scope);
        const QString text = value.type.isText() ? sortable(value, "SELECT", 1) : use(value);
        ValueType type = value.type;
        type.info.nullable = true;
        const QString function = !value.type.isWide() ? name + u'('
                                 : expr.window        ? QStringLiteral("zov_w") + name + u'('
                                                      : QStringLiteral("zov_d") + name + u'(';
        return windowed(collatedAs(value, made(function + text + u')', type)), expr, scope);
    }
    if (name == u"stdev" || name == u"stdevp" || name == u"var" || name == u"varp") {
        if (expr.args.size() != 1) wrongCount(name, 1);
        return windowed(made(QStringLiteral("zov_") + name + u'(' + distinct +
                                 use(translate(*expr.args[0], scope)) + u')',
                             knownType(SqlType::Float)),
                        expr, scope);
    }
    if (name == u"string_agg") {
        if (expr.args.size() != 2) wrongCount(name, 2);
        const Sql value = translate(*expr.args[0], scope);
        return collatedAs(
            value, made(QStringLiteral("group_concat(") + asText(value) + QStringLiteral(", ") +
                            use(translate(*expr.args[1], scope)) + u')',
                        textLike(value.type, 0)));
    }
    static const QStringList windowOnly = {
        QStringLiteral("row_number"),  QStringLiteral("rank"),      QStringLiteral("dense_rank"),
        QStringLiteral("ntile"),       QStringLiteral("lag"),       QStringLiteral("lead"),
        QStringLiteral("first_value"), QStringLiteral("last_value")};
    if (windowOnly.contains(name)) {
        if (!expr.window)
            failWith(10753,
                     QStringLiteral("The function '%1' must have an OVER clause.").arg(name));
        ValueType type = knownType(SqlType::BigInt);
        QStringList arguments;
        Sql first;
        for (size_t i = 0; i < expr.args.size(); ++i) {
            const Sql value = translate(*expr.args[i], scope);
            if (i == 0) first = value;
            if (i == 0 && name != u"ntile") type = value.type;
            arguments.append(use(value));
        }
        return windowed(
            collatedAs(first, made(name + u'(' + arguments.join(QLatin1String(", ")) + u')', type)),
            expr, scope);
    }
    found = false;
    return {};
}

Sql Translator::nextValue(const Expr& expr) {
    Database& database = *context_.database;
    const QStringList& path = expr.path;
    const QString text = path.join(u'.');
    if (path.size() > 2 &&
        !(path.size() == 3 && path[0].compare(database.name, Qt::CaseInsensitive) == 0))
        failWith(40000,
                 QStringLiteral("The embedded server counts sequences of the current database "
                                "only ('%1').")
                     .arg(text));
    qint64 id = 0;
    ColumnInfo type;
    {
        LookUp find(QueryCache::of(database),
                    "SELECT o.id, zov_fact(o.info, 'type'), zov_fact(o.info, 'prec') FROM "
                    "\"zov$objects\" o JOIN \"zov$schemas\" s ON s.schema_id = o.schema_id WHERE "
                    "o.name = ?1 AND s.name = ?2 AND o.xtype = 'SO'");
        const QString schema = path.size() > 1 ? path[path.size() - 2] : QString();
        find.bind(path.last()).bind(schema.isEmpty() ? QStringLiteral("dbo") : schema);
        if (find.next()) {
            id = find.integer(0);
            type = typeFromCatalogue(int(find.integer(1)), 0, int(find.integer(2)), 0, false);
        }
    }
    if (!id)
        failWith(208, QStringLiteral("Invalid object name '%1'.").arg(text), ado_error::NoSuchTable,
                 QStringLiteral("42S02"));
    // The number is gone for good, whatever reads it.
    if (session_.store) session_.store->willWrite(database);
    prefixFor(&database);
    ValueType value;
    value.info = type;
    value.known = true;
    return made(QStringLiteral("zov_nextval(%1)").arg(id), value);
}

Sql Translator::function(const Expr& expr, Scope& scope) {
    const QString& name = expr.name;
    if (name == u"next value for") return nextValue(expr);
    const int count = int(expr.args.size());
    bool found = false;
    Sql aggregated = aggregate(expr, scope, found);
    if (found) {
        writing_.aggregated = true;
        return aggregated;
    }

    const auto argument = [&](int i) { return translate(*expr.args[size_t(i)], scope); };
    const auto needs = [&](int wanted) {
        if (count != wanted) wrongCount(name, wanted);
    };

    if (const Rule* rule = ruleMap().value(name); rule && rule->minVersion <= majorVersion_) {
        if (count < rule->least || count > rule->most) wrongCount(name, rule->least);
        QStringList arguments;
        ValueType first = unknownType(), second = unknownType();
        Collating collating;
        for (int i = 0; i < count; ++i) {
            Sql value = argument(i);
            if (i == 0) first = value.type;
            if (i == 1) second = value.type;
            if (!rule->bind) collating = joined(collating, value.collating, name);
            arguments.append(rule->bind ? bound(value) : rule->texts ? asText(value) : use(value));
        }
        ValueType type;
        switch (rule->result) {
            case Result::Int: {
                // What is looked through may be longer than an int counts.
                const ValueType& searched = count > 1 ? second : first;
                const bool counts = name == u"len" || name == u"charindex" || name == u"patindex";
                type =
                    knownType(counts && searched.known && searched.info.size < 0 ? SqlType::BigInt
                                                                                 : SqlType::Int);
                break;
            }
            case Result::BigInt:
                type = knownType(SqlType::BigInt);
                break;
            case Result::Float:
                type = knownType(SqlType::Float);
                break;
            case Result::DateTime:
                type = knownType(SqlType::DateTime);
                break;
            case Result::DateTime2:
                type = knownType(SqlType::DateTime2, 0, 27, 7);
                break;
            case Result::NVarChar:
                type = knownType(SqlType::NVarChar, rule->size);
                break;
            case Result::VarChar:
                type = knownType(SqlType::VarChar, rule->size);
                break;
            case Result::Bit:
                type = knownType(SqlType::Bit);
                break;
            case Result::Guid:
                type = knownType(SqlType::UniqueIdentifier);
                break;
            case Result::First:
                type = first;
                if (first.isInteger() && first.type() < SqlType::Int)
                    type = knownType(SqlType::Int);
                if (!first.known || first.isText()) type = knownType(SqlType::Float);
                if ((name == u"floor" || name == u"ceiling") && first.isExact() &&
                    first.type() < SqlType::Money)
                    type.info.scale = 0;
                if (name == u"power" && first.isExact() && first.type() < SqlType::Money)
                    type.info.precision = 38;
                type.info.nullable = true;
                break;
            case Result::FirstText:
                if (first.isBinary())
                    type = knownType(SqlType::VarBinary, first.info.size);
                else
                    type = textLike(first, first.isText() ? first.info.size : 0);
                if (name == u"substring" || name == u"left" || name == u"right") {
                    const Expr& length = *expr.args[name == u"substring" ? 2 : 1];
                    if (length.kind == Expr::Kind::Literal &&
                        length.token->kind == TokenKind::Number) {
                        const int wanted =
                            int(std::max<qint64>(1, literalValue(*length.token).toInteger()));
                        if (type.info.size <= 0 || wanted < type.info.size) type.info.size = wanted;
                    }
                }
                break;
            case Result::LongText:
                type = textLike(first, first.isText() && first.info.size < 0 ? -1 : 0);
                if (name == u"replicate") arguments.append(QString::number(mostLetters(type.info)));
                break;
            case Result::Numeric38:
                type = knownType(SqlType::Numeric, 0, 38, 0);
                break;
            case Result::Variant:
                type = knownType(SqlType::Variant);
                break;
        }
        if (const int before = searches(name)) {
            const Collation* wanted = comparing(collating, {}, name, names());
            if (!wanted->isStandard()) {
                if (arguments.size() < before) arguments.append(QStringLiteral("1"));
                arguments.append(quotedText(wanted->name()));
            }
        }
        Sql result = made(call(rule->sqlite, arguments), type);
        if (type.isText() && !rule->bind) result.collating = collating;
        return result;
    }

    if (name == u"isnull") {
        needs(2);
        const Sql value = argument(0), other = argument(1);
        ValueType type = value.type.untypedNull ? other.type : value.type;
        type.info.nullable = value.type.info.nullable && other.type.info.nullable;
        const QString second =
            value.type.known && other.type.known && value.type.isText() != other.type.isText()
                ? converted(other, type.info)
                : use(other);
        Sql result = made(call("coalesce", {use(value), second}), type);
        result.collating = joined(value.collating, other.collating, QStringLiteral("ISNULL"));
        return result;
    }
    if (name == u"coalesce") {
        if (count < 2) wrongCount(name, 2);
        std::vector<Sql> values;
        for (int i = 0; i < count; ++i) values.push_back(argument(i));
        ValueType type = values[0].type;
        for (const Sql& value : values) type = commonType(type, value.type);
        type.info.nullable = true;  // unlike ISNULL's, whatever stands at its end
        QStringList arguments;
        Collating collating;
        for (const Sql& value : values) {
            collating = joined(collating, value.collating, QStringLiteral("COALESCE"));
            arguments.append(type.known && value.type.known && value.type.isText() != type.isText()
                                 ? converted(value, type.info)
                                 : use(value));
        }
        Sql result = made(call("coalesce", arguments), type);
        result.collating = collating;
        return result;
    }
    if (name == u"nullif") {
        needs(2);
        const Sql value = argument(0);
        ValueType type = value.type;
        type.info.nullable = true;
        const QString equal = compare(QStringLiteral("="), value, argument(1));
        return collatedAs(
            value, made(QStringLiteral("(CASE WHEN ") + equal + QStringLiteral(" THEN NULL ELSE ") +
                            use(value) + QStringLiteral(" END)"),
                        type));
    }
    if (name == u"iif") {
        needs(3);
        const Sql yes = argument(1), no = argument(2);
        const ValueType type = commonType(yes.type, no.type);
        const auto branch = [&](const Sql& value) {
            return type.known && value.type.known && value.type.isText() != type.isText()
                       ? converted(value, type.info)
                       : use(value);
        };
        Sql result = made(QStringLiteral("(CASE WHEN ") + predicate(*expr.args[0], scope) +
                              QStringLiteral(" THEN ") + branch(yes) + QStringLiteral(" ELSE ") +
                              branch(no) + QStringLiteral(" END)"),
                          type);
        result.collating = joined(yes.collating, no.collating, QStringLiteral("IIF"));
        return result;
    }
    if (name == u"choose") {
        if (count < 2) wrongCount(name, 2);
        QString text = QStringLiteral("(CASE ") + use(argument(0));
        ValueType type;
        Collating collating;
        for (int i = 1; i < count; ++i) {
            const Sql value = argument(i);
            collating = joined(collating, value.collating, QStringLiteral("CHOOSE"));
            type = i == 1 ? value.type : commonType(type, value.type);
            text += QStringLiteral(" WHEN %1 THEN ").arg(i) + use(value);
        }
        type.info.nullable = true;
        Sql result = made(text + QStringLiteral(" END)"), type);
        result.collating = collating;
        return result;
    }
    if (name == u"concat" || name == u"concat_ws") {
        QStringList arguments;
        ValueType type;
        bool unicode = false;
        Collating collating;
        for (int i = 0; i < count; ++i) {
            const Sql value = argument(i);
            collating = joined(collating, value.collating, name);
            unicode = unicode || !value.type.known || value.type.isUnicode();
            type = textLike(value.type, 0);
            arguments.append(asText(value));
        }
        if (unicode) type = knownType(SqlType::NVarChar, 4000);
        type.info.nullable = false;
        Sql result =
            made(call(name == u"concat" ? "zov_concat" : "zov_concat_ws", arguments), type);
        result.collating = collating;
        return result;
    }
    if (name == u"datalength") {
        needs(1);
        const Sql value = argument(0);
        const QString text = use(value);
        QString length;
        if (value.type.isUnicode())
            length = QStringLiteral("zov_bytes16(") + text + u')';
        else if (value.type.isText() || !value.type.known)
            length = QStringLiteral("zov_len1(") + text + u')';
        else if (value.type.isBinary())
            length = QStringLiteral("length(") + text + u')';
        else {
            int width = 8;
            switch (value.type.type()) {
                case SqlType::Bit:
                case SqlType::TinyInt:
                    width = 1;
                    break;
                case SqlType::SmallInt:
                    width = 2;
                    break;
                case SqlType::Int:
                case SqlType::Real:
                case SqlType::SmallMoney:
                case SqlType::SmallDateTime:
                    width = 4;
                    break;
                case SqlType::Date:
                    width = 3;
                    break;
                case SqlType::UniqueIdentifier:
                    width = 16;
                    break;
                case SqlType::Decimal:
                case SqlType::Numeric:
                    width = value.type.info.precision <= 9    ? 5
                            : value.type.info.precision <= 19 ? 9
                            : value.type.info.precision <= 28 ? 13
                                                              : 17;
                    break;
                default:
                    break;
            }
            length =
                QStringLiteral("(CASE WHEN %1 IS NULL THEN NULL ELSE %2 END)").arg(text).arg(width);
        }
        return made(length, knownType(SqlType::Int));
    }
    if (name == u"round") {
        if (count < 2 || count > 3) wrongCount(name, 2);
        const Sql value = argument(0);
        ValueType type = value.type;
        if (type.isInteger() && type.type() < SqlType::Int) type = knownType(SqlType::Int);
        if (!type.isNumber()) type = knownType(SqlType::Float);
        QStringList arguments{use(value), use(argument(1))};
        if (count > 2) arguments.append(use(argument(2)));
        return made(call("zov_round", arguments), type);
    }
    if (name == u"log") {
        if (count == 2)
            return made(call("zov_logbase", {use(argument(0)), use(argument(1))}),
                        knownType(SqlType::Float));
        needs(1);
        return made(call("ln", {use(argument(0))}), knownType(SqlType::Float));
    }
    if (name == u"rand") return made(QStringLiteral("zov_rand()"), knownType(SqlType::Float));
    if (name == u"getdate" || name == u"current_timestamp" || name == u"getutcdate") {
        return made(QLatin1String(name == u"getutcdate" ? "zov_now(1, 3)" : "zov_now(0, 3)"),
                    knownType(SqlType::DateTime, 0, 0, 3, false));
    }
    if ((name == u"sysdatetime" || name == u"sysutcdatetime") && majorVersion_ >= 10)
        return made(QLatin1String(name == u"sysutcdatetime" ? "zov_now(1, 7)" : "zov_now(0, 7)"),
                    knownType(SqlType::DateTime2, 0, 27, 7, false));
    if (name == u"sysdatetimeoffset" && majorVersion_ >= 10)
        return made(QStringLiteral("(zov_now(1, 7) || ' +00:00')"),
                    knownType(SqlType::DateTimeOffset, 0, 34, 7, false));
    const auto asDate = [&](int i) {
        Sql value = argument(i);
        if (value.type.isDate()) return value;
        return made(converted(value, makeType(SqlType::DateTime)), knownType(SqlType::DateTime));
    };
    if (name == u"dateadd") {
        needs(3);
        const Sql date = asDate(2);
        return made(call("zov_dateadd", {datePart(*expr.args[0]), use(argument(1)), use(date),
                                         QString::number(packType(date.type.info))}),
                    date.type);
    }
    if (name == u"datediff" || name == u"datediff_big") {
        needs(3);
        return made(call("zov_datediff", {datePart(*expr.args[0]), use(asDate(1)), use(asDate(2))}),
                    knownType(name == u"datediff" ? SqlType::Int : SqlType::BigInt));
    }
    if (name == u"datepart" || name == u"datename") {
        needs(2);
        const QString text = call(name == u"datepart" ? "zov_datepart" : "zov_datename",
                                  {datePart(*expr.args[0]), use(asDate(1))});
        return made(
            text, name == u"datepart" ? knownType(SqlType::Int) : knownType(SqlType::NVarChar, 30));
    }
    if (name == u"year" || name == u"month" || name == u"day") {
        needs(1);
        return made(call("zov_datepart", {quotedText(name), use(asDate(0))}),
                    knownType(SqlType::Int));
    }
    if (name == u"eomonth") {
        needs(1);
        return made(call("zov_eomonth", {use(asDate(0))}), knownType(SqlType::Date));
    }
    if (name == u"datefromparts") {
        needs(3);
        return made(
            call("zov_datefromparts", {use(argument(0)), use(argument(1)), use(argument(2))}),
            knownType(SqlType::Date));
    }
    if (name == u"isdate") {
        needs(1);
        return made(call("zov_isdate", {asText(argument(0)), dateFormatNumber()}),
                    knownType(SqlType::Int));
    }
    if (name == u"db_name") {
        if (count > 1) wrongCount(name, 1);
        const ValueType type = knownType(SqlType::NVarChar, 128);
        return made(
            count ? call("db_name", {bound(argument(0))}) : global(QStringLiteral("db_name")),
            type);
    }
    if (name == u"scope_identity")
        return made(global(QStringLiteral("@@identity")), knownType(SqlType::Numeric, 0, 38, 0));
    if (name == u"xact_state")
        return made(global(QStringLiteral("xact_state")), knownType(SqlType::SmallInt));
    if (name.startsWith(QLatin1String("error_"))) {
        static const QStringList known = {
            QStringLiteral("error_message"),  QStringLiteral("error_number"),
            QStringLiteral("error_severity"), QStringLiteral("error_state"),
            QStringLiteral("error_line"),     QStringLiteral("error_procedure")};
        if (known.contains(name))
            return made(global(name), name == u"error_message" || name == u"error_procedure"
                                          ? knownType(SqlType::NVarChar, 4000)
                                          : knownType(SqlType::Int));
    }
    if (name == u"grouping") return made(QStringLiteral("0"), knownType(SqlType::TinyInt));

    DbError error(
        ado_error::SyntaxError,
        majorVersion_ < 9
            ? QStringLiteral("'%1' is not a recognized function name.").arg(expr.token->source)
            : QStringLiteral("'%1' is not a recognized built-in function name.")
                  .arg(expr.token->source),
        QStringLiteral("42000"), 195);
    error.line = expr.token->line;
    throw error;
}

}  // namespace zov::local
