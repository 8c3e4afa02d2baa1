#include "data/odbc/odbc_session.h"

#include <QHash>
#include <QRegularExpression>

#include <chrono>
#include <condition_variable>
#include <iterator>
#include <list>
#include <thread>

namespace zov::odbc {
namespace {

using Clock = std::chrono::steady_clock;

constexpr auto IdleTime = std::chrono::seconds(30);
constexpr size_t MostIdle = 16;
// A session that came back only now needn't show that it is alive: a run over thousands of objects
// would ask as often as it reads.
constexpr auto JustUsed = std::chrono::milliseconds(500);
// Seconds in which an idle session must show that it is alive.
constexpr int AnswerTimeout = 5;
// In which a server answers a cancel, of which the driver tells nothing.
constexpr auto CancelTime = std::chrono::milliseconds(1000);
constexpr auto SilentTime = std::chrono::seconds(10);
constexpr auto ClosingTime = std::chrono::milliseconds(2000);

// A failure to connect, with the server that was tried and what to look at next.
DbError connectFailure(DbError error, const ServerAddress& server, const ConnectionSpec& spec,
                       bool verified) {
    if (error.sqlState == u"01000" && error.description.startsWith(u"Can't open lib"))
        return DbError(ado_error::Unspecified,
                       QStringLiteral("The ODBC driver can't be loaded: %1. Install FreeTDS with "
                                      "\"sudo apt install tdsodbc\", or Microsoft's driver.")
                           .arg(error.description),
                       error.sqlState, error.native);
    if (isLoginRefusal(error) || isUnknownDatabase(error)) return error;
    QString advice = QStringLiteral(
        "Check that the name is right, that SQL Server runs there and accepts TCP/IP connections, "
        "and that no firewall is in between.");
    if (!server.instance.isEmpty() && server.port == 0)
        advice += QStringLiteral(
            " An instance is found through the SQL Server Browser (UDP port "
            "1434) of its machine; host,port goes without it.");
    if (verified)
        advice += QStringLiteral(
            " ZOVRAND_CA_FILE is set, so the server must offer encryption with a "
            "certificate that the file vouches for.");
    if (spec.integratedSecurity)
        advice += QStringLiteral(
            " Integrated security needs a Kerberos ticket (kinit) off Windows; a SQL "
            "Server login goes without it.");
    QString reason = error.description;
    reason.replace(QStringLiteral("\r\n"), QStringLiteral(" "));
    DbError told(error.number,
                 QStringLiteral("The server \"%1\" can't be reached (tried %2): %3 %4")
                     .arg(spec.dataSource, server.shown(),
                          reason.endsWith(u'.') ? reason : reason + u'.', advice),
                 error.sqlState, error.native);
    told.connectionLost = true;
    return told;
}

/// Servers that let somebody wait in vain a moment ago. A run asks many times, and isn't to wait
/// each time; who tries again after having read the message is let through.
class SilentServers {
 public:
    static SilentServers& instance() {
        static SilentServers servers;
        return servers;
    }
    void note(const QString& server) {
        const std::lock_guard lock(guard_);
        until_[server] = Clock::now() + SilentTime;
    }
    void throwIfSilent(const QString& server) {
        const std::lock_guard lock(guard_);
        const auto found = until_.constFind(server);
        if (found == until_.cend() || Clock::now() >= found.value()) return;
        DbError told(
            ado_error::Unspecified,
            QStringLiteral("The server \"%1\" did not answer in time a moment ago, and isn't "
                           "asked again at once. Try again when it can be reached.")
                .arg(server));
        told.connectionLost = true;
        throw told;
    }
    void forget() {
        const std::lock_guard lock(guard_);
        until_.clear();
    }

 private:
    std::mutex guard_;
    QHash<QString, Clock::time_point> until_;
};

/// "FreeTDS" of "DRIVER={FreeTDS};...".
QByteArray driverNamed(const QString& connectionString) {
    return connectionString.section(u'{', 1).section(u'}', 0, 0).toLocal8Bit();
}

/// The time for an answer was over.
DbError cutOff(const DbError& error) {
    DbError told(ado_error::Timeout, QStringLiteral("Timeout expired"), QStringLiteral("HYT00"));
    told.line = error.line;
    told.connectionLost = true;
    return told;
}

/// The driver says only that the server went away; which one, and what helps, stands behind it.
DbError lostConnection(const DbError& error, const QString& server) {
    DbError told(
        error.number,
        error.description + QStringLiteral("\r\nThe connection to %1 was lost. Try again when the "
                                           "server can be reached.")
                                .arg(server),
        error.sqlState, error.native);
    told.line = error.line;
    told.connectionLost = true;
    return told;
}

}  // namespace

Session::Session(const QString& connectionString, const ServerAddress& server,
                 const ConnectionSpec& spec)
    : driver_(driverNamed(connectionString)),
      connection_(SQL_HANDLE_DBC, environment()),
      key_(connectionString),
      server_(spec.dataSource) {
    const DriverCall call(driver_);
    SQLSetConnectAttrW(handle(), SQL_ATTR_LOGIN_TIMEOUT,
                       pointerOf(SQLULEN(std::max(0, spec.connectTimeout))), SQL_IS_UINTEGER);
    const ServerSocket::Present before = ServerSocket::present();
    SQLWCHAR completed[8];
    SQLSMALLINT completedLength = 0;
    const SQLRETURN result = SQLDriverConnectW(
        handle(), nullptr, wide(connectionString), SQLSMALLINT(connectionString.size()), completed,
        SQLSMALLINT(8), &completedLength, SQL_DRIVER_NOPROMPT);
    if (!SQL_SUCCEEDED(result)) {
        const DbError error =
            errorFrom(readDiagnostics(SQL_HANDLE_DBC, handle()), Phase::Connecting);
        if (error.sqlState.startsWith(u"HYT")) SilentServers::instance().note(server_);
        throw connectFailure(error, server, spec, Encryption::fromEnvironment().verified());
    }
    waiting_ = Waiting::on(ServerSocket::since(before, server.tcpPort()));
    SQLUINTEGER extensions = 0;
    SQLGetInfoW(handle(), SQL_GETDATA_EXTENSIONS, &extensions, sizeof extensions, nullptr);
    readsAnyColumn_ = (extensions & SQL_GD_ANY_COLUMN) && (extensions & SQL_GD_ANY_ORDER);
    rememberDatabase();
}

Session::~Session() {
    const DriverCall call(driver_);
    connection_.reset();
}

void Session::rememberDatabase() {
    char16_t name[256] = {};
    SQLINTEGER bytes = 0;
    if (SQL_SUCCEEDED(
            SQLGetConnectAttrW(handle(), SQL_ATTR_CURRENT_CATALOG, name, sizeof name - 2, &bytes)))
        database_ = QString::fromUtf16(name);
    if (database_.isEmpty()) reusable_ = false;
}

void Session::setRunning(SQLHSTMT statement) {
    const std::lock_guard lock(runningGuard_);
    running_ = statement;
    if (!statement) return;
    cancelled_ = false;
    waiting_->beginStatement();
}

bool Session::isBusy() const {
    const std::lock_guard lock(runningGuard_);
    return running_ != nullptr;
}

void Session::cancel() {
    // Under the lock, so that the statement isn't freed meanwhile.
    const std::lock_guard lock(runningGuard_);
    if (!running_) return;
    cancelled_ = true;
    waiting_->shorten(CancelTime);
    const DriverCall call(driver_);
    SQLCancel(running_);
}

Patience Session::whileWaiting(int seconds) const {
    using std::chrono::milliseconds;
    return Patience(
        *waiting_, seconds > 0 ? std::chrono::seconds(seconds) + CancelTime : milliseconds::zero());
}

Patience Session::whileClosing() const {
    return Patience(*waiting_, ClosingTime);
}

bool Session::wasCancelled() const {
    const std::lock_guard lock(runningGuard_);
    return cancelled_;
}

bool leavesSessionAsItWas(const QString& commandText) {
    static const QRegularExpression reads(QStringLiteral("^\\s*(SELECT|IF|WITH)\\b"),
                                          QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression changes(
        QStringLiteral(
            "#|\\b(INTO|SET|USE|EXEC|EXECUTE|BEGIN|DECLARE|OPEN|CREATE|ALTER|DROP|INSERT|"
            "UPDATE|DELETE|MERGE|TRUNCATE|GRANT|DENY|REVOKE|REVERT)\\b"),
        QRegularExpression::CaseInsensitiveOption);
    return reads.match(commandText).hasMatch() && !changes.match(commandText).hasMatch();
}

void Session::noteCommand(const QString& text, bool isProcedure) {
    if (reusable_ && (isProcedure || !leavesSessionAsItWas(text))) reusable_ = false;
}

DbError Session::failure(SQLSMALLINT handleType, SQLHANDLE statement) {
    noteFailure();
    const std::vector<Diagnostic> records = readDiagnostics(handleType, statement);
    DbError error = errorFrom(records, Phase::Executing);
    std::vector<Diagnostic> said;
    for (const Diagnostic& record : records)
        if (record.severity < 11) said.push_back(record);
    appendMessages(said, messages);
    SQLUINTEGER dead = SQL_CD_FALSE;
    if (SQL_SUCCEEDED(
            SQLGetConnectAttrW(handle(), SQL_ATTR_CONNECTION_DEAD, &dead, sizeof dead, nullptr)) &&
        dead == SQL_CD_TRUE)
        error.connectionLost = true;
    if (waiting_->wasCut()) {
        error.connectionLost = true;
        if (!wasCancelled()) SilentServers::instance().note(server_);
        // The driver knows only that its connection is gone.
        if (!wasCancelled() && error.number != ado_error::Timeout) error = cutOff(error);
    }
    // A cancel of the user's; that it had to cut the connection is of no interest.
    if (wasCancelled() && (!error.connectionLost || waiting_->wasCut()))
        error.number = ado_error::Cancelled;
    return error.connectionLost ? lostConnection(error, server_) : error;
}

bool Session::reset() {
    messages.clear();
    SQLUINTEGER dead = SQL_CD_FALSE;
    return !SQL_SUCCEEDED(SQLGetConnectAttrW(handle(), SQL_ATTR_CONNECTION_DEAD, &dead, sizeof dead,
                                             nullptr)) ||
           dead == SQL_CD_FALSE;
}

bool Session::makeFresh() {
    if (!reset()) return false;
    // A round trip, which also shows whether the server still answers. Not by setting the current
    // catalogue: FreeTDS would wait for the answer for ever.
    const QString use =
        QStringLiteral("USE [%1]").arg(QString(database_).replace(u']', QStringLiteral("]]")));
    const Patience patience = whileWaiting(AnswerTimeout);
    const DriverCall call(driver_);
    const Handle statement(SQL_HANDLE_STMT, handle());
    SQLSetStmtAttrW(statement.get(), SQL_ATTR_QUERY_TIMEOUT, pointerOf(SQLULEN(AnswerTimeout)),
                    SQL_IS_UINTEGER);
    const SQLRETURN result = SQLExecDirectW(statement.get(), wide(use), SQLINTEGER(use.size()));
    return SQL_SUCCEEDED(result) || result == SQL_NO_DATA;
}

namespace {

class SessionPool {
 public:
    static SessionPool& instance() {
        struct Ender {
            SessionPool* pool;
            ~Ender() { pool->end(); }
        };
        // The pool itself is never freed: a session that ends after main() still asks it.
        static SessionPool* const pool = new SessionPool;
        static const Ender ender{pool};
        return *pool;
    }

    /// `justUsed`: its server answered a moment ago.
    std::unique_ptr<Session> take(const QString& key, bool& justUsed) {
        const std::lock_guard lock(guard_);
        for (auto at = idle_.begin(); at != idle_.end(); ++at) {
            if (at->session->key() != key) continue;
            std::unique_ptr<Session> session = std::move(at->session);
            justUsed = Clock::now() < at->until - IdleTime + JustUsed;
            idle_.erase(at);
            return session;
        }
        return nullptr;
    }

    void give(std::unique_ptr<Session> session) {
        std::unique_ptr<Session> surplus;  // ended outside the lock: that is a round trip
        const std::lock_guard lock(guard_);
        if (ending_) return;
        // The one used last goes out first, so that the others can grow old.
        idle_.push_front({std::move(session), Clock::now() + IdleTime});
        if (idle_.size() > MostIdle) {
            surplus = std::move(idle_.back().session);
            idle_.pop_back();
        }
        if (!reaper_.joinable()) reaper_ = std::thread([this] { reap(); });
        wake_.notify_all();
    }

    void drop(const QString& key) {
        std::list<Idle> dropped;
        const std::lock_guard lock(guard_);
        for (auto at = idle_.begin(); at != idle_.end();) {
            const auto next = std::next(at);
            if (at->session->key() == key) dropped.splice(dropped.end(), idle_, at);
            at = next;
        }
    }

    void clear() {
        std::list<Idle> dropped;
        const std::lock_guard lock(guard_);
        dropped.swap(idle_);
    }

 private:
    struct Idle {
        std::unique_ptr<Session> session;
        Clock::time_point until;
    };

    void end() {
        {
            const std::lock_guard lock(guard_);
            ending_ = true;
            wake_.notify_all();
        }
        if (reaper_.joinable()) reaper_.join();
        clear();
    }

    void reap() {
        std::unique_lock lock(guard_);
        while (!ending_) {
            if (idle_.empty()) {
                wake_.wait(lock);
                continue;
            }
            // The oldest stands last.
            const Clock::time_point until = idle_.back().until;
            if (Clock::now() < until) {
                wake_.wait_until(lock, until);
                continue;
            }
            std::unique_ptr<Session> expired = std::move(idle_.back().session);
            idle_.pop_back();
            lock.unlock();
            expired.reset();
            lock.lock();
        }
    }

    std::mutex guard_;
    std::condition_variable wake_;
    std::list<Idle> idle_;
    std::thread reaper_;
    bool ending_ = false;
};

}  // namespace

std::shared_ptr<Session> borrowSession(const QString& connectionString, const ServerAddress& server,
                                       const ConnectionSpec& spec) {
    SilentServers::instance().throwIfSilent(spec.dataSource);
    SessionPool& pool = SessionPool::instance();
    std::unique_ptr<Session> session;
    bool justUsed = false;
    if ((session = pool.take(connectionString, justUsed))) {
        const bool alive = justUsed ? session->reset() : session->makeFresh();
        session->isProven = alive && !justUsed;
        if (!alive) {
            // The others have most likely gone the same way, and each costs a wait to find out.
            session.reset();
            pool.drop(connectionString);
        }
    }
    if (!session) session = std::make_unique<Session>(connectionString, server, spec);
    return std::shared_ptr<Session>(session.release(), [](Session* ended) {
        std::unique_ptr<Session> owned(ended);
        if (owned->isReusable()) SessionPool::instance().give(std::move(owned));
    });
}

std::shared_ptr<Session> replaceSession(const Session& dead, const ServerAddress& server,
                                        const ConnectionSpec& spec) {
    SessionPool::instance().drop(dead.key());
    return borrowSession(dead.key(), server, spec);
}

void dropIdleSessions() {
    SilentServers::instance().forget();
    SessionPool::instance().clear();
}

}  // namespace zov::odbc
