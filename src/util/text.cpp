#include "util/text.h"

#include <cmath>
#include <limits>

namespace zov {
namespace {

bool isAsciiDigit(QChar c) {
    return c >= u'0' && c <= u'9';
}

/// Length of the number at the start of `text`, 0 when there is none.
qsizetype numberLength(QStringView text) {
    qsizetype at = 0;
    if (at < text.size() && (text[at] == u'+' || text[at] == u'-')) ++at;
    const qsizetype firstDigit = at;
    while (at < text.size() && isAsciiDigit(text[at])) ++at;
    qsizetype digits = at - firstDigit;
    if (at < text.size() && text[at] == u'.') {
        const qsizetype point = at++;
        while (at < text.size() && isAsciiDigit(text[at])) ++at;
        digits += at - point - 1;
    }
    if (digits == 0) return 0;
    if (at < text.size() && (text[at] == u'e' || text[at] == u'E')) {
        qsizetype exponent = at + 1;
        if (exponent < text.size() && (text[exponent] == u'+' || text[exponent] == u'-'))
            ++exponent;
        const qsizetype firstExponentDigit = exponent;
        while (exponent < text.size() && isAsciiDigit(text[exponent])) ++exponent;
        if (exponent > firstExponentDigit) at = exponent;
    }
    return at;
}

QStringView withoutLeadingSpace(QStringView text) {
    qsizetype at = 0;
    while (at < text.size() && (text[at] == u' ' || text[at] == u'\t' || text[at] == u'\n')) ++at;
    return text.mid(at);
}

}  // namespace

double Val(QStringView text) {
    text = withoutLeadingSpace(text);
    return text.left(numberLength(text)).toDouble();
}

namespace {

template <typename Integer>
Integer roundedTo(double number) {
    if (std::isnan(number)) return 0;
    // What is left of an infinite number is none, and so would the result be.
    const double rounded = std::isinf(number) ? number : number - std::remainder(number, 1.0);
    using Limits = std::numeric_limits<Integer>;
    if (rounded >= double(Limits::max())) return Limits::max();
    if (rounded <= double(Limits::min())) return Limits::min();
    return Integer(rounded);
}

}  // namespace

qint32 roundToInt32(double number) {
    return roundedTo<qint32>(number);
}

qint64 roundToInt64(double number) {
    return roundedTo<qint64>(number);
}

qint32 ValInt32(QStringView text) {
    return roundToInt32(Val(text));
}

bool isNumeric(QStringView text, double* number) {
    text = text.trimmed();
    const qsizetype length = numberLength(text);
    if (length == 0 || length != text.size()) return false;
    if (number) *number = text.toDouble();
    return true;
}

QString LTrim(QStringView text) {
    while (!text.isEmpty() && text.front() == u' ') text = text.mid(1);
    return text.toString();
}

QString RTrim(QStringView text) {
    while (!text.isEmpty() && text.back() == u' ') text.chop(1);
    return text.toString();
}

QString Trim(QStringView text) {
    while (!text.isEmpty() && text.back() == u' ') text.chop(1);
    return LTrim(text);
}

QString partBehindLastDot(const QString& text) {
    return text.mid(text.lastIndexOf(u'.') + 1);
}

QString partBeforeFirstDot(const QString& text) {
    return text.left(text.indexOf(u'.'));
}

QString formatCount(qint64 count) {
    QString digits = QString::number(count);
    const qsizetype first = count < 0 ? 1 : 0;
    for (qsizetype at = digits.size() - 3; at > first; at -= 3) digits.insert(at, u',');
    return digits;
}

QString formatElapsed(qint64 milliseconds) {
    const qint64 seconds = milliseconds < 0 ? 0 : milliseconds / 1000;
    return QStringLiteral("%1:%2:%3")
        .arg(seconds / 3600 % 24, 2, 10, QLatin1Char('0'))
        .arg(seconds / 60 % 60, 2, 10, QLatin1Char('0'))
        .arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

QString withLf(const QString& text) {
    QString plain = text;
    plain.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    plain.replace(u'\r', u'\n');
    return plain;
}

QString withCrLf(const QString& text) {
    return withLf(text).replace(QStringLiteral("\n"), QStringLiteral("\r\n"));
}

}  // namespace zov
