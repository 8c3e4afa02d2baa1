#include "analysis/distinct_values.h"

#include "data/base/field_text.h"
#include "util/numbered_error.h"

#include <algorithm>
#include <limits>

namespace zov {
namespace {

constexpr size_t FirstSlots = 1024;

bool isKeptAsInteger(Storage storage) {
    switch (storage) {
        case Storage::Int8:
        case Storage::Int16:
        case Storage::Int32:
        case Storage::Int64:
        case Storage::Scaled64:
        case Storage::Ticks:
            return true;
        default:
            return false;
    }
}

// Texts are short and many: Qt's own hash costs more to start than most of them are long.
size_t hashOf(QStringView text) {
    quint64 hash = 0x9E3779B97F4A7C15ULL ^ quint64(text.size());
    const char16_t* at = text.utf16();
    qsizetype left = text.size();
    for (; left >= 4; at += 4, left -= 4) {
        quint64 four;
        std::memcpy(&four, at, sizeof four);
        hash = (hash ^ four) * 0xFF51AFD7ED558CCDULL;
        hash ^= hash >> 32;
    }
    quint64 rest = 0;
    std::memcpy(&rest, at, size_t(left) * 2);
    hash = (hash ^ rest) * 0xC4CEB9FE1A85EC53ULL;
    return size_t(hash ^ (hash >> 33));
}

}  // namespace

void DistinctValues::add(const ColumnCells& cells, qsizetype first, qsizetype count) {
    const bool asInteger = isKeptAsInteger(cells.storage());
    const bool asText = cells.storage() == Storage::Text;
    for (qsizetype row = first; row < first + count; ++row) {
        if (!cells.isNull(row)) {
            if (asInteger) {
                addInteger(cells, row);
                continue;
            }
            if (asText) {
                addText(cells.text(row));
                continue;
            }
        }
        buffer_.resize(0);
        appendFieldText(cells.cell(row), buffer_);
        addText(buffer_);
    }
}

void DistinctValues::addInteger(const ColumnCells& cells, qsizetype row) {
    const qint64 value = cells.integer(row);
    if (lastPlace_ < 0 || value != lastInteger_) {
        auto known = integers_.constFind(value);
        if (known == integers_.constEnd()) {
            buffer_.resize(0);
            appendFieldText(cells.cell(row), buffer_);
            known = integers_.insert(value, placeOf(buffer_));
        }
        lastInteger_ = value;
        lastPlace_ = *known;
    }
    ++values_[size_t(lastPlace_)].Count;
}

void DistinctValues::addText(QStringView text) {
    ++values_[size_t(placeOf(text))].Count;
}

qint32 DistinctValues::placeOf(QStringView text) {
    if (values_.size() * 2 >= slots_.size()) growSlots();
    const size_t mask = slots_.size() - 1;
    const size_t hash = hashOf(text);
    size_t slot = hash & mask;
    for (; slots_[slot] != 0; slot = (slot + 1) & mask) {
        const size_t place = slots_[slot] - 1;
        if (hashes_[place] == hash && values_[place].Str1 == text) return qint32(place);
    }
    const qint32 place = qint32(values_.size());
    values_.push_back({text.toString(), QString(), place, 0});
    hashes_.push_back(hash);
    slots_[slot] = quint32(place) + 1;
    return place;
}

void DistinctValues::growSlots() {
    slots_.assign(std::max(FirstSlots, slots_.size() * 2), 0);
    const size_t mask = slots_.size() - 1;
    for (size_t place = 0; place < hashes_.size(); ++place) {
        size_t slot = hashes_[place] & mask;
        while (slots_[slot] != 0) slot = (slot + 1) & mask;
        slots_[slot] = quint32(place) + 1;
    }
}

std::vector<TwoStr> DistinctValues::take() {
    std::vector<TwoStr> values = std::move(values_);
    *this = DistinctValues();
    return values;
}

void ShellSortArray_TwoStr_ByLongEl(std::vector<TwoStr>& Values, bool Descending) {
    const qint64 size = qint64(Values.size());
    if (size > std::numeric_limits<qint16>::max())
        throw NumberedError(run_error::Overflow, QStringLiteral("Overflow"));
    const auto putInOrder = [&](qint64 i, qint64 gap) {
        TwoStr& low = Values[size_t(i)];
        TwoStr& high = Values[size_t(i + gap)];
        if (Descending ? low.Count < high.Count : low.Count > high.Count) std::swap(low, high);
    };
    for (qint64 gap = size / 2; gap >= 1; gap /= 2) {
        for (qint64 i = 0; i < size - gap; ++i) putInOrder(i, gap);
        for (qint64 i = size - gap - 1; i >= 0; --i) putInOrder(i, gap);
    }
}

void SortByCountExactly(std::vector<TwoStr>& Values, bool Descending) {
    std::sort(Values.begin(), Values.end(), [Descending](const TwoStr& a, const TwoStr& b) {
        if (a.Count != b.Count) return Descending ? a.Count > b.Count : a.Count < b.Count;
        return a.Index < b.Index;
    });
}

qint32 GetElIndexInArr_TwoStr(const std::vector<TwoStr>& Values, qint32 Size, const QString& Text) {
    const qint32 count = std::min(Size, qint32(Values.size()));
    for (qint32 place = 0; place < count; ++place)
        if (Values[size_t(place)].Str1 == Text) return place;
    return -1;
}

}  // namespace zov
