// Rows in memory: kept by column, joined, copied one by one, and packed.
#include "data/base/field_text.h"
#include "data/base/packed_rows.h"

#include <gtest/gtest.h>

namespace zov {
namespace {

std::vector<ColumnInfo> everyStorage() {
    const auto column = [](SqlType type, int precision = 0, int scale = 0) {
        return ColumnInfo{sqlTypeName(type), type, -1, precision, scale, true};
    };
    return {column(SqlType::NVarChar),
            column(SqlType::TinyInt),
            column(SqlType::SmallInt),
            column(SqlType::VarBinary),
            column(SqlType::Int),
            column(SqlType::BigInt),
            column(SqlType::Real),
            column(SqlType::Float),
            column(SqlType::Decimal, 9, 2),
            column(SqlType::DateTime),
            column(SqlType::VarChar),
            column(SqlType::DateTimeOffset),
            column(SqlType::UniqueIdentifier)};
}

/// A value for each column that tells rows and columns apart; each row has other nulls.
void addRow(RowStore& rows, int number, const QString& text) {
    for (int i = 0; i < rows.columnCount(); ++i) {
        ColumnCells& cells = rows.column(i);
        const int value = number * 13 + i;
        const QByteArray bytes = QByteArray::number(value).rightJustified(16, '0');
        if (value % 5 == 0) {
            cells.appendNull();
            continue;
        }
        switch (cells.storage()) {
            case Storage::Text:
                cells.appendText(QString(text + QString::number(value)));
                break;
            case Storage::Bytes:
                cells.appendBytes(bytes.constData(), value % 17);
                break;
            case Storage::Guid:
                cells.appendBytes(bytes.constData(), 16);
                break;
            case Storage::Float32:
            case Storage::Float64:
                cells.appendReal(value + 0.5);
                break;
            case Storage::TicksOffset:
                cells.appendTicksOffset(value * TicksPerSecond, qint16(value % 60));
                break;
            case Storage::Ticks:
                cells.appendInteger(value * TicksPerSecond);
                break;
            case Storage::Int8:
                cells.appendInteger(value % 256);
                break;
            default:
                cells.appendInteger(value);
        }
    }
}

std::vector<QString> textsOf(const RowStore& rows, qsizetype row) {
    std::vector<QString> texts;
    for (int i = 0; i < rows.columnCount(); ++i)
        texts.push_back(rows.cell(row, i).isNull ? QStringLiteral("null")
                                                 : cellText(rows.cell(row, i)));
    return texts;
}

/// Three windows: letters of eight bits, wider ones, and plain ones again.
std::vector<RowStore> windows() {
    std::vector<RowStore> windows;
    int number = 0;
    for (const char* text : {"caf\u00e9 ", "\u0141\u00f3d\u017a ", ""}) {
        RowStore& rows = windows.emplace_back(everyStorage());
        for (int i = 0; i < 70; ++i) addRow(rows, number++, QString::fromUtf8(text));
    }
    return windows;
}

TEST(RowStoreTest, RowsComeBackFromWhereverTheyWereCopied) {
    RowStore joined(everyStorage()), copied(everyStorage()), unpacked(everyStorage());
    PackedRows packed(everyStorage());
    std::vector<std::vector<QString>> expected;
    packed.append(RowStore(everyStorage()));  // nothing, and no memory yet
    for (const RowStore& window : windows()) {
        joined.append(window);
        packed.append(window);
        for (qsizetype row = 0; row < window.rowCount(); ++row) {
            copied.appendRow(window, row);
            expected.push_back(textsOf(window, row));
        }
    }
    ASSERT_EQ(packed.count(), 210);
    ASSERT_EQ(joined.rowCount(), 210);
    for (qsizetype i = 0; i < 210; ++i) {
        const qsizetype row = i * 97 % 210;
        unpacked.clear();
        packed.appendTo(row, unpacked);
        EXPECT_EQ(textsOf(unpacked, 0), expected[size_t(row)]);
        EXPECT_EQ(textsOf(joined, row), expected[size_t(row)]);
        EXPECT_EQ(textsOf(copied, row), expected[size_t(row)]);
    }
}

TEST(RowStoreTest, TextsOfAllLengthsSurviveWideningAndNarrowing) {
    const ColumnInfo column{QStringLiteral("c"), SqlType::NVarChar, -1, 0, 0, true};
    for (const QChar last : {QChar(u'z'), QChar(0xFF), QChar(0x100)}) {
        RowStore rows({column}), unpacked({column});
        PackedRows packed({column});
        std::vector<QString> texts;
        for (int length = 0; length < 40; ++length) {
            QString text;
            for (int i = 0; i < length; ++i) text += QChar(u'a' + i % 26);
            if (length) text.back() = last;
            texts.push_back(text);
            const QByteArray utf8 = text.toUtf8();
            rows.column(0).appendUtf8(utf8.constData(), utf8.size());
        }
        packed.append(rows);
        for (size_t row = 0; row < texts.size(); ++row) {
            packed.appendTo(qsizetype(row), unpacked);
            EXPECT_EQ(rows.column(0).text(qsizetype(row)), texts[row]);
            EXPECT_EQ(unpacked.column(0).text(qsizetype(row)), texts[row]);
        }
    }
}

}  // namespace
}  // namespace zov
