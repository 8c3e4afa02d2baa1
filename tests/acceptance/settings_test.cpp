// The stored settings and the list of servers in the hands of several processes at once, and when
// they can't be read.
#include "cli_runner.h"
#include "util/file_lock.h"

#include <QElapsedTimer>

namespace zov::acceptance {
namespace {

class StoredSettings : public ::testing::Test {
 protected:
    /// The stored names, sorted.
    QStringList servers() const {
        const CliResult result = home_.run({"server", "list"});
        EXPECT_EQ(result.status, 0) << ::testing::PrintToString(result);
        QStringList names;
        for (const QString& line : result.outLines()) names += line.section(u'\t', 0, 0);
        names.sort();
        return names;
    }
    static QStringList numbered(const char* name, int count) {
        QStringList names;
        for (int n = 1; n <= count; ++n) names += QLatin1StringView(name) + QString::number(n);
        names.sort();
        return names;
    }

    CliHome home_;
};

TEST_F(StoredSettings, ServersAddedAtOnceAreAllThere) {
    // Beginning with a home that none of them has ever started in.
    const CliResult result = home_.runInShell(
        "for n in 1 2 3 4 5 6 7 8 9 10 11 12; do \"$0\" server add local:s$n --no-check & done; "
        "wait",
        {});
    EXPECT_EQ(result.err.count("Added local:s"), 12) << ::testing::PrintToString(result);
    EXPECT_EQ(servers(), numbered("local:s", 12));
}

TEST_F(StoredSettings, OfOneNameAddedAtOnceOneIsIn) {
    const CliResult result = home_.runInShell(
        "for n in 1 2 3 4 5 6 7 8; do \"$0\" server add local:one --no-check & done; wait", {});
    EXPECT_EQ(result.err.count("Added local:one"), 1) << ::testing::PrintToString(result);
    EXPECT_EQ(result.err.count("already added"), 7) << ::testing::PrintToString(result);
    EXPECT_EQ(servers(), QStringList{"local:one"});
}

TEST_F(StoredSettings, AddingBesideRemovingLeavesNoGaps) {
    home_.runInShell("for n in 1 2 3 4 5 6; do \"$0\" server add local:old$n --no-check; done", {});
    const CliResult result = home_.runInShell(
        "for n in 1 2 3 4 5 6; do \"$0\" server remove local:old$n & \"$0\" server add "
        "local:new$n --no-check & done; wait",
        {});
    EXPECT_EQ(servers(), numbered("local:new", 6)) << ::testing::PrintToString(result);
}

TEST_F(StoredSettings, ReadingDoesNotWaitForWhoWrites) {
    home_.loadText("local:try", "A", "CREATE TABLE T (a int)\n");
    FileLock lock;
    ASSERT_EQ(lock.acquire(home_.home() + "/registry.reg.lock", FileLock::Mode::Exclusive, 0),
              FileLock::Outcome::Locked);
    const QStringList compare{"compare",     "--source",    "local:try",
                              "--source-db", "A",           "--target",
                              "local:try",   "--target-db", "A"};
    for (const QStringList& command : {QStringList{"server", "list"}, compare}) {
        QElapsedTimer time;
        time.start();
        const CliResult result = home_.run(command);
        EXPECT_EQ(result.status, 0) << ::testing::PrintToString(result);
        EXPECT_LT(time.elapsed(), 5000) << command.join(u' ').toStdString();
    }
}

TEST_F(StoredSettings, SettingsThatCantBeReadEndEachCommand) {
    home_.loadText("local:try", "A", "CREATE TABLE T (a int)\n");
    const QString file = home_.home() + "/registry.reg";
    ASSERT_TRUE(QFile::rename(file, file + ".aside"));
    // Nobody, not even the administrator, reads a folder.
    ASSERT_TRUE(QDir().mkpath(file));
    const QStringList databases{"--source", "local:try", "--source-db", "A",
                                "--target", "local:try", "--target-db", "A"};
    const QString sentence = "zovrand-cli: Cannot read " + file + ": it is a folder.";
    for (const QStringList& command :
         {QStringList{"server", "list"}, QStringList{"server", "add", "local:new", "--no-check"},
          QStringList{"compare"} + databases, QStringList{"data"} + databases,
          QStringList{"list", "-S", "local:try", "-d", "A", "-t", "tables"}}) {
        const CliResult result = home_.run(command);
        EXPECT_EQ(result.status, 2) << command.join(u' ').toStdString();
        EXPECT_EQ(result.errLines().value(0), sentence);
        EXPECT_EQ(result.out, QString());
    }
}

}  // namespace
}  // namespace zov::acceptance
