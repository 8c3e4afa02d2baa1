// Replay of a saved process: servers, databases and objects are selected as a user
// would select them, and the same comparisons run; the result screens export, print
// and close by themselves. The order of the steps is part of the behaviour: a later
// check is never reached when an earlier one fails.
#include "core/error_report.h"
#include "core/globals.h"
#include "core/main/frmMain.h"
#include "core/main/main_screens.h"
#include "datacompare/compare_all_data.h"
#include "saved/modSavedProcess.h"
#include "scripting/modNew.h"
#include "shell/shell.h"
#include "structcompare/compare_all_menu.h"
#include "structcompare/enc_obj_types.h"
#include "util/text.h"

namespace zov {
namespace {

constexpr const char* Module = "frmMain";

/// False, so that a check can end with it.
bool refuse(const QString& reason) {
    shell().messageBox(QStringLiteral("Cannot run saved process - ") + reason, {},
                       BoxIcon::Exclamation);
    return false;
}

/// The types by the places of their flags. The last one has always been 70, which is no type: a
/// pair of constraints can't be run again.
ObjectType ObjectTypeFromIndex(int Index) {
    static constexpr qint32 types[] = {50, 10, 20, 30, 40, 60, 70};
    return Index >= 0 && Index < int(std::size(types)) ? ObjectType(types[Index]) : ObjectType{};
}

int itemOf(const ChoiceList& list, const QString& text) {
    for (int item = 0; item < list.count(); ++item)
        if (list.itemText(item) == text) return item;
    return -1;
}

/// Silences a list's or a box's events.
template <typename Control>
class EventsOff {
 public:
    explicit EventsOff(Control& control) : control_(control) {
        control_.Tag = QStringLiteral("OFF");
    }
    ~EventsOff() { control_.Tag.clear(); }
    EventsOff(const EventsOff&) = delete;
    EventsOff& operator=(const EventsOff&) = delete;

 private:
    Control& control_;
};

SavedRun savedRunOf(const SavedProcess& process) {
    return {process.SourceNames, process.TargetNames, process.ExportFilePath, process.Print,
            process.EncObjTypes};
}

}  // namespace

void frmMain::RunSavedProcess(qint32 Id) {
    replayChosen([&] { return Id < 1 ? screens_.chooseSavedProcess() : GetSavedProcessName(Id); });
}

void frmMain::RunSavedProcessNamed(const QString& Name) {
    replayChosen([&] { return Name; });
}

void frmMain::replayChosen(const std::function<QString()>& choose) {
    replayResult_ = {};
    if (Busy_) return;
    const int count = CountSavedProcesses();
    // A file that can't be read was told; it is not taken for an empty one.
    if (count < 0) return;
    if (count == 0) {
        shell().messageBox(QStringLiteral("There are no saved processes to run."), {},
                           BoxIcon::Information);
        return;
    }
    Busy_ = true;
    guardedRun(Module, "RunSavedProcess", [&] {
        const QString name = choose();
        const WaitPointer wait;
        if (!name.isEmpty()) replayProcess(name);
    });
    Busy_ = false;
    if (globals().gblnAutoClose) view_.closeWindow();
}

void frmMain::replayProcess(const QString& name) {
    SavedProcess process;
    GetSavedProcessDetails(name, process);
    if (adjustProcess) adjustProcess(process);
    if (!CheckSavedProcessDetails(process)) {
        refuse(QStringLiteral("couldn't retrieve all details data."));
        return;
    }
    if (process.Id < 1) {
        refuse(QStringLiteral("couldn't retrieve Id of the process."));
        return;
    }
    if (!selectReplayServers(process) || !selectReplayDatabases(process)) return;
    if (process.AutoClose) globals().gblnAutoClose = true;
    switch (process.CompType) {
        case comparison_code::Data:
            return RunSavedProcess_DataComp(process);
        case comparison_code::MetaData:
            return RunSavedProcess_MetaDataComp(process);
        default:
            refuse(QStringLiteral("comparison type not defined."));
    }
}

bool frmMain::CheckSavedProcessDetails(const SavedProcess& process) {
    return !process.ServerName1.isEmpty() && !process.DbName1.isEmpty() &&
           !process.ServerName2.isEmpty() && !process.DbName2.isEmpty();
}

bool frmMain::selectReplayServers(const SavedProcess& process) {
    Panels& panels = view_.panels();
    {
        // The boxes' selection events load the servers.
        const ScopedValue<bool> free(Busy_, false);
        const QString* const names[] = {&process.ServerName1, &process.ServerName2};
        for (const int Index : {SourcePanel, TargetPanel}) {
            ChoiceList& box = panels[Index].cmbServer;
            const int item = itemOf(box, *names[Index]);
            // A missing target is not told here: its list of databases, which then holds nothing,
            // stops the run.
            if (item < 0 && Index == SourcePanel)
                return refuse(QStringLiteral("path ") + *names[Index] +
                              QStringLiteral(" not found."));
            {
                const EventsOff off(box);
                box.selectIndex(item);
            }
            if (item < 0) {
                globals().gtCurrentServers[Index] = {};
                ClearPanel(panels[Index]);
            } else {
                cmbServer_Click(Index);
            }
        }
    }
    if (leavesNoTrace)
        for (ServerInfo& server : globals().gtCurrentServers) server.RegIndex = 0;
    // Without a target server its list stays empty, and the next step ends the run.
    if (!globals().gtCurrentServers[TargetPanel].Name.isEmpty()) initializeDisplay(false);
    return !globals().gblnStop;
}

bool frmMain::selectReplayDatabases(const SavedProcess& process) {
    const QString* const names[] = {&process.DbName1, &process.DbName2};
    for (const int Index : {SourcePanel, TargetPanel}) {
        ChoiceList& box = view_.panels()[Index].pvlDb;
        const int item = itemOf(box, *names[Index]);
        if (item < 0)
            return refuse(QStringLiteral("SQL Server database ") + *names[Index] +
                          QStringLiteral(" not found."));
        {
            const EventsOff off(box);
            box.selectIndex(item);
        }
        // The event of the list loads the objects.
        const ScopedValue<bool> free(Busy_, false);
        pvlDb_Click(Index);
    }
    return !globals().gblnStop;
}

void frmMain::RunSavedProcess_DataComp(const SavedProcess& process) {
    try {
        const ScopedValue<bool> busy(Busy_, true);
        replay_ = {true, process.ExportFilePath};
        switch (process.CompSubType) {
            case comparison_code::SingleTable:
                RunSavedProcess_Data_Single(process);
                break;
            case comparison_code::SelectedTables:
                if (!selectionFits(process, ObjectType::Table)) break;
                runOnScratch("DataCompareSelective", [&](CompareAllWindow& window) {
                    const SavedRun saved = savedRunOf(process);
                    replayResult_.verdict =
                        DataCompareSelective(window, 0, process.DbName1, process.DbName2, &saved);
                });
                break;
            case comparison_code::AllTables:
                RunSavedProcess_Data_All(process);
                break;
            default:
                refuse(QStringLiteral("comparison sub type not defined."));
        }
    } catch (...) {
        showCaughtErrorInSub("RunSavedProcess_DataComp");
    }
    replay_ = {};
}

void frmMain::RunSavedProcess_Data_All(const SavedProcess& process) {
    if (!CanCompare()) return;
    runOnScratch("DataCompareAll", [&](CompareAllWindow& window) {
        const SavedRun saved = savedRunOf(process);
        replayResult_.verdict = DataCompareAll(window, &saved);
    });
}

// A name that the lists don't show once is told under `kind`, "table" or "object".
int frmMain::rowOfReplayObject(int Index, const QString& name, qint32 id, const QString& kind) {
    const ObjectList& list = view_.panels()[Index].pvlSqlObj;
    int found = -1, count = 0;
    for (int row = 0; row < list.rowCount(); ++row) {
        if (list.row(row).name != name) continue;
        // Of several that look alike the one is meant that had this number when it was saved.
        if (id > 0 && list.row(row).id == id) return row;
        if (++count == 1) found = row;
    }
    if (count == 1) return found;
    refuse(kind + u' ' + name +
           (count == 0 ? QStringLiteral(" not found.")
                       : QStringLiteral(" is there several times: save the process anew.")));
    return -1;
}

void frmMain::RunSavedProcess_Data_Single(const SavedProcess& process) {
    try {
        const QString kind = QStringLiteral("table");
        selectType(ObjectType::Table);
        const QString* const names[] = {&process.TableName1, &process.TableName2};
        const qint32 ids[] = {process.ObjId1, process.ObjId2};
        for (const int Index : {SourcePanel, TargetPanel}) {
            const int row = rowOfReplayObject(Index, *names[Index], ids[Index], kind);
            if (row < 0) return;
            showObject(Index, row);
        }
        if (process.CompMethod != CompMethod::RecordByRecord &&
            process.CompMethod != CompMethod::PrimaryKey) {
            refuse(QStringLiteral("comparison method not defined."));
            return;
        }
        // The rows' own ids: a table that was made anew since has another one than the process.
        const CompareDataPair tables = TablesOf(GetNamesOfSelected());
        DataCompSettings settings = ReadDataCompSettings(
            process.DbName1, process.DbName2, tables[0].storedName(), tables[1].storedName());
        settings.Method = process.CompMethod;
        DataComparisonRun run = DataComparisonRunOf(tables, settings);
        run.ExportFilePath = process.ExportFilePath;
        run.ExportType = process.ExportType;
        run.CSVWrapInQuot = process.CSVWrapInQuot;
        run.IsReplay = true;
        const DataComparisonResult result = ExecuteDataComparison(run);
        replayResult_.report = result.Report;
        switch (result.Outcome) {
            case DataOutcome::Identical:
                replayResult_.verdict = RunVerdict::Identical;
                break;
            case DataOutcome::Different:
                replayResult_.verdict = RunVerdict::Different;
                break;
            default:
                replayResult_.verdict = RunVerdict::Trouble;
        }
    } catch (...) {
        showCaughtErrorInSub("RunSavedProcess_Data_Single");
    }
}

void frmMain::RunSavedProcess_MetaDataComp(const SavedProcess& process) {
    const ScopedValue<bool> busy(Busy_, true);
    replay_ = {true, process.ExportFilePath};
    const SavedRun saved = savedRunOf(process);
    const int kind = EncObjTypesToIndex(process.EncObjTypes);
    const bool selective = process.CompSubType == comparison_code::Selective;
    switch (process.CompSubType) {
        case comparison_code::AllObjects:
            runOnScratch("cmdCompareAll_Click", [&](CompareAllWindow& window) {
                replayResult_.verdict = CompareAllObjects(window, &saved);
            });
            break;
        case comparison_code::Bulk:
        case comparison_code::Selective:
            if (selective && kind >= 0 && !selectionFits(process, ObjectTypeOfBox(kind))) break;
            runOnScratch("MenuCompareAll_Click", [&](CompareAllWindow& window) {
                replayResult_.verdict = MenuCompareAll_Click(
                    window, kind, process.DbName1, process.DbName2, selective,
                    process.CompSubSubType == (selective ? comparison_code::SelectiveDetails
                                                         : comparison_code::BulkDetails),
                    &saved);
            });
            break;
        case comparison_code::Individual:
            RunSavedProcess_Individual(kind, process);
            break;
        default:
            shell().messageBox(
                QStringLiteral("Comparison sub type not defined - aborting comparison."), {},
                BoxIcon::Exclamation);
    }
    replay_ = {};
}

void frmMain::selectType(ObjectType type) {
    if (selectedType() == type) return;
    ChoiceList& box = view_.panels().cmbType;
    for (int item = 0; item < box.count(); ++item) {
        if (ObjectType(box.itemData(item)) != type) continue;
        {
            const EventsOff off(box);
            box.selectIndex(item);
        }
        const ScopedValue<bool> free(Busy_, false);
        cmbType_Click();
        return;
    }
}

void frmMain::RunSavedProcess_Individual(int Index, const SavedProcess& process) {
    const ObjectType type = ObjectTypeFromIndex(Index);
    selectType(type);
    const QString kind = QStringLiteral("object");
    // A type that can't be chosen has no objects; those of another one must not pass for it.
    if (selectedType() != type) {
        refuse(kind + u' ' + process.TableName1 + QStringLiteral(" not found."));
        return;
    }
    const QString* const names[] = {&process.TableName1, &process.TableName2};
    for (const int panel : {SourcePanel, TargetPanel}) {
        const int row = rowOfReplayObject(panel, *names[panel], 0, kind);
        if (row < 0) return;
        showObject(panel, row);
    }
    reportShown_ = false;
    const bool identical =
        CompareSelProcs(*this, view_.panels().source.txtTXProc, view_.panels().target.txtTXProc);
    if (reportShown_)
        replayResult_.verdict = identical ? RunVerdict::Identical : RunVerdict::Different;
}

// Objects that were chosen and that neither database has any more would be left out of the run,
// and its report would speak of all that was selected.
bool frmMain::selectionFits(const SavedProcess& process, ObjectType type) {
    if (process.SourceNames.isEmpty() || process.TargetNames.isEmpty())
        return refuse(QStringLiteral("the names of the selected objects couldn't be retrieved."));
    QSet<QString> present;
    const QString* const databases[] = {&process.DbName1, &process.DbName2};
    for (const int Index : {SourcePanel, TargetPanel}) {
        std::vector<ObjectListEntry> entries;
        if (!GetAllObjectsOfType(server(Index), *databases[Index], type, entries, Index))
            return refuse(QStringLiteral("the list of ") + GetObjectTypeName(type, true) +
                          QStringLiteral(" of ") + *databases[Index] +
                          QStringLiteral(" couldn't be read."));
        for (const ObjectListEntry& entry : entries) {
            const QString& name = entry.ObjectName.isEmpty() ? entry.Name : entry.ObjectName;
            present.insert(name);
            if (!entry.Schema.isEmpty()) present.insert(entry.Schema + u'.' + name);
        }
    }
    QStringList missing;
    for (const QString& name : process.SourceNames + process.TargetNames)
        if (!present.contains(name) && !missing.contains(name)) missing += name;
    if (missing.isEmpty()) return true;
    return refuse(QStringLiteral("neither database has these selected ") +
                  GetObjectTypeName(type, true) + QStringLiteral(" any more: ") +
                  missing.join(QStringLiteral(", ")) +
                  QStringLiteral(".\r\n\r\nSave the process anew without them."));
}

}  // namespace zov
