// Upper- and lower-casing letter by letter. A text keeps its length ("ß" stays
// one letter), so that positions found in the cased text hold in the text itself.
#pragma once

#include <QString>

namespace zov {

QString simpleUpper(const QString& text);
QString simpleLower(const QString& text);

}  // namespace zov
