// Processes that are killed at any time, and several at once on one server's folder: nothing is
// lost, nothing is doubled, nothing is half done.
#include "faults/faulted_server.h"

#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QThread>

namespace zov::faults {
namespace {

class ManyProcesses : public ::testing::Test {
 protected:
    QString script(const QString& table) const {
        return server.write(
            table + QStringLiteral(".sql"),
            QStringLiteral("create table %1 (a int)\ninsert %1 values (1)\n").arg(table).toUtf8());
    }
    QStringList load(const QString& database, const QString& table) const {
        return {"load", "-S", "local:s", "-d", database, script(table)};
    }
    /// A server that can be added to the list: a copy of the one that there is.
    QString reachable(const QString& name) const {
        const QString folder = server.home() + QStringLiteral("/servers/") + name;
        QDir().mkpath(folder);
        for (const QFileInfo& file : QDir(server.serverFolder()).entryInfoList(QDir::Files))
            QFile::copy(file.filePath(), folder + u'/' + file.fileName());
        return QStringLiteral("local:") + name;
    }
    QStringList tables(const QString& database) const {
        const Outcome outcome =
            server.run({"list", "-S", "local:s", "-d", database, "-t", "tables"});
        EXPECT_EQ(outcome.status, 0) << outcome.err.toStdString();
        return outcome.out.split(u'\n', Qt::SkipEmptyParts);
    }

    FaultedServer server;
};

TEST_F(ManyProcesses, AKillAtAnyTimeLeavesOldOrNew) {
    ASSERT_EQ(server.run(load(QStringLiteral("a"), QStringLiteral("t"))).status, 0);
    ASSERT_EQ(server.run({"server", "add", reachable(QStringLiteral("first"))}).status, 0);
    reachable(QStringLiteral("second"));
    server.keep();
    const QString before = server.state();
    QStringList replace = load(QStringLiteral("a"), QStringLiteral("u"));
    replace.insert(1, QStringLiteral("--replace"));
    const std::vector<QStringList> commands = {load(QStringLiteral("a"), QStringLiteral("u")),
                                               load(QStringLiteral("b"), QStringLiteral("u")),
                                               replace,
                                               {"server", "add", "local:second"}};
    const int rounds = wholeRun() ? 100 : 8;
    int killed = 0;
    for (const QStringList& command : commands) {
        server.goBack();
        QElapsedTimer timer;
        timer.start();
        ASSERT_EQ(server.run(command).status, 0);
        const qint64 usual = timer.elapsed();
        const QString after = server.state();
        for (int round = 0; round < rounds; ++round) {
            server.goBack();
            const std::unique_ptr<QProcess> process = server.start(command);
            ASSERT_TRUE(process->waitForStarted());
            QThread::msleep(QRandomGenerator::global()->bounded(int(usual) + 5));
            process->kill();
            const Outcome outcome = server.finish(*process);
            killed += outcome.crashed;
            const Outcome next = server.run({"server", "list"});
            EXPECT_EQ(next.status, 0) << next.err.toStdString();
            EXPECT_TRUE(next.out.contains(QLatin1String("first"))) << next.out.toStdString();
            const Outcome read = server.run({"query", "-S", "local:s", "-d", "a", "select 1"});
            EXPECT_EQ(read.status, 0) << read.err.toStdString();
            EXPECT_EQ(server.leftovers(), QString());
            const QString state = server.state();
            EXPECT_TRUE(state == after || (outcome.crashed && state == before))
                << state.toStdString() << "\nafter " << command.join(u' ').toStdString();
        }
    }
    std::cout << killed << " processes killed\n";
}

TEST_F(ManyProcesses, LoadsAtOnceAllKeepWhatTheySayTheyDid) {
    const int rounds = wholeRun() ? 30 : 2;
    int processes = 0;
    for (int round = 0; round < rounds; ++round) {
        const int many = 2 + round % 7;
        const QString shared = QStringLiteral("shared%1").arg(round);
        // Half of them make a database of their own, the others all the same new one.
        std::vector<std::unique_ptr<QProcess>> running;
        std::vector<std::pair<QString, QString>> wanted;
        for (int i = 0; i < many; ++i) {
            const QString table = QStringLiteral("t%1").arg(i);
            const QString database =
                i % 2 == 0 ? shared : QStringLiteral("own%1_%2").arg(round).arg(i);
            wanted.emplace_back(database, table);
            running.push_back(server.start(load(database, table)));
        }
        for (int i = 0; i < many; ++i) {
            const Outcome outcome = server.finish(*running[size_t(i)]);
            ++processes;
            const auto& [database, table] = wanted[size_t(i)];
            ASSERT_FALSE(outcome.crashed);
            EXPECT_TRUE(outcome.status == 0 || !outcome.err.isEmpty());
            if (database != shared) {
                EXPECT_EQ(outcome.status, 0) << outcome.err.toStdString();
            }
            if (outcome.status != 0) wanted[size_t(i)].second.clear();
        }
        int done = 0;
        for (const auto& [database, table] : wanted) {
            if (table.isEmpty()) continue;
            ++done;
            EXPECT_EQ(tables(database).filter(table).size(), 1)
                << (database + u' ' + table).toStdString();
        }
        EXPECT_GE(done, 1);
        EXPECT_EQ(server.leftovers(), QString());
    }
    std::cout << processes << " loads at once\n";
}

TEST_F(ManyProcesses, ServersAddedAtOnceAreAllThereOnce) {
    const int rounds = wholeRun() ? 20 : 2;
    ASSERT_EQ(server.run(load(QStringLiteral("a"), QStringLiteral("t"))).status, 0);
    QSet<QString> names;
    for (int round = 0; round < rounds; ++round) {
        std::vector<std::unique_ptr<QProcess>> running;
        for (int i = 0; i < 2 + round % 7; ++i) {
            const QString name = reachable(QStringLiteral("host%1x%2").arg(round).arg(i));
            names.insert(name);
            running.push_back(server.start({"server", "add", name}));
        }
        for (const auto& process : running) {
            const Outcome outcome = server.finish(*process);
            EXPECT_EQ(outcome.status, 0) << outcome.err.toStdString();
        }
    }
    const QString listed = server.run({"server", "list"}).out;
    for (const QString& name : names)
        EXPECT_EQ(listed.split(u'\n').filter(name).size(), 1) << name.toStdString();
}

}  // namespace
}  // namespace zov::faults
