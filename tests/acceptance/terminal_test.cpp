// The command line at a terminal: what is typed in secret, what a terminal must not be sent, and
// the keys and signals that end a run.
#include "wired_server.h"

#include <QElapsedTimer>
#include <QThread>

#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#include <utmp.h>

namespace zov::acceptance {
namespace {

/// The program with a terminal for its three streams.
class AtTerminal {
 public:
    AtTerminal(const CliHome& home, const QStringList& arguments) {
        QList<QByteArray> words{ZOV_CLI};
        for (const QString& argument : arguments) words += argument.toUtf8();
        std::vector<char*> argv;
        for (QByteArray& word : words) argv.push_back(word.data());
        argv.push_back(nullptr);
        QList<QByteArray> settings{"ZOVRAND_HOME=" + home.home().toUtf8()};
        for (const QString& setting : QProcessEnvironment::systemEnvironment().toStringList()) {
            if (!setting.startsWith("ZOVRAND_")) settings += setting.toLocal8Bit();
        }
        std::vector<char*> environment;
        for (QByteArray& setting : settings) environment.push_back(setting.data());
        environment.push_back(nullptr);
        // A second descriptor of the terminal, so that its state can be seen when the program is
        // gone.
        if (openpty(&master_, &slave_, nullptr, nullptr, nullptr) != 0) return;
        pid_ = fork();
        if (pid_ == 0) {
            login_tty(slave_);
            execve(argv[0], argv.data(), environment.data());
            _exit(127);
        }
    }
    ~AtTerminal() {
        if (pid_ > 0 && !ended_) {
            kill(pid_, SIGKILL);
            waitpid(pid_, nullptr, 0);
        }
        close(master_);
        close(slave_);
    }

    void type(const char* keys) {
        EXPECT_EQ(write(master_, keys, strlen(keys)), ssize_t(strlen(keys)));
    }
    void signal(int number) { kill(pid_, number); }
    bool showsTyping() const {
        termios mode;
        return tcgetattr(slave_, &mode) == 0 && (mode.c_lflag & ECHO);
    }
    /// Whether the words come on the screen within ten seconds.
    bool shows(const char* words) {
        QElapsedTimer time;
        for (time.start(); time.elapsed() < 10'000; readSome(20)) {
            if (screen.contains(words)) return true;
        }
        return false;
    }
    bool hidesTyping() {
        QElapsedTimer time;
        for (time.start(); time.elapsed() < 10'000; QThread::msleep(5)) {
            if (!showsTyping()) return true;
        }
        return false;
    }
    /// Its exit status; -1 when a signal ended it or it doesn't end within ten seconds.
    int status() {
        QElapsedTimer time;
        for (time.start(); time.elapsed() < 10'000; readSome(20)) {
            int status = 0;
            if (waitpid(pid_, &status, WNOHANG) != pid_) continue;
            ended_ = true;
            readSome(100);
            return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        }
        return -1;
    }
    QByteArray screen;

 private:
    void readSome(int milliseconds) {
        pollfd output{master_, POLLIN, 0};
        char bytes[4096];
        while (poll(&output, 1, milliseconds) > 0) {
            const ssize_t got = read(master_, bytes, sizeof bytes);
            if (got <= 0) return;
            screen.append(bytes, got);
            milliseconds = 0;
        }
    }

    int master_ = -1, slave_ = -1;
    pid_t pid_ = -1;
    bool ended_ = false;
};

class Terminal : public ::testing::Test {
 protected:
    QStringList addWithPassword() const {
        return {"server", "add", "db.invalid", "--sql-login", "sa", "--no-check"};
    }
    bool isStored() { return home_.run({"server", "list"}).out.contains("db.invalid"); }

    CliHome home_;
};

TEST_F(Terminal, APasswordIsTypedUnseen) {
    AtTerminal run(home_, addWithPassword());
    ASSERT_TRUE(run.shows("Password of sa: "));
    ASSERT_TRUE(run.hidesTyping());
    run.type("sec\x1Aret\n");  // Ctrl-Z, too
    EXPECT_EQ(run.status(), 0) << run.screen.constData();
    EXPECT_FALSE(run.screen.contains("sec")) << run.screen.constData();
    EXPECT_TRUE(run.showsTyping());
    EXPECT_TRUE(isStored());
}

TEST_F(Terminal, WithoutAPasswordNothingIsStoredAndTypingIsShownAgain) {
    struct Row {
        const char* name;
        const char* keys;
        int signal;
        const char* words;
    };
    for (const Row& row : {Row{"Ctrl-C", "se\x03", 0, "Stopped."},
                           Row{"end of input", "\x04", 0, "No password was given"},
                           Row{"asked to end", "", SIGTERM, "Stopped."},
                           Row{"terminal gone", "", SIGHUP, "Stopped."}}) {
        SCOPED_TRACE(row.name);
        AtTerminal run(home_, addWithPassword());
        ASSERT_TRUE(run.shows("Password of sa: "));
        ASSERT_TRUE(run.hidesTyping());
        run.type(row.keys);
        if (row.signal) run.signal(row.signal);
        EXPECT_EQ(run.status(), 2);
        EXPECT_TRUE(run.screen.contains(row.words)) << run.screen.constData();
        EXPECT_TRUE(run.showsTyping());
        EXPECT_FALSE(isStored());
    }
}

TEST_F(Terminal, AnInputThatEndsIsNoPassword) {
    const CliResult none = home_.run(addWithPassword() + QStringList{"--password-stdin"}, "");
    EXPECT_EQ(none.status, 2) << ::testing::PrintToString(none);
    EXPECT_TRUE(none.err.contains("the input ended"));
    EXPECT_FALSE(isStored());
    const CliResult empty = home_.run(addWithPassword() + QStringList{"--password-stdin"}, "\n");
    EXPECT_EQ(empty.status, 0) << ::testing::PrintToString(empty);
    EXPECT_TRUE(isStored());
}

TEST_F(Terminal, WhatItWouldActOnIsShownAsSigns) {
    const QByteArray evil = "a\x1B[2J\nb";
    home_.loadText("local:try", "A",
                   "CREATE TABLE [" + evil + "] (t nvarchar(40))\nGO\nINSERT INTO [" + evil +
                       "] VALUES (N'\x1B]0;x\a')\nGO\n");
    const QStringList list{"list", "-S", "local:try", "-d", "A", "-t", "tables"};
    const QString shown = QStringLiteral("a\u241B[2J\u240Ab\n");
    EXPECT_EQ(home_.run(list).out, shown);
    EXPECT_EQ(home_.run(list + QStringList{"-0"}).out, QString::fromUtf8(evil + '\0'));

    const QStringList query{"query", "-S", "local:try",
                            "-d",    "A",  "SELECT t FROM [" + QString::fromUtf8(evil) + "]"};
    EXPECT_EQ(home_.run(query).out, "t\n\x1B]0;x\a\n");  // a file gets what there is
    AtTerminal run(home_, query);
    EXPECT_EQ(run.status(), 0);
    EXPECT_FALSE(run.screen.contains('\x1B')) << run.screen.constData();
    EXPECT_TRUE(run.screen.contains(QStringLiteral("\u241B]0;x\u2407").toUtf8()));

    // In messages, wherever they go.
    const CliResult missing =
        home_.run({"text", "-S", "local:try", "-d", "A", "-t", "table", "x\x1B[2J"});
    EXPECT_EQ(missing.status, 2);
    EXPECT_FALSE(missing.err.contains(QChar(0x1B)));
    EXPECT_TRUE(missing.err.contains(QStringLiteral("x\u241B[2J")));
}

/// Commands in front of a server that has fallen silent.
class Stopping : public ::testing::Test {
 protected:
    static void SetUpTestSuite() {
        home_ = new CliHome;
        const QString folder = "local:" + home_->path("wire");
        home_->loadText(folder, "A",
                        "CREATE TABLE T (a int PRIMARY KEY)\nGO\nINSERT INTO T VALUES (1)\nGO\n"
                        "CREATE VIEW V AS SELECT 1 AS a\nGO\n");
        endpoint_ = new TdsEndpoint;
        serve(*endpoint_, folder, *home_);
        qputenv("ZOVRAND_PASSWORD", "secret");
        const QString server = endpoint_->dataSource();
        const QStringList sides{"--source", server, "--source-db", "A",
                                "--target", server, "--target-db", "A"};
        for (const QStringList& command :
             {QStringList{"server", "add", server, "--sql-login", "sa", "--database", "A"},
              QStringList{"compare", "--save", "Structure"} + sides,
              QStringList{"data", "--save", "Rows"} + sides}) {
            const CliResult result = home_->run(command);
            EXPECT_EQ(result.status, 0) << ::testing::PrintToString(result);
        }
    }
    static void TearDownTestSuite() {
        qunsetenv("ZOVRAND_PASSWORD");
        delete endpoint_;
        delete home_;
    }
    void TearDown() override { endpoint_->setFaults({}); }

    static void silence(const QString& statementsWith) {
        TdsFaults faults;
        faults.onlyStatementsWith = statementsWith;
        faults.delayMilliseconds = 120'000;
        faults.deafWhileStalled = true;
        endpoint_->setFaults(faults);
        endpoint_->resetCounters();
    }
    static QList<QStringList> commands() {
        const QString server = endpoint_->dataSource();
        const QStringList one{"-S", server, "-d", "A", "--login", "sa"};
        const QStringList two{"--source", server,        "--source-db", "A",       "--target",
                              server,     "--target-db", "A",           "--login", "sa"};
        return {QStringList{"list", "-t", "tables"} + one,
                QStringList{"text", "-t", "view", "V"} + one,
                QStringList{"compare"} + two,
                QStringList{"data", "--table", "T"} + two,
                QStringList{"data"} + two,
                QStringList{"query", "SELECT a FROM T"} + one,
                QStringList{"analyze", "--table", "T"} + one,
                QStringList{"info"} + one,
                {"run", "Structure"},
                {"run", "Rows"}};
    }

    struct Ended {
        int status;
        qint64 milliseconds;  ///< since the signal
        QString out, err;
    };
    /// Sends the signal when the server has got a statement that it won't answer.
    static Ended stop(const QStringList& arguments, int signal) {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("ZOVRAND_HOME", home_->home());
        process.setProcessEnvironment(environment);
        process.start(ZOV_CLI, arguments);
        EXPECT_TRUE(process.waitForStarted());
        QElapsedTimer time;
        time.start();
        while (endpoint_->statements().isEmpty() && time.elapsed() < 20'000) QThread::msleep(10);
        QThread::msleep(200);
        time.restart();
        ::kill(pid_t(process.processId()), signal);
        Ended ended{-1, 0, {}, {}};
        if (process.waitForFinished(20'000)) {
            if (process.exitStatus() == QProcess::NormalExit) ended.status = process.exitCode();
        } else {
            process.kill();
            process.waitForFinished();
        }
        ended.milliseconds = time.elapsed();
        ended.out = QString::fromUtf8(process.readAllStandardOutput());
        ended.err = QString::fromUtf8(process.readAllStandardError());
        return ended;
    }

    static CliHome* home_;
    static TdsEndpoint* endpoint_;
};
CliHome* Stopping::home_ = nullptr;
TdsEndpoint* Stopping::endpoint_ = nullptr;

TEST_F(Stopping, OneCtrlCEndsEveryCommandAtOnce) {
    for (const QStringList& command : commands()) {
        SCOPED_TRACE(command.join(u' ').toStdString());
        silence({});
        const Ended ended = stop(command, SIGINT);
        EXPECT_EQ(ended.status, 2) << ended.err.toStdString();
        EXPECT_LT(ended.milliseconds, 3000);
        EXPECT_EQ(ended.out, QString());
        EXPECT_TRUE(ended.err.contains("Stopped")) << ended.err.toStdString();
    }
}

TEST_F(Stopping, SignalsToEndDoAsCtrlCDoes) {
    for (const int signal : {SIGTERM, SIGHUP}) {
        silence({});
        const Ended ended = stop(commands()[2], signal);
        EXPECT_EQ(ended.status, 2) << signal << ended.err.toStdString();
        EXPECT_LT(ended.milliseconds, 3000);
        EXPECT_TRUE(ended.err.contains("Stopped")) << ended.err.toStdString();
    }
}

TEST_F(Stopping, WhoIsNotToHearASignalDoesNot) {
    // As with nohup.
    const CliResult result =
        home_->runInShell("trap '' HUP; \"$0\" \"$@\" & p=$!; sleep 0.3; kill -HUP $p; wait $p",
                          QStringList{"query", "-S", endpoint_->dataSource(), "-d", "A", "--login",
                                      "sa", "SELECT a FROM T"});
    EXPECT_EQ(result.status, 0) << ::testing::PrintToString(result);
}

TEST_F(Stopping, ASilentServerTakesItsTimeOutOnce) {
    for (const QStringList& command : commands()) {
        SCOPED_TRACE(command.join(u' ').toStdString());
        silence({});
        QElapsedTimer time;
        time.start();
        const CliResult result = home_->run(command + QStringList{"--set", "Timeout=2"});
        EXPECT_EQ(result.status, 2) << ::testing::PrintToString(result);
        EXPECT_EQ(result.out, QString());
        // A moment for the answer to the cancel, and the start of the program.
        EXPECT_LT(time.elapsed(), 6000);
    }
}

}  // namespace
}  // namespace zov::acceptance
