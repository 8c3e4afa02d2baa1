// zovrand-cli list, zovrand-cli text
#include "apps/cli/cli_support.h"
#include "core/globals.h"
#include "scripting/modNew.h"
#include "shell/console/console_shell.h"
#include "shell/memory_controls.h"
#include "util/text.h"

namespace zov::cli {
namespace {

struct LoadedList {
    ServerInfo server;
    QString database;
    ObjectType type;
    MemoryObjectList list;
    MemoryTextPane pane;
};

/// Fills the list; false when that failed, which was told already.
bool load(const Options& options, ConsoleShell& console, LoadedList& loaded) {
    loaded.type = objectTypeFromName(options.type);
    loaded.server = chooseServer(options, options.server);
    loaded.database = chooseDatabase(options.server, loaded.server, "-d");
    reachServer(loaded.server, loaded.database, SourcePanel);
    const int before = console.errorCount();
    LoadObjects(loaded.server, loaded.list, loaded.pane, loaded.type, loaded.database, false, {},
                SourcePanel, &objectTexts());
    return console.errorCount() == before;
}

/// Rows that the name means: to the letter first, then whatever the case.
std::vector<int> rowsMeant(const MemoryObjectList& list, const QString& name) {
    std::vector<int> exact, loose;
    for (int row = 0; row < list.rowCount(); ++row) {
        const QString& listed = list.row(row).name;
        if (listed == name) return {row};
        if (meansObject(name, listed)) exact.push_back(row);
        if (meansObject(name.toCaseFolded(), listed.toCaseFolded())) loose.push_back(row);
    }
    return exact.empty() ? loose : exact;
}

}  // namespace

int runList(const Options& options, ConsoleShell& console) {
    LoadedList loaded;
    if (!load(options, console, loaded)) return Trouble;
    for (int row = 0; row < loaded.list.rowCount(); ++row) {
        writeOut(loaded.list.row(row).name + u'\n');
    }
    flushOut();
    return Identical;
}

int runText(const Options& options, ConsoleShell& console) {
    LoadedList loaded;
    if (!load(options, console, loaded)) return Trouble;
    const std::vector<int> rows = rowsMeant(loaded.list, options.objectName);
    const QString plural = GetObjectTypeName(loaded.type, true);
    if (rows.empty()) {
        throw Failure(QStringLiteral("There is no \"%1\" among the %2 of %3.%4.\n"
                                     "They are shown by: zovrand-cli list -S %3 -d %4 -t %2.")
                          .arg(options.objectName, plural, loaded.server.Name, loaded.database));
    }
    if (rows.size() > 1 && loaded.type != ObjectType::Permission) {
        QStringList names;
        for (const int row : rows) names += loaded.list.row(row).name;
        throw Failure(QStringLiteral("Several %1 have this name: %2.\nName one of them in full.")
                          .arg(plural, names.join(QStringLiteral(", "))));
    }
    loaded.list.selectRow(rows.front());
    const int before = console.errorCount();
    UpdateProcedureTextBox(loaded.server, loaded.pane, loaded.list, loaded.type, loaded.database,
                           {}, 0, SourcePanel);
    if (console.errorCount() != before) return Trouble;
    QString text = withLf(loaded.pane.text());
    if (!text.isEmpty() && !text.endsWith(u'\n')) text += u'\n';
    writeOut(text);
    flushOut();
    return Identical;
}

}  // namespace zov::cli
