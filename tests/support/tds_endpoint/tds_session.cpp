// Login, batches, results and attentions of one client.
#include "support/tds_endpoint/tds_session.h"

#include "data/base/db_error.h"
#include "support/tds_endpoint/tds_rows.h"

#include <QRegularExpression>

#include <chrono>
#include <thread>

namespace zov::tds {
namespace {

using namespace std::chrono_literals;

constexpr quint32 OldestProtocol = 0x730A0003;  // TDS 7.3: rows as this endpoint writes them
constexpr quint32 NewestProtocol = 0x74000004;
constexpr int SmallestPacket = 512;
constexpr int DefaultPacket = 4096;
constexpr int LargestPacket = 32'767;
constexpr auto CancelAgainAfter = 20ms;
constexpr qsizetype RowsAtOnce = 1000;
constexpr qsizetype LongRowsAtOnce = 8;
constexpr qsizetype ComfortableBlock = 4 * 1024 * 1024;
constexpr size_t SendRowsAbove = 1024 * 1024;

/// A batch of nothing but options that a driver sets for a session.
bool isSessionOptions(const QString& batch) {
    static const QRegularExpression options(
        QLatin1String(
            R"(\A(?:\s*SET\s+(?:ANSI_\w+|ARITH\w+|CONCAT_NULL_YIELDS_NULL|)"
            R"(CURSOR_CLOSE_ON_COMMIT|DATEFIRST|DATEFORMAT|DEADLOCK_PRIORITY|FMTONLY|)"
            R"(IMPLICIT_TRANSACTIONS|LANGUAGE|LOCK_TIMEOUT|NOCOUNT|NOEXEC|)"
            R"(NO_BROWSETABLE|NUMERIC_ROUNDABORT|QUERY_GOVERNOR_COST_LIMIT|)"
            R"(QUOTED_IDENTIFIER|ROWCOUNT|TEXTSIZE|TRANSACTION\s+ISOLATION\s+LEVEL|)"
            R"(XACT_ABORT|STATISTICS\s+\w+)\s+(?:READ\s+|REPEATABLE\s+)?[-\w']+\s*;?)+\s*\z)"),
        QRegularExpression::CaseInsensitiveOption);
    return options.match(batch).hasMatch();
}

/// The statement of a batch that asks for its columns only, or nothing. Bulk copy begins so.
QString formatOnlyStatement(const QString& batch) {
    static const QRegularExpression formatOnly(
        QLatin1String(R"(\A\s*SET\s+FMTONLY\s+ON\b(.*)\bSET\s+FMTONLY\s+OFF\s*\z)"),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    return formatOnly.match(batch).captured(1);
}

/// The database of a batch that begins with USE, or nothing.
QString databaseOfUse(const QString& batch) {
    static const QRegularExpression use(
        QLatin1String(R"re(\A(?:\s|--[^\n]*\n|/\*.*?\*/)*USE\s*(?:\[((?:[^]]|\]\])+)\]|)re"
                      R"re("((?:[^"]|"")+)"|(?<=\s)([^\s;\[\]"]+)))re"),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch match = use.match(batch);
    if (!match.hasMatch()) return {};
    if (!match.capturedView(1).isEmpty())
        return match.captured(1).replace(QStringLiteral("]]"), QStringLiteral("]"));
    if (!match.capturedView(2).isEmpty())
        return match.captured(2).replace(QStringLiteral("\"\""), QStringLiteral("\""));
    return match.captured(3);
}

qint32 serverNumber(const DbError& error) {
    if (error.native) return error.native;
    switch (error.number) {
        case ado_error::SyntaxError:
            return 102;
        case ado_error::NoSuchTable:
            return 208;
        case ado_error::IntegrityViolation:
            return 2627;
        default:
            return 50'000;
    }
}

DbError missingDatabase(const QString& name) {
    return DbError(
        ado_error::SyntaxError,
        QStringLiteral("Database '%1' does not exist. Make sure that the name is entered "
                       "correctly.")
            .arg(name),
        QStringLiteral("08004"), 911);
}

}  // namespace

void Session::run() {
    shared_.count(&TdsCounters::openSessions);
    std::thread reader([this] { readLoop(); });
    try {
        serve();
    } catch (const std::exception&) {
        // Whatever ended the session, the client sees its connection go.
    }
    channel_.shutDown();
    reader.join();
    connection_.reset();
    shared_.count(&TdsCounters::openSessions, -1);
    finished_ = true;
}

void Session::cut() {
    channel_.shutDown();
}

void Session::readLoop() {
    try {
        for (;;) {
            // The command may not have reached the point where a cancel is noticed: ask again.
            if (!channel_.waitReadable(cancelled_ ? int(CancelAgainAfter.count()) : -1)) {
                if (cancelled_) cancelRunningCommand();
                continue;
            }
            Message message;
            if (!channel_.read(message)) break;
            const bool attention = message.type == PacketType::Attention;
            if (attention) shared_.count(&TdsCounters::attentions);
            {
                const std::lock_guard lock(mutex_);
                if (attention) cancelled_ = true;
                messages_.push_back(std::move(message));
            }
            arrived_.notify_all();
            if (attention) cancelRunningCommand();
        }
    } catch (const std::exception&) {
        channel_.shutDown();
    }
    std::unique_lock lock(mutex_);
    ended_ = true;
    cancelled_ = true;
    arrived_.notify_all();
    while (running_) {
        lock.unlock();
        cancelRunningCommand();
        std::this_thread::sleep_for(CancelAgainAfter);
        lock.lock();
    }
}

void Session::cancelRunningCommand() {
    const std::lock_guard lock(mutex_);
    if (!running_ || !connection_) return;
    try {
        connection_->cancel();
    } catch (const std::exception&) {
        // A command that can't be cancelled runs to its end.
    }
}

bool Session::nextMessage(Message& message) {
    std::unique_lock lock(mutex_);
    arrived_.wait(lock, [this] { return ended_ || !messages_.empty(); });
    if (messages_.empty()) return false;
    message = std::move(messages_.front());
    messages_.pop_front();
    return true;
}

void Session::startCommand() {
    const std::lock_guard lock(mutex_);
    running_ = true;
}

void Session::endCommand() {
    const std::lock_guard lock(mutex_);
    running_ = false;
}

void Session::serve() {
    for (Message message; nextMessage(message);) {
        if (message.type == PacketType::PreLogin) {
            const QByteArray answer = preLoginAnswer();
            channel_.out.raw(answer.constData(), size_t(answer.size()));
            channel_.send(Channel::Upto::MessageEnd);
            continue;
        }
        if (!loggedIn_) {
            if (message.type != PacketType::Login || !answerLogin(message)) return;
            continue;
        }
        switch (message.type) {
            case PacketType::Batch:
                answerBatch(message);
                break;
            case PacketType::Rpc:
                answerRpc(message);
                break;
            case PacketType::Transaction:
                answerTransaction(message);
                break;
            case PacketType::Attention:
                answerAttention();
                continue;
            default:
                putNotice(4002, 16,
                          QStringLiteral("The endpoint doesn't take messages of this kind."));
                putDone(channel_.out, Done, DoneError);
        }
        // The rest of a cancelled answer goes out with the attention's acknowledgement.
        if (!cancelled_) channel_.send(Channel::Upto::MessageEnd);
    }
}

void Session::answerAttention() {
    cancelled_ = false;
    putDone(channel_.out, Done, DoneAttention);
    channel_.send(Channel::Upto::MessageEnd);
}

bool Session::answerLogin(const Message& message) {
    login_ = readLogin(message.payload);
    const TdsEndpointOptions& options = shared_.options;
    const TdsFaults faults = shared_.currentFaults();
    ServerText refusal{18456, 1, 14, 1, {}, options.serverName, {}};
    refusal.text = QStringLiteral("Login failed for user '%1'.").arg(login_.user);
    if (faults.loginDelayMilliseconds) {
        std::unique_lock lock(mutex_);
        arrived_.wait_for(lock, std::chrono::milliseconds(faults.loginDelayMilliseconds),
                          [this] { return ended_; });
    }
    if (login_.protocol < OldestProtocol) {
        refusal.text = QStringLiteral("The endpoint speaks TDS 7.3 and 7.4 only.");
        refuseLogin(refusal);
        return false;
    }
    if (faults.refuseLogin || login_.integrated ||
        login_.user.compare(options.user, Qt::CaseInsensitive) ||
        login_.password != options.password) {
        refuseLogin(refusal);
        return false;
    }
    ConnectionSpec spec;
    spec.dataSource = options.dataSource;
    spec.database = login_.database.isEmpty() ? options.defaultDatabase : login_.database;
    try {
        if (faults.missingDatabases.contains(spec.database, Qt::CaseInsensitive))
            throw missingDatabase(spec.database);
        connection_ = options.provider->open(spec, false);
    } catch (const DbError& error) {
        if (error.native == 911 || error.native == 4060) {
            putNotice(
                4060, 11,
                QStringLiteral("Cannot open database \"%1\" requested by the login. The login "
                               "failed.")
                    .arg(spec.database));
        } else {
            refusal.text = error.description;
        }
        refuseLogin(refusal);
        return false;
    }

    const QString before = options.defaultDatabase;
    database_ = before;
    changeDatabase(spec.database);
    ByteBuffer& out = channel_.out;
    putBytesChange(out, Change::SqlCollation, QByteArray(Collation, sizeof Collation), {});
    putTextChange(out, Change::Language, QStringLiteral("us_english"), {});
    putNotice(5703, 10, QStringLiteral("Changed language setting to us_english."));
    putLoginAck(out, std::min(login_.protocol, NewestProtocol));
    const int wish = login_.packetSize ? int(std::min<quint32>(login_.packetSize, LargestPacket))
                                       : DefaultPacket;
    const int packetSize = std::max(wish, SmallestPacket);
    putTextChange(out, Change::PacketSize, QString::number(packetSize),
                  QString::number(packetSize));
    putDone(out, Done, DoneFinal);
    channel_.send(Channel::Upto::MessageEnd);
    channel_.setPacketSize(packetSize);
    loggedIn_ = true;
    shared_.count(&TdsCounters::logins);
    return true;
}

void Session::refuseLogin(const ServerText& why) {
    shared_.count(&TdsCounters::refusedLogins);
    putServerText(channel_.out, why);
    putDone(channel_.out, Done, DoneError);
    channel_.send(Channel::Upto::MessageEnd);
}

void Session::answerBatch(const Message& message) {
    ByteReader text = behindHeaders(message.payload);
    CommandSpec command;
    command.text = text.utf16(text.left() / 2);
    command.timeout = 0;  // the client's time-out arrives as an attention
    shared_.count(&TdsCounters::batches);
    const QString described = formatOnlyStatement(command.text);
    if (described.isEmpty()) {
        runCommand(command, Done, false);
    } else {
        shared_.note(command.text);
        putColumnsOnly(described, Done);
        putDone(channel_.out, Done, DoneFinal);
    }
}

void Session::answerTransaction(const Message& message) {
    enum : quint16 { Begin = 5, Commit = 7, Rollback = 8 };
    constexpr quint8 BeginNext = 1;
    ByteReader at = behindHeaders(message.payload);
    const auto request = at.get<quint16>();
    if (request == Begin) at.get<quint8>();  // isolation level
    at.take(at.get<quint8>());               // the transaction's name
    const bool beginNext = request != Begin && !at.atEnd() && at.get<quint8>() & BeginNext;
    const auto runText = [this](const char16_t* text) {
        CommandSpec command;
        command.text = QString::fromUtf16(text);
        command.timeout = 0;
        return !runCommand(command, Done, true).failed;
    };
    const auto descriptor = [this] {
        return QByteArray(reinterpret_cast<const char*>(&transaction_), sizeof transaction_);
    };
    if (request != Begin && request != Commit && request != Rollback) {
        putNotice(4002, 16, QStringLiteral("The endpoint has no distributed transactions."));
        putDone(channel_.out, Done, DoneError);
        return;
    }
    bool done = true;
    if (request != Begin) {
        done = runText(request == Commit ? u"COMMIT TRANSACTION" : u"ROLLBACK TRANSACTION");
        if (done)
            putBytesChange(
                channel_.out,
                request == Commit ? Change::CommitTransaction : Change::RollbackTransaction, {},
                descriptor());
    }
    if (done && (request == Begin || beginNext)) {
        done = runText(u"BEGIN TRANSACTION");
        ++transaction_;
        if (done) putBytesChange(channel_.out, Change::BeginTransaction, descriptor(), {});
    }
    if (done) putDone(channel_.out, Done, DoneFinal);
}

Session::Outcome Session::runCommand(const CommandSpec& command, DoneToken done, bool openEnd) {
    shared_.note(command.text);
    TdsFaults faults = shared_.currentFaults();
    if (!command.text.contains(faults.onlyStatementsWith)) {
        const QStringList missing = faults.missingDatabases;
        faults = {};
        faults.missingDatabases = missing;
    }
    Outcome outcome;
    struct Running {
        explicit Running(Session& session) : session(session) { session.startCommand(); }
        ~Running() { session.endCommand(); }
        Session& session;
    } const running(*this);
    try {
        waitBefore(faults);
        if (cancelled_) return {true, {}, 0};
        if (faults.failStatement > 0 && !isSessionOptions(command.text) &&
            shared_.isToFail(faults)) {
            if (faults.dropInstead) {
                channel_.shutDown();
                throw ConnectionGone("dropped on purpose");
            }
            throw DbError(ado_error::Unspecified, faults.errorText, {}, faults.errorNumber);
        }
        const QString used = command.storedProcedure ? QString() : databaseOfUse(command.text);
        if (faults.missingDatabases.contains(used, Qt::CaseInsensitive))
            throw missingDatabase(used);
        const std::unique_ptr<ResultStream> stream = connection_->execute(command);
        if (!used.isEmpty()) changeDatabase(used);
        putResults(*stream, faults, done, openEnd);
        if (cancelled_) return {true, {}, 0};
        outcome.returnValue = stream->returnValue();
        for (size_t i = 0; i < command.parameters.size(); ++i)
            outcome.outputs.push_back(stream->outputValue(int(i)));
    } catch (const DbError& error) {
        outcome.failed = true;
        if (cancelled_) return outcome;
        putMessages();
        if (isSessionOptions(command.text)) {
            // A provider needn't know what a driver sets for itself.
            putDone(channel_.out, done, DoneFinal);
            return {};
        }
        putError(error);
        putDone(channel_.out, done, DoneError | (openEnd ? DoneMore : DoneFinal));
    }
    return outcome;
}

void Session::waitBefore(const TdsFaults& faults) {
    if (!faults.delayMilliseconds) return;
    std::unique_lock lock(mutex_);
    arrived_.wait_for(lock, std::chrono::milliseconds(faults.delayMilliseconds),
                      [&] { return ended_ || (cancelled_.load() && !faults.deafWhileStalled); });
}

void Session::putResults(ResultStream& stream, const TdsFaults& faults, DoneToken done,
                         bool openEnd) {
    for (;;) {
        putMessages();
        const bool hasRows = !stream.columns().empty();
        qint64 count = -1;
        if (hasRows)
            putRows(stream, faults, count);
        else
            count = stream.affectedRows();
        if (cancelled_) {
            stream.close();
            return;
        }
        const auto put = [&](bool more) {
            putDone(channel_.out, done, (count >= 0 ? DoneCount : 0) | (more ? DoneMore : 0),
                    std::max<qint64>(count, 0), hasRows ? SelectCommand : quint16(0));
        };
        bool more = false;
        try {
            more = stream.nextResult();
        } catch (const DbError&) {
            put(true);
            throw;
        }
        if (more) {
            put(true);
            continue;
        }
        const size_t before = channel_.out.size();
        putMessages();
        if (channel_.out.size() == before) {
            if (!openEnd || hasRows || count >= 0) put(openEnd);
            return;
        }
        // Messages behind the last result belong to statements of their own.
        const QByteArray messages(channel_.out.data() + before,
                                  qsizetype(channel_.out.size() - before));
        channel_.out.truncate(before);
        put(true);
        channel_.out.raw(messages.constData(), size_t(messages.size()));
        if (!openEnd) putDone(channel_.out, done, DoneFinal);
        return;
    }
}

void Session::putRows(ResultStream& stream, const TdsFaults& faults, qint64& count) {
    const auto fault = [&] {
        if (count == faults.stallAfterRows) {
            channel_.send(Channel::Upto::Everything);
            std::unique_lock lock(mutex_);
            arrived_.wait_for(lock, std::chrono::milliseconds(faults.stallMilliseconds), [&] {
                return ended_ || (cancelled_.load() && !faults.deafWhileStalled);
            });
        }
        if (count == faults.dropAfterRows) {
            channel_.send(Channel::Upto::Everything);
            channel_.shutDown();
            throw ConnectionGone("dropped on purpose");
        }
        if (count == faults.errorAfterRows)
            throw DbError(ado_error::Unspecified, faults.errorText, {}, faults.errorNumber);
    };
    count = 0;
    try {
        const RowEncoder encoder(stream.columns());
        encoder.putColumns(channel_.out);
        RowStore rows(stream.columns());
        qsizetype atOnce = encoder.hasLongColumns() ? LongRowsAtOnce : RowsAtOnce;
        for (qsizetype got; (got = stream.fetch(rows, atOnce)) > 0 && !cancelled_; rows.clear()) {
            for (qsizetype row = 0; row < got; ++row) {
                fault();
                encoder.putRow(rows, row, channel_.out);
                ++count;
                if (channel_.out.size() > SendRowsAbove) channel_.send(Channel::Upto::WholePackets);
            }
            channel_.sendSome();
            atOnce = rows.reservedBytes() < ComfortableBlock ? std::min(atOnce * 2, RowsAtOnce)
                                                             : std::max<qsizetype>(atOnce / 2, 1);
            if (rows.reservedBytes() > 16 * ComfortableBlock) rows = RowStore(stream.columns());
        }
        fault();
    } catch (const CellMisfit& misfit) {
        throw DbError(ado_error::Unspecified, QStringLiteral("The endpoint can't send a row: ") +
                                                  QString::fromUtf8(misfit.what()));
    }
}

void Session::putMessages() {
    for (const ServerMessage& message : connection_->takeMessages()) {
        ServerText text{message.number,
                        1,
                        quint8(std::min(message.severity, 10)),
                        message.line,
                        message.text,
                        shared_.options.serverName,
                        {}};
        putServerText(channel_.out, text);
    }
}

void Session::putError(const DbError& error) {
    putServerText(channel_.out, {serverNumber(error),
                                 1,
                                 16,
                                 std::max(error.line, 1),
                                 error.description,
                                 shared_.options.serverName,
                                 {}});
}

void Session::putNotice(qint32 number, quint8 severity, const QString& text) {
    putServerText(channel_.out, {number, 1, severity, 1, text, shared_.options.serverName, {}});
}

void Session::changeDatabase(const QString& database) {
    putTextChange(channel_.out, Change::Database, database, database_);
    putNotice(5701, 10, QStringLiteral("Changed database context to '%1'.").arg(database));
    database_ = database;
}

}  // namespace zov::tds
