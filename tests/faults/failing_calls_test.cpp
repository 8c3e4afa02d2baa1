// Every command, with each of its system calls failing once: the result is the undisturbed one, or
// status 2 with a line on standard error, and every database is as before or as after, never
// between. ZOV_FAULTS_WHOLE=1 takes every call; without it some of each sort are taken.
#include "faults/faulted_server.h"

namespace zov::faults {
namespace {

constexpr int SampledPerCall = 3;
constexpr int SampledKillsPerCall = 2;
constexpr int MostMallocs = 400;  // of a whole run, spread evenly
constexpr int MostLastingMallocs = 60;

struct Command {
    const char* name;
    QStringList arguments;
};

QString withoutTime(QString text) {
    const qsizetype at = text.lastIndexOf(QLatin1String("Time Elapsed: "));
    return at < 0 ? text : text.left(at);
}

class FailingCalls : public ::testing::Test {
 protected:
    void SetUp() override {
        const QString a = server.write(
            QStringLiteral("a.sql"),
            "create table t (id int primary key, name varchar(20))\n"
            "insert t values (1, 'one')\ninsert t values (2, 'two')\ngo\n"
            "create view v as select id from t\ngo\ncreate procedure p as select 1\ngo\n");
        server.write(QStringLiteral("b.sql"),
                     "create table t (id int primary key, name varchar(30))\n"
                     "insert t values (1, 'one')\ninsert t values (3, 'three')\ngo\n"
                     "create table u (a int)\ngo\n");
        server.write(QStringLiteral("more.sql"), "create table m (a int)\ninsert m values (1)\n");
        server.write(QStringLiteral("two.sql"),
                     "create table n1 (a int)\ngo\nuse b\ngo\ncreate table n2 (a int)\ninsert n2 "
                     "values (1)\ngo\ncreate database c\ngo\nuse c\ngo\ncreate table n3 (a int)\n");
        ASSERT_EQ(load(QStringLiteral("a"), {a}), 0);
        ASSERT_EQ(load(QStringLiteral("b"), {server.path(QStringLiteral("b.sql"))}), 0);
        ASSERT_EQ(server.run({"load", "-S", "local:second", "-d", "a", a}).status, 0);
        ASSERT_EQ(server.run({"server", "add", "local:s", "--database", "a"}).status, 0);
        server.keep();
        before = server.state();
    }

    int load(const QString& database, const QStringList& files) const {
        return server.run(QStringList{"load", "-S", "local:s", "-d", database} + files).status;
    }

    QStringList serverList() const {
        return server.run({"server", "list"}).out.split(u'\n', Qt::SkipEmptyParts);
    }

    void runCommand(const Command& command) {
        SCOPED_TRACE(command.name);
        server.goBack();
        const Outcome calm = server.run(command.arguments);
        ASSERT_LE(calm.status, 1) << calm.err.toStdString();
        const QString after = server.state();
        const QStringList listedAfter = changesServers(command) ? serverList() : QStringList();
        for (const char* call : {"open", "read", "pread", "write", "pwrite", "fsync", "rename",
                                 "ftruncate", "mmap", "malloc"}) {
            server.goBack();
            const qint64 calls =
                server.run(command.arguments, {QString::fromLatin1(call), 0, {}}).calls;
            const bool memory = qstrcmp(call, "malloc") == 0;
            const auto fail = [&](qint64 at, bool lasts) {
                server.goBack();
                const Fault fault{QString::fromLatin1(call), at, QString::fromLatin1(errorOf(call)),
                                  lasts};
                const Outcome outcome = server.run(command.arguments, fault);
                ++runs;
                check(command, fault, outcome, calm, after, listedAfter);
            };
            for (const qint64 at : chosen(calls, SampledPerCall, memory ? MostMallocs : calls))
                fail(at, false);
            if (!memory) continue;
            for (const qint64 at : chosen(calls, SampledPerCall, MostLastingMallocs))
                fail(at, true);
        }
    }

    static bool changesServers(const Command& command) {
        return command.arguments.first() == QLatin1String("server");
    }
    static const char* errorOf(const char* call) {
        return qstrcmp(call, "malloc") == 0  ? "12"  // ENOMEM
               : qstrcmp(call, "write") == 0 ? "28"  // ENOSPC
                                             : "5";  // EIO
    }

    static std::vector<qint64> chosen(qint64 calls, qint64 sampled, qint64 whole) {
        const qint64 most = wholeRun() ? whole : sampled;
        std::vector<qint64> all;
        if (calls <= most) {
            for (qint64 at = 1; at <= calls; ++at) all.push_back(at);
        } else {
            for (qint64 i = 0; i < most; ++i) all.push_back(1 + i * (calls - 1) / (most - 1));
        }
        return all;
    }

    void check(const Command& command, const Fault& fault, const Outcome& outcome,
               const Outcome& calm, const QString& after, const QStringList& listedAfter) {
        SCOPED_TRACE(QStringLiteral("%1 %2 failed; status %3\nout: %4\nerr: %5")
                         .arg(fault.call)
                         .arg(fault.at)
                         .arg(outcome.status)
                         .arg(outcome.out, outcome.err)
                         .toStdString());
        ASSERT_FALSE(outcome.crashed);
        const bool undisturbed = outcome.status == calm.status;
        if (undisturbed) {
            EXPECT_EQ(withoutTime(outcome.out), withoutTime(calm.out));
        } else {
            EXPECT_EQ(outcome.status, 2);
            EXPECT_FALSE(outcome.err.trimmed().isEmpty());
        }
        if (!server.leftovers().isEmpty()) {
            // What is left is undone or swept by the next session.
            const Outcome next = server.run({"query", "-S", "local:s", "-d", "a", "select 1"});
            EXPECT_EQ(next.status, 0) << next.err.toStdString();
            EXPECT_EQ(server.leftovers(), QString());
        }
        const QString state = server.state();
        // A statement that the server has done stays done when the client has no memory to hear it;
        // when there is no memory at all, nobody is there to tell.
        const bool unheard =
            (command.arguments.first() == QLatin1String("attach") || fault.lasts) &&
            fault.call == QLatin1String("malloc") && state == after;
        if (!unheard) {
            EXPECT_EQ(state, undisturbed ? after : before);
        }
        if (changesServers(command) && undisturbed) {
            EXPECT_EQ(serverList(), listedAfter);
        }
    }

    FaultedServer server;
    QString before;
    int runs = 0;
};

TEST_F(FailingCalls, LeaveTheUndisturbedResultOrStatusTwo) {
    const auto file = [&](const char* name) { return server.path(QString::fromLatin1(name)); };
    const std::vector<Command> commands = {
        {"load into a new database", {"load", "-S", "local:s", "-d", "fresh", file("a.sql")}},
        {"load on a new server", {"load", "-S", "local:other", "-d", "fresh", file("a.sql")}},
        {"load into an old database", {"load", "-S", "local:s", "-d", "a", file("more.sql")}},
        {"load that replaces", {"load", "-S", "local:s", "-d", "a", "--replace", file("b.sql")}},
        {"load over three databases", {"load", "-S", "local:s", "-d", "a", file("two.sql")}},
        {"compare",
         {"compare", "--source", "local:s", "--source-db", "a", "--target", "local:s",
          "--target-db", "b"}},
        {"data",
         {"data", "--source", "local:s", "--source-db", "a", "--target", "local:s", "--target-db",
          "b", "--table", "t"}},
        {"data of all tables",
         {"data", "--source", "local:s", "--source-db", "a", "--target", "local:s", "--target-db",
          "b"}},
        {"analyze", {"analyze", "-S", "local:s", "-d", "a", "--table", "t"}},
        {"info", {"info", "-S", "local:s", "-d", "a"}},
        {"attach",
         {"attach", "-S", "local:s", "-d", "fresh", server.home() + "/servers/second/a.db"}},
        {"list", {"list", "-S", "local:s", "-d", "a", "-t", "tables"}},
        {"text", {"text", "-S", "local:s", "-d", "a", "-t", "tables", "t"}},
        {"query", {"query", "-S", "local:s", "-d", "a", "select * from t"}},
        {"server add", {"server", "add", "local:second"}},
        {"server remove", {"server", "remove", "local:s"}},
    };
    for (const Command& command : commands) runCommand(command);
    std::cout << runs << " runs with one failed call\n";
}

// The same with the process killed at the call: nothing is told, and everything is old or new.
TEST_F(FailingCalls, AKillAtAnyStepLeavesOldOrNew) {
    const auto file = [&](const char* name) { return server.path(QString::fromLatin1(name)); };
    const std::vector<Command> commands = {
        {"load into a new database", {"load", "-S", "local:s", "-d", "fresh", file("a.sql")}},
        {"load into an old database", {"load", "-S", "local:s", "-d", "a", file("more.sql")}},
        {"load that replaces", {"load", "-S", "local:s", "-d", "a", "--replace", file("b.sql")}},
        {"load over three databases", {"load", "-S", "local:s", "-d", "a", file("two.sql")}},
    };
    int kills = 0;
    for (const Command& command : commands) {
        SCOPED_TRACE(command.name);
        server.goBack();
        ASSERT_EQ(server.run(command.arguments).status, 0);
        const QString after = server.state();
        for (const char* call : {"open", "write", "pwrite", "fsync", "rename"}) {
            server.goBack();
            const qint64 calls =
                server.run(command.arguments, {QString::fromLatin1(call), 0, {}}).calls;
            for (const qint64 at : chosen(calls, SampledKillsPerCall, calls)) {
                server.goBack();
                server.run(command.arguments,
                           {QString::fromLatin1(call), at, QStringLiteral("kill")});
                ++kills;
                SCOPED_TRACE(QStringLiteral("killed at %1 %2").arg(call).arg(at).toStdString());
                const Outcome next = server.run({"query", "-S", "local:s", "-d", "a", "select 1"});
                EXPECT_EQ(next.status, 0) << next.err.toStdString();
                EXPECT_EQ(server.leftovers(), QString());
                const QString state = server.state();
                EXPECT_TRUE(state == before || state == after) << state.toStdString();
            }
        }
    }
    std::cout << kills << " kills\n";
}

}  // namespace
}  // namespace zov::faults
