// EXEC of texts, of sp_executesql and of system procedures, and commands that call a procedure by
// name.
#include "data/local/batch_stream.h"

#include <QDateTime>

namespace zov::local {
namespace {

bool same(const QString& a, const char* b) {
    return a.compare(QLatin1String(b), Qt::CaseInsensitive) == 0;
}

/// Rows of one text column that a system procedure gave.
class TextRows : public ResultStream {
 public:
    TextRows(const QString& column, std::vector<QString> lines) : lines_(std::move(lines)) {
        ColumnInfo info;
        info.name = column;
        info.type = SqlType::NVarChar;
        info.size = 255;
        columns_.push_back(info);
    }
    const std::vector<ColumnInfo>& columns() const override { return columns_; }
    qsizetype fetch(RowStore& rows, qsizetype maxRows) override {
        qsizetype count = 0;
        for (; count < maxRows && at_ < lines_.size(); ++count)
            rows.column(0).appendText(lines_[at_++]);
        return count;
    }
    bool nextResult() override { return false; }
    void close() override { at_ = lines_.size(); }

 private:
    std::vector<ColumnInfo> columns_;
    std::vector<QString> lines_;
    size_t at_ = 0;
};

}  // namespace

StoredValue storedValue(const QVariant& value) {
    if (!value.isValid() || value.isNull()) return StoredValue::null();
    switch (value.typeId()) {
        case QMetaType::Bool:
            return StoredValue::ofInteger(value.toBool(), SqlType::Bit);
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::Short:
            return StoredValue::ofInteger(value.toLongLong());
        case QMetaType::LongLong:
        case QMetaType::ULongLong:
            return StoredValue::ofInteger(value.toLongLong(), SqlType::BigInt);
        case QMetaType::Double:
        case QMetaType::Float:
            return StoredValue::ofReal(value.toDouble());
        case QMetaType::QDateTime:
            return StoredValue::ofText(
                value.toDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz")));
        case QMetaType::QDate:
            return StoredValue::ofText(value.toDate().toString(Qt::ISODate));
        case QMetaType::QByteArray: {
            StoredValue bytes;
            bytes.kind = StoredValue::Kind::Blob;
            bytes.bytes = value.toByteArray();
            bytes.type.type = SqlType::VarBinary;
            bytes.type.size = -1;
            return bytes;
        }
        default:
            return StoredValue::ofText(value.toString());
    }
}

QVariant variantOf(const StoredValue& value) {
    switch (value.kind) {
        case StoredValue::Kind::Null:
            return {};
        case StoredValue::Kind::Integer:
            return QVariant::fromValue(value.integer);
        case StoredValue::Kind::Real:
            return value.real;
        case StoredValue::Kind::Text:
            return QString::fromUtf8(value.bytes);
        case StoredValue::Kind::Blob:
            return value.bytes;
    }
    return {};
}

ColumnInfo typeOfParameter(const CommandParameter& parameter) {
    ColumnInfo info;
    switch (parameter.type) {
        case 3:
            info.type = SqlType::Int;
            break;
        case 5:
            info.type = SqlType::Float;
            break;
        case 7:
            info.type = SqlType::DateTime;
            break;
        case 11:
            info.type = SqlType::Bit;
            break;
        default:
            info.type = SqlType::NVarChar;
            info.size = -1;
            break;
    }
    return info;
}

// A call of a procedure by name, with the command's parameters.
void BatchStream::startProcedure(const QString& written) {
    const ObjectName name = ObjectName::parse(written);
    std::vector<Given> given;
    for (size_t i = 0; i < command_.parameters.size(); ++i) {
        const CommandParameter& parameter = command_.parameters[i];
        if (parameter.direction == 4) continue;
        Given argument;
        if (!parameter.name.isEmpty()) argument.name = parameterName(i);
        argument.value = storedValue(parameter.value);
        argument.output = (parameter.direction & 2) != 0 ? argument.name : QString();
        given.push_back(std::move(argument));
    }
    pushFrame(QString());  // the caller of what is called
    if (same(name.name, "sp_executesql")) {
        executeSql(given);
        parameters_ = frame().variables;
        for (Frame::Output& output : frame().outputs) output.outer.clear();
        frame().outputs.clear();
        return;
    }
    // The places of a command's parameters count; their names are the caller's own.
    for (Given& one : given) one.name.clear();
    statement([&] { callProcedure(name, given); }, 1, {});
}

void BatchStream::exec(std::span<const Token> tokens) {
    TokenCursor cursor(tokens);
    if (cursor.is("(")) {
        const std::span<const Token> expression = cursor.parenthesised();
        if (cursor.accept("AT"))
            fail(40000, QStringLiteral("The embedded server knows no linked servers."),
                 tokens.front().line);
        if (cursor.accept("AS")) {
            cursor.next();
            cursor.expect("=");
            cursor.next();
        }
        cursor.expectEnd();
        const QString text = evaluate(session_, expression, variables()).text();
        pushFrame(text);
        return;
    }
    QString result;
    if (cursor.peek().source.startsWith(u'@') && cursor.peek(1).is("=")) {
        result = cursor.next().source.toString();
        cursor.next();
    }
    ObjectName name;
    if (cursor.peek().source.startsWith(u'@')) {
        const StoredValue* value = variables().find(cursor.peek().source.toString());
        if (!value)
            fail(137,
                 QStringLiteral("Must declare the scalar variable \"%1\".")
                     .arg(cursor.peek().source),
                 cursor.peek().line);
        cursor.next();
        name = ObjectName::parse(value->text());
    } else {
        name = cursor.objectName();
    }
    if (cursor.accept(";")) cursor.wholeNumber();
    std::vector<Given> given;
    if (!cursor.atEnd() && !cursor.is("WITH")) {
        do given.push_back(argument(cursor));
        while (cursor.accept(","));
    }
    if (cursor.accept("WITH")) cursor.expect("RECOMPILE");
    cursor.expectEnd();
    if (same(name.name, "sp_executesql")) {
        executeSql(given);
        return;
    }
    callProcedure(name, given);
    if (!result.isEmpty()) variables().assign(session_, result, StoredValue::ofInteger(0));
}

BatchStream::Given BatchStream::argument(TokenCursor& cursor) {
    Given given;
    if (cursor.peek().source.startsWith(u'@') && cursor.peek(1).is("=")) {
        given.name = cursor.next().source.toString();
        cursor.next();
    }
    const Token& token = cursor.peek();
    if (token.kind == TokenKind::Word && !token.source.startsWith(u'@')) {
        // A bare word is a text, but for the two that mean something.
        cursor.next();
        if (!token.is("NULL") && !token.is("DEFAULT"))
            given.value = StoredValue::ofText(token.source.toString());
    } else if (token.kind == TokenKind::Quoted) {
        given.value = StoredValue::ofText(cursor.next().value);
    } else {
        const std::span<const Token> expression = cursor.until({"OUTPUT", "OUT", "WITH"});
        given.value = evaluate(session_, expression, variables());
        if (cursor.accept("OUTPUT") || cursor.accept("OUT")) given.output = token.source.toString();
    }
    return given;
}

void BatchStream::callProcedure(const ObjectName& name, const std::vector<Given>& given) {
    std::vector<Argument> arguments;
    for (const Given& one : given) {
        Argument argument;
        argument.name = one.name;
        argument.isNull = one.value.isNull();
        argument.text = one.value.text();
        arguments.push_back(std::move(argument));
    }
    std::vector<QString> lines;
    bool known = false;
    Database* const current = session_.current;
    try {
        // "Northwind..sp_rename" works on that database.
        if (!name.database.isEmpty() && !same(name.database, "master"))
            session_.current = &session_.store->database(name.database);
        known = runSystemProcedure(session_, name.name, arguments, lines);
        session_.current = current;
    } catch (DbError& error) {
        session_.current = current;
        error.line = 0;
        throw error;
    }
    if (!known) {
        const Catalog catalog(session_, *current);
        const auto found = name.database.isEmpty() ? catalog.find(name) : std::nullopt;
        if (found && found->xtype == QLatin1String("P"))
            fail(40000,
                 QStringLiteral(
                     "The embedded server keeps procedures as text and doesn't run them: '%1'.")
                     .arg(name.display()),
                 name.line);
        fail(2812, QStringLiteral("Could not find stored procedure '%1'.").arg(name.display()),
             name.line);
    }
    if (lines.empty()) return;
    Result result;
    result.rows = std::make_unique<TextRows>(QStringLiteral("Text"), std::move(lines));
    results_.push_back(std::move(result));
}

// sp_executesql N'text', N'@a int, @b nvarchar(10) OUTPUT', values
void BatchStream::executeSql(const std::vector<Given>& given) {
    if (given.empty())
        fail(201, QStringLiteral("Procedure or function 'sp_executesql' expects parameter "
                                 "'@statement', which was "
                                 "not supplied."));
    const QString text = given[0].value.text();
    const QString definitions = given.size() > 1 ? given[1].value.text() : QString();
    pushFrame(text);
    const std::vector<Token> tokens = tokenize(definitions, session_.quotedIdentifier);
    TokenCursor cursor(tokens);
    size_t position = 2;
    while (!cursor.atEnd()) {
        const QString name = cursor.next().source.toString();
        cursor.accept("AS");
        qsizetype end = 0;
        const ColumnInfo type = parseDataType(session_, cursor.rest(), 0, end);
        cursor.skip(size_t(end));
        const bool hasDefault = cursor.accept("=");
        StoredValue value;
        if (hasDefault) value = evaluate(session_, cursor.until({"OUTPUT", "OUT"}), variables());
        const bool output = cursor.accept("OUTPUT") || cursor.accept("OUT");
        variables().declare(name, type);
        const Given* found = nullptr;
        for (size_t i = 2; i < given.size(); ++i)
            if (given[i].name.compare(name, Qt::CaseInsensitive) == 0) found = &given[i];
        if (!found && position < given.size() && given[position].name.isEmpty())
            found = &given[position];
        ++position;
        if (!found && !hasDefault)
            fail(8178, QStringLiteral(
                           "The parameterized query '%1' expects the parameter '%2', which was not "
                           "supplied.")
                           .arg(text.left(200), name));
        variables().assign(session_, name, found ? found->value : value);
        if (found && output && !found->output.isEmpty())
            frame().outputs.push_back({name, found->output});
        if (!cursor.accept(",")) break;
    }
    cursor.expectEnd();
}

}  // namespace zov::local
