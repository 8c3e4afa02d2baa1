// zovrand-cli query
#include "apps/cli/cli_support.h"
#include "core/globals.h"
#include "data/base/field_text.h"
#include "data/mdlData.h"
#include "shell/console/console_shell.h"
#include "shell/console/interrupt.h"

namespace zov::cli {
namespace {

constexpr qsizetype RowsAtOnce = 1024;

/// A value on one line: tabs, line breaks and backslashes as \t, \n, \r, \\.
void appendEscaped(QString& line, const QString& value) {
    for (const QChar c : value) {
        switch (c.unicode()) {
            case u'\t':
                line += QStringLiteral("\\t");
                break;
            case u'\n':
                line += QStringLiteral("\\n");
                break;
            case u'\r':
                line += QStringLiteral("\\r");
                break;
            case u'\\':
                line += QStringLiteral("\\\\");
                break;
            default:
                line += c;
        }
    }
}

/// The rows of a stream's current result, below a line with the columns' names.
void writeRows(ResultStream& stream) {
    const std::vector<ColumnInfo> columns = stream.columns();
    QString line;
    for (size_t i = 0; i < columns.size(); ++i) {
        if (i > 0) line += u'\t';
        appendEscaped(line, columns[i].name);
    }
    writeOut(line + u'\n');
    RowStore rows(columns);
    for (; stream.fetch(rows, RowsAtOnce) > 0; rows.clear()) {
        for (qsizetype row = 0; row < rows.rowCount(); ++row) {
            line.clear();
            for (int i = 0; i < rows.columnCount(); ++i) {
                if (i > 0) line += u'\t';
                const CellView cell = rows.cell(row, i);
                if (cell.isNull)
                    line += QStringLiteral("Null");
                else
                    appendEscaped(line, cellText(cell));
            }
            writeOut(line + u'\n');
        }
    }
}

/// Every result of the batch, with an empty line between two.
void writeResults(ResultStream& stream) {
    bool isFirst = true;
    do {
        if (stream.columns().empty()) continue;
        if (!isFirst) writeOut(QStringLiteral("\n"));
        isFirst = false;
        writeRows(stream);
    } while (stream.nextResult());
}

}  // namespace

int runQuery(const Options& options, ConsoleShell& console) {
    const ServerInfo server = chooseServer(options, options.server);
    const QString database = chooseDatabase(options.server, server, "-d");
    bool connected = false;
    try {
        const auto connection = std::make_shared<Connection>();
        connection->ConnectionString = BuildConnectionString(server, database);
        connection->CursorLocation = globals().glngCursorLocation;
        connection->Open();
        connected = true;
        const auto session = connection->sessionForNewCommand();
        const BreakOff atInterrupt([session] { session->cancel(); });
        CommandSpec command;
        command.text = options.sql;
        command.timeout = globals().glngTimeout;
        const auto stream = session->execute(command);
        writeResults(*stream);
        flushOut();
        for (const ServerMessage& message : session->takeMessages()) {
            console.showNote(message.text);
        }
    } catch (const DbError& error) {
        if (interruptRequested()) throw Failure(QStringLiteral("Stopped."));
        throw Failure(explainDbError(error, server, database, connected));
    }
    return Identical;
}

}  // namespace zov::cli
