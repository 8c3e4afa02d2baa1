// ADO's Recordset: a static cursor. Client-side it holds all rows and no
// connection; server-side it streams blocks and holds its connection, until
// RecordCount or a MoveFirst from further on needs all rows and spools the rest into memory.
#pragma once

#include "data/base/row_store.h"
#include "data/connection.h"

#include <QHash>

#include <functional>
#include <memory>
#include <optional>
#include <span>

namespace zov {

class RowSource;

/// One column of the current record.
class Field {
 public:
    Field(const Recordset* owner, int index) : owner_(owner), index_(index) {}
    const QString& Name() const;
    int Type() const;  ///< ADO's DataTypeEnum
    const ColumnInfo& info() const;
    /// The value in place; a null off the rows' end. Valid until the recordset moves.
    CellView cell() const;
    bool isNull() const { return cell().isNull; }
    /// The value's default text; empty for a null.
    QString text() const;
    /// The value as a number: texts by their longest numeric prefix, null as 0.
    qint64 toInt64() const;

 private:
    const Recordset* owner_;
    int index_;
};

class Recordset {
 public:
    Recordset();
    ~Recordset();
    Recordset(Recordset&&) noexcept;
    Recordset& operator=(Recordset&&) noexcept;

    int CursorLocation = 2;
    qint32 CacheSize = 1;  ///< rows asked for at a time with a server-side cursor, at least

    /// Runs the command; throws DbError. Columns of the first result that has any.
    void Open(Command& command);
    int State() const;  ///< 1 open, 0 closed (never opened, closed, or a command without rows)
    bool isOpen() const { return State() == 1; }
    /// Lets the connection go. With a client-side cursor all rows are here already.
    void disconnect();
    void Close();
    /// While a server-side cursor waits for rows, `keepWaiting` is called again and again; when it
    /// gives false, the move throws ado_error::Cancelled, and the recordset can only be closed.
    void setKeepWaiting(std::function<bool()> keepWaiting);

    bool isBof() const;
    bool isEof() const;
    void MoveFirst();
    void MoveNext();
    void MoveLast();
    /// Rows of the recordset within its filter; spools a stream.
    qint64 RecordCount();

    int fieldCount() const;
    Field field(int index) const { return Field(this, index); }  ///< from 0
    /// By name in any case; throws DbError 3265 when there is no such field.
    Field field(const QString& name) const;
    /// -1 when there is no such field.
    int fieldIndex(const QString& name) const;

    /// The row within rowStore() that is current, -1 off the rows. Server-side the store holds the
    /// current block only.
    qsizetype currentRow() const;
    const RowStore& rowStore() const;
    /// The first result's return value and output parameters.
    const CommandResult& result() const;

    /// Moves forward, from the current row on, to the first row that meets `criterion`
    /// (`[name] = value`, with =, <>, <, >, <=, >=, LIKE; texts quoted with ' or #); past the end
    /// when none does. Texts are compared ignoring case; a criterion that can't be read as the
    /// column's type matches nothing.
    void Find(const QString& criterion);
    /// Same, for equality with a value that is at hand; `text` is read as the column's type.
    void FindEqual(int fieldIndex, QStringView text);
    /// Same, for several fields at once, each with a cell of its own type or, both being integers
    /// or decimals, of another width or scale. A null finds a null.
    void FindEqual(std::span<const int> fieldIndexes, std::span<const CellView> cells);
    /// To the end, where no row is current.
    void MoveBehindLast();
    /// Shows only the rows that meet every criterion (joined by AND); empty shows all. Goes to the
    /// first row.
    void Filter(const QString& criteria);

    /// Hands the rows over window by window, for who keeps them otherwise: puts those at hand in
    /// place of `rows` (whose memory may be used again) and goes on to the next. False at the end.
    bool TakeWindow(RowStore& rows);

    /// A second cursor over the same rows, with its own position and no filter. Deletions are seen
    /// by both.
    Recordset Clone();
    qsizetype Bookmark() const { return currentRow(); }
    void setBookmark(qsizetype row);
    /// Takes the current row out of the recordset (in memory only); the position stays until moved.
    void Delete();

 private:
    friend class Field;
    struct Cursor;
    /// Runs what may read from the stream; a failure goes into the account of the run, and on.
    template <typename Read>
    auto accounted(Read read);
    void moveNext();

    std::unique_ptr<Cursor> cursor_;
    QString place_;  ///< where the rows come from, and by which statement: for accounts
    QString statement_;
};

}  // namespace zov
