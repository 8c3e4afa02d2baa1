#include "data/sql_names.h"

#include "util/text.h"

#include <QStringList>

namespace zov {

QString DoubleSingleQuotes(const QString& Text) {
    if (Trim(Text).isEmpty()) return Text;
    QString doubled = Text;
    return doubled.replace(u'\'', QLatin1StringView("''"));
}

QString WrapStringIntoQuotes(const QString& List) {
    QString wrapped;
    for (const QString& item : List.split(u',')) {
        if (!wrapped.isEmpty()) wrapped += u',';
        wrapped += u'\'' + item + u'\'';
    }
    return wrapped;
}

QString AddSquareBrackets(const QString& Name) {
    QString bracketed = Name;
    if (!bracketed.startsWith(u'[')) bracketed.prepend(u'[');
    if (!bracketed.endsWith(u']')) bracketed.append(u']');
    return bracketed;
}

}  // namespace zov
