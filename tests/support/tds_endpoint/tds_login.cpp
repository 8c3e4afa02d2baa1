// PRELOGIN and LOGIN7.
#include "support/tds_endpoint/tds_login.h"

namespace zov::tds {
namespace {

constexpr quint8 LoginAckToken = 0xAD;
constexpr quint8 TransactSql = 1;
constexpr quint8 EncryptionNotSupported = 2;
constexpr char ServerVersion[] = {16, 0, 0x0F, char(0xF5), 0, 0};  // 16.0.4085, big-endian build
constexpr qsizetype FixedLoginSize = 94;
constexpr quint8 IntegratedSecurityFlag = 0x80;

QString readText(const QByteArray& payload, qsizetype entry, bool obfuscated = false) {
    ByteReader at(payload.constData() + entry, payload.size() - entry);
    const auto offset = at.get<quint16>();
    const auto count = at.get<quint16>();
    if (offset > payload.size()) throw Malformed("login text lies outside of its message");
    QByteArray bytes = ByteReader(payload.constData() + offset, payload.size() - offset)
                           .bytes(qsizetype(count) * 2);
    if (obfuscated)
        for (char& byte : bytes) {
            const quint8 plain = quint8(byte) ^ 0xA5;
            byte = char(quint8(plain << 4 | plain >> 4));
        }
    return ByteReader(bytes).utf16(count);
}

}  // namespace

QByteArray preLoginAnswer() {
    struct Option {
        quint8 token;
        QByteArray data;
    };
    const Option options[] = {
        {0, QByteArray(ServerVersion, sizeof ServerVersion)},
        {1, QByteArray(1, char(EncryptionNotSupported))},
        {2, QByteArray(1, '\0')},  // the instance is the one that was asked for
        {3, QByteArray()},
        {4, QByteArray(1, '\0')},  // no multiple active result sets
    };
    qsizetype offset = 1 + qsizetype(std::size(options)) * 5;
    QByteArray answer;
    QByteArray data;
    const auto putBigEndian = [&answer](qsizetype value) {
        answer.append(char(value >> 8)).append(char(value & 255));
    };
    for (const Option& option : options) {
        answer.append(char(option.token));
        putBigEndian(offset);
        putBigEndian(option.data.size());
        data.append(option.data);
        offset += option.data.size();
    }
    return answer.append(char(0xFF)).append(data);
}

Login readLogin(const QByteArray& payload) {
    if (payload.size() < FixedLoginSize) throw Malformed("login message too short");
    ByteReader at(payload);
    Login login;
    at.get<quint32>();  // length of all
    login.protocol = at.get<quint32>();
    login.packetSize = at.get<quint32>();
    at.take(13);  // program version, process, connection, first flags
    login.integrated = at.get<quint8>() & IntegratedSecurityFlag;
    login.host = readText(payload, 36);
    login.user = readText(payload, 40);
    login.password = readText(payload, 44, true);
    login.application = readText(payload, 48);
    login.server = readText(payload, 52);
    login.language = readText(payload, 64);
    login.database = readText(payload, 68);
    return login;
}

void putLoginAck(ByteBuffer& out, quint32 protocol) {
    const QString program = QStringLiteral("Microsoft SQL Server");
    out.u8(LoginAckToken);
    out.u16(quint16(1 + 4 + 1 + program.size() * 2 + 4));
    out.u8(TransactSql);
    for (int shift = 24; shift >= 0; shift -= 8) out.u8(quint8(protocol >> shift));
    out.byteText(program);
    out.raw(ServerVersion, 4);
}

}  // namespace zov::tds
