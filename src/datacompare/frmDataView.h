// One table's rows in a grid, read whole; Stop keeps what is there. Enter at
// ShowUp.
#pragma once

#include "core/server_info.h"
#include "datacompare/table_rows_grid.h"
#include "shell/screen.h"

#include <QElapsedTimer>

namespace zov {

class frmDataView : public Screen {
 public:
    QString screenName() const override { return QStringLiteral("frmDataView"); }
    QString caption() const override { return QStringLiteral("Data in Table"); }
    QString plainText() const override;

    /// Modal. `ServerIndex` 0 is Source, 1 Target; any other throws std::out_of_range. A table that
    /// can't be read or holds nothing is told in a box, and the window stays closed.
    void ShowUp(const QString& QualifiedTable, const QString& Table, const QString& Db,
                int ServerIndex, qint32 ObjectId);

    QString lblTableName;
    QString lblStats;
    TableRowsGrid VSFlexGrid1;
    qint32 topRow = 1;  ///< the grid's first visible row while it is loaded

    // While rows are loaded:
    bool loadControlsVisible = false;  ///< bar, labels
    bool cmdStopEnabled = false;
    bool cmdExportEnabled = false;
    QString lblCurRec;
    QString lblTime;
    int ProgressBar = 0;  ///< percent

    /// The screen is shown for the first time: loads the rows.
    void Form_Activate();
    /// Also Esc while rows are loaded.
    void cmdStop_Click();
    void cmdExport_Click();
    /// Also the window's own way out: while rows are loaded it waits for their end, which comes at
    /// once then.
    void cmdExit_Click();

 private:
    void LoadData();
    void readRows();
    void ShowHideLoadControls(int Mode);
    void UpdateTimeElapsed();

    ServerInfo server_;
    QString qualifiedTable_;
    QString table_;
    QString db_;
    qint32 objectId_ = 0;
    QElapsedTimer elapsed_;
    bool activated_ = false;
    bool loading_ = false;
    bool stopped_ = false;
    bool unloadWanted_ = false;
};

}  // namespace zov
