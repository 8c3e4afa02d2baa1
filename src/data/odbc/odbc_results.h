// The results of one command on one session: blocks of bound cells, and long cells
// piece by piece.
#pragma once

#include "data/odbc/odbc_columns.h"
#include "data/odbc/odbc_parameters.h"
#include "data/odbc/odbc_session.h"

#include <optional>

namespace zov::odbc {

class OdbcStream : public ResultStream {
 public:
    /// Runs the command; throws DbError.
    OdbcStream(std::shared_ptr<Session> session, const CommandSpec& command);
    ~OdbcStream() override;

    const std::vector<ColumnInfo>& columns() const override { return infos_; }
    qsizetype fetch(RowStore& rows, qsizetype maxRows) override;
    qint64 affectedRows() const override { return affected_; }
    bool nextResult() override;
    qint32 returnValue() const override { return parameters_.returnValue(); }
    QVariant outputValue(int parameterIndex) const override {
        return parameters_.value(parameterIndex);
    }
    void close() override;

 private:
    /// Notes messages, and throws when the call failed or was cancelled.
    void check(SQLRETURN result);
    /// The same, but leaves the failure pending: rows that came with it are handed over first.
    void noteOutcome(SQLRETURN result);
    void throwPending();
    void describeResult();
    void bindColumns();
    SQLRETURN fetchBlock();
    void appendRows(RowStore& rows, qsizetype count);
    void readLongCell(ResultColumn& column, SQLUSMALLINT number, ColumnCells& to);
    [[noreturn]] void fail(DbError error);
    SQLHSTMT handle() const { return statement_.get(); }

    std::shared_ptr<Session> session_;
    CommandSpec command_;
    // Bound memory: it stands in front of the statement, and so outlives it.
    BoundParameters parameters_;
    std::vector<ResultColumn> results_;
    SQLULEN fetched_ = 0;
    Handle statement_;

    std::vector<ColumnInfo> infos_;
    std::vector<char> piece_;  // one piece of a long cell
    std::vector<char> cell_;   // the pieces of one cell, when there are several
    std::optional<DbError> pending_;
    qint64 affected_ = -1;
    qsizetype blockRows_ = 1;  // rows that the bound memory holds
    qsizetype arraySize_ = 0;  // rows that the driver was told to fetch at a time
    bool hasLong_ = false;
    bool rowsEnded_ = true;
    bool ended_ = false;  // all results were read
};

}  // namespace zov::odbc
