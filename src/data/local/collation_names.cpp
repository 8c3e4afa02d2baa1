// The names of collations: designator, version and suffixes.
#include "data/local/collation.h"

#include <QStringList>

namespace zov::local {
namespace {

struct Designator {
    const char* name;
    const char* locale;
    int lcid;
    int codePage;  ///< 0: Unicode types only
};

// Without the version behind the name. The order is that of fn_helpcollations.
const Designator windowsDesignators[] = {
    {"Albanian", "sq", 1052, 1250},
    {"Arabic", "ar", 1025, 1256},
    {"Assamese", "as", 1101, 0},
    {"Azeri_Cyrillic", "az_Cyrl", 2092, 1251},
    {"Azeri_Latin", "az_Latn", 1068, 1254},
    {"Bashkir", "ba", 1133, 1251},
    {"Bengali", "bn", 1093, 0},
    {"Bosnian_Cyrillic", "bs_Cyrl", 8218, 1251},
    {"Bosnian_Latin", "bs_Latn", 5146, 1250},
    {"Breton", "br", 1150, 1252},
    {"Chinese_Hong_Kong_Stroke", "zh_Hant@collation=stroke", 3076, 950},
    {"Chinese_PRC", "zh@collation=pinyin", 2052, 936},
    {"Chinese_PRC_Stroke", "zh@collation=stroke", 133124, 936},
    {"Chinese_Simplified_Pinyin", "zh@collation=pinyin", 2052, 936},
    {"Chinese_Simplified_Stroke_Order", "zh@collation=stroke", 133124, 936},
    {"Chinese_Taiwan_Bopomofo", "zh_Hant@collation=zhuyin", 197636, 950},
    {"Chinese_Taiwan_Stroke", "zh_Hant@collation=stroke", 1028, 950},
    {"Chinese_Traditional_Bopomofo", "zh_Hant@collation=zhuyin", 197636, 950},
    {"Chinese_Traditional_Pinyin", "zh@collation=pinyin", 133124, 950},
    {"Chinese_Traditional_Stroke_Count", "zh_Hant@collation=stroke", 1028, 950},
    {"Chinese_Traditional_Stroke_Order", "zh_Hant@collation=stroke", 1028, 950},
    {"Corsican", "co", 1155, 1252},
    {"Croatian", "hr", 1050, 1250},
    {"Cyrillic_General", "ru", 1049, 1251},
    {"Czech", "cs", 1029, 1250},
    {"Danish_Greenlandic", "da", 1030, 1252},
    {"Danish_Norwegian", "da", 1030, 1252},
    {"Dari", "fa_AF", 1164, 1256},
    {"Divehi", "dv", 1125, 0},
    {"Estonian", "et", 1061, 1257},
    {"Finnish_Swedish", "sv", 1035, 1252},
    {"French", "fr", 1036, 1252},
    {"Frisian", "fy", 1122, 1252},
    {"Georgian_Modern_Sort", "ka", 66615, 1252},
    {"German_PhoneBook", "de@collation=phonebook", 66567, 1252},
    {"Greek", "el", 1032, 1253},
    {"Hebrew", "he", 1037, 1255},
    {"Hindi", "hi", 1081, 0},
    {"Hungarian", "hu", 1038, 1250},
    {"Hungarian_Technical", "hu", 66574, 1250},
    {"Icelandic", "is", 1039, 1252},
    {"Indic_General", "hi", 1081, 0},
    {"Japanese", "ja", 1041, 932},
    {"Japanese_Bushu_Kakusu", "ja@collation=unihan", 263185, 932},
    {"Japanese_Unicode", "ja", 66577, 932},
    {"Japanese_XJIS", "ja", 1041, 932},
    {"Kazakh", "kk", 1087, 1251},
    {"Khmer", "km", 1107, 0},
    {"Korean", "ko", 1042, 949},
    {"Korean_Wansung", "ko", 1042, 949},
    {"Korean_Wansung_Unicode", "ko", 66578, 949},
    {"Lao", "lo", 1108, 0},
    {"Latin1_General", "", 1033, 1252},
    {"Latvian", "lv", 1062, 1257},
    {"Lithuanian", "lt", 1063, 1257},
    {"Lithuanian_Classic", "lt", 2087, 1257},
    {"Macedonian", "mk", 1071, 1251},
    {"Macedonian_FYROM", "mk", 1071, 1251},
    {"Maltese", "mt", 1082, 0},
    {"Maori", "mi", 1153, 0},
    {"Mapudungan", "arn", 1146, 1252},
    {"Modern_Spanish", "es", 3082, 1252},
    {"Mohawk", "moh", 1148, 1252},
    {"Nepali", "ne", 1121, 0},
    {"Norwegian", "nb", 1044, 1252},
    {"Pashto", "ps", 1123, 0},
    {"Persian", "fa", 1065, 1256},
    {"Polish", "pl", 1045, 1250},
    {"Romanian", "ro", 1048, 1250},
    {"Romansh", "rm", 1047, 1252},
    {"Sami_Norway", "se", 1083, 1252},
    {"Sami_Sweden_Finland", "se", 2107, 1252},
    {"Serbian_Cyrillic", "sr_Cyrl", 3098, 1251},
    {"Serbian_Latin", "sr_Latn", 2074, 1250},
    {"Slovak", "sk", 1051, 1250},
    {"Slovenian", "sl", 1060, 1250},
    {"Syriac", "syr", 1114, 0},
    {"Tamazight", "tzm", 2143, 1252},
    {"Tatar", "tt", 1092, 1251},
    {"Thai", "th", 1054, 874},
    {"Tibetan", "bo", 1105, 0},
    {"Traditional_Spanish", "es@collation=traditional", 1034, 1252},
    {"Turkish", "tr", 1055, 1254},
    {"Turkmen", "tk", 1090, 1250},
    {"Uighur", "ug", 1152, 1256},
    {"Ukrainian", "uk", 1058, 1251},
    {"Upper_Sorbian", "hsb", 1070, 1252},
    {"Urdu", "ur", 1056, 1256},
    {"Uzbek_Latin", "uz", 1091, 1254},
    {"Vietnamese", "vi", 1066, 1258},
    {"Welsh", "cy", 1106, 1252},
    {"Yakut", "sah", 1157, 1251},
};

// The SQL_ names are listed with their code pages and take the order of their Windows relative.
const Designator sqlDesignators[] = {
    {"SQL_1xCompat_CP850", "", 1033, 850},
    {"SQL_AltDiction_CP850", "", 1033, 850},
    {"SQL_AltDiction_Pref_CP850", "", 1033, 850},
    {"SQL_AltDiction_CP1253", "el", 1032, 1253},
    {"SQL_AltDiction2_CP1253", "el", 1032, 1253},
    {"SQL_Croatian_CP1250", "hr", 1050, 1250},
    {"SQL_Czech_CP1250", "cs", 1029, 1250},
    {"SQL_Danish_Pref_CP1", "da", 1030, 1252},
    {"SQL_EBCDIC037_CP1", "", 1033, 1252},
    {"SQL_EBCDIC1141_CP1", "", 1033, 1252},
    {"SQL_EBCDIC273_CP1", "", 1033, 1252},
    {"SQL_EBCDIC277_CP1", "da", 1030, 1252},
    {"SQL_EBCDIC277_2_CP1", "da", 1030, 1252},
    {"SQL_EBCDIC278_CP1", "sv", 1053, 1252},
    {"SQL_EBCDIC280_CP1", "", 1033, 1252},
    {"SQL_EBCDIC284_CP1", "es", 3082, 1252},
    {"SQL_EBCDIC285_CP1", "", 1033, 1252},
    {"SQL_EBCDIC297_CP1", "fr", 1036, 1252},
    {"SQL_Estonian_CP1257", "et", 1061, 1257},
    {"SQL_Hungarian_CP1250", "hu", 1038, 1250},
    {"SQL_Icelandic_Pref_CP1", "is", 1039, 1252},
    {"SQL_Latin1_General_CP1", "", 1033, 1252},
    {"SQL_Latin1_General_Pref_CP1", "", 1033, 1252},
    {"SQL_Latin1_General_CP437", "", 1033, 437},
    {"SQL_Latin1_General_Pref_CP437", "", 1033, 437},
    {"SQL_Latin1_General_CP850", "", 1033, 850},
    {"SQL_Latin1_General_Pref_CP850", "", 1033, 850},
    {"SQL_Latin1_General_CP1250", "pl", 1033, 1250},
    {"SQL_Latin1_General_CP1251", "ru", 1049, 1251},
    {"SQL_Latin1_General_CP1253", "el", 1032, 1253},
    {"SQL_Latin1_General_CP1254", "tr", 1055, 1254},
    {"SQL_Latin1_General_CP1255", "he", 1037, 1255},
    {"SQL_Latin1_General_CP1256", "ar", 1025, 1256},
    {"SQL_Latin1_General_CP1257", "", 1033, 1257},
    {"SQL_Latvian_CP1257", "lv", 1062, 1257},
    {"SQL_Lithuanian_CP1257", "lt", 1063, 1257},
    {"SQL_MixDiction_CP1253", "el", 1032, 1253},
    {"SQL_Polish_CP1250", "pl", 1045, 1250},
    {"SQL_Romanian_CP1250", "ro", 1048, 1250},
    {"SQL_Scandinavian_CP850", "da", 1030, 850},
    {"SQL_Scandinavian_Pref_CP850", "da", 1030, 850},
    {"SQL_Slovak_CP1250", "sk", 1051, 1250},
    {"SQL_Slovenian_CP1250", "sl", 1060, 1250},
    {"SQL_SwedishPhone_Pref_CP1", "sv", 1053, 1252},
    {"SQL_SwedishStd_Pref_CP1", "sv", 1053, 1252},
    {"SQL_Ukrainian_CP1251", "uk", 1058, 1251},
};

const Designator* findDesignator(const QString& name, bool& isSql) {
    const auto named = [&](const Designator& entry) {
        return name.compare(QLatin1String(entry.name), Qt::CaseInsensitive) == 0;
    };
    isSql = true;
    for (const Designator& entry : sqlDesignators)
        if (named(entry)) return &entry;
    isSql = false;
    for (const Designator& entry : windowsDesignators)
        if (named(entry)) return &entry;
    return nullptr;
}

/// Takes the suffixes off the end of `parts` and into `rules`; false where they contradict each
/// other or leave out what every name says.
bool takeSuffixes(QStringList& parts, CollationRules& rules) {
    bool hasCase = false, hasAccent = false, other = false;
    while (parts.size() > 1) {
        const QString last = parts.last().toUpper();
        if (last == u"BIN" || last == u"BIN2") {
            rules.binary = true;
            rules.binary2 = last == u"BIN2";
        } else if (last == u"CI" || last == u"CS") {
            hasCase = true;
            rules.caseSensitive = last == u"CS";
        } else if (last == u"AI" || last == u"AS") {
            hasAccent = true;
            rules.accentSensitive = last == u"AS";
        } else if (last == u"KS") {
            rules.kanaSensitive = other = true;
        } else if (last == u"WS") {
            rules.widthSensitive = other = true;
        } else if (last == u"SC") {
            rules.supplementary = other = true;
        } else if (last == u"VSS") {
            other = true;
        } else if (last == u"UTF8") {
            rules.utf8 = true;
        } else {
            break;
        }
        parts.removeLast();
    }
    return rules.binary ? !hasCase && !hasAccent && !other : hasCase && hasAccent;
}

QString suffixesOf(const CollationRules& rules) {
    QString text;
    if (rules.binary) {
        text = rules.binary2 ? QStringLiteral("_BIN2") : QStringLiteral("_BIN");
    } else {
        text = rules.caseSensitive ? QStringLiteral("_CS") : QStringLiteral("_CI");
        text += rules.accentSensitive ? QStringLiteral("_AS") : QStringLiteral("_AI");
        if (rules.kanaSensitive) text += QStringLiteral("_KS");
        if (rules.widthSensitive) text += QStringLiteral("_WS");
        if (rules.supplementary) text += QStringLiteral("_SC");
    }
    if (rules.utf8) text += QStringLiteral("_UTF8");
    return text;
}

void takeDesignator(CollationRules& rules, const Designator& entry) {
    rules.locale = entry.locale;
    rules.lcid = entry.lcid;
    rules.codePage = rules.utf8 ? 65001 : entry.codePage;
}

}  // namespace

CollationRules readCollationName(const QString& name) {
    CollationRules rules;
    rules.name = name;
    QStringList parts = name.split(u'_');
    const bool suffixes = takeSuffixes(parts, rules);
    static const struct {
        const char* text;
        int number;
    } versions[] = {{"90", 1}, {"100", 2}, {"140", 3}, {"160", 4}};
    QString version;
    for (const auto& entry : versions) {
        if (parts.size() < 2 || parts.last() != QLatin1String(entry.text)) continue;
        rules.version = entry.number;
        version = u'_' + parts.takeLast();
        break;
    }
    bool isSql = false;
    const Designator* designator = findDesignator(parts.join(u'_'), isSql);
    if (!designator || (isSql && rules.version)) return rules;
    takeDesignator(rules, *designator);
    rules.known = suffixes;
    // "_VSS" is the one suffix that says nothing here; the name keeps it as it was given.
    if (rules.known && !name.contains(QLatin1String("_VSS"), Qt::CaseInsensitive))
        rules.name = QLatin1String(designator->name) + version + suffixesOf(rules);
    return rules;
}

QString substituteName(const CollationRules& rules) {
    CollationRules plain = rules;
    plain.utf8 = plain.supplementary = false;
    const QString stem = QStringLiteral("Latin1_General") + suffixesOf(plain);
    return stem == u"Latin1_General_CI_AS" ? QLatin1String(DefaultCollation) : stem;
}

std::vector<CollationRules> listCollations() {
    std::vector<CollationRules> list;
    const auto add = [&](const QString& name) { list.push_back(readCollationName(name)); };
    for (const Designator& entry : windowsDesignators) {
        for (const char* version : {"", "_90", "_100"}) {
            const QString stem = QLatin1String(entry.name) + QLatin1String(version);
            for (const char* suffix : {"_BIN", "_BIN2"}) add(stem + QLatin1String(suffix));
            for (const char* letters : {"_CI_AI", "_CI_AS", "_CS_AI", "_CS_AS"})
                for (const char* forms : {"", "_WS", "_KS", "_KS_WS"})
                    add(stem + QLatin1String(letters) + QLatin1String(forms));
        }
    }
    for (const Designator& entry : sqlDesignators)
        for (const char* suffix : {"_BIN", "_CI_AI", "_CI_AS", "_CS_AS"})
            add(QLatin1String(entry.name) + QLatin1String(suffix));
    return list;
}

int comparisonStyle(const CollationRules& rules) {
    if (rules.binary) return 0;
    return (rules.caseSensitive ? 0 : 1) + (rules.accentSensitive ? 0 : 2) +
           (rules.kanaSensitive ? 0 : 65536) + (rules.widthSensitive ? 0 : 131072);
}

}  // namespace zov::local
