// Collations by themselves: what is equal under which name, and the short way for ASCII against
// ICU.
#include "data/local/collation.h"

#include <gtest/gtest.h>

#include <QStringList>

#include <unicode/coll.h>
#include <unicode/unistr.h>

#include <random>
#include <thread>

namespace zov::local {
namespace {

const Collation& collation(const char* name) {
    return *Collation::named(QString::fromUtf8(name));
}

int sign(int order) {
    return order < 0 ? -1 : order > 0 ? 1 : 0;
}

/// -1, 0, 1 for UTF-8 texts.
int order(const char* name, const char* a, const char* b) {
    return sign(collation(name).compare(QString::fromUtf8(a), QString::fromUtf8(b)));
}

constexpr const char* Default = "SQL_Latin1_General_CP1_CI_AS";

TEST(CollationOrder, WhatIsEqualUnderWhichName) {
    static const struct {
        const char* collation;
        const char* a;
        const char* b;
        bool equal;
    } rows[] = {
        {Default, "abc", "ABC", true},
        {Default, "abc", "abc   ", true},
        {Default, "", "   ", true},
        {Default, "abc", " abc", false},
        {Default, "a", "\xC3\xA4", false},         // ä
        {Default, "\xC3\x84", "\xC3\xA4", true},   // Ä ä
        {Default, "\xC3\x84", "a\xCC\x88", true},  // a with its dots apart
        {Default,
         "Stra\xC3\x9F"
         "e",
         "STRASSE", false},
        {"Latin1_General_CI_AI",
         "Stra\xC3\x9F"
         "e",
         "STRASSE", true},
        {Default, "a", "\xEF\xBD\x81", true},             // of full width
        {Default, "\xE3\x81\x82", "\xE3\x82\xA2", true},  // hiragana, katakana
        {Default, "a-b", "ab", false},
        {Default, "o'neil", "oneil", false},
        {Default, "a", "a\x01", false},  // a control character
        {Default,
         "a\x01"
         "b",
         "ab\x01", false},
        {"Latin1_General_CS_AS", "abc", "ABC", false},
        {"Latin1_General_CS_AS", "abc", "abc ", true},
        {"Latin1_General_CS_AS", "a", "\xEF\xBD\x81", true},
        {"Latin1_General_CS_AS", "\xE3\x81\x82", "\xE3\x82\xA2", true},
        {"Latin1_General_CS_AS_KS", "\xE3\x81\x82", "\xE3\x82\xA2", false},
        {"Latin1_General_CS_AS_KS", "a", "\xEF\xBD\x81", true},
        {"Latin1_General_CS_AS_WS", "a", "\xEF\xBD\x81", false},
        {"Latin1_General_CS_AS_WS", "\xE3\x81\x82", "\xE3\x82\xA2", true},
        {"Latin1_General_CI_AS_WS", "a", "\xEF\xBD\x81", false},
        {"Latin1_General_CI_AS_WS", "\xEF\xBC\xA1", "\xEF\xBD\x81", true},
        {"Latin1_General_CI_AS_KS", "\xE3\x81\x82", "\xE3\x82\xA2", false},
        {"Latin1_General_CI_AI", "r\xC3\xA9sum\xC3\xA9", "RESUME", true},
        {"Latin1_General_CS_AI", "r\xC3\xA9sum\xC3\xA9", "resume", true},
        {"Latin1_General_CS_AI", "r\xC3\xA9sum\xC3\xA9", "Resume", false},
        {"Latin1_General_BIN", "abc", "ABC", false},
        {"Latin1_General_BIN", "abc", "abc  ", true},
        {"Latin1_General_BIN2", "\xC3\xA4", "a\xCC\x88", false},
        {"Latin1_General_100_BIN2_UTF8", "a", "\xEF\xBD\x81", false},
        {"Turkish_CI_AS", "I", "i", false},
        {"Turkish_CI_AS", "I", "\xC4\xB1", true},  // ı
        {"latin1_general_ci_as", "abc", "ABC", true},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(order(row.collation, row.a, row.b) == 0, row.equal)
            << row.collation << ": " << row.a << " and " << row.b;
        EXPECT_EQ(order(row.collation, row.a, row.b), -order(row.collation, row.b, row.a))
            << row.collation << ": " << row.a << " and " << row.b;
    }
}

TEST(CollationOrder, HowTextsSort) {
    static const struct {
        const char* collation;
        const char* sorted;
    } rows[] = {
        {Default, "_a|1|a|\xC3\x84|A b|ab|Z"},
        {"Latin1_General_CS_AS", "a|A|\xC3\xA4|\xC3\x84|b|B"},
        {"Latin1_General_BIN2", "1|A|B|_|a|\xC3\x84"},
        {"Finnish_Swedish_CI_AS", "a|z|\xC3\xA5|\xC3\xA4|\xC3\xB6"},  // å ä ö behind z
        {"Czech_CI_AS", "c|d|h|ch|i"},
        {"Danish_Norwegian_CI_AS", "a|z|\xC3\xA6|\xC3\xB8|aa"},  // æ ø aa
        {"German_PhoneBook_CI_AS", "ad|\xC3\xA4|af"},            // ä as ae
        {"Traditional_Spanish_CI_AS", "cz|ch|d"},
        {"SQL_Czech_CP1250_CI_AS", "h|ch|i"},
    };
    for (const auto& row : rows) {
        const QStringList sorted = QString::fromUtf8(row.sorted).split(u'|');
        for (qsizetype i = 0; i + 1 < sorted.size(); ++i)
            EXPECT_LT(collation(row.collation).compare(sorted[i], sorted[i + 1]), 0)
                << row.collation << ": " << sorted[i].toStdString() << " before "
                << sorted[i + 1].toStdString();
    }
}

// The table-driven way must give ICU's answer for every pair of texts, or indexes would be read
// wrongly. Every second text gets a letter beyond ASCII somewhere.
TEST(CollationOrder, TheShortWayForAsciiIsIcusOwnOrder) {
    static const struct {
        const char* name;
        const char* locale;
        icu::Collator::ECollationStrength strength;
        UColAttributeValue caseLevel;
    } rows[] = {
        {Default, "", icu::Collator::SECONDARY, UCOL_OFF},
        {"Latin1_General_CS_AS_KS_WS", "", icu::Collator::TERTIARY, UCOL_OFF},
        {"Latin1_General_CI_AI", "", icu::Collator::PRIMARY, UCOL_OFF},
        {"Latin1_General_CS_AI", "", icu::Collator::PRIMARY, UCOL_ON},
        {"French_CI_AS", "fr", icu::Collator::SECONDARY, UCOL_OFF},
        {"Turkish_CS_AS_KS_WS", "tr", icu::Collator::TERTIARY, UCOL_OFF},
        {"Czech_CI_AS", "cs", icu::Collator::SECONDARY, UCOL_OFF},
        {"Hungarian_CI_AS", "hu", icu::Collator::SECONDARY, UCOL_OFF},
        {"Japanese_CI_AS", "ja", icu::Collator::SECONDARY, UCOL_OFF},
    };
    std::mt19937 random(20260101);
    const char* const letters[] = {"aAbBcCxyzZ -'_", "acehisgzld 0189",
                                   "~!@#$%^&*()+={}|[]\\:;\"<>?,./`"};
    const char* const others[] = {"\xC3\xA4", "\xCC\x8C", "\xC3\x9F", "\xCC\x88", "\xC4\xB1"};
    const auto text = [&] {
        const std::string_view from = letters[random() % 3];
        std::string made;
        for (size_t n = random() % 7; n > 0; --n) made += from[random() % from.size()];
        if (random() % 4 == 0) made.insert(random() % (made.size() + 1), others[random() % 5]);
        if (random() % 5 == 0) made += "  ";
        return made;
    };
    for (const auto& row : rows) {
        UErrorCode status = U_ZERO_ERROR;
        const std::unique_ptr<icu::Collator> icu(
            icu::Collator::createInstance(icu::Locale(row.locale), status));
        icu->setStrength(row.strength);
        icu->setAttribute(UCOL_CASE_LEVEL, row.caseLevel, status);
        const Collation& ours = collation(row.name);
        for (int i = 0; i < 40'000; ++i) {
            const std::string a = text();
            // Half of the pairs differ little.
            std::string b = a;
            if (random() % 2 || b.empty())
                b = text();
            else if (const size_t at = random() % b.size();
                     isalpha(static_cast<unsigned char>(b[at])))
                b[at] ^= 32;
            const auto trimmed = [](std::string all) {
                while (!all.empty() && all.back() == ' ') all.pop_back();
                return icu::UnicodeString::fromUTF8(all);
            };
            ASSERT_EQ(sign(ours.compare(a.data(), int(a.size()), b.data(), int(b.size()))),
                      int(icu->compare(trimmed(a), trimmed(b), status)))
                << row.name << ": [" << a << "] and [" << b << "]";
        }
    }
}

TEST(CollationOrder, IsTheSameInAllThreads) {
    const Collation& ours = collation("Latin1_General_CI_AI");
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < 5'000; ++round)
                if (!ours.equal(QStringLiteral("\u00e9t\u00e9"), QStringLiteral("ETE")) ||
                    ours.equal(QStringLiteral("\u00e9t\u00e9"), QStringLiteral("etes")) ||
                    Collation::named(QStringLiteral("Latin1_general_CI_ai")) != &ours)
                    ++wrong;
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
}

TEST(CollationNames, AreReadAndSpeltAsTheServerDoes) {
    static const struct {
        const char* given;
        const char* name;
        bool known;
        int codePage;
        int style;
    } rows[] = {
        {"latin1_general_ci_as", "Latin1_General_CI_AS", true, 1252, 196609},
        {"LATIN1_GENERAL_100_CS_AI_KS_WS_SC", "Latin1_General_100_CS_AI_KS_WS_SC", true, 1252, 2},
        {"sql_latin1_general_cp1_ci_as", "SQL_Latin1_General_CP1_CI_AS", true, 1252, 196609},
        {"SQL_Latin1_General_Cp437_BIN", "SQL_Latin1_General_CP437_BIN", true, 437, 0},
        {"Japanese_XJIS_140_CI_AS_VSS", "Japanese_XJIS_140_CI_AS_VSS", true, 932, 196609},
        {"Latin1_General_100_CI_AS_SC_UTF8", "Latin1_General_100_CI_AS_SC_UTF8", true, 65001,
         196609},
        {"Chinese_PRC_Stroke_BIN2", "Chinese_PRC_Stroke_BIN2", true, 936, 0},
        {"Klingon_CI_AS", "Klingon_CI_AS", false, 1252, 196609},
        {"Klingon_100_BIN2", "Klingon_100_BIN2", false, 1252, 0},
        {"Latin1_General", "Latin1_General", false, 1252, 196609},
        {"Latin1_General_CI_AS_BIN", "Latin1_General_CI_AS_BIN", false, 1252, 0},
        {"SQL_Latin1_General_CP1_100_CI_AS", "SQL_Latin1_General_CP1_100_CI_AS", false, 1252,
         196609},
    };
    for (const auto& row : rows) {
        const CollationRules rules = readCollationName(QString::fromUtf8(row.given));
        EXPECT_EQ(rules.name.toStdString(), row.name);
        EXPECT_EQ(rules.known, row.known) << row.given;
        EXPECT_EQ(rules.codePage, row.codePage) << row.given;
        EXPECT_EQ(comparisonStyle(rules), row.style) << row.given;
    }
    for (const CollationRules& rules : listCollations())
        EXPECT_TRUE(rules.known) << rules.name.toStdString();
}

TEST(CollationOrder, FindsATextInAnother) {
    static const struct {
        const char* collation;
        const char* text;
        const char* what;
        int at, length;
    } rows[] = {
        {Default, "Hello World", "WORLD", 6, 5},
        {Default, "Hello World", "worlds", -1, 0},
        {Default, "aaXbb", "x", 2, 1},
        {Default, "abc", "", -1, 0},
        {"Latin1_General_CI_AI",
         "die Stra\xC3\x9F"
         "e",
         "STRASSE", 4, 6},
        {Default, "caf\xC3\xA9", "e", -1, 0},
        {Default, "cafe\xCC\x81", "e", -1, 0},  // é in two parts
        {Default, "cafe\xCC\x81", "\xC3\xA9", 3, 2},
        {"Latin1_General_CI_AI", "caf\xC3\xA9", "E", 3, 1},
        {"Latin1_General_CS_AS", "Hello World", "world", -1, 0},
        {"Latin1_General_CS_AS", "Hello World", "World", 6, 5},
        {"Latin1_General_BIN2", "aAa", "A", 1, 1},
    };
    for (const auto& row : rows) {
        qsizetype length = 0;
        EXPECT_EQ(collation(row.collation)
                      .find(QString::fromUtf8(row.text), QString::fromUtf8(row.what), 0, length),
                  row.at)
            << row.collation << ": " << row.what << " in " << row.text;
        if (row.at >= 0) {
            EXPECT_EQ(length, row.length) << row.what << " in " << row.text;
        }
    }
}

}  // namespace
}  // namespace zov::local
