#include "datacompare/frmCompareStatus.h"

#include "core/error_report.h"
#include "core/globals.h"
#include "datacompare/compare_records.h"
#include "datacompare/frmCompareData.h"
#include "datacompare/table_reading.h"
#include "shell/shell.h"
#include "util/text.h"

namespace zov {
namespace {

constexpr int RecordsPerLook = 8;
constexpr auto DisplayInterval = std::chrono::milliseconds(16);
const QString NotKnown = QStringLiteral("N/A");

}  // namespace

frmCompareStatus::frmCompareStatus(const DataComparisonRun& run, frmCompareData& differences)
    : run_(run), differences_(differences) {
    const CompareDataTable& source = run.Tables[SourcePanel];
    const CompareDataTable& target = run.Tables[TargetPanel];
    lblServer1 = source.Server.Name;
    lblServer2 = target.Server.Name;
    lblDb1 = source.Db;
    lblDb2 = target.Db;
    lblTable1 = source.Table;
    lblTable2 = target.Table;
}

DataComparisonResult frmCompareStatus::ShowUp(DataComparisonScreens& Screens) {
    result_ = {};
    // A shell that can't show the screen leaves the run undone.
    result_.Outcome = DataOutcome::Failed;
    activated_ = false;
    reopen();
    Screens.showStatus(*this);
    return result_;
}

void frmCompareStatus::Form_Activate() {
    if (activated_) return;
    activated_ = running_ = true;
    started_ = Clock::now();
    guardedRun("frmCompareStatus", "Form_Activate", [&] {
        const WaitPointer wait;
        ShowHideControls(1);
        QString qualified[2];
        for (size_t side = 0; side < 2; ++side) {
            qualified[side] = QualifiedTableName(run_.Tables[side]);
        }
        const auto count = [&](size_t side, qint32& records, QString& label) {
            const CompareDataTable& table = run_.Tables[side];
            records = GetNumberOfRecordsInTable(table.Server, qualified[side], table.Db);
            const bool counted = records >= 0;
            label = counted ? formatCount(records) : NotKnown;
            if (!counted) records = 0;
            refresh();
            shell().pumpEvents();
            return counted && !globals().gblnStop;
        };
        if (count(SourcePanel, result_.Records1, lblRecsCount1)) {
            ShowHideControls(2);
            if (count(TargetPanel, result_.Records2, lblRecsCount2))
                CompareRecords(*this, differences_, run_, qualified, result_);
        }
    });
    if (globals().gblnStop) result_.Outcome = DataOutcome::Cancelled;
    running_ = false;
    close();
}

void frmCompareStatus::cmdStop_Click() {
    globals().gblnStop = true;
    // The run closes the screen when it has noticed.
    if (!running_) close();
}

void frmCompareStatus::ShowHideControls(int Mode) {
    const QString counting = QStringLiteral("Counting...");
    switch (Mode) {
        case 1:
            lblTimeVisible = ProgressBarVisible = false;
            lblStatusVisible = true;
            lblStatus = QStringLiteral("Counting records in first table...");
            lblRecsCount1 = counting;
            lblRecsCount2 = lblCurRec = NotKnown;
            break;
        case 2:
            lblStatus = QStringLiteral("Counting records in second table...");
            lblRecsCount2 = counting;
            break;
        case 3:
            lblStatus = QStringLiteral("Getting data from first table...");
            break;
        case 4:
            lblStatus = QStringLiteral("Getting data from second table...");
            break;
        default:
            lblStatusVisible = false;
            lblTimeVisible = ProgressBarVisible = true;
    }
    UpdateTimeElapsed();
    refresh();
    shell().pumpEvents();
}

bool frmCompareStatus::UpdateDisplay(qint32 Record, qint32 Steps) {
    // Asking the time for each record would take longer than many of them.
    if (recordsUntilLook_ > 0) {
        --recordsUntilLook_;
        return !globals().gblnStop;
    }
    recordsUntilLook_ = RecordsPerLook - 1;
    if (const auto now = Clock::now(); now - shown_ >= DisplayInterval) {
        shown_ = now;
        showRecord(Record, Steps);
    }
    shell().pumpEvents();
    return !globals().gblnStop;
}

bool frmCompareStatus::KeepWaiting() {
    UpdateTimeElapsed();
    refresh();
    shell().pumpEvents();
    return !globals().gblnStop;
}

void frmCompareStatus::showRecord(qint32 record, qint32 steps) {
    lblCurRec = formatCount(record);
    // Left-over records are numbered beyond the steps that are counted for them.
    ProgressBar = int(std::min<qint64>(qint64(record) * 100 / std::max(steps, 1), 100));
    UpdateTimeElapsed();
    refresh();
}

void frmCompareStatus::UpdateTimeElapsed() {
    lblTime = formatElapsed(
        std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - started_).count());
}

}  // namespace zov
