#include "structcompare/simple_case.h"

#include <algorithm>

namespace zov {

QString simpleUpper(const QString& text) {
    QString result = text;
    std::transform(text.cbegin(), text.cend(), result.begin(), [](QChar c) { return c.toUpper(); });
    return result;
}

QString simpleLower(const QString& text) {
    QString result = text;
    std::transform(text.cbegin(), text.cend(), result.begin(), [](QChar c) { return c.toLower(); });
    return result;
}

}  // namespace zov
