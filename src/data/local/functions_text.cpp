// Texts: LIKE, SUBSTRING, REPLACE and the others as T-SQL has them.
#include "data/local/collation.h"
#include "data/local/functions_support.h"

#include <vector>

namespace zov::local {
namespace {

bool anyNull(int count, sqlite3_value** values) {
    for (int i = 0; i < count; ++i)
        if (isNull(values[i])) return true;
    return false;
}

/// Where the letter at `at` ends: accents that follow it and the second half of a pair belong to
/// it.
qsizetype letterEnd(QStringView text, qsizetype at) {
    qsizetype end = at + 1;
    if (text[at].isHighSurrogate() && end < text.size()) ++end;
    while (end < text.size() && text[end].unicode() >= 0x300 && text[end].isMark()) ++end;
    return end;
}

/// A LIKE pattern: %, _, [a-z], [^...], and an escape character.
class Pattern {
 public:
    Pattern(const QString& pattern, QChar escape, const Collation* collation)
        : collation_(collation) {
        for (qsizetype i = 0; i < pattern.size(); ++i) {
            const QChar c = pattern[i];
            Item item;
            if (c == u'%' && c != escape) {
                item.kind = Kind::Any;
                if (!items_.empty() && items_.back().kind == Kind::Any) continue;
            } else if (c == u'_' && c != escape) {
                item.kind = Kind::One;
            } else if (c == u'[' && c != escape) {
                qsizetype end = pattern.indexOf(u']', i + 1);
                if (end < 0) {
                    valid_ = false;
                    return;
                }
                if (end == i + 1 && pattern.indexOf(u']', end + 1) > 0)
                    end = pattern.indexOf(u']', end + 1);
                item.kind = Kind::Set;
                item.set = pattern.mid(i + 1, end - i - 1);
                i = end;
            } else {
                if (!escape.isNull() && c == escape && i + 1 < pattern.size()) ++i;
                const qsizetype end = letterEnd(pattern, i);
                item.letter = pattern.mid(i, end - i);
                i = end - 1;
            }
            items_.push_back(item);
        }
    }

    bool matches(const QString& text) const {
        if (!valid_) return false;
        if (match(text, 0, 0, text.size())) return true;
        // Blanks behind the text don't keep it from matching.
        qsizetype end = text.size();
        while (end > 0 && text[end - 1] == u' ') --end;
        return end != text.size() && match(text, 0, 0, end);
    }
    /// Where the pattern is first found within the text (from 1), 0 when nowhere.
    qsizetype find(const QString& text) const {
        if (!valid_) return 0;
        const bool open = !items_.empty() && items_.front().kind == Kind::Any;
        if (!open) return match(text, 0, 0, text.size()) ? 1 : 0;
        for (qsizetype from = 0; from <= text.size(); ++from)
            if (match(text, from, 1, text.size())) return from + 1;
        return 0;
    }

 private:
    enum class Kind { Letter, Any, One, Set };
    struct Item {
        Kind kind = Kind::Letter;
        QString letter;
        QString set;
    };

    bool inSet(QStringView set, QStringView letter) const {
        qsizetype i = 0;
        const bool negated = set.startsWith(u'^');
        if (negated) ++i;
        bool found = false;
        for (; i < set.size() && !found; ++i) {
            if (i + 2 < set.size() && set[i + 1] == u'-') {
                found = collation_->compareLetters(set.mid(i, 1), letter) <= 0 &&
                        collation_->compareLetters(letter, set.mid(i + 2, 1)) <= 0;
                i += 2;
            } else {
                found = collation_->compareLetters(set.mid(i, 1), letter) == 0;
            }
        }
        return found != negated;
    }

    /// Where the text goes on when the letter at `at` fits; -1 when it doesn't.
    qsizetype fit(const Item& wanted, QStringView text, qsizetype at, qsizetype end) const {
        if (wanted.kind == Kind::One) return at + 1;
        const qsizetype next = std::min(letterEnd(text, at), end);
        const QStringView letter = text.mid(at, next - at);
        const bool fits = wanted.kind == Kind::Letter
                              ? collation_->compareLetters(letter, wanted.letter) == 0
                              : inSet(wanted.set, letter);
        return fits ? next : -1;
    }

    bool match(const QString& text, qsizetype at, size_t item, qsizetype end) const {
        // Only the last % needs to be tried again: what stood before it has matched already.
        qsizetype retryAt = -1;
        size_t retryItem = 0;
        for (;;) {
            qsizetype next = -1;
            if (item == items_.size()) {
                if (at == end) return true;
            } else if (items_[item].kind == Kind::Any) {
                if (item + 1 == items_.size()) return true;
                retryAt = at;
                retryItem = ++item;
                continue;
            } else if (at < end) {
                next = fit(items_[item], text, at, end);
            }
            if (next >= 0) {
                at = next;
                ++item;
            } else if (retryAt >= 0 && retryAt < end) {
                at = ++retryAt;
                item = retryItem;
            } else {
                return false;
            }
        }
    }

    const Collation* collation_;
    std::vector<Item> items_;
    bool valid_ = true;
};

/// The collation that the translator put behind the arguments; the default one where it put none.
const Collation* collationOf(int count, sqlite3_value** values, int at) {
    return count > at ? Collation::named(textOf(values[at])) : Collation::standard();
}

/// The pattern is compiled once a statement when it is the same for all rows.
const Pattern& patternOf(sqlite3_context* context, sqlite3_value* text, QChar escape,
                         const Collation* collation) {
    auto* kept = static_cast<Pattern*>(sqlite3_get_auxdata(context, 0));
    if (kept) return *kept;
    kept = new Pattern(textOf(text), escape, collation);
    sqlite3_set_auxdata(context, 0, kept,
                        [](void* pattern) { delete static_cast<Pattern*>(pattern); });
    auto* again = static_cast<Pattern*>(sqlite3_get_auxdata(context, 0));
    if (again) return *again;
    // SQLite did not keep it (it was deleted): the pattern changes from row to row.
    static thread_local std::unique_ptr<Pattern> single;
    single = std::make_unique<Pattern>(textOf(text), escape, collation);
    return *single;
}

void like(sqlite3_context* context, int count, sqlite3_value** v) {
    if (anyNull(count, v)) return sqlite3_result_null(context);
    const QString escape = count > 2 ? textOf(v[2]) : QString();
    sqlite3_result_int(context, patternOf(context, v[0], escape.isEmpty() ? QChar() : escape[0],
                                          collationOf(count, v, 3))
                                    .matches(textOf(v[1])));
}

void substring(sqlite3_context* context, int, sqlite3_value** v) {
    if (anyNull(3, v)) return sqlite3_result_null(context);
    qint64 start = sqlite3_value_int64(v[1]), length = sqlite3_value_int64(v[2]);
    if (length < 0)
        return giveError(
            context, 537,
            QStringLiteral("Invalid length parameter passed to the LEFT or SUBSTRING function."));
    if (start < 1) {
        length += start - 1;
        start = 1;
    }
    if (length < 0) length = 0;
    if (sqlite3_value_type(v[0]) == SQLITE_BLOB) {
        const QByteArray bytes(static_cast<const char*>(sqlite3_value_blob(v[0])),
                               sqlite3_value_bytes(v[0]));
        const QByteArray part = bytes.mid(start - 1, length);
        return sqlite3_result_blob(context, part.constData(), int(part.size()), SQLITE_TRANSIENT);
    }
    giveText(context, textOf(v[0]).mid(start - 1, length));
}

void replaceText(sqlite3_context* context, int count, sqlite3_value** v) {
    if (anyNull(3, v)) return sqlite3_result_null(context);
    const Collation* collation = collationOf(count, v, 3);
    const QString text = textOf(v[0]), what = textOf(v[1]), with = textOf(v[2]);
    QString result;
    qsizetype from = 0, length = 0;
    for (qsizetype at; (at = collation->find(text, what, from, length)) >= 0; from = at + length)
        result += text.mid(from, at - from) + with;
    giveText(context, result + text.mid(from));
}

/// COLLATIONPROPERTY; null for a collation or a property that isn't known.
void collationProperty(sqlite3_context* context, int count, sqlite3_value** v) {
    if (anyNull(count, v)) return sqlite3_result_null(context);
    const CollationRules rules = readCollationName(textOf(v[0]));
    const QString property = textOf(v[1]).toLower();
    if (!rules.known) return sqlite3_result_null(context);
    if (property == u"codepage") return giveInt(context, rules.codePage);
    if (property == u"lcid") return giveInt(context, rules.lcid);
    if (property == u"comparisonstyle") return giveInt(context, comparisonStyle(rules));
    if (property == u"version") return giveInt(context, rules.version);
    sqlite3_result_null(context);
}

void quotename(sqlite3_context* context, int count, sqlite3_value** v) {
    if (anyNull(count, v)) return sqlite3_result_null(context);
    QString text = textOf(v[0]);
    if (text.size() > 128) return sqlite3_result_null(context);
    const QString quote = count > 1 ? textOf(v[1]) : QStringLiteral("[");
    const QChar c = quote.isEmpty() ? QChar(u'[') : quote[0];
    QChar open = c, close = c;
    if (c == u'[' || c == u']') {
        open = u'[';
        close = u']';
    } else if (c == u'(' || c == u')') {
        open = u'(';
        close = u')';
    } else if (c == u'<' || c == u'>') {
        open = u'<';
        close = u'>';
    } else if (c == u'{' || c == u'}') {
        open = u'{';
        close = u'}';
    } else if (c != u'"' && c != u'\'' && c != u'`')
        return sqlite3_result_null(context);
    text.replace(QString(close), QString(close) + close);
    giveText(context, open + text + close);
}

void str(sqlite3_context* context, int count, sqlite3_value** v) {
    if (anyNull(count, v)) return sqlite3_result_null(context);
    const int length = count > 1 ? sqlite3_value_int(v[1]) : 10;
    const int decimals = count > 2 ? sqlite3_value_int(v[2]) : 0;
    if (length <= 0 || length > 8000) return sqlite3_result_null(context);
    QString text = QString::number(sqlite3_value_double(v[0]), 'f', std::clamp(decimals, 0, 16));
    if (text.size() > length) {
        const qsizetype point = text.indexOf(u'.');
        if (point > 0 && point <= length) {
            text = QString::number(sqlite3_value_double(v[0]), 'f',
                                   int(std::max<qsizetype>(0, length - point - 1)));
        } else {
            text = QString(length, u'*');
        }
    }
    giveText(context, text.rightJustified(length));
}

bool looksNumeric(QString text) {
    text = text.trimmed();
    if (text.startsWith(u'$')) text.remove(0, 1);
    text.remove(u',');
    if (text.isEmpty()) return false;
    DecimalText decimal;
    return DecimalText::parse(text.toLatin1(), decimal);
}

void checksum(sqlite3_context* context, int count, sqlite3_value** v) {
    quint32 sum = 0;
    for (int i = 0; i < count; ++i) {
        sum = (sum << 4) | (sum >> 28);
        for (const char c : utf8Of(v[i]))
            sum = ((sum << 4) | (sum >> 28)) ^ quint8(c >= 'a' && c <= 'z' ? c - 32 : c);
    }
    sqlite3_result_int(context, int(sum));
}

}  // namespace

void installTextFunctions(sqlite3* handle) {
    define(handle, "zov_like", 2, like);
    define(handle, "zov_like", 3, like);
    define(handle, "zov_like", 4, like);
    define(handle, "zov_substring", 3, substring);
    define(handle, "zov_replace", 3, replaceText);
    define(handle, "zov_replace", 4, replaceText);
    define(handle, "zov_quotename", 1, quotename);
    define(handle, "zov_quotename", 2, quotename);
    define(handle, "zov_str", 1, str);
    define(handle, "zov_str", 2, str);
    define(handle, "zov_str", 3, str);
    define(handle, "zov_checksum", -1, checksum);
    define(handle, "zov_len", 1, [](sqlite3_context* c, int, sqlite3_value** v) {
        if (isNull(v[0])) return sqlite3_result_null(c);
        QString text = textOf(v[0]);
        while (text.endsWith(u' ')) text.chop(1);
        giveInt(c, text.size());
    });
    define(handle, "zov_len1", 1, [](sqlite3_context* c, int, sqlite3_value** v) {
        if (isNull(v[0])) return sqlite3_result_null(c);
        giveInt(c, textOf(v[0]).size());
    });
    define(handle, "zov_bytes16", 1, [](sqlite3_context* c, int, sqlite3_value** v) {
        if (isNull(v[0])) return sqlite3_result_null(c);
        giveInt(c, textOf(v[0]).size() * 2);
    });
    define(handle, "zov_utf16", 1, [](sqlite3_context* c, int, sqlite3_value** v) {
        if (isNull(v[0])) return sqlite3_result_null(c);
        const QString text = textOf(v[0]);
        sqlite3_result_blob(c, text.utf16(), int(text.size() * 2), SQLITE_TRANSIENT);
    });
    define(handle, "zov_upper", 1, [](sqlite3_context* c, int, sqlite3_value** v) {
        if (isNull(v[0])) return sqlite3_result_null(c);
        giveText(c, textOf(v[0]).toUpper());
    });
    define(handle, "zov_lower", 1, [](sqlite3_context* c, int, sqlite3_value** v) {
        if (isNull(v[0])) return sqlite3_result_null(c);
        giveText(c, textOf(v[0]).toLower());
    });
    define(handle, "zov_reverse", 1, [](sqlite3_context* c, int, sqlite3_value** v) {
        if (isNull(v[0])) return sqlite3_result_null(c);
        QString text = textOf(v[0]);
        std::reverse(text.begin(), text.end());
        giveText(c, text);
    });
    define(handle, "zov_left", 2, [](sqlite3_context* c, int, sqlite3_value** v) {
        if (anyNull(2, v)) return sqlite3_result_null(c);
        const qint64 length = sqlite3_value_int64(v[1]);
        if (length < 0)
            return giveError(
                c, 537,
                QStringLiteral(
                    "Invalid length parameter passed to the LEFT or SUBSTRING function."));
        giveText(c, textOf(v[0]).left(length));
    });
    define(handle, "zov_right", 2, [](sqlite3_context* c, int, sqlite3_value** v) {
        if (anyNull(2, v)) return sqlite3_result_null(c);
        const qint64 length = sqlite3_value_int64(v[1]);
        if (length < 0)
            return giveError(
                c, 536, QStringLiteral("Invalid length parameter passed to the RIGHT function."));
        giveText(c, textOf(v[0]).right(length));
    });
    define(handle, "zov_stuff", 4, [](sqlite3_context* c, int, sqlite3_value** v) {
        if (anyNull(3, v)) return sqlite3_result_null(c);
        QString text = textOf(v[0]);
        const qint64 start = sqlite3_value_int64(v[1]), length = sqlite3_value_int64(v[2]);
        if (start < 1 || start > text.size() || length < 0) return sqlite3_result_null(c);
        giveText(c, text.replace(start - 1, length, textOf(v[3])));
    });
    // Text, times, and what the result's type can hold.
    define(handle, "zov_replicate", 3, [](sqlite3_context* c, int, sqlite3_value** v) {
        if (anyNull(3, v)) return sqlite3_result_null(c);
        const qint64 times = sqlite3_value_int64(v[1]), most = sqlite3_value_int64(v[2]);
        if (times < 0) return sqlite3_result_null(c);
        const QString text = textOf(v[0]);
        if (text.isEmpty()) return giveText(c, text);
        giveText(c, text.repeated(std::min<qint64>(times, most / text.size() + 1)).left(most));
    });
    const SqlFunction charindex = [](sqlite3_context* c, int count, sqlite3_value** v) {
        if (anyNull(count, v)) return sqlite3_result_null(c);
        const qint64 from = count > 2 ? std::max<qint64>(1, sqlite3_value_int64(v[2])) : 1;
        qsizetype length = 0;
        giveInt(c,
                collationOf(count, v, 3)->find(textOf(v[1]), textOf(v[0]), from - 1, length) + 1);
    };
    define(handle, "zov_charindex", 2, charindex);
    define(handle, "zov_charindex", 3, charindex);
    define(handle, "zov_charindex", 4, charindex);
    const SqlFunction patindex = [](sqlite3_context* c, int count, sqlite3_value** v) {
        if (anyNull(2, v)) return sqlite3_result_null(c);
        giveInt(c, Pattern(textOf(v[0]), QChar(), collationOf(count, v, 2)).find(textOf(v[1])));
    };
    define(handle, "zov_patindex", 2, patindex);
    define(handle, "zov_patindex", 3, patindex);
    define(handle, "zov_collationproperty", 2, collationProperty);
    define(handle, "zov_space", 1, [](sqlite3_context* c, int, sqlite3_value** v) {
        if (isNull(v[0]) || sqlite3_value_int64(v[0]) < 0) return sqlite3_result_null(c);
        giveText(c, QString(std::min<qint64>(8000, sqlite3_value_int64(v[0])), u' '));
    });
    define(handle, "zov_ascii", 1, [](sqlite3_context* c, int, sqlite3_value** v) {
        const QString text = textOf(v[0]);
        if (text.isEmpty()) return sqlite3_result_null(c);
        giveInt(c, quint8(text.left(1).toLatin1()[0]));
    });
    define(handle, "zov_unicode", 1, [](sqlite3_context* c, int, sqlite3_value** v) {
        const QString text = textOf(v[0]);
        if (text.isEmpty()) return sqlite3_result_null(c);
        giveInt(c, text[0].unicode());
    });
    define(handle, "zov_char", 1, [](sqlite3_context* c, int, sqlite3_value** v) {
        const qint64 code = sqlite3_value_int64(v[0]);
        if (isNull(v[0]) || code < 0 || code > 255) return sqlite3_result_null(c);
        giveText(c, QString(QChar(char16_t(code))));
    });
    define(handle, "zov_nchar", 1, [](sqlite3_context* c, int, sqlite3_value** v) {
        const qint64 code = sqlite3_value_int64(v[0]);
        if (isNull(v[0]) || code < 0 || code > 65535) return sqlite3_result_null(c);
        giveText(c, QString(QChar(char16_t(code))));
    });
    define(handle, "zov_isnumeric", 1, [](sqlite3_context* c, int, sqlite3_value** v) {
        sqlite3_result_int(c, !isNull(v[0]) && looksNumeric(textOf(v[0])));
    });
    define(handle, "zov_concat", -1, [](sqlite3_context* c, int count, sqlite3_value** v) {
        QByteArray all;
        for (int i = 0; i < count; ++i)
            if (!isNull(v[i])) all += utf8Of(v[i]);
        giveText(c, all);
    });
    define(handle, "zov_concat_ws", -1, [](sqlite3_context* c, int count, sqlite3_value** v) {
        QByteArray all;
        bool first = true;
        for (int i = 1; i < count; ++i) {
            if (isNull(v[i])) continue;
            if (!first) all += utf8Of(v[0]);
            all += utf8Of(v[i]);
            first = false;
        }
        giveText(c, all);
    });
}

}  // namespace zov::local
