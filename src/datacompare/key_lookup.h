// Finding the Target record that has a Source record's key. The search is
// described by a condition on texts, as a recordset's Find and Filter take it, and
// answered by an index wherever that gives the same record.
#pragma once

#include "datacompare/data_comparison.h"
#include "datacompare/keyed_rows.h"

#include <optional>
#include <vector>

namespace zov {

class KeyLookup {
 public:
    /// `Keys`: 0 Source, 1 Target.
    KeyLookup(const Recordset& Rs1, KeyedRows& Rows2, const CompKeys (&Keys)[2]);

    /// Looks for a record of Source, and moves Target, which stands on its first row, to the first
    /// record of its key, to EOF when there is none. 1 found, 0 not found, -1 the lookup failed. A
    /// criterion that can't be read throws with one key, and counts as found where Target stands
    /// with several.
    int FindRecordByKey(const RowView& record);

    /// Whether searches go by the keys' values alone: the two calls below need it.
    bool goesByValue() const { return byValueOnly_; }
    /// Records with equal keys have equal hashes; none for a key that isn't sought by its value.
    std::optional<quint32> keyHash(const RowView& record);
    /// FindRecordByKey for the record that keyHash() was asked for last, among the rows at hand;
    /// NotYet while rows that are still to be read decide.
    static constexpr int NotYet = -2;
    int FindNear(quint32 keyHash);
    /// Has what the searches for the next Source records need fetched into the processor's cache.
    void prepareNext();

 private:
    struct Part {
        QString targetName;  ///< as it stands in the criterion
        int sourceField = 0;
        int targetField = -1;
        bool valueAsItIs = false;  ///< the Source's value finds what its text would
    };
    bool makeKey(const RowView& record, bool& canBeThere);
    bool needsCriterion(const CellView& cell) const;
    QString criterion(const RowView& record) const;
    /// Several conditions. True when a row was found; a filter that can't be read leaves Target
    /// where it is. A text 'Null' in the filter stands for a null.
    bool Multi_Find(const QString& Filter, bool& Failed);
    /// One condition; what can't be read is told as what is wrong with the key.
    void findByOneKey(const RowView& record);
    /// Row by row; throws for a text that can't be read.
    void findByCriteria(const QString& text);

    const Recordset& rs1_;
    KeyedRows& rows2_;
    const QString sourceKey_;
    std::vector<ColumnInfo> columns2_;
    std::vector<Part> parts_;
    bool indexable_ = true;
    std::vector<CellView> wanted_;
    // Hashes of the Source's next records, of its present window, by their rows.
    static constexpr int RowsPrepared = 16;
    quint32 hashes_[RowsPrepared] = {};
    qsizetype preparedTo_ = -1;
    const RowStore* preparedIn_ = nullptr;
    bool byValueOnly_ = true;
    std::vector<CellView> next_;
    std::vector<RowStore> read_;  // values that had to be read from their texts
};

/// Whether a condition takes the column's name as it is, without brackets. By one key a search for
/// any other ends in an error, by several it stays where it is.
bool standsInCondition(const QString& columnName);

/// Whether seeking a value of one column in another gives the same by value as by its text.
bool seeksAlikeByValue(const ColumnInfo& from, const ColumnInfo& to);

}  // namespace zov
