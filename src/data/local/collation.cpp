#include "data/local/collation.h"

#include <QHash>

#include <unicode/coll.h>
#include <unicode/ucol.h>
#include <unicode/uniset.h>
#include <unicode/unistr.h>
#include <unicode/usetiter.h>
#include <unicode/uversion.h>

#include <cstring>
#include <mutex>

namespace zov::local {
namespace {

/// Goes up when our part of the order changes.
constexpr int OwnVersion = 1;

int trimmedLength(const char* text, int length) {
    while (length > 0 && text[length - 1] == ' ') --length;
    return length;
}

int sign(UCollationResult result) {
    return result == UCOL_LESS ? -1 : result == UCOL_GREATER ? 1 : 0;
}

icu::UnicodeString aliasOf(QStringView text) {
    return icu::UnicodeString(false, text.utf16(), int(text.size()));
}

bool isControl(char16_t c) {
    return c < 0x20 ? c < 9 || c > 13 : c >= 0x7F && c < 0xA0 && c != 0x85;
}
bool isKatakana(char16_t c) {
    return c >= 0x30A1 && c <= 0x30F6;
}
bool isOtherWidth(char16_t c) {
    return (c >= 0xFF01 && c <= 0xFFEE) || c == 0x3000;
}

/// What ICU finds equal or passes over and the collation doesn't: control characters, which the
/// server counts last, and with _WS and _KS the width and the kana of letters. Each with its place,
/// so that texts have the same marks only when they have them at the same letters.
QString marksOf(const QString& text, const CollationRules& rules) {
    QString marks;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        char16_t mark = 0;
        if (isControl(c))
            mark = char16_t(c + 3);
        else if (rules.widthSensitive && isOtherWidth(c))
            mark = 1;
        else if (rules.kanaSensitive && isKatakana(c))
            mark = 2;
        if (!mark) continue;
        marks += QChar(char16_t(i >> 16));
        marks += QChar(char16_t(i));
        marks += QChar(mark);
    }
    return marks;
}

bool mayHaveMarks(const char* text, int length, const CollationRules& rules) {
    for (int i = 0; i < length; ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        if ((c < 0x20 && (c < 9 || c > 13)) || c == 0x7F || c == 0xC2) return true;
        if ((rules.kanaSensitive || rules.widthSensitive) && (c == 0xE3 || c == 0xEF)) return true;
    }
    return false;
}

/// With case told apart ICU tells widths and kana apart too: they are made alike first where the
/// collation doesn't ask for them.
bool makeFormsAlike(QString& text, const CollationRules& rules) {
    bool changed = false;
    for (QChar& c : text) {
        const char16_t code = c.unicode();
        if (!rules.widthSensitive && isOtherWidth(code)) {
            const QString plain = QString(c).normalized(QString::NormalizationForm_KC);
            if (plain.size() == 1) c = plain[0];
        }
        if (!rules.kanaSensitive && isKatakana(c.unicode()))
            c = QChar(char16_t(c.unicode() - 0x60));
        changed = changed || c.unicode() != code;
    }
    return changed;
}

bool mayHaveForms(const char* text, int length) {
    for (int i = 0; i < length; ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        if (c == 0xE3 || c == 0xEF) return true;
    }
    return false;
}

}  // namespace

struct Collation::Icu {
    std::unique_ptr<icu::Collator> collator;

    explicit Icu(const CollationRules& rules) {
        UErrorCode status = U_ZERO_ERROR;
        collator.reset(icu::Collator::createInstance(icu::Locale(rules.locale), status));
        if (U_FAILURE(status) || !collator) {
            status = U_ZERO_ERROR;
            collator.reset(icu::Collator::createInstance(icu::Locale::getRoot(), status));
        }
        // Without ICU's data nothing can be put in order.
        if (U_FAILURE(status) || !collator) qFatal("ICU has no collation data");
        const auto set = [&](UColAttribute attribute, UColAttributeValue value) {
            collator->setAttribute(attribute, value, status);
        };
        set(UCOL_ALTERNATE_HANDLING, UCOL_NON_IGNORABLE);
        set(UCOL_CASE_LEVEL, rules.caseSensitive && !rules.accentSensitive ? UCOL_ON : UCOL_OFF);
        set(UCOL_STRENGTH, !rules.accentSensitive ? UCOL_PRIMARY
                           : rules.caseSensitive  ? UCOL_TERTIARY
                                                  : UCOL_SECONDARY);
    }

    int compare(char16_t a, char16_t b) const {
        UErrorCode status = U_ZERO_ERROR;
        return sign(collator->compare(icu::UnicodeString(a), icu::UnicodeString(b), status));
    }
    /// Whether letters of ASCII sort otherwise together than alone ("ch" in Czech).
    bool joinsAscii() const {
        UErrorCode status = U_ZERO_ERROR;
        icu::UnicodeSet contractions;
        ucol_getContractionsAndExpansions(collator->toUCollator(), contractions.toUSet(), nullptr,
                                          true, &status);
        if (U_FAILURE(status)) return true;
        icu::UnicodeSetIterator it(contractions);
        while (it.next()) {
            const icu::UnicodeString& text = it.getString();
            bool ascii = true;
            for (int i = 0; i < text.length(); ++i) ascii = ascii && text[i] < 0x80;
            if (ascii && text.length() > 1) return true;
        }
        return false;
    }
    /// Ranks from 1; letters that compare as equal share one.
    void rank(unsigned char (&ranks)[256]) const {
        std::vector<char16_t> letters;
        for (char16_t c = 0; c < 128; ++c)
            if (!isControl(c)) letters.push_back(c);
        std::sort(letters.begin(), letters.end(),
                  [&](char16_t a, char16_t b) { return compare(a, b) < 0; });
        unsigned char next = 0;
        for (size_t i = 0; i < letters.size(); ++i) {
            if (i == 0 || compare(letters[i - 1], letters[i]) != 0) ++next;
            ranks[letters[i]] = next;
        }
    }
};

Collation::Collation(CollationRules rules) : rules_(std::move(rules)) {
    sqlName_ = rules_.name.compare(QLatin1String(DefaultCollation), Qt::CaseInsensitive) == 0
                   ? QStringLiteral("NOCASE")
                   : u'"' + QString(rules_.name).replace(u'"', QLatin1String("\"\"")) + u'"';
    if (rules_.binary) return;
    icu_ = std::make_unique<Icu>(rules_);
    asciiAlone_ = !icu_->joinsAscii();
    CollationRules plain = rules_;
    plain.caseSensitive = plain.accentSensitive = false;
    Icu(plain).rank(primary_);
    icu_->rank(tertiary_);
}

Collation::~Collation() = default;

const Collation* Collation::named(const QString& name) {
    if (name.isEmpty()) return standard();
    static std::mutex mutex;
    // Never taken apart: threads may ask until the very end.
    using Collations = QHash<QString, const Collation*>;
    static Collations& asGiven = *new Collations;
    static Collations& byName = *new Collations;
    const std::lock_guard lock(mutex);
    if (const Collation* known = asGiven.value(name)) return known;
    CollationRules rules = readCollationName(name);
    const QString key = rules.name.toUpper();
    const Collation*& entry = byName[key];
    // Kept to the process's end: handles and caches of all threads point at it.
    if (!entry) entry = new Collation(std::move(rules));
    asGiven.insert(name, entry);
    return entry;
}

const Collation* Collation::standard() {
    static const Collation* const instance = named(QLatin1String(DefaultCollation));
    return instance;
}

QString Collation::sortingVersion() {
    UVersionInfo version;
    u_getVersion(version);
    char text[U_MAX_VERSION_STRING_LENGTH];
    u_versionToString(version, text);
    return QStringLiteral("ICU %1/%2").arg(QLatin1String(text)).arg(OwnVersion);
}

int Collation::compareByIcu(const char* a, int lengthA, const char* b, int lengthB) const {
    UErrorCode status = U_ZERO_ERROR;
    int order = 0;
    QString first, second;
    if (rules_.caseSensitive && (mayHaveForms(a, lengthA) || mayHaveForms(b, lengthB))) {
        first = QString::fromUtf8(a, lengthA);
        second = QString::fromUtf8(b, lengthB);
        makeFormsAlike(first, rules_);
        makeFormsAlike(second, rules_);
        order = sign(icu_->collator->compare(aliasOf(first), aliasOf(second), status));
    } else {
        order = sign(icu_->collator->compareUTF8(icu::StringPiece(a, lengthA),
                                                 icu::StringPiece(b, lengthB), status));
    }
    if (order || !(mayHaveMarks(a, lengthA, rules_) || mayHaveMarks(b, lengthB, rules_)))
        return order;
    first = marksOf(QString::fromUtf8(a, lengthA), rules_);
    second = marksOf(QString::fromUtf8(b, lengthB), rules_);
    return first < second ? -1 : first > second ? 1 : 0;
}

int Collation::compare(const char* a, int lengthA, const char* b, int lengthB) const {
    lengthA = trimmedLength(a, lengthA);
    lengthB = trimmedLength(b, lengthB);
    const int common = std::min(lengthA, lengthB);
    if (rules_.binary) {
        const int order = common ? std::memcmp(a, b, size_t(common)) : 0;
        return order ? order : lengthA - lengthB;
    }
    if (!asciiAlone_) return compareByIcu(a, lengthA, b, lengthB);
    const auto* p = reinterpret_cast<const unsigned char*>(a);
    const auto* q = reinterpret_cast<const unsigned char*>(b);
    // What two ASCII texts begin with together says nothing.
    int i = 0;
    for (quint64 x = 0, y = 0; i + 8 <= common; i += 8) {
        std::memcpy(&x, p + i, 8);
        std::memcpy(&y, q + i, 8);
        if (x != y || (x & 0x8080808080808080)) break;
    }
    int tertiary = 0;
    for (; i < common; ++i) {
        const unsigned char x = p[i], y = q[i];
        const int rankX = primary_[x];
        if (x == y && rankX) continue;
        const int rankY = primary_[y];
        if (!rankX || !rankY) return compareByIcu(a, lengthA, b, lengthB);
        if (rankX != rankY) {
            // What stands behind a letter may join it (an accent): it has to be ASCII as well.
            const unsigned char behind =
                (i + 1 < lengthA ? p[i + 1] : 0) | (i + 1 < lengthB ? q[i + 1] : 0);
            return behind & 0x80 ? compareByIcu(a, lengthA, b, lengthB) : rankX - rankY;
        }
        if (!tertiary) tertiary = int(tertiary_[x]) - int(tertiary_[y]);
    }
    if (lengthA == lengthB) return tertiary;
    if (!primary_[lengthA > common ? p[common] : q[common]])
        return compareByIcu(a, lengthA, b, lengthB);
    return lengthA - lengthB;
}

int Collation::compare(const QString& a, const QString& b) const {
    const QByteArray first = a.toUtf8(), second = b.toUtf8();
    return compare(first.constData(), int(first.size()), second.constData(), int(second.size()));
}

int Collation::compareLetters(QStringView a, QStringView b) const {
    if (a.size() == 1 && b.size() == 1) {
        const char16_t x = a[0].unicode(), y = b[0].unicode();
        if (x == y) return 0;
        if (rules_.binary) return int(x) - int(y);
        if (x < 0x80 && y < 0x80 && primary_[x] && primary_[y])
            return primary_[x] != primary_[y] ? int(primary_[x]) - int(primary_[y])
                                              : int(tertiary_[x]) - int(tertiary_[y]);
    }
    if (rules_.binary) return a.compare(b);
    const QByteArray first = a.toUtf8(), second = b.toUtf8();
    return compareByIcu(first.constData(), int(first.size()), second.constData(),
                        int(second.size()));
}

QString Collation::key(const QString& name) const {
    // In Turkish and Azeri "I" isn't the capital of "i".
    const bool dotless =
        qstrncmp(rules_.locale, "tr", 2) == 0 || qstrncmp(rules_.locale, "az", 2) == 0;
    return tellsCase() || dotless ? name : name.toLower();
}

qsizetype Collation::find(const QString& text, const QString& what, qsizetype from,
                          qsizetype& length) const {
    length = what.size();
    if (what.isEmpty()) return -1;
    if (rules_.binary) return text.indexOf(what, from);
    const QStringView all(text);
    const auto isPlain = [](QStringView part) {
        return std::all_of(part.begin(), part.end(), [](QChar c) { return c.unicode() < 0x80; });
    };
    const bool plainNeedle = isPlain(what);
    for (qsizetype at = std::max<qsizetype>(from, 0); at < text.size(); ++at) {
        // Texts of one length first; then those that an accent or an "ss" makes longer or shorter.
        const qsizetype least = std::max<qsizetype>(1, what.size() / 2);
        const qsizetype most = std::min(text.size() - at, what.size() * 2 + 1);
        if (what.size() <= most) {
            const QStringView part = all.mid(at, what.size());
            const bool plainEnd =
                at + what.size() >= text.size() || text[at + what.size()].unicode() < 0x80;
            if (plainNeedle && plainEnd && isPlain(part)) {
                bool same = true;
                for (qsizetype i = 0; i < what.size() && same; ++i)
                    same = compareLetters(part.mid(i, 1), QStringView(what).mid(i, 1)) == 0;
                if (same) {
                    length = what.size();
                    return at;
                }
                if (asciiAlone_) continue;
            }
        }
        if (plainNeedle && text[at].unicode() < 0x80 && asciiAlone_ &&
            compareLetters(all.mid(at, 1), QStringView(what).left(1)) != 0)
            continue;
        qsizetype found = 0;
        for (qsizetype size = least; size <= most; ++size) {
            // An accent belongs to the letter in front of it.
            if (at + size < text.size() && text[at + size].isMark()) continue;
            if (compareLetters(all.mid(at, size), what) != 0) continue;
            found = size;
            break;
        }
        if (found) {
            length = found;
            return at;
        }
    }
    return -1;
}

}  // namespace zov::local
