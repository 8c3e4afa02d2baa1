#include "datacompare/result_grid.h"

#include <algorithm>
#include <cstring>

namespace zov {
namespace {

constexpr size_t ChunkWords = 64 * 1024;
// Below this, garbage from cells that were written over is not worth a clean-up.
constexpr size_t WasteWorthCompacting = 1024 * 1024;

}  // namespace

ResultGrid::ResultGrid() : rows_(1), widths_{NumberColumnWidth} {
    colorsEntry({});
}

void ResultGrid::setRows(int count) {
    count = std::max(count, 1);
    for (int row = count; row < Rows(); ++row) forget(rows_[size_t(row)]);
    rows_.resize(size_t(count));
    compactWhenWasteful();
    noteChange();
}

void ResultGrid::setCols(int count) {
    columns_ = std::max(count, 1);
    order_.clear();
    widths_.resize(size_t(columns_), DataColumnWidth);
    noteChange();
}

void ResultGrid::RemoveItem(int row) {
    if (row < 1 || row >= Rows()) return;
    forget(rows_[size_t(row)]);
    rows_.erase(rows_.begin() + row);
    noteChange();
}

QStringView ResultGrid::storedText(const Row& row, int storedColumn) const {
    if (!row.texts) return {};
    const quint32 count = row.texts[0];
    if (quint32(storedColumn) >= count) return {};
    const quint32* ends = row.texts + 1;
    const auto* chars = reinterpret_cast<const char16_t*>(ends + count);
    const quint32 begin = storedColumn ? ends[storedColumn - 1] : 0;
    return QStringView(chars + begin, qsizetype(ends[storedColumn] - begin));
}

QStringView ResultGrid::textView(int row, int column) const {
    if (!hasCell(row, column)) return {};
    return storedText(rows_[size_t(row)], stored(column));
}

void ResultGrid::setTextMatrix(int row, int column, QStringView text) {
    if (!hasCell(row, column)) return;
    Row& target = rows_[size_t(row)];
    const QString copy = text.toString();  // it may be a text of this very grid
    const int place = stored(column);
    const int count = std::max(place + 1, int(target.texts ? target.texts[0] : 0));
    scratch_.clear();
    for (int i = 0; i < count; ++i)
        scratch_.push_back(i == place ? QStringView(copy) : storedText(target, i));
    writeTexts(target, scratch_);
    noteChange();
}

void ResultGrid::setRowTexts(int row, const RowTexts& texts) {
    if (row < 0 || row >= Rows()) return;
    Row& target = rows_[size_t(row)];
    const int present = int(target.texts ? target.texts[0] : 0);
    const int written = std::min(texts.count(), columns_);
    scratch_.clear();
    for (int i = 0; i < std::max(present, written); ++i) scratch_.push_back(storedText(target, i));
    for (int i = 0; i < written; ++i) {
        const int place = stored(i);
        if (place >= int(scratch_.size())) scratch_.resize(size_t(place) + 1);
        scratch_[size_t(place)] = texts.cell(i);
    }
    writeTexts(target, scratch_);
    noteChange();
}

size_t ResultGrid::wordsOf(const quint32* texts) {
    const quint32 count = texts[0];
    return 1 + count + (size_t(count ? texts[count] : 0) + 1) / 2;
}

quint32* ResultGrid::allocate(size_t words) {
    if (chunks_.empty() || chunks_.back().size - chunks_.back().used < words) {
        const size_t size = std::max(words, ChunkWords);
        chunks_.push_back({std::make_unique_for_overwrite<quint32[]>(size), size, 0});
    }
    Chunk& chunk = chunks_.back();
    quint32* at = chunk.words.get() + chunk.used;
    chunk.used += words;
    usedWords_ += words;
    liveWords_ += words;
    return at;
}

void ResultGrid::writeTexts(Row& row, const std::vector<QStringView>& texts) {
    size_t characters = 0;
    for (const QStringView text : texts) characters += size_t(text.size());
    quint32* at = allocate(1 + texts.size() + (characters + 1) / 2);
    at[0] = quint32(texts.size());
    quint32* ends = at + 1;
    auto* chars = reinterpret_cast<char16_t*>(ends + texts.size());
    quint32 end = 0;
    for (size_t i = 0; i < texts.size(); ++i) {
        if (!texts[i].isEmpty())
            std::memcpy(chars + end, texts[i].utf16(), size_t(texts[i].size()) * sizeof(char16_t));
        end += quint32(texts[i].size());
        ends[i] = end;
    }
    forget(row);
    row.texts = at;
    compactWhenWasteful();
}

void ResultGrid::forget(Row& row) {
    if (row.texts) liveWords_ -= wordsOf(row.texts);
    row.texts = nullptr;
}

void ResultGrid::compactWhenWasteful() {
    if (usedWords_ - liveWords_ < WasteWorthCompacting || usedWords_ < liveWords_ * 2) return;
    const std::vector<Chunk> old = std::move(chunks_);
    chunks_.clear();
    usedWords_ = liveWords_ = 0;
    for (Row& row : rows_) {
        if (!row.texts) continue;
        const size_t words = wordsOf(row.texts);
        quint32* at = allocate(words);
        std::memcpy(at, row.texts, words * sizeof(quint32));
        row.texts = at;
    }
}

size_t ResultGrid::RowColorsHash::operator()(const RowColors& colors) const {
    size_t hash = 14695981039346656037ULL;
    for (const CellColors& cell : colors)
        hash = (hash ^ (size_t(cell.back) << 24 ^ cell.fore)) * 1099511628211ULL;
    return hash;
}

quint32 ResultGrid::colorsEntry(RowColors colors) {
    while (!colors.empty() && colors.back() == CellColors{}) colors.pop_back();
    const auto [at, fresh] = paletteIndex_.try_emplace(std::move(colors), quint32(palette_.size()));
    if (fresh) palette_.push_back(&at->first);
    return at->second;
}

// Neighbouring rows mostly have the same colours, and so get the same new ones.
template <typename Change>
void ResultGrid::changeColors(int row1, int row2, Change change) {
    row1 = std::max(row1, 0);
    row2 = std::min(row2, Rows() - 1);
    qint64 lastOld = -1;
    quint32 lastNew = 0;
    for (int row = row1; row <= row2; ++row) {
        quint32& entry = rows_[size_t(row)].colors;
        if (qint64(entry) != lastOld) {
            lastOld = entry;
            RowColors colors = *palette_[entry];
            change(colors);
            lastNew = colorsEntry(std::move(colors));
        }
        entry = lastNew;
    }
    if (row1 <= row2) noteChange();
}

void ResultGrid::setBackColor(int row1, int column1, int row2, int column2, quint32 color) {
    changeColors(row1, row2, [&](RowColors& colors) {
        for (int column = std::max(column1, 0); column <= std::min(column2, columns_ - 1);
             ++column) {
            const size_t place = size_t(stored(column));
            if (place >= colors.size()) colors.resize(place + 1);
            colors[place].back = color;
        }
    });
}

void ResultGrid::setForeColor(int row1, int column1, int row2, int column2, quint32 color) {
    changeColors(row1, row2, [&](RowColors& colors) {
        for (int column = std::max(column1, 0); column <= std::min(column2, columns_ - 1);
             ++column) {
            const size_t place = size_t(stored(column));
            if (place >= colors.size()) colors.resize(place + 1);
            colors[place].fore = color;
        }
    });
}

void ResultGrid::setForeColors(int row, int firstColumn, const std::vector<quint32>& fore) {
    changeColors(row, row, [&](RowColors& colors) {
        for (size_t i = 0; i < fore.size(); ++i) {
            const int column = firstColumn + int(i);
            if (column < 0 || column >= columns_) continue;
            const size_t place = size_t(stored(column));
            if (place >= colors.size()) colors.resize(place + 1);
            colors[place].fore = fore[i];
        }
    });
}

quint32 ResultGrid::backColor(int row, int column) const {
    if (!hasCell(row, column)) return DefaultBackColor;
    const RowColors& colors = *palette_[rows_[size_t(row)].colors];
    const size_t place = size_t(stored(column));
    return place < colors.size() ? colors[place].back : DefaultBackColor;
}

quint32 ResultGrid::foreColor(int row, int column) const {
    if (!hasCell(row, column)) return DefaultForeColor;
    const RowColors& colors = *palette_[rows_[size_t(row)].colors];
    const size_t place = size_t(stored(column));
    return place < colors.size() ? colors[place].fore : DefaultForeColor;
}

int ResultGrid::colWidth(int column) const {
    return column >= 0 && column < columns_ ? widths_[size_t(stored(column))] : 0;
}

void ResultGrid::setColWidth(int column, int twips) {
    if (column < 0 || column >= columns_) return;
    widths_[size_t(stored(column))] = twips;
    noteChange();
}

void ResultGrid::setNumberColumn(int column, bool isNumber) {
    if (column < 0 || column >= columns_) return;
    numbers_.resize(size_t(columns_));
    numbers_[size_t(stored(column))] = isNumber;
}

bool ResultGrid::isNumber(int row, int column) const {
    if (row < 1 || column < 0 || column >= columns_) return false;
    const size_t at = size_t(stored(column));
    return column == 0 || (at < numbers_.size() && numbers_[at]);
}

void ResultGrid::setRedraw(bool on) {
    const bool wasOff = !redraw_;
    redraw_ = on;
    if (on && wasOff) noteChange();
}

void ResultGrid::setColumnOrder(const std::vector<int>& order) {
    if (int(order.size()) != columns_ || order[0] != 0) return;
    std::vector<bool> seen(order.size());
    std::vector<int> composed;
    for (const int column : order) {
        if (column < 0 || column >= columns_ || seen[size_t(column)]) return;
        seen[size_t(column)] = true;
        composed.push_back(stored(column));
    }
    order_ = std::move(composed);
    noteChange();
}

qsizetype ResultGrid::reservedBytes() const {
    size_t bytes = rows_.capacity() * sizeof(Row);
    for (const Chunk& chunk : chunks_) bytes += chunk.size * sizeof(quint32);
    for (const RowColors* colors : palette_) bytes += colors->capacity() * sizeof(CellColors) + 64;
    return qsizetype(bytes);
}

}  // namespace zov
