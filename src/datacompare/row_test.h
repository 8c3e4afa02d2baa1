// Whether two rows differ: field by field, by the values' texts, without making
// the texts where the stored values tell as well.
#pragma once

#include "datacompare/keyed_rows.h"

#include <vector>

namespace zov {

class RowTest {
 public:
    /// Columns are paired by their places; those that only the second has are not looked at, and
    /// against those that only the first has stands the empty text.
    RowTest(const Recordset& first, const Recordset& second, bool caseSensitive);

    /// Two rows. Equal are fields whose texts (FieldText), blanks at their ends
    /// aside, are the same, to the letter or with letter case ignored. No row (behind the last)
    /// throws DbError 3021.
    bool differ(const RowView& first, const RowView& second);

 private:
    enum class Way {
        Integers,  ///< what is stored says it all
        Decimals,  ///< of different scales
        Reals,
        TicksWithOffset,
        BytesAlone,
        Texts,
        ByText,   ///< of different kinds
        Nothing,  ///< on the second side
    };
    static Way wayFor(const ColumnInfo& first, const ColumnInfo& second);
    bool fieldsDiffer(Way way, const ColumnCells& first, qsizetype row1, const ColumnCells* second,
                      qsizetype row2);
    bool sameText(QStringView a, QStringView b) const;

    std::vector<Way> ways_;
    bool caseSensitive_;
    QString text1_, text2_;  // kept, so that they needn't grow anew for each field
};

}  // namespace zov
