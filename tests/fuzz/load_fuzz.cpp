// Whole loads: scripts run on an embedded server, batch by batch, and are undone. What is undone
// leaves the database as it was.
#include "data/base/load_reporting.h"
#include "data/local/local_provider.h"
#include "data/script_batches.h"
#include "fuzz_support.h"
#include "util/text_decode.h"

#include <QTemporaryDir>

#include <sqlite3.h>

#include <atomic>
#include <chrono>
#include <thread>

using namespace zov;
using fuzz::require;

namespace {

constexpr int MostRounds = 2;
constexpr int MostHeap = 256 * 1024 * 1024;
// An endless loop is nothing to wait for: it is cancelled, as a user does.
constexpr auto MostTime = std::chrono::milliseconds(150);

const char* const Tables =
    "CREATE TABLE dbo.Customer (Id int IDENTITY(1,1) NOT NULL PRIMARY KEY, Name nvarchar(40) NOT "
    "NULL,"
    " Credit decimal(9,2) NULL DEFAULT 0, Since datetime NULL, Photo varbinary(max) NULL)\n"
    "CREATE TABLE dbo.[Order] (Id int NOT NULL, CustomerId int NOT NULL REFERENCES dbo.Customer "
    "(Id),"
    " Placed datetime2 NULL, Note varchar(max) NULL, CONSTRAINT PK_Order PRIMARY KEY (Id))\n"
    "INSERT INTO dbo.Customer (Name, Credit) VALUES (N'Ada', 12.5), (N'Bo', NULL)\n"
    "INSERT INTO dbo.[Order] VALUES (1, 1, '2020-02-29', 'first')";

/// Calls a connection's cancel() when a run takes too long.
class Watchdog {
 public:
    Watchdog(ProviderConnection& connection)
        : thread_([this, &connection] {
              const auto end = std::chrono::steady_clock::now() + MostTime;
              while (!done_) {
                  std::this_thread::sleep_for(std::chrono::milliseconds(2));
                  if (std::chrono::steady_clock::now() > end) connection.cancel();
              }
          }) {}
    ~Watchdog() {
        done_ = true;
        thread_.join();
    }

 private:
    std::atomic<bool> done_ = false;
    std::thread thread_;
};

QString run(ProviderConnection& connection, const QString& text) {
    CommandSpec command;
    command.text = text;
    command.timeout = 1;
    QString lastCell;
    const std::unique_ptr<ResultStream> stream = connection.execute(command);
    do {
        RowStore rows(stream->columns());
        if (stream->columns().empty()) continue;
        while (stream->fetch(rows, 256) > 0) {
            lastCell = rows.cell(rows.rowCount() - 1, 0).text.toString();
            rows.clear();
        }
    } while (stream->nextResult());
    connection.takeMessages();
    return lastCell;
}

std::unique_ptr<ProviderConnection> connect(bool create) {
    static const QTemporaryDir folder;
    ConnectionSpec spec;
    spec.dataSource = QStringLiteral("local:") + folder.filePath(QStringLiteral("server"));
    spec.database = QStringLiteral("Fuzz");
    return local::localProvider().open(spec, create);
}

QString stateOfServer(ProviderConnection& connection) {
    return run(
        connection,
        QStringLiteral("SELECT CONVERT(varchar(20), (SELECT COUNT(*) FROM sysobjects)) + ' ' +"
                       " CONVERT(varchar(20), (SELECT COUNT(*) FROM syscolumns)) + ' ' +"
                       " CONVERT(varchar(20), (SELECT COUNT(*) FROM dbo.Customer)) + ' ' +"
                       " CONVERT(varchar(20), (SELECT COUNT(*) FROM master.dbo.sysdatabases))"));
}

const QString& stateAtFirst() {
    static const QString state = [] {
        sqlite3_hard_heap_limit64(MostHeap);
        run(*connect(true), QString::fromLatin1(Tables));
        return stateOfServer(*connect(false));
    }();
    return state;
}

void load(ProviderConnection& connection, const QString& script) {
    auto& reporting = dynamic_cast<LoadReporting&>(connection);
    require(connection.beginLoad(), "a load can be undone");
    reporting.scriptsBegin();
    bool goOn = true;
    reporting.onStatementFailed([&](const DbError& error) {
        require(!error.description.isEmpty(), "an error says something");
        goOn = error.number != ado_error::Cancelled && error.number != ado_error::Timeout;
        return goOn;
    });
    {
        const Watchdog watchdog(connection);
        for (const ScriptBatch& batch : splitBatches(script)) {
            if (!goOn) break;
            for (int round = 0; goOn && round < std::min(batch.repeat, MostRounds); ++round) {
                try {
                    run(connection, batch.text);
                } catch (const DbError& error) {
                    require(!error.description.isEmpty(), "an error says something");
                    require(error.line >= 0 && error.line <= batch.text.count(u'\n') + 1,
                            "an error's line is one of the batch");
                    goOn =
                        error.number != ado_error::Cancelled && error.number != ado_error::Timeout;
                }
            }
        }
    }
    reporting.onStatementFailed({});
    reporting.changedDatabases();
    connection.rollbackLoad();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QString& before = stateAtFirst();
    const std::unique_ptr<ProviderConnection> connection = connect(false);
    load(*connection, decodeText(fuzz::bytesOf(data, size)).text);
    // Asking costs as much as a short script.
    if (size % 8 == 0)
        require(stateOfServer(*connect(false)) == before, "a load that is undone leaves nothing");
    return 0;
}
