// The main window's comparisons, and printing what its panes show.
#include "core/globals.h"
#include "core/main/frmMain.h"
#include "core/main/main_screens.h"
#include "datacompare/modCompareData.h"
#include "shell/memory_controls.h"
#include "shell/shell.h"
#include "structcompare/compare_all_menu.h"
#include "structcompare/left_out.h"
#include "structcompare/modMarkDifferences.h"

namespace zov {
namespace {

constexpr const char* Module = "frmMain";

const QString CannotCompare = QStringLiteral("Cannot Compare");

}  // namespace

void frmMain::showComparisonReport(const SelectedPair& pair) {
    ComparisonReport report = reportOf(pair);
    report.Replay = replay_.replaying;
    report.ExportPath = replay_.exportPath;
    reportShown_ = true;
    screens_.ShowUp(report);
}

void frmMain::printBothPanes() {
    printed_ = PrintStructure(SourcePanel, true, QStringLiteral("Source: ")) &&
               PrintStructure(TargetPanel, true, QStringLiteral("Target: "));
}

void frmMain::cmdCompare_Click() {
    whileBusy("cmdCompare_Click", [&] {
        verdict_ = {};
        if (!CanCompare()) return;
        const TextPane& source = view_.panels().source.txtTXProc;
        const TextPane& target = view_.panels().target.txtTXProc;
        reportShown_ = false;
        const bool identical = CompareSelProcs(*this, view_.panels().source.txtTXProc,
                                               view_.panels().target.txtTXProc);
        // Without a report there was no verdict: it said itself what was missing.
        verdict_.isGiven = reportShown_;
        verdict_.identical = identical;
        if (identical)
            verdict_.leftOut = LeftOutOfAccount(selectedType(), source.text(), target.text());
    });
}

void frmMain::compareDatabases(const char* handler,
                               const std::function<void(CompareAllWindow&)>& run) {
    if (dataAccessUsable() && !Busy_) runOnScratch(handler, run);
}

void frmMain::runOnScratch(const char* handler, const std::function<void(CompareAllWindow&)>& run) {
    const ScopedValue<bool> busy(Busy_, true);
    shell().beginOperation();
    guardedRun(Module, handler, [&] {
        MemoryObjectList lists[2];
        MemoryTextPane panes[2];
        ComparePanels scratch{{lists[SourcePanel], panes[SourcePanel]},
                              {lists[TargetPanel], panes[TargetPanel]}};
        Panels& panels = view_.panels();
        CompareAllWindow window{panels.source.pvlDb, panels.target.pvlDb, scratch,
                                screens_.listObjects(), screens_};
        window.note = [this](const QString& sentence) { view_.setStatusText(sentence); };
        run(window);
    });
}

void frmMain::compareBulk(int kindIndex, bool selective, bool details) {
    compareDatabases("CompStruct_BulkSel_SimpleDet_All", [&](CompareAllWindow& window) {
        CompStruct_BulkSel_SimpleDet_All(window, kindIndex, selective, details);
    });
}

void frmMain::cmdCompareAll_Click() {
    compareDatabases("cmdCompareAll_Click",
                     [](CompareAllWindow& window) { CompareAllObjects(window); });
}

CompareDataPair TablesOf(const SelectedPair& pair) {
    return {TableOf(pair.sourceServer, pair.sourceDb, pair.source()),
            TableOf(pair.targetServer, pair.targetDb, pair.target())};
}

void frmMain::CompareData() {
    bool showOptions = std::exchange(askForDataOptions_, false);
    if (!dataAccessUsable() || Busy_) return;
    const ScopedValue<bool> busy(Busy_, true);
    shell().beginOperation();
    guardedRun(Module, "CompareData", [&] {
        SelectedPair pair;
        if (!CanCompareData(pair)) return;
        PerformDataComparison(TablesOf(pair), showOptions, false, true);
    });
}

bool frmMain::PrintStructure(int Index, bool silent, const QString& title) {
    if (!silent && !hasText(Index)) {
        shell().messageBox(
            QStringLiteral("Cannot continue - there is no structure displayed for selected table."),
            QStringLiteral("Cannot Continue"));
        return false;
    }
    const SelectedPair pair = GetNamesOfSelected();
    return view_.printPane(
        Index, title, Index == SourcePanel ? pair.sourceFullName() : pair.targetFullName(), silent);
}

void frmMain::MenuPopUpPrint(int Index) {
    PrintStructure(Index, false,
                   Index == SourcePanel ? QStringLiteral("Source: ") : QStringLiteral("Target: "));
}

void frmMain::visualizeDifferences() {
    const SelectedPair pair = GetNamesOfSelected();
    screens_.visualizeDifferences(pair.sourceFullName(), view_.panels().source.txtTXProc.text(),
                                  pair.targetFullName(), view_.panels().target.txtTXProc.text());
}

void frmMain::CompareAndPrintAllTables() {
    Panels& panels = view_.panels();
    const auto refuse = [](const QString& text) { shell().messageBox(text, CannotCompare); };
    if (server(SourcePanel).Name.isEmpty())
        return refuse(QStringLiteral("Please select Source server first."));
    if (server(TargetPanel).Name.isEmpty())
        return refuse(QStringLiteral("Please select Target server first."));
    const QString source = database(SourcePanel), target = database(TargetPanel);
    if (source.isEmpty() || target.isEmpty())
        return refuse(QStringLiteral("Cannot compare - the list of databases is empty."));
    if (server(SourcePanel).Name == server(TargetPanel).Name && source == target)
        return refuse(QStringLiteral("Cannot compare - Source and Target database are the same."));
    // The lists hold tables only while these are the active objects.
    if (!TablesAreActive()) return;
    if (panels.source.pvlSqlObj.rowCount() == 0)
        return refuse(QStringLiteral("Cannot compare - there are no tables in Source database."));
    if (panels.target.pvlSqlObj.rowCount() == 0)
        return refuse(QStringLiteral("Cannot compare - there are no tables in Target database."));
    const ScopedValue<bool> printing(printJob_, true);
    screens_.compareAndPrint(*this);
}

bool frmMain::compareAndPrintPair() {
    printed_ = false;
    CompareSelProcs(*this, view_.panels().source.txtTXProc, view_.panels().target.txtTXProc);
    return printed_;
}

}  // namespace zov
