#include "data/script_loading.h"

#include "data/connection.h"
#include "data/mdlData.h"
#include "data/script_batches.h"
#include "util/atomic_file.h"
#include "util/text_decode.h"

#include "core/globals.h"

namespace zov {
namespace {

struct Script {
    QString file;
    std::vector<ScriptBatch> batches;
};

// The statement's first words on one line.
QString firstWordsOf(const QString& text) {
    QString words = text.simplified();
    if (words.size() > 60) words = words.left(57) + QStringLiteral("...");
    return words;
}

bool readScript(const QString& file, Script& script, LoadOutcome& outcome) {
    QByteArray bytes;
    bool exists = false;
    QString failure = readWholeFile(file, bytes, &exists);
    if (failure.isEmpty() && !exists)
        failure = QStringLiteral("There is no such file. Check the path.");
    const DecodedText decoded = decodeText(bytes);
    if (failure.isEmpty() && decoded.damaged)
        failure = QStringLiteral("The file is no valid %1 text. Save it anew from an editor.")
                      .arg(encodingName(decoded.encoding));
    if (!failure.isEmpty()) {
        outcome.problems.push_back({file, 0, {}, failure});
        return false;
    }
    script = {file, splitBatches(decoded.text)};
    return true;
}

class Loader {
 public:
    Loader(const LoadOptions& options, LoadOutcome& outcome)
        : options_(options), outcome_(outcome) {}

    void connect(const ServerInfo& server, const QString& database) {
        connection_.ConnectionString = BuildConnectionString(server, database);
        connection_.createDatabase = true;
        connection_.Open();
        session_ = connection_.sessionForNewCommand();
        undoable_ = session_->beginLoad();
    }

    void replace(const QString& database) {
        if (!undoable_)
            throw DbError(
                ado_error::Unspecified,
                QStringLiteral("Replacing a whole database works on the embedded server alone."));
        QString name = database;
        name.replace(u']', QLatin1StringView("]]"));
        execute(QStringLiteral("USE master DROP DATABASE [%1] CREATE DATABASE [%1]").arg(name));
        execute(QStringLiteral("USE [%1]").arg(name));
    }

    void run(const std::vector<Script>& scripts) {
        size_t total = 0, done = 0;
        for (const Script& script : scripts) total += script.batches.size();
        for (const Script& script : scripts) {
            for (const ScriptBatch& batch : script.batches) {
                if (options_.stopRequested && options_.stopRequested()) {
                    outcome_.stopped = true;
                    return;
                }
                if (options_.progress) options_.progress(script.file, int(++done), int(total));
                if (!runBatch(script, batch) && !options_.keepGoing) return;
            }
        }
    }

    void finish() {
        const bool failed = outcome_.stopped || (!outcome_.problems.empty() && !options_.keepGoing);
        outcome_.kept = !failed;
        outcome_.undone = undoable_;
        if (!undoable_ || !session_) return;
        if (failed)
            session_->rollbackLoad();
        else
            session_->commitLoad();
    }

 private:
    bool runBatch(const Script& script, const ScriptBatch& batch) {
        try {
            for (int round = 0; round < batch.repeat; ++round) execute(batch.text);
            ++outcome_.batches;
            return true;
        } catch (const DbError& error) {
            tellMessages();
            const int line = batch.firstLine + std::max(error.line, 1) - 1;
            const QString words =
                error.nearText.isEmpty() ? firstWordsOf(batch.text) : firstWordsOf(error.nearText);
            outcome_.problems.push_back({script.file, line, words, error.description});
            if (error.connectionLost) throw;
            return false;
        }
    }

    void execute(const QString& text) {
        CommandSpec command;
        command.text = text;
        command.timeout = globals().glngTimeout;
        const std::unique_ptr<ResultStream> stream = session_->execute(command);
        do {
            RowStore dropped(stream->columns());
            while (!stream->columns().empty() && stream->fetch(dropped, 1024) > 0) dropped.clear();
        } while (stream->nextResult());
        tellMessages();
    }

    void tellMessages() {
        for (const ServerMessage& message : session_->takeMessages())
            if (options_.message) options_.message(message);
    }

    const LoadOptions& options_;
    LoadOutcome& outcome_;
    Connection connection_;
    std::shared_ptr<ProviderConnection> session_;
    bool undoable_ = false;
};

}  // namespace

QString LoadProblem::toString() const {
    QString text = file;
    if (line > 0) text += QStringLiteral(":%1").arg(line);
    // One line, whatever the server quotes of the script.
    text += QStringLiteral(": ") + message.simplified();
    if (!firstWords.isEmpty()) text += QStringLiteral(" (at: %1)").arg(firstWords);
    return text;
}

LoadOutcome LoadScripts(const ServerInfo& server, const QString& database, const QStringList& files,
                        const LoadOptions& options) {
    LoadOutcome outcome;
    std::vector<Script> scripts(size_t(files.size()));
    for (qsizetype i = 0; i < files.size(); ++i) readScript(files[i], scripts[size_t(i)], outcome);
    if (!outcome.problems.empty()) return outcome;

    Loader loader(options, outcome);
    loader.connect(server, database);
    if (options.replace) loader.replace(database);
    loader.run(scripts);
    loader.finish();
    return outcome;
}

}  // namespace zov
