#include "data/odbc/odbc_results.h"

#include <algorithm>

namespace zov::odbc {
namespace {

// A block this size stays in the processor's cache between the driver's writing and our reading.
constexpr qsizetype BlockBytes = 256 * 1024;
constexpr qsizetype MostBlockRows = 512;
// More than SQL Server's limit for a SELECT list.
constexpr int MostColumns = 8192;
constexpr qsizetype PieceBytes = 64 * 1024;
// One cell of a `max` type holds at most 2 GB on the server; RowStore takes less.
constexpr qsizetype MostCellBytes = qsizetype(1) << 31;
// Rows with long cells are handed over before they fill the memory.
constexpr qsizetype LongRowsBytes = 4 * 1024 * 1024;

// The first words of the statement at `line` of a batch, as a hint for the eye.
QString wordsAt(const QString& batch, int line) {
    qsizetype at = 0;
    for (int i = 1; i < line; ++i) {
        at = batch.indexOf(u'\n', at) + 1;
        if (at == 0) return {};
    }
    const qsizetype end = batch.indexOf(u'\n', at);
    return batch.mid(at, end < 0 ? -1 : end - at).simplified().left(60);
}

}  // namespace

OdbcStream::OdbcStream(std::shared_ptr<Session> session, const CommandSpec& command)
    : session_(std::move(session)),
      command_(command),
      statement_(SQL_HANDLE_STMT, session_->handle()) {
    const DriverCall call(session_->driver());
    session_->noteCommand(command.text, command.storedProcedure);
    SQLSetStmtAttrW(handle(), SQL_ATTR_QUERY_TIMEOUT,
                    pointerOf(SQLULEN(std::max(0, command.timeout))), SQL_IS_UINTEGER);
    SQLSetStmtAttrW(handle(), SQL_ATTR_ROWS_FETCHED_PTR, &fetched_, SQL_IS_POINTER);
    try {
        parameters_.bind(handle(), command.parameters, command.storedProcedure);
    } catch (const DbError&) {
        session_->noteFailure();
        throw;
    }
    QString text = command.storedProcedure ? procedureCall(command.text, command.parameters.size())
                                           : command.text;
    session_->setRunning(handle());
    try {
        const Patience patience = session_->whileWaiting(command_.timeout);
        check(SQLExecDirectW(handle(), wide(text), SQLINTEGER(text.size())));
        describeResult();
    } catch (...) {
        session_->setRunning(nullptr);
        throw;
    }
}

OdbcStream::~OdbcStream() {
    try {
        close();
    } catch (const DbError&) {
        // The session is not reused; nobody is left to be told.
    }
}

void OdbcStream::fail(DbError error) {
    session_->noteFailure();
    if (error.line > 0 && !command_.storedProcedure)
        error.nearText = wordsAt(command_.text, error.line);
    throw error;
}

void OdbcStream::check(SQLRETURN result) {
    noteOutcome(result);
    throwPending();
}

void OdbcStream::noteOutcome(SQLRETURN result) {
    if (result == SQL_SUCCESS_WITH_INFO || result == SQL_NO_DATA) {
        const std::vector<Diagnostic> records = readDiagnostics(SQL_HANDLE_STMT, handle());
        appendMessages(records, session_->messages);
        // The error that ended a block early comes with the rows in front of it.
        if (std::any_of(records.begin(), records.end(), isError))
            pending_ = errorFrom(records, Phase::Executing);
    } else if (result != SQL_SUCCESS) {
        pending_ = session_->failure(SQL_HANDLE_STMT, handle());
    }
    // A driver may end the rows quietly when it was told to stop.
    if (!pending_ && session_->wasCancelled())
        pending_ = DbError(ado_error::Cancelled, QStringLiteral("Operation canceled"),
                           QStringLiteral("HY008"));
}

void OdbcStream::throwPending() {
    if (!pending_) return;
    const DbError error = *pending_;
    pending_.reset();
    fail(error);
}

void OdbcStream::describeResult() {
    results_.clear();
    infos_.clear();
    hasLong_ = false;
    affected_ = -1;
    SQLSMALLINT count = 0;
    check(SQLNumResultCols(handle(), &count));
    rowsEnded_ = count <= 0;
    if (count <= 0) {
        SQLLEN rows = -1;
        if (SQL_SUCCEEDED(SQLRowCount(handle(), &rows))) affected_ = rows < 0 ? -1 : qint64(rows);
        return;
    }
    if (count > MostColumns)
        fail(DbError(ado_error::Unspecified,
                     QStringLiteral("The server sent a result of %1 columns.").arg(count)));
    results_.reserve(size_t(count));
    for (SQLSMALLINT number = 1; number <= count; ++number) {
        results_.push_back(describeColumn(handle(), SQLUSMALLINT(number)));
        infos_.push_back(results_.back().info);
        hasLong_ = hasLong_ || results_.back().isLong;
    }
    bindColumns();
}

void OdbcStream::bindColumns() {
    SQLFreeStmt(handle(), SQL_UNBIND);
    // Long cells are read behind the bound ones. A driver that reads only forward gets its columns
    // bound up to the first long one; the rest is read in the select list's order.
    bool mayBind = true;
    qsizetype rowBytes = 0;
    for (ResultColumn& column : results_) {
        if (column.isLong && !session_->readsAnyColumn()) mayBind = false;
        column.isBound = mayBind && !column.isLong;
        if (column.isBound) rowBytes += column.cellBytes + qsizetype(sizeof(SQLLEN));
    }
    blockRows_ = hasLong_ ? 1
                          : std::clamp<qsizetype>(BlockBytes / std::max<qsizetype>(rowBytes, 1), 1,
                                                  MostBlockRows);
    arraySize_ = 0;
    for (size_t i = 0; i < results_.size(); ++i) {
        ResultColumn& column = results_[i];
        if (!column.isBound) continue;
        column.cells.resize(size_t(column.cellBytes * blockRows_));
        column.lengths.assign(size_t(blockRows_), SQL_NULL_DATA);
        check(SQLBindCol(handle(), SQLUSMALLINT(i + 1), column.cType, column.cells.data(),
                         column.cellBytes, column.lengths.data()));
    }
    if (hasLong_) piece_.resize(size_t(PieceBytes));
}

qsizetype OdbcStream::fetch(RowStore& rows, qsizetype maxRows) {
    throwPending();
    if (rowsEnded_) return 0;
    const DriverCall call(session_->driver());
    qsizetype got = 0;
    const qsizetype bytesBefore = hasLong_ ? rows.reservedBytes() : 0;
    while (!rowsEnded_ && got < maxRows) {
        const qsizetype wanted = std::min(blockRows_, maxRows - got);
        if (wanted != arraySize_) {
            check(SQLSetStmtAttrW(handle(), SQL_ATTR_ROW_ARRAY_SIZE, pointerOf(SQLULEN(wanted)),
                                  SQL_IS_UINTEGER));
            arraySize_ = wanted;
        }
        const SQLRETURN result = fetchBlock();
        noteOutcome(result);
        const qsizetype count =
            SQL_SUCCEEDED(result) ? qsizetype(std::min<SQLULEN>(fetched_, SQLULEN(wanted))) : 0;
        // Past a block that isn't full there is nothing. FreeTDS, asked all the same, would read on
        // into the next result and lose the messages and errors in front of it.
        if (count < wanted) rowsEnded_ = true;
        if (count == 0) break;
        appendRows(rows, count);
        got += count;
        if (pending_ || (hasLong_ && rows.reservedBytes() - bytesBefore > LongRowsBytes)) break;
    }
    if (got == 0) throwPending();
    return got;
}

SQLRETURN OdbcStream::fetchBlock() {
    fetched_ = 0;
    const Patience patience = session_->whileWaiting(command_.timeout);
    return SQLFetch(handle());
}

void OdbcStream::appendRows(RowStore& rows, qsizetype count) {
    const qsizetype complete = rows.rowCount() + count;
    try {
        for (size_t i = 0; i < results_.size(); ++i) {
            ResultColumn& column = results_[i];
            ColumnCells& to = rows.column(int(i));
            if (column.isBound)
                appendBlock(column, count, to);
            else
                readLongCell(column, SQLUSMALLINT(i + 1), to);
        }
    } catch (const DbError& error) {
        // Columns of one length, so that what is there can still be looked at.
        for (int i = 0; i < rows.columnCount(); ++i)
            while (rows.column(i).count() < complete) rows.column(i).appendNull();
        fail(error);
    }
}

void OdbcStream::readLongCell(ResultColumn& column, SQLUSMALLINT number, ColumnCells& to) {
    const qsizetype endMark = column.cType == SQL_C_WCHAR ? 2 : column.cType == SQL_C_CHAR ? 1 : 0;
    const qsizetype room = PieceBytes - endMark;
    cell_.clear();
    bool isBegun = false;
    for (;;) {
        SQLLEN left = 0;
        const Patience patience = session_->whileWaiting(command_.timeout);
        const SQLRETURN result =
            SQLGetData(handle(), number, column.cType, piece_.data(), PieceBytes, &left);
        if (result == SQL_NO_DATA) {
            // The end of a cell comes behind its last piece, and an empty cell has one too.
            if (!isBegun)
                throw DbError(ado_error::Unspecified,
                              QStringLiteral("The server sent no value for column \"%1\".")
                                  .arg(column.info.name));
            break;
        }
        isBegun = true;
        if (!SQL_SUCCEEDED(result)) check(result);
        if (left == SQL_NULL_DATA) return to.appendNull();
        // FreeTDS reports more data for ever on a sql_variant: what fits is all there is. None is
        // longer than 8,016 bytes.
        const bool isWhole = left >= 0 && left <= room;
        const qsizetype taken = isWhole ? qsizetype(left) : room;
        const bool isLast =
            isWhole || result == SQL_SUCCESS || column.info.type == SqlType::Variant;
        if (isLast && cell_.empty()) return appendCell(column, piece_.data(), taken, false, to);
        if (qsizetype(cell_.size()) + taken > MostCellBytes)
            throw DbError(ado_error::Unspecified,
                          QStringLiteral("The server sent more than 2 GB for one cell of column "
                                         "\"%1\".")
                              .arg(column.info.name));
        cell_.insert(cell_.end(), piece_.data(), piece_.data() + taken);
        if (isLast) break;
    }
    appendCell(column, cell_.data(), qsizetype(cell_.size()), false, to);
    // The memory of one giant is not kept for the small ones behind it.
    if (cell_.capacity() > size_t(LongRowsBytes)) std::vector<char>().swap(cell_);
}

bool OdbcStream::nextResult() {
    throwPending();
    if (ended_ || !statement_) return false;
    const DriverCall call(session_->driver());
    const Patience patience = session_->whileWaiting(command_.timeout);
    const SQLRETURN result = SQLMoreResults(handle());
    check(result);
    if (result == SQL_NO_DATA) {
        ended_ = true;
        rowsEnded_ = true;
        infos_.clear();
        results_.clear();
        affected_ = -1;
        session_->setRunning(nullptr);
        return false;
    }
    describeResult();
    return true;
}

void OdbcStream::close() {
    if (!statement_) return;
    {
        const DriverCall call(session_->driver());
        const Patience patience = session_->whileClosing();
        // Results that nobody wants are stopped at the server, not read.
        if (!ended_) {
            SQLCancel(handle());
            SQLFreeStmt(handle(), SQL_CLOSE);
        }
        session_->setRunning(nullptr);
        statement_.reset();
    }
    ended_ = true;
    rowsEnded_ = true;
    session_.reset();
}

}  // namespace zov::odbc
