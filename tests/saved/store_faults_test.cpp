// Programs that save and delete at once, and programs that are killed while they do:
// what is in the file of saved processes is always whole.
#include "saved_fixture.h"

#include "util/atomic_file.h"
#include "util/cInifile.h"
#include "util/ini_document.h"

#include <QElapsedTimer>
#include <QSet>

#include <random>

#include <sys/wait.h>
#include <unistd.h>
#include <csignal>

namespace zov {
namespace {

class StoreFaults : public test::SavedProcesses {
 protected:
    /// Saves and deletes processes of its own names, each with lists that tell whose they are.
    static void work(const QString& prefix, int rounds) {
        for (int n = 0; n < rounds; ++n) {
            const QString name = prefix + QString::number(n);
            const QStringList names(n % 4 + 1, name);
            SaveComparisonProcess(process(name, names, names));
            if (n % 3 == 2) DeleteSavedProcesses({name});
            if (n % 5 == 4) SaveComparisonProcess(process(prefix + u'0', {prefix + u'0'}, {}));
        }
    }
    static pid_t start(const QString& prefix, int rounds) {
        const pid_t child = fork();
        if (child != 0) return child;
        work(prefix, rounds);
        _exit(0);
    }
    static void waitFor(pid_t child) {
        int status = 0;
        waitpid(child, &status, 0);
    }
    /// Every process is complete, its lists are its own, and no number is there twice.
    void expectWhole() {
        QSet<qint32> ids;
        for (const QString& name : FillProcessList()) {
            SavedProcess read;
            EXPECT_TRUE(GetSavedProcessDetails(name, read)) << name.toStdString() << told();
            EXPECT_GE(read.Id, 1);
            EXPECT_FALSE(ids.contains(read.Id)) << "number " << read.Id << " twice";
            ids.insert(read.Id);
            for (const QString& object : read.SourceNames + read.TargetNames)
                EXPECT_EQ(object.toStdString(), name.toStdString());
            cInifile file(globals().gstrCompsIni);
            file.SectionCase = Qt::CaseSensitive;
            EXPECT_EQ(file.read().keys(name).size(), 22) << name.toStdString();
        }
    }
};

TEST_F(StoreFaults, TwoWritersLoseNothingAndShareNoNumber) {
    const pid_t one = start(QStringLiteral("x"), 15), other = start(QStringLiteral("y"), 15);
    work(QStringLiteral("z"), 15);
    waitFor(one);
    waitFor(other);
    expectWhole();
    // Of fifteen each, every third was deleted again.
    EXPECT_EQ(CountSavedProcesses(), 30);
    EXPECT_EQ(told(), "");
}

TEST_F(StoreFaults, TwoWritersOfOneNameAreToldApart) {
    EXPECT_TRUE(
        SaveComparisonProcess(process(QStringLiteral("N"), {QStringLiteral("N")}, {}), false));
    int refused = 0;
    std::vector<pid_t> children;
    for (int n = 0; n < 4; ++n) {
        const pid_t child = fork();
        if (child == 0) {
            bool exists = false;
            const bool saved =
                SaveComparisonProcess(process(QStringLiteral("new")), false, &exists);
            _exit(saved ? 1 : exists ? 2 : 3);
        }
        children.push_back(child);
    }
    int saved = 0;
    for (const pid_t child : children) {
        int status = 0;
        waitpid(child, &status, 0);
        saved += WEXITSTATUS(status) == 1;
        refused += WEXITSTATUS(status) == 2;
    }
    EXPECT_EQ(saved, 1);
    EXPECT_EQ(refused, 3);
    expectWhole();
}

TEST_F(StoreFaults, AKillAtAnyMomentLeavesWholeProcesses) {
    for (int n = 0; n < 5; ++n) {
        const QString name = QStringLiteral("keep%1").arg(n);
        save(process(name, {name}, {name, name}));
    }
    std::mt19937 random(20261123);
    int cutShort = 0;
    for (int kill = 0; kill < 100; ++kill) {
        const pid_t child = start(QStringLiteral("k%1-").arg(kill % 7), 1000);
        usleep(random() % 40000);
        ::kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        cutShort += WIFSIGNALED(status);
        if (kill % 10 == 9) expectWhole();
    }
    EXPECT_EQ(cutShort, 100) << "each was still at work";
    expectWhole();
    QStringList names = FillProcessList();
    for (int n = 0; n < 5; ++n) EXPECT_TRUE(names.contains(QStringLiteral("keep%1").arg(n))) << n;
    EXPECT_GT(names.size(), 5);
    // A lock that a killed program left doesn't hold the next one up.
    QElapsedTimer clock;
    clock.start();
    save(process(QStringLiteral("after"), {QStringLiteral("after")}, {}));
    EXPECT_LT(clock.elapsed(), 1000);
    expectWhole();
    EXPECT_EQ(told(), "");
}

}  // namespace
}  // namespace zov
