// Every encoding that an editor may have chosen is read, named and written back.
#include "util/text_decode.h"

#include <gtest/gtest.h>

namespace zov {
namespace {

TEST(DecodeText, TellsTheEncodingAndReadsIt) {
    struct Row {
        const char* name;
        QByteArray bytes;
        QString text;
        TextEncoding encoding;
        bool damaged;
    };
    const Row rows[] = {
        {"empty", {}, {}, TextEncoding::Utf8, false},
        {"ascii", "SELECT 1", QStringLiteral("SELECT 1"), TextEncoding::Utf8, false},
        {"utf-8", "M\xC3\xBCller \xE2\x82\xAC", QStringLiteral("Müller €"), TextEncoding::Utf8,
         false},
        {"utf-8 with mark", "\xEF\xBB\xBFM\xC3\xBC", QStringLiteral("Mü"),
         TextEncoding::Utf8WithMark, false},
        {"utf-16 le", QByteArray("\xFF\xFEM\0\xFC\0", 6), QStringLiteral("Mü"),
         TextEncoding::Utf16Le, false},
        {"utf-16 be", QByteArray("\xFE\xFF\0M\0\xFC", 6), QStringLiteral("Mü"),
         TextEncoding::Utf16Be, false},
        {"utf-16 le without mark", QByteArray("G\0O\0\n\0", 6), QStringLiteral("GO\n"),
         TextEncoding::Utf16Le, false},
        {"latin-1", "M\xFCller", QStringLiteral("Müller"), TextEncoding::Windows1252, false},
        {"windows-1252 quotes", "\x93x\x94 \x80", QStringLiteral("“x” €"),
         TextEncoding::Windows1252, false},
        {"mark, but not utf-8", "\xEF\xBB\xBFM\xFC", QStringLiteral("Mü"),
         TextEncoding::Windows1252, false},
        {"half a character", QByteArray("\xFF\xFEM\0\xFC", 5), QStringLiteral("M"),
         TextEncoding::Utf16Le, true},
        {"mark alone", "\xFF\xFE", {}, TextEncoding::Utf16Le, false},
    };
    for (const Row& row : rows) {
        const DecodedText decoded = decodeText(row.bytes);
        EXPECT_EQ(decoded.text, row.text) << row.name;
        EXPECT_EQ(decoded.encoding, row.encoding) << row.name;
        EXPECT_EQ(decoded.damaged, row.damaged) << row.name;
    }
}

TEST(DecodeText, HalfAPairIsDamage) {
    EXPECT_TRUE(decodeText(QByteArray("\xFF\xFE\x3D\xD8x\0", 6)).damaged);
}

TEST(EncodeText, RoundTripsInEveryEncoding) {
    const QString text = QStringLiteral("Müller \"€\"\r\n");
    for (const TextEncoding encoding :
         {TextEncoding::Utf8, TextEncoding::Utf8WithMark, TextEncoding::Utf16Le,
          TextEncoding::Utf16Be, TextEncoding::Windows1252}) {
        const DecodedText back = decodeText(encodeText(text, encoding));
        EXPECT_EQ(back.text, text) << qPrintable(encodingName(encoding));
        EXPECT_EQ(back.encoding, encoding) << qPrintable(encodingName(encoding));
    }
}

TEST(EncodeText, ALetterThatWindows1252LacksIsNotLost) {
    const QString text = QStringLiteral("Žižkov Москва");
    const DecodedText back = decodeText(encodeText(text, TextEncoding::Windows1252));
    EXPECT_EQ(back.text, text);
    EXPECT_EQ(back.encoding, TextEncoding::Utf8WithMark);
}

}  // namespace
}  // namespace zov
