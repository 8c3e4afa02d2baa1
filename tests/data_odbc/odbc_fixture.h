// The ODBC provider in front of the wire endpoint with scripted answers: what a
// test writes down as a server's answer comes back through the real driver.
#pragma once

#include "data/base/field_text.h"
#include "data/odbc/odbc_driver.h"
#include "data/odbc/odbc_provider.h"
#include "data/odbc/odbc_session.h"
#include "support/tds_endpoint/scripted_provider.h"
#include "support/tds_endpoint/tds_endpoint.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <chrono>

/// gtest looks for it beside QString.
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

namespace zov {

inline ColumnInfo columnOf(const QString& name, SqlType type, int size = 0, int precision = 0,
                           int scale = 0) {
    ColumnInfo column;
    column.name = name;
    column.type = type;
    column.size = size;
    column.precision = precision;
    column.scale = scale;
    return column;
}

class OdbcTest : public ::testing::Test {
 protected:
    void SetUp() override {
        try {
            odbc::chooseDriver();
        } catch (const DbError& error) {
            GTEST_SKIP() << error.what();
        }
        options.provider = &script;
        options.dataSource = QStringLiteral("scripted");
        options.password = QStringLiteral("secret");
        script.answer(QStringLiteral("USE [shop]"), {});
        endpoint.start(options);
    }
    void TearDown() override { odbc::dropIdleSessions(); }

    ConnectionSpec spec() const {
        ConnectionSpec spec;
        spec.dataSource = endpoint.dataSource();
        spec.database = QStringLiteral("shop");
        spec.user = options.user;
        spec.password = options.password;
        spec.connectTimeout = 10;
        return spec;
    }

    std::unique_ptr<ProviderConnection> open() { return odbc::odbcProvider().open(spec(), false); }

    std::unique_ptr<ResultStream> run(ProviderConnection& connection, const QString& text,
                                      int timeout = 30) {
        CommandSpec command;
        command.text = text;
        command.timeout = timeout;
        return connection.execute(command);
    }

    /// An answer of one result.
    static ScriptedAnswer rowsOf(std::vector<ColumnInfo> columns, qint64 count,
                                 std::function<void(RowStore&, qint64)> fill) {
        ScriptedAnswer answer;
        ScriptedResult result;
        result.columns = std::move(columns);
        result.rowCount = count;
        result.fill = std::move(fill);
        answer.results.push_back(std::move(result));
        return answer;
    }
    /// `count` rows of the numbers from 0.
    static ScriptedAnswer numbers(qint64 count) {
        return rowsOf({columnOf(QStringLiteral("n"), SqlType::Int)}, count,
                      [](RowStore& rows, qint64 row) { rows.column(0).appendInteger(row); });
    }
    static ScriptedAnswer failing(qint32 native, const QString& text) {
        ScriptedAnswer answer;
        answer.results.emplace_back().error =
            DbError(ado_error::Unspecified, text, QString(), native);
        return answer;
    }

    /// All rows of the current result, cells parted by "|", a null as "NULL".
    static QStringList readRows(ResultStream& stream, qsizetype step = 1000) {
        RowStore rows(stream.columns());
        while (stream.fetch(rows, step) > 0) {
        }
        QStringList lines;
        for (qsizetype row = 0; row < rows.rowCount(); ++row) {
            QStringList cells;
            for (int i = 0; i < rows.columnCount(); ++i) {
                const CellView cell = rows.cell(row, i);
                cells.append(cell.isNull ? QStringLiteral("NULL") : cellText(cell));
            }
            lines.append(cells.join(u'|'));
        }
        return lines;
    }

    /// The error that `action` ends with; a failed test, and an empty error, when it doesn't.
    template <typename Action>
    static DbError errorOf(Action action) {
        try {
            action();
        } catch (const DbError& error) {
            return error;
        }
        ADD_FAILURE() << "nothing failed";
        return DbError(0, {});
    }

    static double secondsSince(std::chrono::steady_clock::time_point start) {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }

    ScriptedProvider script;
    TdsEndpointOptions options;
    TdsEndpoint endpoint;
};

}  // namespace zov
