// What a driver hands over of a server's answer: descriptions, lengths, values and diagnostics that
// mean anything. A cell that is stored has the value that was sent; what can't be is an error.
#include "data/base/field_text.h"
#include "data/odbc/odbc_results.h"
#include "fake_driver_manager.h"
#include "fuzz_support.h"

using namespace zov;
using fuzz::FakeServer;
using fuzz::require;

namespace {

constexpr qsizetype RowsAtOnce = 25;

void readResult(odbc::OdbcStream& stream, FakeServer& server) {
    if (stream.columns().empty()) return;
    RowStore rows(stream.columns());
    while (stream.fetch(rows, RowsAtOnce) > 0) {
        for (int column = 0; column < rows.columnCount(); ++column) {
            require(rows.column(column).count() == rows.rowCount(), "columns have one length");
            for (qsizetype row = 0; row < rows.rowCount(); ++row) {
                const QString expected = server.takeExpected(column);
                const QString text = FieldText(rows.cell(row, column));
                require(expected.isNull() || text == expected, "a cell holds what was sent");
            }
        }
        rows.clear();
    }
}

void run(FakeServer& server) {
    ConnectionSpec spec;
    spec.dataSource = QStringLiteral("server");
    const auto session = std::make_shared<odbc::Session>(
        QStringLiteral("DRIVER={Fake};"), odbc::ServerAddress::parse(spec.dataSource), spec);
    CommandSpec command;
    command.text = QStringLiteral("SELECT *\nFROM T");
    command.storedProcedure = server.bytes.ConsumeBool();
    for (const int type : {3, 5, 7, 11, 202}) {
        if (!command.storedProcedure) break;
        CommandParameter& parameter = command.parameters.emplace_back();
        parameter.type = type;
        parameter.direction = 3;
        parameter.value = QStringLiteral("1");
    }
    odbc::OdbcStream stream(session, command);
    do {
        try {
            readResult(stream, server);
        } catch (const DbError& error) {
            // Honest servers send numbers that are too long for their column, nothing else.
            require(!server.honest || error.description.contains(u"digits"),
                    "honest cells are read");
            if (server.honest) return;
        }
    } while (stream.nextResult());
    stream.returnValue();
    for (int i = 0; i < int(command.parameters.size()); ++i) stream.outputValue(i);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FakeServer server(data, size);
    try {
        run(server);
    } catch (const DbError& error) {
        require(!error.description.isEmpty(), "an error says something");
    }
    return 0;
}
