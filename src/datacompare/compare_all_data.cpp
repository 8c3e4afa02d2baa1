#include "datacompare/compare_all_data.h"

#include "catalog/modSchema.h"
#include "core/error_report.h"
#include "core/globals.h"
#include "scripting/modNew.h"
#include "shell/shell.h"
#include "util/text.h"

#include <QElapsedTimer>

namespace zov {
namespace {

/// Names below a heading that comes with the first of them.
struct TableList {
    QString text;
    int count = 0;

    void add(const QString& heading, const QString& line) {
        if (count++ == 0) text += heading + CRLF;
        text += u'\t' + line + CRLF;
    }
};

class DataComparisonOfAll {
 public:
    DataComparisonOfAll(CompareAllForm& form, const DataRunRequest& request, ComparePanels& panels,
                        DataComparisonScreens* screens)
        : form_(form),
          request_(request),
          panels_(panels),
          screens_(screens),
          source_{globals().gtCurrentServers[SourcePanel], request.sourceDb, SourcePanel},
          target_{globals().gtCurrentServers[TargetPanel], request.targetDb, TargetPanel} {}

    /// False when it was stopped, or when tables of one name couldn't be told apart.
    bool run();
    bool somethingDiffers() const {
        return differing_.count + onlyInSource_.count + onlyInTarget_.count > 0;
    }
    bool somethingFailed() const { return somethingFailed_; }

 private:
    bool mayGoOn();
    void addHeading();
    bool loadLists();
    void addCountLine(int count, const QString& side);
    void addList(const TableList& list);
    bool isWanted(const ObjectListRow& row) const;
    bool findTable(const ObjectListRow& row, const CompareSide& from, const CompareSide& in,
                   const ObjectList& list, qint32& id, bool& found);
    bool compareSourceTables();
    bool compareTable(const ObjectListRow& row, qint32 targetId);
    bool listTargetTables();
    void addClosing(bool bothEmpty);
    QString listOf(const QString& which) const {
        return QStringLiteral("List of ") + plural_ + which;
    }

    CompareAllForm& form_;
    const DataRunRequest& request_;
    ComparePanels& panels_;
    DataComparisonScreens* screens_;
    CompareSide source_;
    CompareSide target_;
    const QString plural_ = GetObjectTypeName(ObjectType::Table, true);
    const QString singular_ = plural_.chopped(1);
    QElapsedTimer clock_;
    QString report_;
    TableList differing_;
    TableList onlyInSource_;
    TableList onlyInTarget_;
    QString identical_;
    QString lastIdentical_;
    int identicalCount_ = 0;
    bool somethingFailed_ = false;
    QSet<qint32> comparedTargets_;  ///< ids
};

bool DataComparisonOfAll::mayGoOn() {
    form_.setTime(formatElapsed(clock_.elapsed()));
    shell().pumpEvents();
    return !globals().gblnStop;
}

bool DataComparisonOfAll::run() {
    const WaitPointer wait;
    form_.showRunning();
    clock_.start();
    form_.runStatusTimer(true);
    const QString comparing = QStringLiteral("Comparing data in ") + plural_ + QStringLiteral("...");
    form_.setComparing(0, comparing);
    addHeading();
    if (!loadLists()) return false;
    const int sourceCount = panels_.source.pvlSqlObj.rowCount();
    const int targetCount = panels_.target.pvlSqlObj.rowCount();
    if (!request_.selective) {
        addCountLine(sourceCount, QStringLiteral("Source"));
        addCountLine(targetCount, QStringLiteral("Target"));
    }
    const bool bothEmpty = sourceCount == 0 && targetCount == 0;
    if (!bothEmpty && (!compareSourceTables() || !listTargetTables())) return false;
    addClosing(bothEmpty);
    form_.setComparing(0, comparing + QStringLiteral(" Finished"));
    globals().gstrReport = report_;
    return true;
}

void DataComparisonOfAll::addHeading() {
    const auto place = [](const CompareSide& side) {
        return side.server.Name + u'.' + side.database + CRLF;
    };
    report_ = QStringLiteral("Comparison of databases") + CRLF + CRLF;
    report_ += QStringLiteral("Source database ") + place(source_);
    report_ += QStringLiteral("Target database ") + place(target_);
    const QString filter = BuildSchemaFilteringString();
    if (!filter.isEmpty()) report_ += filter + CRLF;
    if (!request_.selective) {
        report_ += QStringLiteral("Comparison of data in ") + plural_ + CRLF;
        return;
    }
    report_ += QStringLiteral("Selective comparison of ") + plural_ + CRLF + CRLF;
    report_ += QString::number(request_.sourceTables.size()) +
               QStringLiteral(" objects selected in Source database") + CRLF;
    report_ += QString::number(request_.targetTables.size()) +
               QStringLiteral(" objects selected in Target database") + CRLF + CRLF;
}

bool DataComparisonOfAll::loadLists() {
    const auto load = [&](const CompareSide& side, ComparePanel& panel) {
        LoadObjects(side.server, panel.pvlSqlObj, panel.txtTXProc, ObjectType::Table, side.database,
                    false, QString(), side.panel, &objectTexts());
        return mayGoOn();
    };
    return load(source_, panels_.source) && load(target_, panels_.target);
}

void DataComparisonOfAll::addCountLine(int count, const QString& side) {
    if (count == 0)
        report_ += QStringLiteral("There are no ") + plural_;
    else if (count == 1)
        report_ += QStringLiteral("There is 1 ") + singular_;
    else
        report_ += QStringLiteral("There are %1 ").arg(count) + plural_;
    report_ += QStringLiteral(" in ") + side + QStringLiteral(" database.") + CRLF;
}

void DataComparisonOfAll::addList(const TableList& list) {
    if (list.count == 0) return;
    report_ += list.text + QStringLiteral("\t(%1 ").arg(list.count) +
               (list.count == 1 ? singular_ : plural_) + u')' + CRLF + CRLF;
}

bool DataComparisonOfAll::isWanted(const ObjectListRow& row) const {
    const auto takes = [&](const QString& name) {
        return ProceedWithThisObject(name, request_.selective, request_.sourceTables,
                                     request_.targetTables);
    };
    return takes(row.bareName()) || takes(objectOf(row, ObjectType::Table).fullName());
}

/// Looks for a table of one side on the other: by name and schema, where servers know schemas, else
/// by the name in the other side's list. False when a server couldn't be asked.
bool DataComparisonOfAll::findTable(const ObjectListRow& row, const CompareSide& from,
                                    const CompareSide& in, const ObjectList& list, qint32& id,
                                    bool& found) {
    if (!CompareAll_CheckForDuplicateNames(ObjectType::Table, from, row.name, in, row.id, id, found))
        return false;
    if (!found || id > 0) return true;
    found = false;
    const QString name = partBehindLastDot(row.name);
    for (int i = 0; i < list.rowCount() && !found; ++i) {
        if (partBehindLastDot(list.row(i).name).compare(name, Qt::CaseInsensitive) != 0) continue;
        found = true;
        id = list.row(i).id;
    }
    return true;
}

bool DataComparisonOfAll::compareSourceTables() {
    const ObjectList& list = panels_.source.pvlSqlObj;
    for (int i = 0; i < list.rowCount(); ++i) {
        if (!mayGoOn()) return false;
        const ObjectListRow row = list.row(i);
        if (!isWanted(row)) continue;
        form_.setCurrentName(row.name);
        qint32 targetId = 0;
        bool found = false;
        if (!findTable(row, source_, target_, panels_.target.pvlSqlObj, targetId, found)) return false;
        if (!found) {
            onlyInSource_.add(
                listOf(QStringLiteral(
                    " which exist in Source database but not in Target database:")),
                row.name);
            continue;
        }
        comparedTargets_.insert(targetId);
        if (!compareTable(row, targetId)) return false;
    }
    form_.setCurrentName({});
    addList(differing_);
    addList(onlyInSource_);
    return true;
}

/// False after Stop.
bool DataComparisonOfAll::compareTable(const ObjectListRow& row, qint32 targetId) {
    const CompareDataPair pair{CompareDataTable{source_.server, source_.database, row.name, row.id},
                               CompareDataTable{target_.server, target_.database, row.name, targetId}};
    bool showOptions = false;
    const DataComparisonResult result =
        PerformDataComparison(pair, showOptions, true, false, screens_);
    const QString heading = listOf(QStringLiteral(" which differ:"));
    switch (result.Outcome) {
        case DataOutcome::Identical:
            ++identicalCount_;
            identical_ += u'\t' + row.name + CRLF;
            lastIdentical_ = row.name;
            return true;
        case DataOutcome::Different:
            differing_.add(heading, row.name + QStringLiteral(" - %1 different record(s)")
                                                   .arg(result.Differences));
            return true;
        case DataOutcome::Failed:
            somethingFailed_ = true;
            differing_.add(heading, row.name + QStringLiteral(" - could not be compared"));
            return !globals().gblnStop;
        default: return false;
    }
}

bool DataComparisonOfAll::listTargetTables() {
    const ObjectList& list = panels_.target.pvlSqlObj;
    for (int i = 0; i < list.rowCount(); ++i) {
        if (!mayGoOn()) return false;
        const ObjectListRow row = list.row(i);
        if (!isWanted(row) || comparedTargets_.contains(row.id)) continue;
        qint32 sourceId = 0;
        bool found = false;
        if (!findTable(row, target_, source_, panels_.source.pvlSqlObj, sourceId, found)) return false;
        if (!found)
            onlyInTarget_.add(
                listOf(QStringLiteral(
                    " which exist in Target database but not in Source database:")),
                row.name);
    }
    addList(onlyInTarget_);
    return true;
}

void DataComparisonOfAll::addClosing(bool bothEmpty) {
    if (!somethingDiffers()) {
        if (bothEmpty)
            report_ += plural_;
        else
            report_ += QStringLiteral("Data in all ") +
                       (request_.selective ? QStringLiteral("selected ") : QString()) + plural_ +
                       QStringLiteral(" in both databases is identical.");
    } else if (identicalCount_ == 0) {
        report_ += QStringLiteral("There are no ") + plural_ +
                   QStringLiteral(" which have identical data in both databases.");
    } else if (identicalCount_ == 1) {
        report_ += QStringLiteral("One ") + singular_ + QStringLiteral(" [") + lastIdentical_ +
                   QStringLiteral("] has identical data in both databases.");
    } else {
        report_ += QStringLiteral("All %1 remaining ").arg(identicalCount_) + plural_ +
                   QStringLiteral(" have identical data:") + CRLF + identical_.chopped(2);
    }
}

bool databasesChosen(const QString& sourceDb, const QString& targetDb) {
    if (!sourceDb.isEmpty() && !targetDb.isEmpty()) return true;
    shell().messageBox(QStringLiteral("Cannot compare - the list of databases is empty."),
                       QStringLiteral("Cannot Compare"));
    return false;
}

/// Shows the form, runs, opens the report.
void runWithForm(CompareAllWindow& window, const DataRunRequest& request, const SavedRun* saved) {
    frmCompareAllTables::Request screen;
    screen.Type = ObjectType::Table;
    screen.offeredBoxes = 1;
    screen.startAtOnce = saved != nullptr;
    if (request.selective && !saved) screen.Caption = QStringLiteral("Compare Selected Objects");
    screen.run = [&](frmCompareAllTables& form) {
        return CompareAll_Data(form, request, window.panels).finished;
    };
    frmCompareAllTables form;
    if (form.ShowUp(screen) && !globals().gstrReport.isEmpty()) {
        ComparisonReport report;
        report.Caption = QStringLiteral("Comparison Report");
        report.ServerName1 = globals().gtCurrentServers[SourcePanel].Name;
        report.ServerName2 = globals().gtCurrentServers[TargetPanel].Name;
        report.DbName1 = request.sourceDb;
        report.DbName2 = request.targetDb;
        report.CompType = comparison_code::Data;
        report.CompSubType =
            request.selective ? comparison_code::SelectedTables : comparison_code::AllTables;
        if (request.selective) report.EncObjTypes = QStringLiteral("1,0,0,0,0,0,0,0");
        report.SourceNames = request.sourceTables;
        report.TargetNames = request.targetTables;
        report.Replay = saved != nullptr;
        if (saved) {
            report.ExportPath = saved->ExportPath;
            report.Print = saved->Print;
        }
        window.report.ShowUp(report);
    }
    globals().gstrReport.clear();
}

}  // namespace

DataRun CompareAll_Data(CompareAllForm& form, const DataRunRequest& request, ComparePanels& panels,
                        DataComparisonScreens* screens) {
    DataRun result;
    globals().gstrReport.clear();
    globals().gblnStop = false;
    guardedRun("modCompareAll", "CompareAll_Data", [&] {
        DataComparisonOfAll comparison(form, request, panels, screens);
        result.finished = comparison.run();
        result.somethingDiffers = comparison.somethingDiffers();
        result.somethingFailed = comparison.somethingFailed();
    });
    form.runStatusTimer(false);
    return result;
}

void DataCompareAll(CompareAllWindow& window, const SavedRun* saved) {
    const DataRunRequest request{window.pvlDbSource.text(), window.pvlDbTarget.text(), false, {}, {}};
    if (databasesChosen(request.sourceDb, request.targetDb)) runWithForm(window, request, saved);
}

void MenuDataCompSelective(CompareAllWindow& window) {
    DataCompareSelective(window, 0, window.pvlDbSource.text(), window.pvlDbTarget.text());
}

void DataCompareSelective(CompareAllWindow& window, int Index, const QString& sourceDb,
                          const QString& targetDb, const SavedRun* saved) {
    if (Index < 0 || Index > 5) {
        shell().messageBox(
            QStringLiteral("Wrong index value in Sub DataCompareSelective, Index = %1").arg(Index));
        return;
    }
    if (!databasesChosen(sourceDb, targetDb)) return;
    DataRunRequest request{sourceDb, targetDb, true, {}, {}};
    if (saved) {
        request.sourceTables = saved->sourceObjects;
        request.targetTables = saved->targetObjects;
    } else if (!window.listObjects.ShowUp(sourceDb, targetDb, ObjectTypeOfBox(Index),
                                          request.sourceTables, request.targetTables)) {
        return;
    }
    runWithForm(window, request, saved);
}

}  // namespace zov
