// The translator's expressions: columns, operators, comparisons and conversions.
#include "data/local/query_translator.h"
#include "data/local/query_values.h"

namespace zov::local {
namespace {

bool isLong(const Sql& value) {
    return value.text.size() > 200;
}

bool sameDateForm(const ColumnInfo& a, const ColumnInfo& b) {
    return a.type == b.type && (a.type == SqlType::Date || a.type == SqlType::DateTime ||
                                a.type == SqlType::SmallDateTime || a.scale == b.scale);
}

/// Whether a value of one type is stored as one of the other is, so that nothing has to be done.
bool fitsUnchanged(const ValueType& from, const ColumnInfo& to) {
    if (!from.known) return false;
    const ColumnInfo& info = from.info;
    if (isTextType(to.type) && from.isText()) {
        if (to.type == SqlType::Char || to.type == SqlType::NChar)
            return info.type == to.type && info.size == to.size;
        return to.size <= 0 || (info.size > 0 && info.size <= to.size);
    }
    if (info.type == to.type) {
        if (to.type == SqlType::Decimal || to.type == SqlType::Numeric)
            return info.scale == to.scale && info.precision <= to.precision;
        if (isDateTimeType(to.type)) return sameDateForm(info, to);
        if (to.type >= SqlType::Binary && to.type <= SqlType::RowVersion)
            return to.size < 0 || info.size == to.size;
        return true;
    }
    if (to.type <= SqlType::BigInt && to.type != SqlType::Bit && info.type <= to.type) return true;
    return false;
}

}  // namespace

QString quotedText(const QString& text) {
    QString quoted = text;
    quoted.replace(u'\'', QStringLiteral("''"));
    return u'\'' + quoted + u'\'';
}

QString renderValue(const StoredValue& value) {
    switch (value.kind) {
        case StoredValue::Kind::Null:
            return QStringLiteral("NULL");
        case StoredValue::Kind::Integer:
            return QString::number(value.integer);
        case StoredValue::Kind::Real: {
            QString text = QString::number(value.real, 'g', 17);
            if (!text.contains(u'.') && !text.contains(u'e')) text += QStringLiteral(".0");
            return text;
        }
        case StoredValue::Kind::Text:
            return quotedText(QString::fromUtf8(value.bytes));
        case StoredValue::Kind::Blob:
            return QStringLiteral("x'") + QString::fromLatin1(value.bytes.toHex()) + u'\'';
    }
    return QStringLiteral("NULL");
}

// --- literals, variables, parameters ------------------------------------------------------------

Sql Translator::literal(const Expr& expr) {
    Sql sql;
    sql.literal = &expr;
    sql.type.info = literalValue(*expr.token).type;
    sql.type.known = true;
    return sql;
}

Sql Translator::variable(const Expr& expr) {
    if (expr.name.startsWith(QLatin1String("@@"))) {
        static const QHash<QString, SqlType> types = {
            {QStringLiteral("@@rowcount"), SqlType::Int},
            {QStringLiteral("@@error"), SqlType::Int},
            {QStringLiteral("@@trancount"), SqlType::Int},
            {QStringLiteral("@@spid"), SqlType::SmallInt},
            {QStringLiteral("@@identity"), SqlType::Numeric},
            {QStringLiteral("@@servername"), SqlType::NVarChar},
            {QStringLiteral("@@version"), SqlType::NVarChar},
            {QStringLiteral("@@language"), SqlType::NVarChar},
            {QStringLiteral("@@servicename"), SqlType::NVarChar},
            {QStringLiteral("@@fetch_status"), SqlType::Int},
            {QStringLiteral("@@nestlevel"), SqlType::Int},
            {QStringLiteral("@@options"), SqlType::Int},
            {QStringLiteral("@@max_precision"), SqlType::TinyInt},
            {QStringLiteral("@@datefirst"), SqlType::TinyInt},
            {QStringLiteral("@@lock_timeout"), SqlType::Int},
            {QStringLiteral("@@textsize"), SqlType::Int},
            {QStringLiteral("@@procid"), SqlType::Int},
            {QStringLiteral("@@microsoftversion"), SqlType::Int}};
        const QString name = expr.name.toLower();
        const auto it = types.constFind(name);
        if (it == types.constEnd())
            failWith(137,
                     QStringLiteral("Must declare the scalar variable \"%1\".").arg(expr.name));
        Sql sql = plain(global(name),
                        knownType(it.value(), it.value() == SqlType::NVarChar ? 256 : 0, 38, 0));
        return sql;
    }
    const StoredValue* value = variables_ ? variables_->find(expr.name) : nullptr;
    if (!value)
        failWith(137, QStringLiteral("Must declare the scalar variable \"%1\".").arg(expr.name));
    Sql sql;
    sql.variable = expr.name;
    sql.type.info = value->type;
    sql.type.known = true;
    return sql;
}

QString Translator::global(const QString& name) {
    ParameterSource parameter;
    parameter.kind = ParameterSource::Kind::Global;
    parameter.name = name;
    parameters_.push_back(parameter);
    return u'?' + QString::number(parameters_.size());
}

QString Translator::bound(const Sql& sql, const ColumnInfo* target) {
    if (sql.literal) {
        const Expr& expr = *sql.literal;
        if (expr.literalIndex < 0 || expr.token->kind == TokenKind::Binary ||
            (expr.token->kind == TokenKind::Number && sql.type.type() != SqlType::Int)) {
            const StoredValue value = literalValue(*expr.token);
            if (expr.literalIndex >= 0) rendered_.insert(expr.literalIndex);
            return renderValue(target ? convertStored(value, *target, true, session_.dateFormat)
                                      : value);
        }
        ParameterSource parameter;
        parameter.literal = expr.literalIndex;
        parameter.convert = target != nullptr;
        if (target) parameter.target = *target;
        parameters_.push_back(parameter);
        bound_.insert(expr.literalIndex);
        return u'?' + QString::number(parameters_.size());
    }
    if (!sql.variable.isEmpty()) {
        ParameterSource parameter;
        parameter.kind = ParameterSource::Kind::Variable;
        parameter.name = sql.variable;
        parameter.convert = target != nullptr;
        if (target) parameter.target = *target;
        parameters_.push_back(parameter);
        return u'?' + QString::number(parameters_.size());
    }
    return target ? converted(sql, *target) : sql.text;
}

QString Translator::use(const Sql& sql) {
    if (sql.literal) {
        if (sql.literal->literalIndex >= 0) rendered_.insert(sql.literal->literalIndex);
        return renderValue(literalValue(*sql.literal->token));
    }
    return sql.variable.isEmpty() ? sql.text : bound(sql);
}

QString Translator::dateFormatNumber() const {
    const QString order = session_.dateFormat.toLower();
    return order == u"dmy"   ? QStringLiteral("1")
           : order == u"ymd" ? QStringLiteral("2")
                             : QStringLiteral("0");
}

QString Translator::converted(Sql value, const ColumnInfo& type, int style, bool tolerant) {
    if (value.type.untypedNull || (!tolerant && style == 0 && fitsUnchanged(value.type, type)))
        return use(value);
    return QLatin1String(tolerant ? "zov_tryconv(" : "zov_conv(") + use(value) +
           QStringLiteral(", ") +
           (value.type.known ? QString::number(packType(value.type.info)) : QStringLiteral("-1")) +
           QStringLiteral(", ") + QString::number(packType(type)) + QStringLiteral(", ") +
           QString::number(style) + QStringLiteral(", ") + dateFormatNumber() + u')';
}

QString Translator::asText(const Sql& sql) {
    if (!sql.type.known || sql.type.isText() || sql.type.isInteger() || sql.type.isBinary())
        return use(sql);
    return converted(sql, makeType(SqlType::NVarChar, 4000));
}

// --- columns ------------------------------------------------------------------------------------

Sql Translator::column(const Expr& expr, Scope& scope) {
    QStringList path = expr.path;
    if (path.size() > 2)
        path = path.mid(path.size() - 2);  // the database in front says nothing more
    bool prefixKnown = false;
    for (Scope* at = &scope; at; at = at->outer) {
        Source* found = nullptr;
        SourceColumn* foundColumn = nullptr;
        for (Source& source : at->sources) {
            if (!path.isEmpty()) {
                const bool named = sameName(source.alias, path.last()) ||
                                   (source.anyCase && source.ownName &&
                                    source.alias.compare(path.last(), Qt::CaseInsensitive) == 0);
                if (!named) continue;
                if (path.size() > 1 && !path[0].isEmpty() &&
                    (!source.ownName || !sameName(source.schema, path[0])))
                    continue;
                prefixKnown = true;
            }
            for (SourceColumn& column : source.columns) {
                if (source.anyCase ? column.name.compare(expr.name, Qt::CaseInsensitive) != 0
                                   : !sameName(column.name, expr.name))
                    continue;
                if (found)
                    failWith(209, QStringLiteral("Ambiguous column name '%1'.").arg(expr.name));
                found = &source;
                foundColumn = &column;
                break;
            }
        }
        if (found) {
            foundColumn->used = true;
            Sql sql;
            sql.text = found->bare ? foundColumn->sql : found->sqlAlias + u'.' + foundColumn->sql;
            sql.type = foundColumn->type;
            sql.collating = foundColumn->collating;
            sql.stored = foundColumn->stored;
            return sql;
        }
        if (prefixKnown) break;
    }
    if (!path.isEmpty() && !prefixKnown) {
        const QString name = (expr.path + QStringList(expr.name)).join(u'.');
        if (majorVersion_ < 9)
            failWith(107, QStringLiteral("The column prefix '%1' does not match with a table name "
                                         "or alias name used in the query.")
                              .arg(expr.path.join(u'.')));
        failWith(4104,
                 QStringLiteral("The multi-part identifier \"%1\" could not be bound.").arg(name));
    }
    DbError error(ado_error::SyntaxError,
                  QStringLiteral("Invalid column name '%1'.").arg(expr.name),
                  QStringLiteral("42S22"), 207);
    if (expr.token) error.line = expr.token->line;
    throw error;
}

// --- expressions --------------------------------------------------------------------------------

Sql Translator::translated(const Expr& expr, Scope& scope) {
    switch (expr.kind) {
        case Expr::Kind::Literal:
            return literal(expr);
        case Expr::Kind::Null: {
            ValueType type = knownType(SqlType::Int);
            type.known = false;
            type.untypedNull = true;
            return plain(QStringLiteral("NULL"), type);
        }
        case Expr::Kind::Default:
            failWith(156, QStringLiteral("Incorrect syntax near the keyword 'DEFAULT'."));
        case Expr::Kind::Column:
            return column(expr, scope);
        case Expr::Kind::Star:
            failWith(102, QStringLiteral("Incorrect syntax near '*'."));
        case Expr::Kind::Variable:
            return variable(expr);
        case Expr::Kind::Unary: {
            Sql value = translate(*expr.args[0], scope);
            if (expr.name == u"+") return value;
            if (value.type.isText())
                value = plain(converted(value, makeType(SqlType::Int)), knownType(SqlType::Int));
            const QString text = u'(' + expr.name + use(value) + u')';
            ValueType type = value.type;
            type.info.nullable = type.info.nullable || !value.literal;
            return plain(text, type);
        }
        case Expr::Kind::Arithmetic:
            return arithmetic(expr, scope);
        case Expr::Kind::Case:
            return caseExpr(expr, scope);
        case Expr::Kind::Cast:
            return cast(expr, scope);
        case Expr::Kind::Function:
            return function(expr, scope);
        case Expr::Kind::Collate: {
            Sql value = translate(*expr.args[0], scope);
            if (value.type.known && !value.type.isText())
                failWith(447, QStringLiteral("Expression type %1 is invalid for COLLATE clause.")
                                  .arg(sqlTypeName(value.type.type())));
            const Collation* collation = namedInQuery(expr.name);
            Sql sql =
                plain(u'(' + use(value) + QStringLiteral(" COLLATE ") + collation->sqlName() + u')',
                      value.type);
            sql.collating = Collating::byWord(collation);
            sql.stored = collation;
            return sql;
        }
        case Expr::Kind::Subquery:
            return scalarSubquery(expr, scope);
        default: {
            Sql sql = plain(predicate(expr, scope), knownType(SqlType::Bit));
            return sql;
        }
    }
}

Sql Translator::scalarSubquery(const Expr& expr, Scope& scope) {
    TranslatedSelect inner = selectIn(*expr.select, &scope);
    if (inner.columns.size() != 1)
        failWith(
            116,
            QStringLiteral(
                "Only one expression can be specified in the select list when the subquery is not "
                "introduced with EXISTS."));
    Sql sql = plain(u'(' + inner.sql + u')', inner.columns[0].type);
    sql.collating = inner.columns[0].collating;
    sql.type.info.nullable = true;
    return sql;
}

Sql Translator::caseExpr(const Expr& expr, Scope& scope) {
    std::vector<std::pair<QString, Sql>> branches;
    const size_t end = expr.args.size() - (expr.hasElse ? 1 : 0);
    std::vector<QString> tests;
    QString operand;
    if (expr.hasOperand) {
        const Sql value = translate(*expr.args[0], scope);
        std::vector<Sql> others;
        for (size_t at = 1; at < end; at += 2) others.push_back(translate(*expr.args[at], scope));
        operand = caseOperand(value, others, tests);
    } else {
        for (size_t at = 0; at < end; at += 2) tests.push_back(predicate(*expr.args[at], scope));
    }
    for (size_t i = 0; i < tests.size(); ++i)
        branches.emplace_back(tests[i],
                              translate(*expr.args[2 * i + (expr.hasOperand ? 2 : 1)], scope));
    if (expr.hasElse) branches.emplace_back(QString(), translate(*expr.args.back(), scope));
    ValueType type = branches[0].second.type;
    for (size_t i = 1; i < branches.size(); ++i) type = commonType(type, branches[i].second.type);
    if (!expr.hasElse) type.info.nullable = true;
    QString text = QStringLiteral("(CASE");
    if (!operand.isNull()) text += u' ' + operand;
    Collating collating;
    for (auto& [when, value] : branches) {
        collating = joined(collating, value.collating, QStringLiteral("CASE"));
        const bool unchanged =
            !type.known || !value.type.known || value.type.isText() == type.isText();
        const QString result =
            unchanged && !(type.isDate() && !sameDateForm(value.type.info, type.info))
                ? use(value)
                : converted(value, type.info);
        text += when.isNull() ? QStringLiteral(" ELSE ") + result
                              : QStringLiteral(" WHEN ") + when + QStringLiteral(" THEN ") + result;
    }
    Sql sql = plain(text + QStringLiteral(" END)"), type);
    sql.collating = collating;
    return sql;
}

Sql Translator::cast(const Expr& expr, Scope& scope) {
    const Sql value = translate(*expr.args[0], scope);
    int style = 0;
    if (expr.args.size() > 1) {
        const Expr& given = *expr.args[1];
        if (given.kind != Expr::Kind::Literal || given.token->kind != TokenKind::Number)
            failWith(
                0, QStringLiteral("The style of CONVERT must be a number in the embedded server."));
        style = int(literalValue(*given.token).toInteger());
        if (given.literalIndex >= 0) rendered_.insert(given.literalIndex);
    }
    ValueType type;
    type.info = expr.castType;
    type.known = true;
    // Without a size, CAST makes texts of thirty characters.
    type.info.nullable = true;  // a conversion may fail, and give null then
    Sql sql = plain(converted(value, type.info, style, expr.tolerant), type);
    if (type.isText()) sql.collating = value.collating;
    return sql;
}

// --- conditions ---------------------------------------------------------------------------------

QString Translator::tested(const Expr& expr, Scope& scope) {
    switch (expr.kind) {
        case Expr::Kind::And:
        case Expr::Kind::Or:
            return connected(expr, scope);
        case Expr::Kind::Not:
            return QStringLiteral("(NOT ") + predicate(*expr.args[0], scope) + u')';
        case Expr::Kind::Compare:
            return compare(expr.name, translate(*expr.args[0], scope),
                           translate(*expr.args[1], scope));
        case Expr::Kind::Between: {
            const QString inside =
                between(translate(*expr.args[0], scope), translate(*expr.args[1], scope),
                        translate(*expr.args[2], scope));
            return expr.negated ? QStringLiteral("(NOT ") + inside + u')' : inside;
        }
        case Expr::Kind::In:
            return inList(expr, scope);
        case Expr::Kind::Like: {
            const Sql value = translate(*expr.args[0], scope);
            const Sql pattern = translate(*expr.args[1], scope);
            const Collation* wanted =
                comparing(value.collating, pattern.collating, QStringLiteral("like"), names());
            QString text = QStringLiteral("zov_like(") +
                           (pattern.literal ? bound(pattern) : asText(pattern)) +
                           QStringLiteral(", ") + asText(value);
            if (expr.args.size() > 2)
                text += QStringLiteral(", ") + use(translate(*expr.args[2], scope));
            else if (!wanted->isStandard())
                text += QStringLiteral(", ''");
            if (!wanted->isStandard()) text += QStringLiteral(", ") + quotedText(wanted->name());
            text += u')';
            return expr.negated ? QStringLiteral("(NOT ") + text + u')' : text;
        }
        case Expr::Kind::IsNull: {
            const Sql value = translate(*expr.args[0], scope);
            return u'(' + use(value) + QLatin1String(expr.negated ? " IS NOT NULL)" : " IS NULL)");
        }
        case Expr::Kind::Exists:
            return QStringLiteral("EXISTS (") + selectIn(*expr.select, &scope, true).sql + u')';
        case Expr::Kind::Quantified: {
            // x > ALL (s): none of s fails; x > ANY (s): one of s fits.
            const Sql value = translate(*expr.args[0], scope);
            TranslatedSelect inner = selectIn(*expr.select, &scope);
            if (inner.columns.size() != 1)
                failWith(116, QStringLiteral("Only one expression can be specified in the select "
                                             "list when the subquery is "
                                             "not introduced with EXISTS."));
            Sql other = plain(QStringLiteral("q.c1"), inner.columns[0].type);
            other.collating = inner.columns[0].collating;
            const QString condition = compare(expr.name, value, other);
            return expr.tolerant
                       ? QStringLiteral("NOT EXISTS (SELECT 1 FROM (%1) AS q WHERE NOT %2)")
                             .arg(inner.sql, condition)
                       : QStringLiteral("EXISTS (SELECT 1 FROM (%1) AS q WHERE %2)")
                             .arg(inner.sql, condition);
        }
        default: {
            if (expr.kind == Expr::Kind::Literal || expr.kind == Expr::Kind::Column ||
                expr.kind == Expr::Kind::Arithmetic) {
                DbError error(ado_error::SyntaxError,
                              QStringLiteral("An expression of non-boolean type specified in a "
                                             "context where a condition is "
                                             "expected, near '%1'.")
                                  .arg(expr.token ? expr.token->source.toString() : QString()),
                              QStringLiteral("42000"), 4145);
                throw error;
            }
            const Sql value = translate(expr, scope);
            return use(value);
        }
    }
}

/// Makes SQLite compare by the collation that the two sides have together. It goes by the left one
/// where that is a column.
void Translator::collate(const Sql& a, const Sql& b, QString& left, const QString& operation) {
    const Collation* wanted = comparing(a.collating, b.collating, operation, names());
    const bool bare = a.literal || !a.variable.isEmpty();
    if (a.stored != wanted && !(bare && b.stored == wanted)) left += suffix(nullptr, wanted);
}

void Translator::coerce(const Sql& a, const Sql& b, QString& left, QString& right,
                        const QString& operation) {
    const ValueType &ta = a.type, &tb = b.type;
    const auto both = [&](const ColumnInfo& type) {
        const auto side = [&](const Sql& sql) {
            return fitsUnchanged(sql.type, type) && !sql.literal && sql.variable.isEmpty()
                       ? use(sql)
                       : bound(sql, &type);
        };
        left = side(a);
        right = side(b);
    };
    if ((ta.isText() && (tb.isText() || !tb.known)) || (tb.isText() && !ta.known) ||
        (!ta.known && !tb.known)) {
        left = bound(a);
        right = bound(b);
        collate(a, b, left, operation);
        return;
    }
    if (ta.isDate() || tb.isDate()) {
        if (ta.isDate() && tb.isDate()) {
            if (sameDateForm(ta.info, tb.info)) {
                left = bound(a);
                right = bound(b);
            } else {
                ColumnInfo target = commonType(ta, tb).info;
                target.scale = std::max(ta.info.scale, tb.info.scale);
                both(target);
            }
        } else {
            const ValueType& date = ta.isDate() ? ta : tb;
            const ValueType& other = ta.isDate() ? tb : ta;
            ColumnInfo target = date.info;
            if (other.isNumber()) target = makeType(SqlType::DateTime);
            if (!other.known) {
                left = bound(a);
                right = bound(b);
            } else {
                both(target);
            }
        }
        if (commonType(ta, tb).info.type == SqlType::DateTimeOffset) {
            left = QStringLiteral("zov_utc(") + left + u')';
            right = QStringLiteral("zov_utc(") + right + u')';
        }
        return;
    }
    if (ta.isGuid() || tb.isGuid()) return both(makeType(SqlType::UniqueIdentifier));
    if (ta.isNumber() || tb.isNumber()) {
        const ValueType& number = ta.isNumber() ? ta : tb;
        const ValueType& other = ta.isNumber() ? tb : ta;
        if (other.isText()) {
            ColumnInfo target = number.info;
            if (number.isInteger() && number.type() != SqlType::Bit)
                target = makeType(SqlType::BigInt);
            if (number.type() == SqlType::Decimal || number.type() == SqlType::Numeric) {
                target.precision = 38;
                target.scale = std::max(10, target.scale);
            }
            both(target);
        } else if (other.isBinary()) {
            if (a.literal || b.literal) {
                left = ta.isBinary() ? numberOf(a) : bound(a);
                right = tb.isBinary() ? numberOf(b) : bound(b);
            } else {
                both(makeType(SqlType::BigInt));
            }
        } else {
            left = bound(a);
            right = bound(b);
        }
        if ((ta.isWide() || tb.isWide()) && !ta.isFloat() && !tb.isFloat()) {
            left = QStringLiteral("zov_dkey(") + left + u')';
            right = QStringLiteral("zov_dkey(") + right + u')';
        }
        return;
    }
    if (ta.isBinary() && tb.isText()) return both(makeType(SqlType::VarBinary, -1));
    if (tb.isBinary() && ta.isText()) return both(makeType(SqlType::VarBinary, -1));
    left = bound(a);
    right = bound(b);
    if (ta.isText() || tb.isText()) collate(a, b, left, operation);
}

QString Translator::compare(const QString& op, const Sql& a, const Sql& b) {
    QString left, right;
    coerce(a, b, left, right, operationName(op));
    if ((a.type.isGuid() || b.type.isGuid()) && op != u"=" && op != u"<>") {
        left = QStringLiteral("zov_gkey(") + left + u')';
        right = QStringLiteral("zov_gkey(") + right + u')';
    }
    return u'(' + left + u' ' + op + u' ' + right + u')';
}

/// A long value is mentioned once, lest nested ones grow without end.
QString Translator::between(const Sql& value, const Sql& low, const Sql& high) {
    if (isLong(value) && !value.type.isGuid() && !low.type.isGuid() && !high.type.isGuid()) {
        QString above, least, below, most;
        coerce(value, low, above, least, operationName(QStringLiteral(">=")));
        coerce(value, high, below, most, operationName(QStringLiteral("<=")));
        if (above == below)
            return u'(' + above + QStringLiteral(" BETWEEN ") + least + QStringLiteral(" AND ") +
                   most + u')';
    }
    return u'(' + compare(QStringLiteral(">="), value, low) + QStringLiteral(" AND ") +
           compare(QStringLiteral("<="), value, high) + u')';
}

/// What a CASE compares its operand with; the operand itself when it is long and the same text for
/// all, so that it is mentioned once, null where each comparison holds it.
QString Translator::caseOperand(const Sql& operand, const std::vector<Sql>& values,
                                std::vector<QString>& tests) {
    QString shared;
    bool once = isLong(operand);
    std::vector<QString> others;
    for (size_t i = 0; once && i < values.size(); ++i) {
        QString left, right;
        coerce(operand, values[i], left, right);
        once = i == 0 || left == shared;
        shared = left;
        others.push_back(right);
    }
    if (once) {
        tests = std::move(others);
        return shared;
    }
    for (const Sql& value : values) tests.push_back(compare(QStringLiteral("="), operand, value));
    return {};
}

QString Translator::inList(const Expr& expr, Scope& scope) {
    const Sql value = translate(*expr.args[0], scope);
    const QLatin1String word(expr.negated ? " NOT IN (" : " IN (");
    if (expr.select) {
        const TranslatedSelect inner = selectIn(*expr.select, &scope);
        if (inner.columns.size() != 1)
            failWith(116, QStringLiteral("Only one expression can be specified in the select list "
                                         "when the subquery is not "
                                         "introduced with EXISTS."));
        QString left, right;
        Sql row = plain(QStringLiteral("c1"), inner.columns[0].type);
        row.collating = inner.columns[0].collating;
        coerce(value, row, left, right);
        const QString rows = right == u"c1" ? inner.sql
                                            : QStringLiteral("SELECT ") + right +
                                                  QStringLiteral(" FROM (") + inner.sql + u')';
        return u'(' + left + word + rows + QStringLiteral("))");
    }
    QString left, list;
    bool uniform = true;
    std::vector<Sql> items;
    for (size_t i = 1; i < expr.args.size(); ++i) {
        items.push_back(translate(*expr.args[i], scope));
        QString itemLeft, itemRight;
        coerce(value, items.back(), itemLeft, itemRight);
        if (i == 1) left = itemLeft;
        uniform = uniform && itemLeft == left;
        list += (i > 1 ? QStringLiteral(", ") : QString()) + itemRight;
    }
    if (uniform) return u'(' + left + word + list + QStringLiteral("))");
    std::vector<QString> any;
    for (const Sql& item : items) any.push_back(compare(QStringLiteral("="), value, item));
    const QString text = joinConditions(std::move(any), " OR ");
    return expr.negated ? QStringLiteral("(NOT ") + text + u')' : text;
}

}  // namespace zov::local
