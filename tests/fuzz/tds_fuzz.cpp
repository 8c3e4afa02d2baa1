// What the tests' own server reads of its clients: logins, batches and calls.
#include "fuzz_support.h"
#include "support/tds_endpoint/tds_login.h"
#include "support/tds_endpoint/tds_rpc.h"

using namespace zov;
using fuzz::require;

namespace {

void readCalls(const QByteArray& payload) {
    tds::ByteReader message = tds::behindHeaders(payload);
    for (const tds::RpcCall& call : tds::readRpcCalls(message)) {
        tds::ByteBuffer out;
        int ordinal = 0;
        for (const tds::RpcParameter& parameter : call.parameters) {
            const CommandParameter command = parameter.command();
            require(command.name == parameter.name, "a parameter keeps its name");
            try {
                tds::putReturnValue(out, ++ordinal, parameter, parameter.value);
            } catch (const std::exception&) {
                // A value that its type can't hold is refused.
            }
        }
        if (call.parameters.size() < 2) continue;
        const QStringList names = tds::declaredNames(call.parameters[1].text());
        const std::span<const tds::RpcParameter> values(call.parameters);
        tds::withLiterals(call.parameters[0].text(), names, values.subspan(2));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    const QByteArray payload = fuzz::bytesOf(data + 1, size - 1);
    try {
        if (data[0] % 2)
            tds::readLogin(payload);
        else
            readCalls(payload);
    } catch (const tds::Malformed&) {
        // The session ends there.
    }
    return 0;
}
