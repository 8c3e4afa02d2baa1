// The desktop's window at its limits: a long list of objects, the text of the next
// one, the marks of two long texts, and the way out of a query that doesn't end.
// Shown times include the painting. Arguments: objects (5000), lines (10000).
#include "bench_tools.h"

#include "catalog/mdlObjects.h"
#include "core/globals.h"
#include "core/mdlMain.h"
#include "data/mdlData.h"
#include "data/script_loading.h"
#include "data/server_list.h"
#include "shell/qt/choice_combo.h"
#include "shell/qt/desktop_screens.h"
#include "shell/qt/main_window.h"
#include "shell/qt/object_list_view.h"
#include "shell/qt/qt_shell.h"
#include "shell/qt/text_pane_widget.h"
#include "structcompare/modMarkDifferences.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QKeyEvent>
#include <QTimer>

#include <thread>

using namespace zov;

namespace {

const QString Database = QStringLiteral("db");

ServerInfo loadObjects(int count) {
    ServerInfo server;
    server.Name = QStringLiteral("local:desktop_bench");
    server.MRUDb = Database;
    const QString path = qEnvironmentVariable("ZOVRAND_HOME") + QStringLiteral("/objects.sql");
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly)) return {};
        for (int i = 0; i < count; ++i)
            file.write(QStringLiteral("CREATE PROCEDURE dbo.Procedure%1 @Id int AS\nBEGIN\n"
                                      "  SELECT Name, Total FROM dbo.Orders WHERE Id = @Id\n"
                                      "  RETURN %1\nEND\nGO\n")
                           .arg(i, 6, 10, QLatin1Char('0'))
                           .toUtf8());
    }
    if (!LoadScripts(server, Database, {path}).problems.empty()) return {};
    SaveServerToRegistry(server);
    LoadServersFromRegistry();
    return server;
}

void showAll() {
    QApplication::processEvents();
}

void chooseType(qt::MainWindow& window, ObjectType type) {
    auto* box = window.findChild<qt::ChoiceCombo*>(QStringLiteral("cmbType"));
    for (int i = 0; i < box->count(); ++i)
        if (box->itemData(i) == qint32(type)) box->selectIndex(i);
    window.controller().cmbType_Click();
    showAll();
}

void measureLists(qt::MainWindow& window, const ServerInfo& server, int objects) {
    const double query = bench::seconds(
        [&] {
            std::unique_ptr<Recordset> rs;
            GetAdoRS(server, adCmdText,
                     BuildObjSQLString(ObjectType::Procedure, globals().gblnIgnoreSysObjects, {},
                                       {}, SourcePanel),
                     rs, Database);
            std::vector<ObjectListEntry> rows;
            RecordsetToObjectList(*rs, rows, 0);
        },
        3);
    const double both = bench::seconds(
        [&] {
            chooseType(window, ObjectType::View);
            chooseType(window, ObjectType::Procedure);
        },
        3);
    std::printf(
        "%d objects: query %.3f s; both lists shown %.3f s: %.3f s a list beyond its query\n",
        window.list(SourcePanel)->rowCount(), query, both, both / 2 - query);
    constexpr int Selections = 100;
    const double texts = bench::seconds([&] {
        for (int i = 1; i <= Selections; ++i) {
            window.list(SourcePanel)->selectRow(i * (objects / (Selections + 1)));
            showAll();
        }
    });
    std::printf("an object's text is shown %.1f ms after its selection\n",
                texts * 1000 / Selections);
}

QString longText(int lines, int seed, int keepOf100) {
    QString text;
    for (int i = 0; i < lines; ++i) {
        const bool own = (i * 7919) % 100 >= keepOf100;
        text += QStringLiteral("    SELECT column%1, value FROM dbo.Table%2 WHERE id = %3\r\n")
                    .arg(i)
                    .arg(i % 97)
                    .arg(own ? seed * 1'000'000 + i : i);
        if (own && (i + seed) % 3 == 0) text += QStringLiteral("    -- only here\r\n");
    }
    return text;
}

void measureMarks(qt::MainWindow& window, int lines, int keepOf100, ObjectType type) {
    for (const int Index : {SourcePanel, TargetPanel})
        window.pane(Index)->setText(longText(lines, Index, keepOf100));
    showAll();
    bool failed = false;
    const double marking = bench::seconds([&] {
        Mark_Differences(*window.pane(SourcePanel), *window.pane(TargetPanel), failed, type);
        showAll();
    });
    const double walking = bench::seconds([&] { window.goToDifference(true); });
    std::printf(
        "%d and %d lines of a %s, %d %% alike: marked in %.3f s; F8 shows \"%s\" in %.3f s%s\n",
        window.pane(SourcePanel)->lineCount(), window.pane(TargetPanel)->lineCount(),
        qPrintable(GetObjectTypeName(type, false).toLower()), keepOf100, marking,
        qPrintable(window.statusText()), walking, failed ? " FAILED" : "");
}

// A server that doesn't even listen to its Cancel.
void measureCancel(qt::QtShell& shell, qt::MainWindow& window) {
    QElapsedTimer sinceKey;
    QTimer::singleShot(300, [&] {
        sinceKey.start();
        QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
        QApplication::sendEvent(&window, &escape);
    });
    shell.runBlocking([] { std::this_thread::sleep_for(std::chrono::seconds(2)); }, [] {});
    std::printf("Esc ends the wait for a deaf server in %.3f s\n",
                double(sinceKey.elapsed()) / 1000);
    while (shell.hasAbandonedWork()) std::this_thread::sleep_for(std::chrono::milliseconds(50));
}

}  // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    const bench::ScratchHome home;
    QApplication application(argc, argv);
    qt::initDesktopResources();
    const int objects = argc > 1 ? std::atoi(argv[1]) : 5000;
    const int lines = argc > 2 ? std::atoi(argv[2]) : 10'000;
    qt::QtShell shell;
    installShell(&shell);
    RunStartUp({}, [] { LoadServersFromRegistry(); });
    const ServerInfo server = loadObjects(objects);
    if (server.Name.isEmpty()) return std::puts("The objects can't be loaded."), 1;
    {
        qt::DesktopScreens screens;
        qt::MainWindow window(screens);
        screens.setWindow(&window);
        shell.setMainWindow(&window);
        qt::StartOptions options;
        options.sides[0] = options.sides[1] = {server.Name, Database};
        window.openAtStart(options);
        window.controller().Form_Load();
        window.show();
        while (window.list(TargetPanel)->rowCount() == 0 && !window.controller().Loaded) showAll();
        showAll();
        measureLists(window, server, objects);
        for (const int keepOf100 : {99, 50, 0})
            measureMarks(window, lines, keepOf100, ObjectType::Procedure);
        measureMarks(window, lines, 99, ObjectType::Table);
        measureCancel(shell, window);
    }
    std::printf("peak memory %.0f MB\n", bench::processMegabytes("VmHWM"));
    installShell(nullptr);
    return 0;
}
