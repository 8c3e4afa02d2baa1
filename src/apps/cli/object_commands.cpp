// zovrand-cli list, zovrand-cli text
#include "apps/cli/cli_support.h"
#include "core/globals.h"
#include "scripting/modNew.h"
#include "shell/console/console_shell.h"
#include "shell/console/visible_text.h"
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

/// Fills the list; false when that failed, which is told.
bool load(const Options& options, ConsoleShell& console, LoadedList& loaded) {
    loaded.type = objectTypeFromName(options.type);
    loaded.server = chooseServer(options, options.server);
    loaded.database = chooseDatabase(options.server, loaded.server, "-d");
    reachServer(loaded.server, loaded.database, SourcePanel);
    RunAccount account;
    const KeepAccount keep(account);
    LoadObjects(loaded.server, loaded.list, loaded.pane, loaded.type, loaded.database, false, {},
                SourcePanel, &objectTexts());
    return !tellTrouble(console, account) && !globals().gblnStop;
}

/// The one row that the name means; throws Failure.
int rowMeant(const LoadedList& loaded, const QString& name) {
    std::vector<ObjectListRow> listed;
    for (int row = 0; row < loaded.list.rowCount(); ++row) listed.push_back(loaded.list.row(row));
    const std::vector<int> rows = rowsMeant(listed, name);
    if (rows.empty()) {
        const QString singular = GetObjectTypeName(loaded.type, false).toLower();
        throw Failure(QStringLiteral("The database %4 of %3 has no %5 \"%1\".\n"
                                     "Its %2 are shown by: zovrand-cli list -S %3 -d %4 -t %2.")
                          .arg(name, GetObjectTypeName(loaded.type, true), loaded.server.Name,
                               loaded.database, singular));
    }
    if (rows.size() > 1 && loaded.type != ObjectType::Permission) {
        std::vector<ObjectListRow> namesakes;
        for (const int row : rows) namesakes.push_back(listed[size_t(row)]);
        throw Failure(QStringLiteral("Several %1 have this name: %2.\nName one of them in full.")
                          .arg(GetObjectTypeName(loaded.type, true), fullNames(namesakes)));
    }
    return rows.front();
}

}  // namespace

int runList(const Options& options, ConsoleShell& console) {
    LoadedList loaded;
    if (!load(options, console, loaded)) return Trouble;
    for (int row = 0; row < loaded.list.rowCount(); ++row) {
        const QString& name = loaded.list.row(row).name;
        writeOut(options.nulBetween ? name + QChar(u'\0') : visibleText(name) + u'\n');
    }
    flushOut();
    return Identical;
}

int runText(const Options& options, ConsoleShell& console) {
    LoadedList loaded;
    if (!load(options, console, loaded)) return Trouble;
    loaded.list.selectRow(rowMeant(loaded, options.objectName));
    const int before = console.errorCount();
    UpdateProcedureTextBox(loaded.server, loaded.pane, loaded.list, loaded.type, loaded.database,
                           {}, 0, SourcePanel);
    const bool told = console.errorCount() != before;
    if (!told && !loaded.pane.Trouble.isEmpty()) console.showError(loaded.pane.Trouble);
    if (told || !loaded.pane.Trouble.isEmpty()) return Trouble;
    QString text = withLf(loaded.pane.text());
    if (!text.isEmpty() && !text.endsWith(u'\n')) text += u'\n';
    writeOut(text);
    flushOut();
    return Identical;
}

}  // namespace zov::cli
