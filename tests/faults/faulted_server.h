// A folder with an embedded server that commands of zovrand-cli are run in while something goes
// wrong, and what can be told of the databases afterwards without the program.
#pragma once

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

#include <sqlite3.h>

#include <map>
#include <memory>
#include <ostream>

inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

namespace zov::faults {

struct Fault {
    QString call;  ///< as the preloaded library names it; empty for none
    qint64 at = 0;
    QString error = QStringLiteral("5");  ///< EIO
    bool lasts = false;                   ///< all calls behind it fail, too
};

struct Outcome {
    int status = -1;  ///< -1 when the program did not end by itself
    bool crashed = false;
    QString out, err;
    qint64 calls = 0;  ///< of the kind that the fault names, counted to the end
};

inline bool wholeRun() {
    return qEnvironmentVariableIsSet("ZOV_FAULTS_WHOLE");
}

class FaultedServer {
 public:
    FaultedServer() { QDir().mkpath(home()); }

    QString home() const { return folder_.filePath(QStringLiteral("home")); }
    QString serverFolder() const { return home() + QStringLiteral("/servers/s"); }
    QString path(const QString& name) const { return folder_.filePath(name); }

    QString write(const QString& name, const QByteArray& text) const {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        return path(name);
    }

    std::unique_ptr<QProcess> start(const QStringList& arguments, const Fault& fault = {}) const {
        auto process = std::make_unique<QProcess>();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("ZOVRAND_HOME"), home());
        if (!fault.call.isEmpty()) {
            environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(ZOV_FAULT_PRELOAD));
            environment.insert(QStringLiteral("ZOV_FAULT_CALL"), fault.call);
            environment.insert(QStringLiteral("ZOV_FAULT_AT"), QString::number(fault.at));
            environment.insert(QStringLiteral("ZOV_FAULT_ERRNO"), fault.error);
            if (fault.lasts)
                environment.insert(QStringLiteral("ZOV_FAULT_LASTS"), QStringLiteral("1"));
            environment.insert(QStringLiteral("ZOV_FAULT_PATH"), folder_.path());
            environment.insert(QStringLiteral("ZOV_FAULT_NOTE"), note());
        }
        process->setProcessEnvironment(environment);
        process->setWorkingDirectory(folder_.path());
        process->start(QStringLiteral(ZOV_CLI), arguments);
        process->closeWriteChannel();
        return process;
    }

    Outcome finish(QProcess& process) const {
        Outcome outcome;
        if (!process.waitForFinished(120'000)) {
            process.kill();
            process.waitForFinished();
            outcome.err = QStringLiteral("no end");
            return outcome;
        }
        outcome.crashed = process.exitStatus() != QProcess::NormalExit;
        if (!outcome.crashed) outcome.status = process.exitCode();
        outcome.out = QString::fromUtf8(process.readAllStandardOutput());
        outcome.err = QString::fromUtf8(process.readAllStandardError());
        QFile counted(note());
        if (counted.open(QIODevice::ReadOnly)) outcome.calls = counted.readAll().toLongLong();
        return outcome;
    }

    Outcome run(const QStringList& arguments, const Fault& fault = {}) const {
        QFile::remove(note());
        const std::unique_ptr<QProcess> process = start(arguments, fault);
        return finish(*process);
    }

    /// The state to go back to before each run.
    void keep() {
        kept_.clear();
        remember(folder_.path());
    }
    void goBack() const {
        QDir(home()).removeRecursively();
        for (const auto& [file, bytes] : kept_) {
            QDir().mkpath(QFileInfo(file).absolutePath());
            QFile out(file);
            EXPECT_TRUE(out.open(QIODevice::WriteOnly)) << file.toStdString();
            out.write(bytes);
        }
    }

    /// What a load that was cut off left to undo or to sweep; empty when nothing.
    QString leftovers() const {
        return QDir(serverFolder())
            .entryList({QStringLiteral("server.journal"), QStringLiteral("*.db.*-*"),
                        QStringLiteral("staging-*")},
                       QDir::Files)
            .join(u' ');
    }

    /// Names and row counts of every user database and table, read by SQLite alone; what is
    /// damaged says so.
    QString state() const {
        QStringList lines;
        const QStringList files =
            QDir(serverFolder()).entryList({QStringLiteral("*.db")}, QDir::Files, QDir::Name);
        static const QStringList system = {QStringLiteral("master.db"), QStringLiteral("tempdb.db"),
                                           QStringLiteral("model.db"), QStringLiteral("msdb.db")};
        for (const QString& file : files) {
            const QString content = contentOf(serverFolder() + u'/' + file);
            if (!system.contains(file))
                lines.append(file + QStringLiteral(": ") + content);
            else if (content.startsWith(QLatin1String("damaged")))
                lines.append(file + u' ' + content);
        }
        return lines.join(u'\n');
    }

 private:
    QString note() const { return folder_.filePath(QStringLiteral("calls")); }

    void remember(const QString& folder) {
        for (const QFileInfo& info :
             QDir(folder).entryInfoList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot)) {
            if (info.isDir()) {
                remember(info.filePath());
                continue;
            }
            QFile file(info.filePath());
            EXPECT_TRUE(file.open(QIODevice::ReadOnly));
            kept_[info.filePath()] = file.readAll();
        }
    }

    static QString contentOf(const QString& file) {
        sqlite3* handle = nullptr;
        sqlite3_open_v2(file.toUtf8().constData(), &handle, SQLITE_OPEN_READWRITE, nullptr);
        sqlite3_create_collation_v2(
            handle, "NOCASE", SQLITE_UTF8, nullptr,
            [](void*, int a, const void* x, int b, const void* y) {
                return QString::compare(QString::fromUtf8(static_cast<const char*>(x), a),
                                        QString::fromUtf8(static_cast<const char*>(y), b),
                                        Qt::CaseInsensitive);
            },
            nullptr);
        const auto rows = [&](const QByteArray& sql) {
            QStringList found;
            sqlite3_stmt* statement = nullptr;
            int code = sqlite3_prepare_v2(handle, sql.constData(), -1, &statement, nullptr);
            while (code == SQLITE_OK && sqlite3_step(statement) == SQLITE_ROW)
                found.append(QString::fromUtf8(
                    reinterpret_cast<const char*>(sqlite3_column_text(statement, 0))));
            code = sqlite3_finalize(statement);
            if (code != SQLITE_OK)
                found.append(QStringLiteral("damaged: ") +
                             QString::fromUtf8(sqlite3_errmsg(handle)));
            return found;
        };
        QString content = rows("PRAGMA integrity_check").join(u' ');
        if (content == QLatin1String("ok")) {
            content.clear();
            for (const QString& name :
                 rows("SELECT s.name || '.' || o.name FROM \"zov$objects\" o JOIN \"zov$schemas\" "
                      "s ON s.schema_id = o.schema_id WHERE o.xtype = 'U' ORDER BY 1"))
                content += name + u'=' +
                           rows("SELECT count(*) FROM \"" + name.toUtf8() + '"').join(u' ') + u' ';
        } else {
            content.prepend(QStringLiteral("damaged: "));
        }
        sqlite3_close_v2(handle);
        return content;
    }

    QTemporaryDir folder_;
    std::map<QString, QByteArray> kept_;
};

}  // namespace zov::faults
