// An embedded server in a folder of its own for a test: scripts go in, rows come out as lines of
// text.
#pragma once

#include "data/base/field_text.h"
#include "data/base/provider.h"
#include "data/local/local_provider.h"
#include "data/script_batches.h"

#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>
#include <ostream>

/// For gtest's messages.
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

namespace zov::test {

class ScriptedServer {
 public:
    /// `version`: "8.00.2039" for an old server; empty for a current one.
    explicit ScriptedServer(const QString& version = {}) : version_(version) {
        connect(QStringLiteral("shop"));
        run(QStringLiteral("print ''"));  // others see the database from here on
    }

    QString folder() const { return folder_.path(); }
    ConnectionSpec spec(const QString& database) const {
        ConnectionSpec spec;
        spec.dataSource = QStringLiteral("local:") + folder_.path() + QStringLiteral("/server");
        if (!version_.isEmpty()) spec.dataSource += QStringLiteral("?version=") + version_;
        spec.database = database;
        return spec;
    }
    /// Begins a new session; the one before ends.
    void connect(const QString& database, bool create = true) {
        connection_.reset();
        connection_ = local::localProvider().open(spec(database), create);
    }
    void disconnect() { connection_.reset(); }
    ProviderConnection& connection() { return *connection_; }

    /// Runs a script batch by batch. The first error ends it and is told as
    /// "3: text [native] near words", with its line in the script; empty when all went well.
    QString run(const QString& script) {
        messages.clear();
        for (const ScriptBatch& batch : splitBatches(script)) {
            CommandSpec command;
            command.text = batch.text;
            try {
                const std::unique_ptr<ResultStream> results = connection_->execute(command);
                do drain(*results);
                while (results->nextResult());
            } catch (const DbError& error) {
                take();
                return QStringLiteral("%1: %2 [%3] near %4")
                    .arg(error.line + batch.firstLine - 1)
                    .arg(error.description)
                    .arg(error.native)
                    .arg(error.nearText);
            }
            take();
        }
        return {};
    }
    /// The same as a load: all or nothing.
    QString load(const QString& script) {
        connection_->beginLoad();
        const QString error = run(script);
        if (error.isEmpty())
            connection_->commitLoad();
        else
            connection_->rollbackLoad();
        return error;
    }

    /// Each result's rows as "a|b|NULL"; an error as "error: text".
    QStringList rows(const QString& sql) {
        CommandSpec command;
        command.text = sql;
        return rows(command);
    }
    QStringList rows(const CommandSpec& command) {
        QStringList lines;
        try {
            const std::unique_ptr<ResultStream> results = connection_->execute(command);
            do {
                if (results->columns().empty()) continue;
                RowStore store(results->columns());
                while (results->fetch(store, 100) > 0) {
                }
                for (qsizetype row = 0; row < store.rowCount(); ++row) {
                    QStringList cells;
                    for (int column = 0; column < store.columnCount(); ++column) {
                        const CellView cell = store.cell(row, column);
                        cells.push_back(cell.isNull ? QStringLiteral("NULL") : cellText(cell));
                    }
                    lines.push_back(cells.join(u'|'));
                }
            } while (results->nextResult());
        } catch (const DbError& error) {
            lines.push_back(QStringLiteral("error: ") + error.description);
        }
        take();
        return lines;
    }
    QString one(const QString& sql) { return rows(sql).join(u'\n'); }

    /// PRINT and RAISERROR texts of the last run.
    QStringList messages;

 private:
    void drain(ResultStream& results) {
        if (results.columns().empty()) return;
        RowStore store(results.columns());
        while (results.fetch(store, 100) > 0) {
        }
    }
    void take() {
        for (const ServerMessage& message : connection_->takeMessages())
            messages.push_back(message.text);
    }

    QTemporaryDir folder_;
    QString version_;
    std::unique_ptr<ProviderConnection> connection_;
};

}  // namespace zov::test
