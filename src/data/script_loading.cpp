#include "data/script_loading.h"

#include "data/base/load_reporting.h"
#include "data/connection.h"
#include "data/mdlData.h"
#include "data/script_batches.h"
#include "util/atomic_file.h"
#include "util/text_decode.h"

#include "core/globals.h"

#include <QSet>

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
        reporting_ = dynamic_cast<LoadReporting*>(session_.get());
    }

    /// `toBeMade`: the scripts make it themselves.
    void replace(const QString& database, bool toBeMade) {
        if (!undoable_)
            throw DbError(
                ado_error::Unspecified,
                QStringLiteral("Replacing a whole database works on the embedded server alone."));
        QString name = database;
        name.replace(u']', QLatin1StringView("]]"));
        execute(QStringLiteral("USE master IF DB_ID(N'%2') IS NOT NULL DROP DATABASE [%1]")
                    .arg(name, QString(database).replace(u'\'', QLatin1StringView("''"))));
        if (!toBeMade) execute(QStringLiteral("CREATE DATABASE [%1] USE [%1]").arg(name));
    }

    void run(const std::vector<Script>& scripts) {
        if (reporting_) reporting_->scriptsBegin();
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
        if (reporting_) outcome_.changedDatabases = reporting_->changedDatabases();
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
    /// True when all of it ran.
    bool runBatch(const Script& script, const ScriptBatch& batch) {
        if (batch.repeat < 1) {
            outcome_.problems.push_back(
                {script.file, batch.goLine, firstWordsOf(batch.text),
                 QStringLiteral("The count behind GO must be a number from 1 to 2147483647; the "
                                "batch in front of it was not run.")});
            return false;
        }
        ScriptBatch part = batch;
        bool good = true;
        // Behind a USE that failed each statement would land in another database.
        while (!astray_ || continueAtUse(part)) {
            const int failedAt = runPart(script, part);
            good = good && failedAt == 0;
            if (!astray_) break;
            astrayLine_ = failedAt;
        }
        if (astray_ && good) ++outcome_.leftOut;
        astrayLine_ = 0;
        if (good && !astray_) ++outcome_.batches;
        return good && !astray_;
    }

    /// Cuts the batch down to what begins with its next USE; false when there is none.
    bool continueAtUse(ScriptBatch& batch) {
        for (const UseStatement& use : useStatements(batch.text)) {
            if (batch.firstLine + use.line - 1 <= astrayLine_) continue;
            batch.text = batch.text.mid(use.position);
            batch.firstLine += use.line - 1;
            astray_ = false;
            return true;
        }
        return false;
    }

    /// The script's line of the statement that ended the part; -1 when some failed on the way, 0
    /// when all went well.
    int runPart(const Script& script, const ScriptBatch& batch) {
        const size_t before = outcome_.problems.size();
        const auto problemOf = [&](const DbError& error) {
            const int line = batch.firstLine + std::max(error.line, 1) - 1;
            const QString words =
                error.nearText.isEmpty() ? firstWordsOf(batch.text) : firstWordsOf(error.nearText);
            return LoadProblem{script.file, line, words, error.description};
        };
        if (reporting_ && options_.keepGoing)
            reporting_->onStatementFailed([&](const DbError& error) {
                if (isUse(error, batch)) return false;
                tellMessages();
                outcome_.problems.push_back(problemOf(error));
                return true;
            });
        // What is asked lives as long as this part.
        struct Forget {
            LoadReporting* reporting;
            ~Forget() {
                if (reporting) reporting->onStatementFailed({});
            }
        } forget{reporting_};
        try {
            for (int round = 0; round < batch.repeat; ++round) execute(batch.text);
        } catch (const DbError& error) {
            tellMessages();
            LoadProblem problem = problemOf(error);
            astray_ = options_.keepGoing && isUse(error, batch);
            if (astray_)
                problem.message += QStringLiteral(" What follows up to the next USE is left out.");
            outcome_.problems.push_back(problem);
            if (error.connectionLost) throw;
            return problem.line;
        }
        return outcome_.problems.size() > before ? -1 : 0;
    }

    /// A server that runs whole batches tells no statement: there the number of the error says that
    /// a database could not be gone to.
    static bool isUse(const DbError& error, const ScriptBatch& batch) {
        const QString& words = error.nearText;
        if (words.isEmpty()) {
            static const QSet<qint32> unreachable = {911, 916, 921, 922, 924, 927, 942, 945, 976};
            return unreachable.contains(error.native) && !useStatements(batch.text).empty();
        }
        return words.startsWith(QLatin1StringView("use"), Qt::CaseInsensitive) &&
               words.size() > 3 && !words[3].isLetterOrNumber() && words[3] != u'_';
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
    LoadReporting* reporting_ = nullptr;  // null: the provider runs whole batches
    bool undoable_ = false;
    bool astray_ = false;  // a USE failed, and none has come since
    int astrayLine_ = 0;   // where, within the batch that is being run
};

/// The one database that the scripts make and use; empty when it isn't one.
QString databaseOf(const std::vector<Script>& scripts) {
    static const QStringList system = {QStringLiteral("master"), QStringLiteral("tempdb"),
                                       QStringLiteral("model"), QStringLiteral("msdb")};
    QStringList made, used;
    for (const Script& script : scripts) {
        for (const ScriptBatch& batch : script.batches) {
            for (const QString& name : createdDatabases(batch.text))
                if (!made.contains(name, Qt::CaseInsensitive)) made.push_back(name);
            for (const UseStatement& use : useStatements(batch.text))
                if (!used.contains(use.database, Qt::CaseInsensitive) &&
                    !system.contains(use.database, Qt::CaseInsensitive))
                    used.push_back(use.database);
        }
    }
    const bool one = made.size() == 1 && used.size() == 1 &&
                     made.front().compare(used.front(), Qt::CaseInsensitive) == 0;
    return one ? made.front() : QString();
}

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

    outcome.database = database.isEmpty() ? databaseOf(scripts) : database;
    if (outcome.database.isEmpty()) {
        if (options.otherwise.isEmpty()) {
            outcome.unnamed = true;
            return outcome;
        }
        outcome.database = options.otherwise;
    }
    // Scripts that make their database expect to begin beside it.
    const bool own = database.isEmpty() && outcome.database != options.otherwise;
    Loader loader(options, outcome);
    loader.connect(server, own ? QStringLiteral("master") : outcome.database);
    if (options.replace) loader.replace(outcome.database, own);
    loader.run(scripts);
    loader.finish();
    return outcome;
}

}  // namespace zov
