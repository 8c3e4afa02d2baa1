// The columns of one result: what they are, where the driver puts a block of their
// cells, and how these get into a RowStore.
#pragma once

#include "data/base/row_store.h"
#include "data/odbc/odbc_handles.h"

#include <vector>

namespace zov::odbc {

/// The form in which a column's cells are asked of the driver.
enum class CellForm {
    Fixed,        ///< as kept in memory: integers, reals, bits
    Decimal,      ///< digits as text: exact in every driver
    Stamp,        ///< SQL_TIMESTAMP_STRUCT
    TimeOfDay,    ///< SQL_TIMESTAMP_STRUCT, of which only the time counts
    StampOffset,  ///< text "yyyy-MM-dd HH:mm:ss.fffffff +hh:mm"
    Guid,
    Text,  ///< UTF-16
    Bytes,
};

struct ResultColumn {
    ColumnInfo info;
    CellForm form = CellForm::Text;
    SQLSMALLINT cType = 0;
    /// Bytes that one cell takes in a bound block, with a text's end mark.
    qsizetype cellBytes = 0;
    /// Too long to be bound, or of unknown length: read piecewise, row by row.
    bool isLong = false;
    bool isBound = false;

    std::vector<char> cells;
    std::vector<SQLLEN> lengths;  ///< SQL_NULL_DATA, or the cell's length in bytes
};

/// Describes column `number` (from 1) of the statement's current result.
ResultColumn describeColumn(SQLHSTMT statement, SQLUSMALLINT number);

/// Appends the first `rows` cells of the bound block. Throws DbError for cells that are longer than
/// their column was said to be or can't be read as its type.
void appendBlock(ResultColumn& column, qsizetype rows, ColumnCells& to);

/// Appends one cell of which `bytes` were read (texts: UTF-16), null when `isNull`.
void appendCell(const ResultColumn& column, const char* data, qsizetype bytes, bool isNull,
                ColumnCells& to);

/// "-12.50" to digits without the point, scaled to `scale`. False when it isn't a decimal of at
/// most 18 digits.
bool parseScaled(const char* text, qsizetype length, int scale, qint64& value);
/// "-.500" to "-0.5"; false when it is not a decimal.
bool canonicalDecimal(const char* text, qsizetype length, QString& canonical);

}  // namespace zov::odbc
