// The tokens of a response that carry no rows: environment changes, messages, ends of statements.
#pragma once

#include "support/tds_endpoint/tds_bytes.h"

namespace zov::tds {

/// Type bytes of columns and parameters, as they stand on the wire.
enum WireType : quint8 {
    WireImage = 0x22,
    WireText = 0x23,
    WireGuid = 0x24,
    WireIntN = 0x26,
    WireDate = 0x28,
    WireTime = 0x29,
    WireDateTime2 = 0x2A,
    WireDateTimeOffset = 0x2B,
    WireInt1 = 0x30,
    WireBit = 0x32,
    WireInt2 = 0x34,
    WireInt4 = 0x38,
    WireSmallDateTime = 0x3A,
    WireReal = 0x3B,
    WireMoney = 0x3C,
    WireDateTime = 0x3D,
    WireFloat = 0x3E,
    WireVariant = 0x62,
    WireNText = 0x63,
    WireBitN = 0x68,
    WireDecimalN = 0x6A,
    WireNumericN = 0x6C,
    WireFloatN = 0x6D,
    WireMoneyN = 0x6E,
    WireDateTimeN = 0x6F,
    WireSmallMoney = 0x7A,
    WireInt8 = 0x7F,
    WireVarBinary = 0xA5,
    WireVarChar = 0xA7,
    WireBinary = 0xAD,
    WireChar = 0xAF,
    WireNVarChar = 0xE7,
    WireNChar = 0xEF,
    WireXml = 0xF1,
};

/// SQL_Latin1_General_CP1_CI_AS: single-byte texts are in code page 1252.
inline constexpr char Collation[5] = {0x09, 0x04, char(0xD0), 0x00, 0x34};

enum DoneToken : quint8 { Done = 0xFD, DoneProcedure = 0xFE, DoneInProcedure = 0xFF };
enum DoneStatus : quint16 {
    DoneFinal = 0,
    DoneMore = 1,
    DoneError = 2,
    DoneCount = 0x10,
    DoneAttention = 0x20,
};

/// The kind of statement that a DONE token tells of.
inline constexpr quint16 SelectCommand = 0xC1;

enum class Change : quint8 {
    Database = 1,
    Language = 2,
    PacketSize = 4,
    SqlCollation = 7,
    BeginTransaction = 8,
    CommitTransaction = 9,
    RollbackTransaction = 10,
};

inline void putDone(ByteBuffer& out, DoneToken token, quint16 status, qint64 rows = 0,
                    quint16 command = 0) {
    out.u8(token);
    out.u16(status);
    out.u16(command);
    out.put(rows);
}

void putTextChange(ByteBuffer& out, Change what, const QString& now, const QString& before);
void putBytesChange(ByteBuffer& out, Change what, const QByteArray& now, const QByteArray& before);

struct ServerText {
    qint32 number = 0;
    quint8 state = 1;
    quint8 severity = 0;  ///< above 10: an error
    int line = 1;
    QString text;
    QString server;
    QString procedure;
};
/// An INFO token, or an ERROR token when the severity says so.
void putServerText(ByteBuffer& out, const ServerText& message);

void putReturnStatus(ByteBuffer& out, qint32 value);

}  // namespace zov::tds
