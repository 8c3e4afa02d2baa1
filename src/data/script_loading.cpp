#include "data/script_loading.h"

#include "data/base/load_reporting.h"
#include "data/connection.h"
#include "data/mdlData.h"
#include "data/script_batches.h"
#include "data/sqlcmd_script.h"
#include "util/atomic_file.h"
#include "util/text_decode.h"

#include "core/globals.h"

#include <QFileInfo>
#include <QSet>

#include <optional>
#include <utility>

namespace zov {
namespace {

struct Script {
    QString file;
    std::vector<ScriptBatch> batches;
    /// Where the batches' lines come from, when it isn't the file as it stands.
    std::optional<ExpandedScript> expanded;

    bool ignoresErrors(const ScriptBatch& batch) const {
        return expanded && expanded->ignoresErrors(batch.goLine);
    }
    /// With the file and line that a line of the batches comes from.
    LoadProblem located(LoadProblem problem) const {
        problem.file = file;
        if (!expanded || problem.line < 1) return problem;
        const ExpandedScript::Origin origin = expanded->originOf(problem.line);
        problem.file = origin.file;
        problem.line = origin.fileLine;
        return problem;
    }
};

// The statement's first words on one line.
QString firstWordsOf(const QString& text) {
    QString words = text.simplified();
    if (words.size() > 60) words = words.left(57) + QStringLiteral("...");
    return words;
}

/// Empty, or why the file can't be read.
QString readText(const QString& file, QString& text) {
    QByteArray bytes;
    bool exists = false;
    const QString failure = readWholeFile(file, bytes, &exists);
    if (!failure.isEmpty()) return failure;
    if (!exists) return QStringLiteral("There is no such file. Check the path.");
    DecodedText decoded = decodeText(bytes);
    if (decoded.damaged)
        return QStringLiteral("The file is no valid %1 text. Save it anew from an editor.")
            .arg(encodingName(decoded.encoding));
    text = std::move(decoded.text);
    return {};
}

/// Reads all scripts; what can't be read or expanded is a problem.
class ScriptReader {
 public:
    ScriptReader(const ServerInfo& server, const QString& database, const LoadOptions& options,
                 LoadOutcome& outcome)
        : outcome_(outcome),
          always_(options.sqlcmd || !options.variables.empty() || !options.defined.empty()) {
        variables_.setOwn(QStringLiteral("SQLCMDSERVER"), server.Name);
        variables_.setOwn(QStringLiteral("SQLCMDUSER"),
                          server.SQLAuth ? server.LoginName : QString());
        variables_.setOwn(QStringLiteral("SQLCMDDBNAME"), database);
        for (const auto& [name, value] : options.variables) variables_.give(name, value);
        for (const auto& [name, value] : options.defined) variables_.define(name, value);
    }

    std::vector<Script> read(const QStringList& files) {
        std::vector<Script> scripts;
        for (const QString& file : files) {
            Script script{file, {}, {}};
            QString text;
            const QString trouble = readText(file, text);
            if (!trouble.isEmpty())
                outcome_.problems.push_back({file, 0, {}, trouble});
            else if (always_ || isSqlcmdScript(text))
                expand(script, text);
            else
                script.batches = splitBatches(text);
            const bool ended = script.expanded && script.expanded->ended;
            scripts.push_back(std::move(script));
            if (ended) break;
        }
        if (const qsizetype left = files.size() - qsizetype(scripts.size()); left > 0)
            outcome_.notes +=
                QStringLiteral("%1 ends the load; files behind it that are not run: %2.")
                    .arg(scripts.back().file)
                    .arg(left);
        return scripts;
    }

 private:
    void expand(Script& script, const QString& text) {
        static const SqlcmdFiles files{
            readText, [](const QString& path) { return QFileInfo(path).isFile(); }};
        script.expanded = expandSqlcmdScript(script.file, text, variables_, files);
        script.batches = splitBatches(std::exchange(script.expanded->text, {}));
        outcome_.notes += script.expanded->notes;
        for (LoadProblem& problem : script.expanded->problems)
            outcome_.problems.push_back(std::move(problem));
    }

    LoadOutcome& outcome_;
    SqlcmdVariables variables_;
    bool always_;
};

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
                goesOn_ = options_.keepGoing || script.ignoresErrors(batch);
                if (!runBatch(script, batch) && !goesOn_) {
                    failed_ = true;
                    return;
                }
            }
        }
        if (reporting_) outcome_.changedDatabases = reporting_->changedDatabases();
    }

    void finish() {
        const bool failed = outcome_.stopped || failed_;
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
            outcome_.problems.push_back(script.located(
                {{},
                 batch.goLine,
                 firstWordsOf(batch.text),
                 QStringLiteral("The count behind GO must be a number from 1 to 2147483647; the "
                                "batch in front of it was not run.")}));
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
            return LoadProblem{{}, line, words, error.description};
        };
        if (reporting_ && goesOn_)
            reporting_->onStatementFailed([&](const DbError& error) {
                if (isUse(error, batch)) return false;
                tellMessages();
                outcome_.problems.push_back(script.located(problemOf(error)));
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
            astray_ = goesOn_ && isUse(error, batch);
            if (astray_)
                problem.message += QStringLiteral(" What follows up to the next USE is left out.");
            outcome_.problems.push_back(script.located(problem));
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
    bool goesOn_ = false;  // behind what fails in the batch that is being run
    bool failed_ = false;  // and there was no going on
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
    const std::vector<Script> scripts =
        ScriptReader(server, database, options, outcome).read(files);
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
    outcome.begun = true;
    if (options.replace) loader.replace(outcome.database, own);
    loader.run(scripts);
    loader.finish();
    return outcome;
}

}  // namespace zov
