// Text helpers that every folder uses: numbers out of texts, trimming, cutting
// at dots, and the display formats of counts and times.
#pragma once

#include <QString>
#include <QStringList>
#include <QStringView>

namespace zov {

/// The line break of all generated text.
inline const QString CRLF = QStringLiteral("\r\n");

/// The longest number that the text starts with (leading blanks, tabs and line feeds skipped):
/// sign, digits, point, exponent. 0 when it starts with none.
double Val(QStringView text);

/// Rounds half to even; beyond the range, also at infinity, the nearest end, NaN gives 0.
qint32 roundToInt32(double number);
qint64 roundToInt64(double number);
/// roundToInt32(Val(text)).
qint32 ValInt32(QStringView text);

/// True when the whole text, blanks around it aside, is a number. Sets `number` then.
bool isNumeric(QStringView text, double* number = nullptr);

/// Cut blanks (U+0020 alone; tabs and line breaks stay) off both ends, the left, the right.
QString Trim(QStringView text);
QString LTrim(QStringView text);
QString RTrim(QStringView text);

/// The text behind the last dot; the whole text when there is none.
QString partBehindLastDot(const QString& text);
/// The text before the first dot; the whole text when there is none.
QString partBeforeFirstDot(const QString& text);

/// "#,##0": digits in groups of three with commas, whatever the locale.
QString formatCount(qint64 count);
/// "hh:mm:ss" of a stretch of time, from its whole seconds; hours start over at 24 as a clock's do.
QString formatElapsed(qint64 milliseconds);

/// The text with every line break (CR LF, CR or LF) as CR LF, or as LF.
QString withCrLf(const QString& text);
QString withLf(const QString& text);

}  // namespace zov
