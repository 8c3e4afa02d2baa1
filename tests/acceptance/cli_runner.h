// Runs the real zovrand-cli as a user does: a program with arguments, a home folder of its own, two
// output streams and an exit status. Tests here know nothing of the program's inside.
#pragma once

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>
#include <QTemporaryDir>

#include <ostream>

/// How gtest shows texts; found by argument-dependent lookup, so outside any namespace.
inline void PrintTo(const QString& text, std::ostream* stream) {
    *stream << '"' << text.toStdString() << '"';
}

namespace zov::acceptance {

struct CliResult {
    int status = -1;  ///< -1 also when the program crashed or ran into the time limit
    QString out;
    QString err;

    QStringList outLines() const { return lines(out); }
    QStringList errLines() const { return lines(err); }

    /// Without the line break at the end; no text gives no line.
    static QStringList lines(QString text) {
        while (text.endsWith(u'\n')) text.chop(1);
        return text.isEmpty() ? QStringList() : text.split(u'\n');
    }
};

inline void PrintTo(const CliResult& result, std::ostream* stream) {
    *stream << "status " << result.status << "\nstandard output:\n"
            << result.out.toStdString() << "\nstandard error:\n"
            << result.err.toStdString();
}

/// A fresh ZOVRAND_HOME with scratch space beside it.
class CliHome {
 public:
    CliHome() {
        environment_ = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"ZOVRAND_PASSWORD", "ZOVRAND_ODBC_DRIVER", "LC_ALL"})
            environment_.remove(QString::fromLatin1(name));
        environment_.insert(QStringLiteral("ZOVRAND_HOME"), home());
        QDir().mkpath(home());
    }

    QString home() const { return folder_.filePath(QStringLiteral("home")); }
    QString path(const QString& name) const { return folder_.filePath(name); }
    void setEnvironment(const QString& name, const QString& value) {
        environment_.insert(name, value);
    }

    CliResult run(const QStringList& arguments, const QByteArray& input = {}) const {
        return start(QStringLiteral(ZOV_CLI), arguments, input);
    }
    /// `command` is handed to sh with the program as $0 and the arguments as "$@".
    CliResult runInShell(const QString& command, const QStringList& arguments) const {
        return start(
            QStringLiteral("/bin/sh"),
            QStringList{QStringLiteral("-c"), command, QStringLiteral(ZOV_CLI)} + arguments, {});
    }

    QString write(const QString& name, const QByteArray& content) const {
        const QString file = path(name);
        QDir().mkpath(QFileInfo(file).absolutePath());
        QFile out(file);
        EXPECT_TRUE(out.open(QIODevice::WriteOnly)) << file.toStdString();
        out.write(content);
        return file;
    }

    /// Loads scripts and expects success.
    CliResult load(const QString& server, const QString& database, const QStringList& files) const {
        CliResult result = run(QStringList{"load", "-S", server, "-d", database} + files);
        EXPECT_EQ(result.status, 0) << ::testing::PrintToString(result);
        return result;
    }
    CliResult loadText(const QString& server, const QString& database,
                       const QByteArray& script) const {
        return load(server, database, {write(QStringLiteral("script.sql"), script)});
    }
    QStringList list(const QString& server, const QString& database, const QString& type) const {
        const CliResult result = run({"list", "-S", server, "-d", database, "-t", type});
        EXPECT_EQ(result.status, 0) << ::testing::PrintToString(result);
        return result.outLines();
    }
    /// The object's text without the line breaks at its end.
    QString text(const QString& server, const QString& database, const QString& type,
                 const QString& name) const {
        const CliResult result = run({"text", "-S", server, "-d", database, "-t", type, name});
        EXPECT_EQ(result.status, 0) << ::testing::PrintToString(result);
        return result.outLines().join(u'\n');
    }
    /// The first value of the first row, empty without one.
    QString value(const QString& server, const QString& database, const QString& sql) const {
        const CliResult result = run({"query", "-S", server, "-d", database, sql});
        EXPECT_EQ(result.status, 0) << ::testing::PrintToString(result);
        return result.outLines().value(1).section(u'\t', 0, 0);
    }

 private:
    CliResult start(const QString& program, const QStringList& arguments,
                    const QByteArray& input) const {
        QProcess process;
        process.setProcessEnvironment(environment_);
        process.setWorkingDirectory(folder_.path());
        process.start(program, arguments);
        CliResult result;
        if (!process.waitForStarted()) {
            result.err = process.errorString();
            return result;
        }
        process.write(input);
        process.closeWriteChannel();
        if (!process.waitForFinished(120000)) {
            process.kill();
            process.waitForFinished();
            result.err = QStringLiteral("no end after two minutes: ") + arguments.join(u' ');
            return result;
        }
        if (process.exitStatus() == QProcess::NormalExit) result.status = process.exitCode();
        result.out = QString::fromUtf8(process.readAllStandardOutput());
        result.err = QString::fromUtf8(process.readAllStandardError());
        return result;
    }

    QTemporaryDir folder_;
    QProcessEnvironment environment_;
};

inline QString samplesFolder() {
    return QStringLiteral(ZOV_SOURCE_ROOT "/samples/");
}

/// Northwind and pubs as their makers publish them are not part of the project: the folder that
/// holds northwind.sql and pubs.sql, or empty.
inline QString publishedScriptsFolder() {
    QString folder = qEnvironmentVariable("ZOVRAND_SAMPLE_DATA");
    if (folder.isEmpty()) folder = QStringLiteral(ZOV_SOURCE_ROOT "/../shared/data");
    return QFile::exists(folder + QStringLiteral("/northwind.sql")) ? folder + u'/' : QString();
}
inline constexpr char NoPublishedScripts[] =
    "northwind.sql and pubs.sql are not here: set ZOVRAND_SAMPLE_DATA to the folder that holds "
    "them";

/// A report with the elapsed time taken out.
inline QString withoutTime(QString report) {
    const qsizetype at = report.lastIndexOf(QStringLiteral("Time Elapsed: "));
    return at < 0 ? report : report.left(at) + QStringLiteral("Time Elapsed: *");
}

}  // namespace zov::acceptance
