// Layout of the small tokens.
#include "support/tds_endpoint/tds_tokens.h"

namespace zov::tds {
namespace {

constexpr quint8 EnvironmentChange = 0xE3;
constexpr quint8 ErrorToken = 0xAA;
constexpr quint8 InfoToken = 0xAB;
constexpr quint8 ReturnStatus = 0x79;

/// A token whose length stands in two bytes behind its mark.
class SizedToken {
 public:
    SizedToken(ByteBuffer& out, quint8 mark) : out_(out) {
        out_.u8(mark);
        lengthAt_ = out_.size();
        out_.u16(0);
    }
    ~SizedToken() { out_.patchU16(lengthAt_, quint16(out_.size() - lengthAt_ - 2)); }

 private:
    ByteBuffer& out_;
    size_t lengthAt_;
};

}  // namespace

void putTextChange(ByteBuffer& out, Change what, const QString& now, const QString& before) {
    const SizedToken token(out, EnvironmentChange);
    out.u8(quint8(what));
    out.byteText(now);
    out.byteText(before);
}

void putBytesChange(ByteBuffer& out, Change what, const QByteArray& now, const QByteArray& before) {
    const SizedToken token(out, EnvironmentChange);
    out.u8(quint8(what));
    out.u8(quint8(now.size()));
    out.raw(now.constData(), size_t(now.size()));
    out.u8(quint8(before.size()));
    out.raw(before.constData(), size_t(before.size()));
}

void putServerText(ByteBuffer& out, const ServerText& message) {
    const SizedToken token(out, message.severity > 10 ? ErrorToken : InfoToken);
    out.put(message.number);
    out.u8(message.state);
    out.u8(message.severity);
    out.shortText(message.text);
    out.byteText(message.server);
    out.byteText(message.procedure);
    out.put(qint32(message.line));
}

void putReturnStatus(ByteBuffer& out, qint32 value) {
    out.u8(ReturnStatus);
    out.put(value);
}

}  // namespace zov::tds
