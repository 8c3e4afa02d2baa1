#include "data/odbc/odbc_parameters.h"

#include "data/odbc/odbc_errors.h"

#include <QDateTime>

#include <algorithm>

namespace zov::odbc {
namespace {

// ADO's numbers for types and directions, as CommandParameter gives them.
constexpr int TypeInteger = 3;
constexpr int TypeDouble = 5;
constexpr int TypeDate = 7;
constexpr int TypeBoolean = 11;
constexpr int TypeText = 202;
constexpr int DirectionInput = 1;

constexpr qsizetype LongestText = 4000;  // nvarchar's, beyond it is nvarchar(max)

void check(SQLHSTMT statement, SQLRETURN result) {
    if (!SQL_SUCCEEDED(result))
        throw errorFrom(readDiagnostics(SQL_HANDLE_STMT, statement), Phase::Executing);
}

}  // namespace

QString procedureCall(const QString& name, size_t parameters) {
    QString call = QStringLiteral("{? = call ") + name;
    if (parameters) {
        call += u'(';
        for (size_t i = 0; i < parameters; ++i) call += i ? u",?" : u"?";
        call += u')';
    }
    return call + u'}';
}

void BoundParameters::bind(SQLHSTMT statement, const std::vector<CommandParameter>& parameters,
                           bool withReturn) {
    SQLUSMALLINT number = 0;
    if (withReturn)
        check(statement, SQLBindParameter(statement, ++number, SQL_PARAM_OUTPUT, SQL_C_SLONG,
                                          SQL_INTEGER, 0, 0, &returnValue_, 0, &returnLength_));
    for (const CommandParameter& parameter : parameters) {
        Bound& at = bound_.emplace_back();
        at.type = parameter.type;
        at.isOutput = parameter.direction != DirectionInput;
        const SQLSMALLINT direction = at.isOutput ? SQL_PARAM_INPUT_OUTPUT : SQL_PARAM_INPUT;
        const auto bindFixed = [&](SQLSMALLINT cType, SQLSMALLINT sqlType, SQLULEN size,
                                   SQLSMALLINT digits, SQLPOINTER value) {
            check(statement, SQLBindParameter(statement, ++number, direction, cType, sqlType, size,
                                              digits, value, 0, &at.length));
        };
        switch (parameter.type) {
            case TypeInteger:
                at.integer = parameter.value.toInt();
                bindFixed(SQL_C_SLONG, SQL_INTEGER, 10, 0, &at.integer);
                break;
            case TypeDouble:
                at.real = parameter.value.toDouble();
                bindFixed(SQL_C_DOUBLE, SQL_DOUBLE, 53, 0, &at.real);
                break;
            case TypeBoolean:
                at.bit = parameter.value.toBool();
                bindFixed(SQL_C_BIT, SQL_BIT, 1, 0, &at.bit);
                break;
            case TypeDate: {
                const QDateTime when = parameter.value.toDateTime();
                const QDate date = when.date();
                const QTime time = when.time();
                at.stamp = {SQLSMALLINT(date.year()),
                            SQLUSMALLINT(date.month()),
                            SQLUSMALLINT(date.day()),
                            SQLUSMALLINT(time.hour()),
                            SQLUSMALLINT(time.minute()),
                            SQLUSMALLINT(time.second()),
                            SQLUINTEGER(time.msec()) * 1'000'000u};
                bindFixed(SQL_C_TYPE_TIMESTAMP, SQL_TYPE_TIMESTAMP, 23, 3, &at.stamp);
                break;
            }
            case TypeText: {
                const QString text = parameter.value.toString();
                qsizetype room = std::max<qsizetype>(text.size(), 1);
                if (at.isOutput) room = std::max({room, qsizetype(parameter.size), LongestText});
                at.text.assign(size_t(room) + 1, u'\0');
                std::copy_n(text.utf16(), text.size(), at.text.begin());
                at.length = SQLLEN(text.size()) * 2;
                const SQLULEN declared =
                    SQLULEN(room > LongestText
                                ? 0
                                : std::max({qsizetype(parameter.size), text.size(), qsizetype(1)}));
                check(statement,
                      SQLBindParameter(
                          statement, ++number, direction, SQL_C_WCHAR,
                          room > LongestText ? SQL_WLONGVARCHAR : SQL_WVARCHAR,
                          declared ? std::min<SQLULEN>(declared, LongestText) : SQLULEN(room), 0,
                          at.text.data(), SQLLEN(at.text.size()) * 2, &at.length));
                break;
            }
            default:
                throw DbError(
                    ado_error::Unspecified,
                    QStringLiteral("Parameter \"%1\" is of type %2, which has no binding.")
                        .arg(parameter.name)
                        .arg(parameter.type));
        }
        if (parameter.value.isNull()) at.length = SQL_NULL_DATA;
    }
}

QVariant BoundParameters::value(int index) const {
    if (index < 0 || size_t(index) >= bound_.size()) return {};
    const Bound& at = bound_[size_t(index)];
    if (!at.isOutput) return {};
    const bool isNull = at.length == SQL_NULL_DATA;
    switch (at.type) {
        case TypeInteger:
            return isNull ? QVariant(QMetaType::fromType<int>()) : QVariant(int(at.integer));
        case TypeDouble:
            return isNull ? QVariant(QMetaType::fromType<double>()) : QVariant(at.real);
        case TypeBoolean:
            return isNull ? QVariant(QMetaType::fromType<bool>()) : QVariant(at.bit != 0);
        case TypeDate:
            if (isNull) return QVariant(QMetaType::fromType<QDateTime>());
            return QDateTime(QDate(at.stamp.year, at.stamp.month, at.stamp.day),
                             QTime(at.stamp.hour, at.stamp.minute, at.stamp.second,
                                   int(at.stamp.fraction / 1'000'000u)));
        default: {
            if (isNull) return QVariant(QMetaType::fromType<QString>());
            const qsizetype shown =
                std::clamp<qsizetype>(at.length / 2, 0, qsizetype(at.text.size()) - 1);
            return QString::fromUtf16(at.text.data(), shown);
        }
    }
}

}  // namespace zov::odbc
