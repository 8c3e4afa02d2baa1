#include "datacompare/row_test.h"

#include "data/base/field_text.h"

#include <algorithm>
#include <cstring>

namespace zov {
namespace {

constexpr qint32 NoCurrentRecord = 3021;
constexpr QStringView NullText = u"Null";

bool isInteger(const ColumnInfo& column) {
    switch (storageOf(column)) {
        case Storage::Int8:
            return column.type != SqlType::Bit;
        case Storage::Int16:
        case Storage::Int32:
        case Storage::Int64:
            return true;
        default:
            return false;
    }
}

QStringView trimmedOfBlanks(QStringView text) {
    while (!text.isEmpty() && text.front() == u' ') text = text.sliced(1);
    while (!text.isEmpty() && text.back() == u' ') text.chop(1);
    return text;
}

}  // namespace

RowTest::RowTest(const Recordset& first, const Recordset& second, bool caseSensitive)
    : caseSensitive_(caseSensitive) {
    for (int field = 0; field < first.fieldCount(); ++field)
        ways_.push_back(field < second.fieldCount()
                            ? wayFor(first.field(field).info(), second.field(field).info())
                            : Way::Nothing);
}

RowTest::Way RowTest::wayFor(const ColumnInfo& first, const ColumnInfo& second) {
    const Storage storage1 = storageOf(first), storage2 = storageOf(second);
    if (isInteger(first) && isInteger(second)) return Way::Integers;
    const bool exact1 = isInteger(first) || storage1 == Storage::Scaled64;
    const bool exact2 = isInteger(second) || storage2 == Storage::Scaled64;
    if (exact1 && exact2)
        return storage1 == storage2 && first.scale == second.scale ? Way::Integers : Way::Decimals;
    if (storage1 != storage2) return Way::ByText;
    switch (storage1) {
        case Storage::Int8:
            return first.type == second.type ? Way::Integers : Way::ByText;
        case Storage::Ticks: {
            // A date alone and a time alone are written in their own ways.
            const auto isPart = [](SqlType type) {
                return type == SqlType::Date || type == SqlType::Time;
            };
            const bool alike =
                first.type == second.type || (!isPart(first.type) && !isPart(second.type));
            return alike ? Way::Integers : Way::ByText;
        }
        case Storage::TicksOffset:
            return Way::TicksWithOffset;
        case Storage::Float32:
        case Storage::Float64:
            return Way::Reals;
        case Storage::Guid:
        case Storage::Bytes:
            return Way::BytesAlone;
        case Storage::Text:
            return isNumericType(first.type) || isNumericType(second.type) ? Way::ByText
                                                                           : Way::Texts;
        default:
            return Way::ByText;
    }
}

bool RowTest::sameText(QStringView a, QStringView b) const {
    a = trimmedOfBlanks(a);
    b = trimmedOfBlanks(b);
    if (a.size() != b.size()) return false;
    if (std::memcmp(a.utf16(), b.utf16(), size_t(a.size()) * sizeof(char16_t)) == 0) return true;
    // Letter by letter: "ß" stays one letter.
    return !caseSensitive_ && std::equal(a.begin(), a.end(), b.begin(), [](QChar x, QChar y) {
        return x == y || x.toUpper() == y.toUpper();
    });
}

bool RowTest::fieldsDiffer(Way way, const ColumnCells& first, qsizetype row1,
                           const ColumnCells* second, qsizetype row2) {
    if (way == Way::ByText || way == Way::Nothing) {
        text1_.resize(0);
        text2_.resize(0);
        appendFieldText(first.cell(row1), text1_);
        if (second) appendFieldText(second->cell(row2), text2_);
        return !sameText(text1_, text2_);
    }
    const bool null1 = first.isNull(row1), null2 = second->isNull(row2);
    if (null1 || null2) {
        if (null1 && null2) return false;
        if (way != Way::Texts) return true;
        return !sameText(null1 ? NullText : first.text(row1),
                         null2 ? NullText : second->text(row2));
    }
    switch (way) {
        case Way::Integers:
            return first.integer(row1) != second->integer(row2);
        case Way::Texts:
            return !sameText(first.text(row1), second->text(row2));
        case Way::Decimals:
            return compareCells(first.cell(row1), second->cell(row2)) != 0;
        case Way::Reals: {
            // Bit by bit, since 0 and -0 have different texts.
            const double a = first.real(row1), b = second->real(row2);
            return std::memcmp(&a, &b, sizeof a) != 0;
        }
        case Way::TicksWithOffset: {
            const CellView a = first.cell(row1), b = second->cell(row2);
            return a.integer != b.integer || a.offsetMinutes != b.offsetMinutes;
        }
        default:
            return first.bytes(row1) != second->bytes(row2);
    }
}

bool RowTest::differ(const RowView& first, const RowView& second) {
    if (first.row < 0 || second.row < 0)
        throw DbError(NoCurrentRecord,
                      QStringLiteral("Either BOF or EOF is True, or the current record has been "
                                     "deleted. Requested operation requires a current record."));
    const RowStore& rows1 = *first.rows;
    const RowStore& rows2 = *second.rows;
    for (size_t field = 0; field < ways_.size(); ++field) {
        const ColumnCells* cells2 =
            ways_[field] == Way::Nothing ? nullptr : &rows2.column(int(field));
        if (fieldsDiffer(ways_[field], rows1.column(int(field)), first.row, cells2, second.row))
            return true;
    }
    return false;
}

}  // namespace zov
