// Reading ADO's criteria - "[Price] >= 10 AND Name LIKE 'a*'" - and testing rows
// against them. Texts are compared ignoring case, everything else by value.
#pragma once

#include "data/base/row_store.h"

#include <QString>

#include <optional>
#include <vector>

namespace zov {

namespace criteria_error {
inline constexpr qint32 Unreadable = 3001;  ///< ADO's "arguments are of the wrong type"
}

enum class CriterionOperator { Equal, NotEqual, Less, LessEqual, Greater, GreaterEqual, Like };

struct Criterion {
    int column = -1;
    CriterionOperator op = CriterionOperator::Equal;
    /// The value as the column's type, in row 0; nothing when the text can't be read as that: such
    /// a criterion matches no row.
    std::optional<RowStore> value;
    QString pattern;  ///< Like
};

/// Reads criteria joined by AND. A column that isn't there or a text that is no criterion throws
/// DbError 3001 (ADO's "arguments are of the wrong type") and names what was found.
std::vector<Criterion> parseCriteria(const std::vector<ColumnInfo>& columns, const QString& text);

/// `text` as a value of the column's type, in row 0 of a store of one column; nothing when it can't
/// be read as that.
std::optional<RowStore> readAs(const ColumnInfo& column, QStringView text);

bool meetsCriterion(const RowStore& rows, qsizetype row, const Criterion& criterion);

}  // namespace zov
