// How a name goes into a statement. What comes from a catalogue is a raw name, whatever it looks
// like: brackets in it belong to it.
#pragma once

#include <QString>

namespace zov {

/// "[name]", a "]" within it doubled.
inline QString quoteName(const QString& name) {
    QString quoted = name;
    quoted.replace(u']', QLatin1StringView("]]"));
    return u'[' + quoted + u']';
}

/// "[schema].[name]"; the name alone without a schema.
inline QString quotedName(const QString& schema, const QString& name) {
    return schema.isEmpty() ? quoteName(name) : quoteName(schema) + u'.' + quoteName(name);
}

/// Whether a name can stand in a statement without brackets: letters, digits, _, @, # and $, and no
/// digit or $ in front.
inline bool isRegularName(const QString& name) {
    const auto mayBegin = [](QChar c) {
        return c.isLetter() || c == u'_' || c == u'@' || c == u'#';
    };
    if (name.isEmpty() || !mayBegin(name.front())) return false;
    for (const QChar c : name)
        if (!mayBegin(c) && !c.isDigit() && c != u'$') return false;
    return true;
}

/// For a name that goes into a literal; a blank text stays as it is.
QString DoubleSingleQuotes(const QString& Text);
/// "a,b" to "'a','b'".
QString WrapStringIntoQuotes(const QString& List);
/// Adds "[" and "]" where they are missing, each side alone: for what a user types. Names out of a
/// catalogue are quoted by quoteName().
QString AddSquareBrackets(const QString& Name);

}  // namespace zov
