// The data analyzer's window: what values the columns of one table hold. Enter at
// ShowUp. Start and Stop, or F5 and F6.
#pragma once

#include "analysis/table_analysis.h"
#include "shell/screen.h"

#include <QElapsedTimer>

namespace zov {

class frmDataAnalyze : public Screen, private AnalysisWatcher {
 public:
    frmDataAnalyze();

    QString screenName() const override { return QStringLiteral("frmDataAnalyze"); }
    QString caption() const override { return QStringLiteral("Data Analyzer"); }
    QString plainText() const override;

    /// Modal. `ServerIndex` 0 is Source, 1 Target; any other throws std::out_of_range. A table that
    /// can't be counted or holds nothing is told in a box, and the window stays closed.
    void ShowUp(const QString& QualifiedTable, const QString& Table, const QString& Db,
                int ServerIndex, qint32 ObjectId, const QString& StoredName = {});

    QString lblTableName;
    QString lblGen_3;          ///< the table's records
    QString fedRecsToAnalyze;  ///< as the user writes it
    QString lblColumns;
    QString lblIgnoredColumns;
    int rdbFrequency = 0;     ///< 0 most frequently, 1 least frequently
    bool chkAnySize = false;  ///< "Analyze columns of any size"
    GridReport rpcReport;

    // During a run:
    int prbColumns = 0;  ///< percent
    int prbRows = 0;     ///< percent
    QString lblCurCol;
    QString lblCurRec;
    QString lblTime;
    bool cmdStartEnabled = true;
    bool cmdStopEnabled = false;
    /// Rows that the shown counts are parts of; 0 before the first run.
    qint32 analyzedRecords = 0;

    static QString helpLine(int Index);  ///< 0 to 2

    void Form_Activate();
    void cmdStart_Click();
    void cmdStop_Click();
    void cmdExport_Click();
    /// True when there is something to print.
    bool cmdPrint_Click();
    void btnIgnoreColumns_Click();
    /// Also the window's own way out: during a run it waits for its end, which comes at once then.
    void cmdExit_Click();

 private:
    void LoadData();
    void SetUpColumnsLabels();
    void ValidateRecordsToAnalyze(bool& Ok);
    void UpdateTimeElapsed();
    bool goesOn();

    bool columnBegun(const QString& Column, int Index, int LastIndex) override;
    bool recordsCounted(qint32 Record, qint32 Walk) override;
    bool columnDone() override;

    AnalyzedTable table_;
    AnalysisRequest request_;
    QElapsedTimer elapsed_;
    bool loading_ = false;
    bool stopped_ = false;
    bool unloadPending_ = false;
};

/// Tells that a report has no record, which `Text` is the reason for; false when it has some.
bool RepControl_NoData(const GridReport& Report, const QString& Text);

}  // namespace zov
