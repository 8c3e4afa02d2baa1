// The progress of one data comparison: counts both tables, runs the comparison,
// closes itself. Stop ends the run at its next record. Enter at ShowUp.
#pragma once

#include "datacompare/data_comparison.h"
#include "shell/screen.h"

#include <chrono>

namespace zov {

class frmCompareStatus : public Screen, public ComparisonProgress {
 public:
    /// `run` and `differences` must live as long as the screen; the latter is filled.
    frmCompareStatus(const DataComparisonRun& run, frmCompareData& differences);

    QString screenName() const override { return QStringLiteral("frmCompareStatus"); }
    QString caption() const override { return QStringLiteral("Comparing Tables..."); }

    /// Modal; the result is complete but for its report.
    DataComparisonResult ShowUp(DataComparisonScreens& Screens);

    QString lblServer1, lblServer2;
    QString lblDb1, lblDb2;
    QString lblTable1, lblTable2;
    QString lblRecsCount1, lblRecsCount2;
    QString lblCurRec;
    QString lblStatus;
    bool lblStatusVisible = false;
    QString lblTime;
    bool lblTimeVisible = false;
    int ProgressBar = 0;  ///< percent, 0 to 100
    bool ProgressBarVisible = false;

    /// The screen is shown: the run starts, and the screen closes itself at its end.
    void Form_Activate();
    /// Also Esc and closing the screen.
    void cmdStop_Click();

    void ShowHideControls(int Mode) override;
    /// Shows the record's number and the time, at most sixty times a second, and serves events.
    bool UpdateDisplay(qint32 Record, qint32 Steps) override;
    /// Shows the time and serves events.
    bool KeepWaiting() override;
    void UpdateTimeElapsed();

 private:
    using Clock = std::chrono::steady_clock;
    void showRecord(qint32 record, qint32 steps);

    const DataComparisonRun& run_;
    frmCompareData& differences_;
    DataComparisonResult result_;
    Clock::time_point started_;
    int recordsUntilLook_ = 0;
    Clock::time_point shown_;
    bool activated_ = false;
    bool running_ = false;
};

}  // namespace zov
