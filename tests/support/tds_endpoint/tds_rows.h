// Describes the columns of a result and encodes its rows straight from a RowStore.
#pragma once

#include "data/base/row_store.h"
#include "support/tds_endpoint/tds_bytes.h"

#include <stdexcept>
#include <vector>

namespace zov::tds {

/// A cell doesn't fit its column's description. A fault of the provider, told to the client as an
/// error so that no test takes a cut value for a whole one.
struct CellMisfit : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// How the cells of a column stand on the wire.
enum class CellForm : quint8 {
    Int1,
    Bit,
    Int2,
    Int4,
    Int8,
    Money8,
    Money4,
    Real,
    Float,
    Decimal64,
    DecimalText,
    Date,
    Time,
    DateTime4,
    DateTime8,
    DateTime2,
    DateTimeOffset,
    Char,
    NChar,
    Bytes,
    PlpChar,
    PlpNChar,
    PlpBytes,
    OldText,
    OldNText,
    OldImage,
    Guid,
    Variant,
};

struct ColumnForm {
    CellForm form;
    quint8 wireType;
    quint8 precision = 0;
    quint8 scale = 0;
    bool lengthByte = false;   ///< one byte in front of the cell, 0 for a null
    bool fixedLength = false;  ///< char, nchar, binary: filled up to `size`
    quint8 width = 0;          ///< bytes of a fixed cell
    int size = 0;              ///< largest cell in characters or bytes
    quint32 userType = 0;
};

/// What goes on the wire for a column as the provider describes it.
ColumnForm columnForm(const ColumnInfo& column);

class RowEncoder {
 public:
    explicit RowEncoder(const std::vector<ColumnInfo>& columns);

    /// The COLMETADATA token.
    void putColumns(ByteBuffer& out) const;
    /// One ROW token. On CellMisfit `out` is left as it was before the row.
    void putRow(const RowStore& rows, qsizetype row, ByteBuffer& out) const;
    /// The first cell of the first row, for a value that stands alone.
    void putCellOnly(const RowStore& rows, ByteBuffer& out) const {
        putCell(0, rows.column(0), 0, out);
    }
    /// There is a column whose cells may be very long: fetch few rows at a time.
    bool hasLongColumns() const;

 private:
    void putCell(size_t index, const ColumnCells& cells, qsizetype row, ByteBuffer& out) const;

    std::vector<ColumnInfo> columns_;
    std::vector<ColumnForm> forms_;
};

/// Type and layout of a parameter or a column: the TYPE_INFO part.
void putTypeInfo(const ColumnForm& form, ByteBuffer& out);

}  // namespace zov::tds
