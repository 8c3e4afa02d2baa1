#include "datacompare/modCompareData.h"

#include "core/globals.h"
#include "core/mdlMain.h"
#include "core/modIgnoreColumns.h"
#include "core/run_account.h"
#include "data/sql_names.h"
#include "datacompare/frmCompareData.h"
#include "datacompare/frmCompareDataOptions.h"
#include "datacompare/frmCompareStatus.h"
#include "shell/shell.h"
#include "util/text.h"

namespace zov {
namespace {

constexpr int MostSentences = 5;
const QString BrokenOff = QStringLiteral("The comparison was broken off by an error.");

/// What of two tables' columns the comparison leaves out.
struct IgnoredColumns {
    qint32 count = 0;
    QString text;  ///< "Column ignored during comparison: ..." or empty
};

IgnoredColumns ignoredIn(const CompareDataPair& tables) {
    QStringList lists[2];
    IgnoredColumns ignored;
    for (size_t side = 0; side < 2; ++side) {
        const CompareDataTable& table = tables[side];
        ignored.count +=
            GetIgnoredColumnsList(IgnoreMode::DataComparison, table.key(), lists[side]);
    }
    if (ignored.count < 1) return ignored;
    const QString names = IgnoredColumns_PutToString(lists[0], lists[1]);
    if (!names.isEmpty())
        ignored.text = (ignored.count == 1 ? QStringLiteral("Column") : QStringLiteral("Columns")) +
                       QStringLiteral(" ignored during comparison: ") + names;
    return ignored;
}

QString limitNote(qint32 differences, qint32 limit) {
    const QString most = formatCount(limit), blankLine = CRLF + CRLF;
    return QStringLiteral(
               "Not all records will be shown in the table displaying differences between "
               "two selected tables.") +
           blankLine + QStringLiteral("There are ") + formatCount(differences) +
           QStringLiteral(" differences found by the program.") + blankLine +
           QStringLiteral(
               "Please note that program's setting for maximum number of records "
               "displayed in differences table is currently set to ") +
           most + u'.' + blankLine +
           QStringLiteral(
               "Since there is more different records than it is currently allowed to be "
               "shown in the table, only first ") +
           most + QStringLiteral(" records will be shown.") + blankLine +
           QStringLiteral(
               "If you wish to increase the number of records shown in differences table, "
               "please click menu item Tools -> Options, click tab 'Rows to Display', "
               "change the maximum number of rows and click button 'OK'.");
}

void showDifferences(const DataComparisonRun& run, DataComparisonResult& result,
                     const IgnoredColumns& ignored, frmCompareData& grid,
                     DataComparisonScreens& screens) {
    const qint32 limit = globals().glngMaxRowsInDiffTable;
    if (result.Outcome == DataOutcome::Failed) {
        grid.lblStats[3] = formatCount(result.Records1);
        grid.lblStats[4] = formatCount(result.Records2);
        grid.lblStats[5] = formatCount(result.Differences);
        grid.lblMaxRows = QStringLiteral(
            "The comparison was broken off by an error: differences up to there are shown");
        grid.lblMaxRowsVisible = grid.BrokenOff = true;
    } else if (result.Differences > limit) {
        if (!run.Quiet)
            shell().messageBox(limitNote(result.Differences, limit), QStringLiteral("Note"),
                               BoxIcon::Information);
        grid.lblMaxRows = QStringLiteral("Only first ") + formatCount(limit) +
                          QStringLiteral(" different records are shown");
        grid.lblMaxRowsVisible = true;
    }
    grid.ShowUp(run, ignored.count, ignored.text, screens);
}

/// What could not be asked or read takes the verdict away, and is told where nobody has told it
/// yet.
void settleAccount(const RunAccount& account, DataComparisonResult& result) {
    if (result.Outcome == DataOutcome::Cancelled || account.isWhole()) return;
    QStringList untold;
    result.Refused = true;
    for (const AccountEntry& entry : account.entries()) {
        result.Refused = result.Refused && entry.refused;
        if (!entry.told && !untold.contains(entry.sentence())) untold += entry.sentence();
    }
    if (!untold.isEmpty())
        shell().messageBox(QStringLiteral("Not everything that the comparison rests on could be "
                                          "read:\r\n") +
                               untold.mid(0, MostSentences).join(CRLF),
                           {}, BoxIcon::Exclamation);
    result.Outcome = DataOutcome::Failed;
}

}  // namespace

void DataComparisonScreens::showStatus(frmCompareStatus& screen) {
    shell().showModal(screen);
}
void DataComparisonScreens::showDifferences(frmCompareData& screen) {
    shell().showModal(screen);
}

DataComparisonRun DataComparisonRunOf(const CompareDataPair& Tables,
                                      const DataCompSettings& Settings) {
    DataComparisonRun run;
    run.Tables = Tables;
    run.Method = Settings.Method;
    // By key every record counts, whatever start is stored: it would spoil the counts alone.
    if (Settings.Method != CompMethod::PrimaryKey) {
        run.Offset[0] = Settings.Offset1;
        run.Offset[1] = Settings.Offset2;
    }
    run.Keys[0] = {Settings.CompKey1, Settings.SecondaryCompKey1, Settings.TertiaryCompKey1};
    run.Keys[1] = {Settings.CompKey2, Settings.SecondaryCompKey2, Settings.TertiaryCompKey2};
    if (!Settings.DefaultOrder) {
        run.OrderBy[0] = BuildOrderByClause(Settings.PrimarySortKey1, Settings.SecondarySortKey1,
                                            Settings.TertiarySortKey1);
        run.OrderBy[1] = BuildOrderByClause(Settings.PrimarySortKey2, Settings.SecondarySortKey2,
                                            Settings.TertiarySortKey2);
    }
    return run;
}

DataComparisonResult PerformDataComparison(const CompareDataPair& Tables, bool& ShowOptions,
                                           bool Quiet, bool ShowDifferences,
                                           DataComparisonScreens* Screens) {
    const bool optionsWanted = !Quiet && (ShowOptions || GetShowDataCompOpt());
    ShowOptions = false;
    DataCompSettings settings;
    if (optionsWanted) {
        frmCompareDataOptions options;
        if (!options.ShowUp(Tables, settings)) return {};
    } else {
        RunAccount account;
        {
            const KeepAccount keep(account);
            settings = ReadDataCompSettings(Tables[0].Db, Tables[1].Db, Tables[0].storedName(),
                                            Tables[1].storedName());
        }
        // By other settings it would be another comparison.
        if (DataComparisonResult failed; !account.isWhole()) {
            settleAccount(account, failed);
            failed.Report = BrokenOff;
            return failed;
        }
    }
    DataComparisonRun run = DataComparisonRunOf(Tables, settings);
    run.Quiet = Quiet;
    run.ShowDifferences = ShowDifferences;
    return ExecuteDataComparison(run, Screens);
}

DataComparisonResult ExecuteDataComparison(const DataComparisonRun& Run,
                                           DataComparisonScreens* Screens) {
    DataComparisonScreens shellScreens;
    DataComparisonScreens& screens = Screens ? *Screens : shellScreens;
    // A Stop that belonged to something else doesn't stop this run; within a bulk run it does.
    if (!Run.Quiet) globals().gblnStop = false;

    frmCompareData grid;
    DataComparisonResult result;
    IgnoredColumns ignored;
    RunAccount account;
    {
        const KeepAccount keep(account);
        ignored = ignoredIn(Run.Tables);
        frmCompareStatus status(Run, grid);
        result = status.ShowUp(screens);
    }
    settleAccount(account, result);
    QString notes = ignored.text.isEmpty() ? QString() : CRLF + ignored.text;
    QStringList leftOut;
    if (const QString offsets = OffsetsNote(Run); !offsets.isEmpty()) {
        notes += CRLF + offsets;
        leftOut += u'c' + offsets.mid(1).chopped(1);
        result.Note = QStringLiteral(" (") + leftOut.back() + u')';
    }
    if (!ignored.text.isEmpty()) leftOut += u'c' + ignored.text.mid(1);
    result.LeftOut = leftOut.join(QStringLiteral("; "));
    switch (result.Outcome) {
        case DataOutcome::NotRun:
        case DataOutcome::Cancelled:
            result.Report = QStringLiteral("Operation cancelled by the user.");
            globals().gblnStop = false;
            break;
        case DataOutcome::Identical:
            result.Report = QStringLiteral("Data stored in both tables is identical.") + notes;
            break;
        case DataOutcome::Failed:
            // The error itself was told when it came.
            result.Report = BrokenOff;
            if (grid.VSFlexGrid1.Rows() > 1 && Run.ShowDifferences) {
                showDifferences(Run, result, ignored, grid, screens);
                return result;
            }
            break;
        case DataOutcome::Different:
            result.Report = DifferenceCountsText(result) + notes;
            if (Run.ShowDifferences) {
                showDifferences(Run, result, ignored, grid, screens);
                return result;
            }
            break;
    }
    if (!Run.Quiet) shell().messageBox(result.Report);
    return result;
}

QString OffsetsNote(const DataComparisonRun& Run) {
    if (Run.Method == CompMethod::PrimaryKey) return {};
    QStringList starts;
    for (size_t side = 0; side < 2; ++side)
        if (Run.Offset[side] > 1)
            starts += QStringLiteral("record ") + formatCount(Run.Offset[side]) +
                      (side == 0 ? QStringLiteral(" in Source") : QStringLiteral(" in Target"));
    if (starts.isEmpty()) return {};
    return QStringLiteral("Compared from ") + starts.join(QStringLiteral(" and ")) +
           QStringLiteral(" on.");
}

QString BuildOrderByClause(const QString& Key1, const QString& Key2, const QString& Key3) {
    const QString first = Trim(Key1), second = Trim(Key2), third = Trim(Key3);
    if (first.isEmpty()) return {};
    QString clause = QStringLiteral(" ORDER BY ") + quoteName(first);
    if (!second.isEmpty()) {
        clause += QStringLiteral(", ") + quoteName(second);
        if (!third.isEmpty()) clause += QStringLiteral(", ") + quoteName(third);
    }
    return clause + u' ';
}

QString IgnoredColumns_PutToString(const QStringList& Ignored1, const QStringList& Ignored2) {
    const QString source = QStringLiteral("Source - ") + Ignored1.join(u',');
    const QString target = QStringLiteral("Target - ") + Ignored2.join(u',');
    if (Ignored1.isEmpty()) return Ignored2.isEmpty() ? QString() : target;
    return Ignored2.isEmpty() ? source : source + u' ' + target;
}

QString DifferenceCountsText(const DataComparisonResult& Result) {
    return QStringLiteral("Number of records in first table: ") + formatCount(Result.Records1) +
           CRLF + QStringLiteral("Number of records in second table: ") +
           formatCount(Result.Records2) + CRLF + QStringLiteral("Number of different records: ") +
           formatCount(Result.Differences);
}

}  // namespace zov
