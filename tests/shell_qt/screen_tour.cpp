#include "shell_qt/screen_tour.h"

#include "core/error_report.h"
#include "data/frmAddServer.h"
#include "data/frmDeleteServer.h"
#include "saved/frmSaveComparison.h"
#include "shell/qt/help_window.h"
#include "shell_qt/data_stops.h"
#include "structcompare/frmCompareAllTables.h"
#include "tools/frmExecSp.h"
#include "tools/frmListObjects.h"

#include <QApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QPushButton>

#include <gtest/gtest.h>

namespace zov::test {

namespace cmd = command;

namespace {

void saveProcesses() {
    for (const char* name : {"Nightly: production against staging", "Orders by key, as a sheet",
                             "Procedures before each release"}) {
        SavedProcess process;
        process.Name = QLatin1String(name);
        SaveComparisonProcess(process);
    }
}

}  // namespace

std::vector<TourStop> screenTour(Desktop& desktop) {
    qt::MainWindow& window = desktop.window();
    const auto run = [&window](int id) { return [&window, id] { window.runCommand(id); }; };
    return {
        {QStringLiteral("frmAddServer"), run(cmd::AddServer)},
        {QStringLiteral("frmDeleteServer"), run(cmd::RemoveServer)},
        {QStringLiteral("frmFilterBySchema"),
         [&window] { window.controller().cmdFilter_Click(SourcePanel, FilterType::Schema); }},
        {QStringLiteral("frmSearchForObject_Gen"), run(cmd::FindInSource)},
        {QStringLiteral("frmCompareAllTables"), run(cmd::CompareAll)},
        {QStringLiteral("frmListObjects"), run(cmd::FirstSelective)},
        {QStringLiteral("frmReport"), run(cmd::CompareSelected)},
        {QStringLiteral("printPreview"), run(cmd::Print)},
        {QStringLiteral("frmCompareText"), run(cmd::Visualize)},
        {QStringLiteral("frmColorSchema"), run(cmd::ColorSchema)},
        {QStringLiteral("frmIgnoreColumnsAdd"), run(cmd::IgnoreColumns)},
        {QStringLiteral("frmIgnoreColumnsView"), run(cmd::IgnoredStructure)},
        {QStringLiteral("frmDataView"), [&desktop] { showStock(desktop); }},
        {QStringLiteral("frmCompareDataOptions"), [&desktop] { showStockOptions(desktop); }},
        {QStringLiteral("frmCompareData"), [&desktop] { showStockDifferences(desktop); }},
        {QStringLiteral("frmExport"), [] { showStockExport(); }},
        {QStringLiteral("frmSaveComparison"),
         [] {
             saveProcesses();
             QString name;
             frmSaveComparison().ShowUp({}, name);
         }},
        {QStringLiteral("frmSaveCompRun"), run(cmd::RunSaved)},
        {QStringLiteral("frmDataAnalyze"), [&desktop] { showStockAnalysis(desktop); }},
        {QStringLiteral("frmAttachDb"), run(cmd::AttachDatabase)},
        {QStringLiteral("frmExecSp"),
         [] {
             frmExecSp screen;
             shell().showModal(screen);
         }},
        {QStringLiteral("frmOptions"), run(cmd::Options)},
        {QStringLiteral("frmTip"), run(cmd::TipOfTheDay)},
        {QStringLiteral("frmSpare"), run(cmd::DebugStripComments)},
        {QStringLiteral("frmOptionsDebug"), run(cmd::DebugOptions)},
        {QStringLiteral("frmErrorReport"),
         [] {
             ShowErrorReport(-2147467259, QStringLiteral("The server does not answer."),
                             ProgramVersionText(), ProgramBuildNumber, QStringLiteral("frmMain"),
                             QStringLiteral("LoadServer"), {});
         }},
        {QStringLiteral("frmAbout"), run(cmd::About)},
    };
}

void makeTour(Desktop& desktop,
              const std::function<void(const QString& name, QWidget& screen)>& look) {
    for (const TourStop& stop : screenTour(desktop)) {
        bool shown = false;
        desktop.user.plan([&](QWidget* screen) {
            EXPECT_EQ(screen->objectName().toStdString(), stop.name.toStdString());
            shown = true;
            QApplication::processEvents();
            look(stop.name, *screen);
            static_cast<QDialog*>(screen)->reject();
        });
        stop.open();
        EXPECT_TRUE(shown) << stop.name.toStdString() << " didn't open";
    }
    qt::showHelpPage(QStringLiteral("index"), &desktop.window());
    QApplication::processEvents();
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->objectName() != u"helpWindow") continue;
        look(QStringLiteral("helpWindow"), *window);
        window->close();
    }
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

}  // namespace zov::test
