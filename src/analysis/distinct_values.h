// The distinct values of one column and how often each occurs, and the order in
// which the analyzer shows them. Values are told apart by their texts, to the
// letter; memory grows with the distinct values, not with the rows.
#pragma once

#include "data/base/row_store.h"

#include <QHash>
#include <QString>

#include <vector>

namespace zov {

struct TwoStr {
    QString Str1;      ///< the value's text
    QString Str2;      ///< unused
    qint32 Index = 0;  ///< the place at which it was first seen, from 0
    qint32 Count = 0;
};

/// Counts the cells of one column, in their order.
class DistinctValues {
 public:
    /// Adds the rows from `first` on, `count` of them.
    void add(const ColumnCells& cells, qsizetype first, qsizetype count);
    qsizetype size() const { return qsizetype(values_.size()); }
    /// The values in the order of their first appearance. The counter is empty then.
    std::vector<TwoStr> take();

 private:
    void addText(QStringView text);
    void addInteger(const ColumnCells& cells, qsizetype row);
    qint32 placeOf(QStringView text);
    void growSlots();

    std::vector<TwoStr> values_;
    // Open addressing over values_: its index + 1, 0 for a free slot.
    std::vector<quint32> slots_;
    std::vector<size_t> hashes_;
    // Where whole numbers and times have been found: their texts are made once a value.
    QHash<qint64, qint32> integers_;
    qint64 lastInteger_ = 0;
    qint32 lastPlace_ = -1;
    QString buffer_;
};

/// Sorts by `Count` as the analyzer has always done: one forward and one backward pass a gap, so
/// that the order is close to sorted and not always so. Throws Overflow (6) for more than 32,767
/// values: the places are counted in 16 bits.
void ShellSortArray_TwoStr_ByLongEl(std::vector<TwoStr>& Values, bool Descending);

/// Sorts by `Count` whatever the number of values; equal counts in the order of first appearance.
void SortByCountExactly(std::vector<TwoStr>& Values, bool Descending);

/// The place of the text among the first `Size` values, -1 when it isn't there.
qint32 GetElIndexInArr_TwoStr(const std::vector<TwoStr>& Values, qint32 Size, const QString& Text);

}  // namespace zov
