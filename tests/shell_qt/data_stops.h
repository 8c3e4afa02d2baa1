// The screens of the data comparison, opened on a small table of stock that both
// databases get.
#pragma once

#include "analysis/frmDataAnalyze.h"
#include "data/script_loading.h"
#include "datacompare/frmCompareData.h"
#include "datacompare/frmCompareDataOptions.h"
#include "datacompare/frmCompareStatus.h"
#include "datacompare/frmDataView.h"
#include "datacompare/modCompareData.h"
#include "shell_qt/desktop.h"

#include <gtest/gtest.h>

namespace zov::test {

/// Fills "Stock" in both databases when it isn't there; the two tables.
inline CompareDataPair stockTables(Desktop& desktop, int rows = 60) {
    CompareDataPair pair;
    for (const int side : {SourcePanel, TargetPanel}) {
        const bool source = side == SourcePanel;
        CompareDataTable& table = pair[size_t(side)];
        table = {desktop.controller().server(side), desktop.controller().database(side),
                 QStringLiteral("Stock"), 0};
        QString script = QStringLiteral(
            "IF EXISTS (SELECT * FROM sysobjects WHERE name = 'Stock') DROP TABLE dbo.Stock\nGO\n"
            "CREATE TABLE dbo.Stock (Shelf int NOT NULL, Item nvarchar(40) NOT NULL, Counted "
            "decimal(9,2) NULL, CountedBy nvarchar(20) NULL)\nGO\n");
        for (int i = 1; i <= rows; ++i) {
            if (source ? i == 7 : i == 12) continue;
            const QString count = i % 9 ? QString::number(i * 3) : QStringLiteral("NULL");
            script +=
                QStringLiteral("INSERT INTO Stock VALUES (%1, N'Olive oil %1 l', %2, N'%3')\n")
                    .arg(i)
                    .arg(i % 5 == 0 && !source ? QStringLiteral("77.5") : count)
                    .arg(i % 10 == 0 && !source ? QStringLiteral("Søren") : QStringLiteral("Ana"));
        }
        const LoadOutcome outcome =
            LoadScripts(table.Server, table.Db,
                        {desktop.home.write(QStringLiteral("stock.sql"),
                                            (script + QStringLiteral("GO\n")).toUtf8())});
        for (const LoadProblem& problem : outcome.problems)
            ADD_FAILURE() << problem.toString().toStdString();
    }
    return pair;
}

/// Only the window of differences is shown; the run goes by without one.
class QuietRun : public DataComparisonScreens {
    void showStatus(frmCompareStatus& screen) override { screen.Form_Activate(); }
};

/// Compares the stock by its shelves and shows the differences.
inline void showStockDifferences(Desktop& desktop) {
    DataComparisonRun run;
    run.Tables = stockTables(desktop);
    run.Method = CompMethod::PrimaryKey;
    for (CompKeys& keys : run.Keys) keys = {QStringLiteral("Shelf"), NoField, NoField};
    QuietRun screens;
    ExecuteDataComparison(run, &screens);
}

inline void showStock(Desktop& desktop) {
    const CompareDataPair pair = stockTables(desktop);
    frmDataView().ShowUp(QStringLiteral("[dbo].[Stock]"), pair[0].Table, pair[0].Db, SourcePanel,
                         0);
}

inline void showStockAnalysis(Desktop& desktop) {
    const CompareDataPair pair = stockTables(desktop);
    frmDataAnalyze().ShowUp(QStringLiteral("[dbo].[Stock]"), pair[0].Table, pair[0].Db, SourcePanel,
                            0);
}

inline void showStockOptions(Desktop& desktop) {
    DataCompSettings settings;
    frmCompareDataOptions().ShowUp(stockTables(desktop), settings);
}

inline void showStockExport() {
    frmCompareData differences;
    differences.cmdExport_Click();
}

}  // namespace zov::test
