#include "core/main/frmMain.h"

#include "catalog/modOwner.h"
#include "catalog/modSchema.h"
#include "core/globals.h"
#include "core/main/main_screens.h"
#include "core/mdlMain.h"
#include "core/registry.h"
#include "core/settings.h"
#include "data/data_access_check.h"
#include "data/frmAddServer.h"
#include "data/frmDeleteServer.h"
#include "data/server_list.h"
#include "datacompare/modCompareData.h"
#include "reports/copy_to_file.h"
#include "scripting/modNew.h"
#include "shell/shell.h"
#include "structcompare/compare_all_menu.h"
#include "structcompare/modMarkDifferences.h"
#include "structcompare/txtext_control.h"
#include "util/text.h"

namespace zov {
namespace {

constexpr const char* Module = "frmMain";

const QString AllOwners = QStringLiteral("All Owners");

// Silences a list's selection events while the program changes it.
class ListOff {
 public:
    explicit ListOff(ObjectList& list) : list_(list) { list_.Tag = QStringLiteral("OFF"); }
    ~ListOff() { list_.Tag.clear(); }
    ListOff(const ListOff&) = delete;
    ListOff& operator=(const ListOff&) = delete;

 private:
    ObjectList& list_;
};

// What is selected, as far as the pane's text depends on it.
std::pair<int, int> selectionOf(const ObjectList& list) {
    return {list.selectedIndex(), list.selectedCount()};
}

int rowOfName(const ObjectList& list, const QString& name) {
    for (int row = 0; row < list.rowCount(); ++row)
        if (list.row(row).name == name) return row;
    return -1;
}

// The row of the same object as another list's row, or of this list's before it was loaded anew: by
// schema and name, else by what is shown.
int rowOfObject(const ObjectList& list, const ObjectListRow& object) {
    for (int row = 0; row < list.rowCount(); ++row)
        if (list.row(row).bareName() == object.bareName() && list.row(row).schema == object.schema)
            return row;
    return rowOfName(list, object.name);
}

}  // namespace

void frmMain::Form_Load() {
    whileBusy("Form_Load", [&] {
        Panels& panels = view_.panels();
        for (const int Index : {SourcePanel, TargetPanel})
            InitializeTXTextControl(panels[Index].txtTXProc);
        SetInitialServers();
        LoadObjectTypesCombo(panels.cmbType);
        refillServerBoxes();
        showTypeToolTips(selectedType());
        view_.setConnectPicture(PictureDisconnected);
        view_.setOwnerControlsVisible(globals().gblnShowOwners);
        view_.setStatusText(QStringLiteral("Connect to the servers   "));
        if (GetAutoConnect()) {
            if (!dataAccessUsable()) return;
            initializeDisplay(true);
        }
        ResetFilter(SourcePanel);
        ResetFilter(TargetPanel);
        showFilters();
    });
    // Whatever failed above was told; the window is there and works.
    Loaded = true;
}

void frmMain::Form_Activate() {
    if (activated_) return;
    activated_ = true;
    guardedRun(Module, "Form_Activate", [&] {
        const QString damage = damagedSettingsNote();
        if (!tellUnreadSettings() && !damage.isEmpty())
            shell().messageBox(damage, QStringLiteral("Settings Damaged"), BoxIcon::Exclamation);
        if (readBooleanSetting(QStringLiteral("ShowTipOfDay"))) screens_.showTip();
        const qint32 process = globals().glngSavedProcessId;
        if (serverInfoSet() && process > 0 && dataAccessUsable()) RunSavedProcess(process);
    });
}

bool frmMain::tellUnreadSettings() {
    const QString failure = settingsReadFailure();
    if (failure.isEmpty()) return false;
    takeSettingsFailure();
    if (unreadSettingsTold_) return true;
    unreadSettingsTold_ = true;
    shell().messageBox(
        failure + QStringLiteral("\r\n\r\nThe program's defaults are used in place of what is "
                                 "stored there, and a list of servers that can't be read is shown "
                                 "as empty. Make the file readable and start the program again."),
        QStringLiteral("Settings Not Read"), BoxIcon::Exclamation);
    return true;
}

void frmMain::tellSettingsFailure() {
    const QString failure = takeSettingsFailure();
    // A run without a trace has nothing that it would miss.
    if (failure.isEmpty() || settingsFailureTold_ || leavesNoTrace) return;
    settingsFailureTold_ = true;
    shell().messageBox(failure + QStringLiteral("\r\n\r\nWhat was changed holds until the program "
                                                "ends. Make the place writable to keep it."),
                       QStringLiteral("Settings Not Stored"), BoxIcon::Exclamation);
}

bool frmMain::dataAccessUsable() {
    return CheckMDACVersion();
}

void frmMain::refillServerBoxes() {
    for (const int Index : {SourcePanel, TargetPanel}) {
        FillServerCombo(view_.panels()[Index].cmbServer, 0);
        showPanelServer(Index);
    }
}

// The box names the server that its panel shows and compares, whatever it named before the list of
// servers changed.
void frmMain::showPanelServer(int Index) {
    ChoiceList& box = view_.panels()[Index].cmbServer;
    box.Tag = QStringLiteral("OFF");
    box.setText(server(Index).Name);
    box.Tag.clear();
}

void frmMain::showTypeToolTips(ObjectType type) {
    QString plural = GetObjectTypeName(type, true);
    if (plural.isEmpty()) plural = QStringLiteral("objects");
    view_.setCompareToolTip(QStringLiteral("Compare selected ") + plural + QStringLiteral(" (F7)"));
    view_.setListToolTips(QStringLiteral("List of all ") + plural);
}

bool frmMain::addServer() {
    frmAddServer screen;
    if (!screen.ShowUp()) return false;
    refillServerBoxes();
    return true;
}

bool frmMain::serverInfoSet() {
    const ScopedValue<bool> busy(Busy_, true);
    const bool set = ServerInfoSet(view_.panels(), *this);
    showFilters();
    return set;
}

void frmMain::initializeDisplay(bool pblnLoadMRUDb) {
    const ScopedValue<bool> busy(Busy_, true);
    const WaitPointer wait;
    InitializeDisplay(pblnLoadMRUDb, view_.panels(), *this);
    showFilters();
}

void frmMain::showFilters() {
    Filtering_UpdateDisplay(FilterType::Owner, *this);
    Filtering_UpdateDisplay(FilterType::Schema, *this);
}

const ServerInfo& frmMain::server(int Index) {
    return globals().gtCurrentServers[Index];
}
QString frmMain::database(int Index) {
    return view_.panels()[Index].pvlDb.text();
}
bool frmMain::anyDatabase() {
    return !database(SourcePanel).isEmpty() || !database(TargetPanel).isEmpty();
}

ObjectType frmMain::selectedType() {
    ChoiceList& box = view_.panels().cmbType;
    const int index = box.selectedIndex();
    return ObjectType(index < 0 ? 0 : box.itemData(index));
}

SelectedPair frmMain::GetNamesOfSelected() {
    SelectedPair pair;
    pair.objectType = selectedType();
    pair.sourceServer = server(SourcePanel);
    pair.targetServer = server(TargetPanel);
    pair.sourceDb = database(SourcePanel);
    pair.targetDb = database(TargetPanel);
    const auto read = [&](int Index, QString& name, qint32& id, ObjectRef& object) {
        ObjectList& list = view_.panels()[Index].pvlSqlObj;
        const int row = list.selectedIndex();
        if (row < 0) return;
        object = objectOf(list.row(row), pair.objectType);
        name = object.shownName;
        id = object.id;
    };
    read(SourcePanel, pair.sourceObject, pair.sourceId, pair.sourceRow);
    read(TargetPanel, pair.targetObject, pair.targetId, pair.targetRow);
    return pair;
}

void frmMain::cmdConnect_Click() {
    if (!Loaded) return;
    whileBusy("cmdConnect_Click", [&] {
        if (dataAccessUsable()) initializeDisplay(true);
    });
}

void frmMain::cmbServer_Click(int Index) {
    Panel& panel = view_.panels()[Index];
    if (panel.cmbServer.Tag == u"OFF") return;
    whileBusy("cmbServer_Click", [&] {
        ServerInfo chosen;
        chosen.Name = panel.cmbServer.text();
        if (chosen.Name.isEmpty()) return;
        if (!GetServerInfoByName(chosen)) {
            // Another instance took it off the list: the panel stays with its server.
            return showPanelServer(Index);
        }
        globals().gtCurrentServers[Index] = chosen;
        ResetFilter(Index);
        showFilters();
        ClearPanel(panel);
        const bool loaded = LoadServer(globals().gtCurrentServers[Index], panel,
                                       view_.panels().cmbType, true, Index, view_.panels().texts);
        view_.setConnectPicture(loaded || anyDatabase() ? PictureConnected : PictureDisconnected);
    });
}

void frmMain::pvlDb_Click(int Index) {
    Panel& panel = view_.panels()[Index];
    if (panel.pvlDb.Tag == u"OFF") return;
    whileBusy("pvlDb_Click", [&] {
        const QString name = Trim(panel.pvlDb.text());
        if (name.isEmpty()) return;
        DatabaseChanged(globals().gtCurrentServers[Index], name, panel, view_.panels().cmbType,
                        Index, view_.panels().texts);
        showFilters();
    });
}

void frmMain::cmbType_Click() {
    ObjectTypeChanged(10, 1, 3);
}

void frmMain::cmbOwners_Click(int Index) {
    Panel& panel = view_.panels()[Index];
    if (panel.cmbOwners.Tag == u"OFF") return;
    whileBusy("cmbOwners_Click", [&] {
        zov::cmbOwners_Click(server(Index), panel, view_.panels().cmbType, Index,
                             view_.panels().texts);
    });
}

void frmMain::pvlSqlObj_Click(int Index) {
    ObjectList& list = view_.panels()[Index].pvlSqlObj;
    // A load shows the text of what it selects by itself.
    if (list.Tag == u"OFF") return;
    whileBusy("pvlSqlObj_Click", [&] {
        if (list.selectedCount() == 0 && list.rowCount() > 0) {
            const ListOff off(list);
            list.selectRow(0);
        }
        // Another row may be chosen while the server is asked for this one.
        std::pair<int, int> shown;
        do {
            shown = selectionOf(list);
            refreshPaneText(Index);
        } while (shown != selectionOf(list));
        if (!Loaded || Index != SourcePanel || !globals().gblnAutoSelTargetObj) return;
        const int row = list.selectedIndex();
        if (row >= 0)
            selectRow(TargetPanel,
                      rowOfObject(view_.panels()[TargetPanel].pvlSqlObj, list.row(row)));
    });
}

void frmMain::refreshPaneText(int Index) {
    Panel& panel = view_.panels()[Index];
    // Taken off again by the routine: a row that it selects is shown once.
    panel.pvlSqlObj.Tag = QStringLiteral("OFF");
    UpdateProcedureTextBox(server(Index), panel.txtTXProc, panel.pvlSqlObj, selectedType(),
                           database(Index), {}, 0, Index);
}

void frmMain::showObject(int Index, int row) {
    ObjectList& list = view_.panels()[Index].pvlSqlObj;
    {
        const ListOff off(list);
        list.selectRow(row);
    }
    refreshPaneText(Index);
}

void frmMain::selectRow(int Index, int row) {
    if (row >= 0) showObject(Index, row);
}

void frmMain::cmdFilter_Click(int Index, FilterType Type) {
    if (Type == FilterType::Schema)
        cmdFilterBySchema(Index, *this);
    else
        cmdFilterByOwner(Index, *this);
}

void frmMain::srtFiltering_Click(int Index) {
    if (!Busy_) RemoveFilter(Index, FilterType::Schema, *this);
}

void frmMain::cmdViewData_Click(int Index) {
    whileBusy("cmdViewData_Click", [&] {
        TableChoice choice;
        if (CanViewAnalyzeData(0, Index, choice))
            screens_.viewData(Index, choice.database, choice.table, choice.extendedName, choice.id);
    });
}

void frmMain::cmdCopyClip_Click(int Index) {
    TxText_CopyToClipboard(view_.panels()[Index].txtTXProc);
}

void frmMain::cmdCopyToFile_Click(int Index) {
    Panel& panel = view_.panels()[Index];
    const int row = panel.pvlSqlObj.selectedIndex();
    QString path;
    CopyToFile(panel.txtTXProc.text(), row < 0 ? QString() : panel.pvlSqlObj.row(row).name, path);
}

void frmMain::ObjectTypeChanged(int Mode, int Value, int PanelBits) {
    ChoiceList& box = view_.panels().cmbType;
    if (box.Tag == u"OFF") return;
    whileBusy("ObjectTypeChanged", [&] {
        if (!serverInfoSet()) return;
        const ObjectType type = Mode == 20 ? ObjectTypeFromPosition(Value) : selectedType();
        showTypeToolTips(type);
        if (!anyDatabase()) return initializeDisplay(false);
        Panels& panels = view_.panels();
        for (int Index = SourcePanel; Index <= TargetPanel; ++Index) {
            if (!(PanelBits & (1 << Index)) || database(Index).isEmpty()) continue;
            {
                const ListOff off(panels[Index].pvlSqlObj);
                panels[Index].pvlSqlObj.selectRow(0);
            }
            LoadObjects(server(Index), panels[Index].pvlSqlObj, panels[Index].txtTXProc, type,
                        database(Index), true, {}, Index, &panels.texts);
        }
    });
}

void frmMain::RefreshDisplayForPanel(int Index) {
    if (Busy_) return;
    ObjectList& list = view_.panels()[Index].pvlSqlObj;
    const int row = list.selectedIndex();
    const ObjectListRow before = row < 0 ? ObjectListRow() : list.row(row);
    ObjectTypeChanged(10, 1, Index + 1);
    if (before.name.isEmpty()) return;
    const int found = rowOfObject(list, before);
    if (found != list.selectedIndex()) selectRow(Index, found);
}

void frmMain::RefreshSourceTarget(int Index) {
    if (dataAccessUsable()) RefreshDisplayForPanel(Index);
}

void frmMain::MenuRemoveServer() {
    if (GetServerCount() == 0) {
        shell().messageBox(QStringLiteral("There are no servers stored in the list."));
        return;
    }
    frmDeleteServer screen;
    if (!screen.ShowUp()) return;
    refillServerBoxes();
    initializeDisplay(false);
}

void frmMain::MenuToolsOptions() {
    Globals& settings = globals();
    const bool hadOwners = settings.gblnShowOwners;
    const qint32 oldLocation = settings.glngCursorLocation;
    const qint32 oldCache = settings.glngCacheSize;
    const bool hadConstraints = settings.gblnAnalyzeConstraints;
    if (!screens_.showOptions()) return;
    settingsFailureTold_ = false;
    Panels& panels = view_.panels();
    if (settings.gblnShowOwners != hadOwners) {
        view_.setOwnerControlsVisible(settings.gblnShowOwners);
        if (settings.gblnShowOwners && !anyDatabase()) {
            initializeDisplay(false);
        } else if (settings.gblnShowOwners) {
            for (int Index = SourcePanel; Index <= TargetPanel; ++Index)
                if (!database(Index).isEmpty())
                    LoadOwners(server(Index), database(Index), panels[Index].cmbOwners);
        }
    }
    if (settings.glngCursorLocation != oldLocation) {
        shell().messageBox(
            QStringLiteral("Cursor location setting was changed.\r\n\r\nPlease click OK and wait "
                           "while the connections are refreshed."));
        if (!server(SourcePanel).Name.isEmpty() && !server(TargetPanel).Name.isEmpty()) {
            const QString owners[] = {panels.source.cmbOwners.text(),
                                      panels.target.cmbOwners.text()};
            initializeDisplay(false);
            takeOwnersBack(owners);
        }
    }
    if (settings.glngCacheSize != oldCache && settings.glngCursorLocation != adUseServer)
        shell().messageBox(
            QStringLiteral("Cache Size setting was changed.\r\n\r\nPlease note that this setting "
                           "has meaning only when Cursor Location is set to server-side."));
    if (settings.gblnAnalyzeConstraints != hadConstraints) {
        shell().messageBox(
            QStringLiteral("Setting 'Treat Constraints as a separate object type' changed.\r\n\r\n"
                           "Please click OK and wait while the display is refreshed."));
        LoadObjectTypesCombo(panels.cmbType);
        initializeDisplay(false);
        ConstraintsMenuItems_MaintainVisibility();
    }
}

// The owner that narrowed a list before its panel was loaded anew.
void frmMain::takeOwnersBack(const QString (&owners)[2]) {
    for (int Index = SourcePanel; Index <= TargetPanel; ++Index) {
        ChoiceList& box = view_.panels()[Index].cmbOwners;
        if (owners[Index].isEmpty() || owners[Index] == AllOwners) continue;
        for (int item = 0; item < box.count(); ++item) {
            if (box.itemText(item) != owners[Index]) continue;
            box.Tag = QStringLiteral("OFF");
            box.selectIndex(item);
            box.Tag.clear();
            zov::cmbOwners_Click(server(Index), view_.panels()[Index], view_.panels().cmbType,
                                 Index, view_.panels().texts);
            break;
        }
    }
}

// The entries for constraints are always there: their place is given by the object types' box and
// by the boxes of the bulk comparison.
bool frmMain::ConstraintsMenuItems_MaintainVisibility() {
    return true;
}

void frmMain::MenuToolsFindInDb(int Index) {
    if (!CanSearchForObject(Index)) return;
    const QString name = screens_.searchForObject(Index, selectedType(), database(Index));
    if (name.isEmpty()) return;
    if (rowOfName(view_.panels()[Index].pvlSqlObj, name) < 0)
        shell().messageBox(
            QStringLiteral("'%1' isn't in the panel's list any more or was left out "
                           "of it.\r\n\r\nRefresh the panel and choose all owners to "
                           "see it.")
                .arg(name),
            QStringLiteral("Cannot View"));
    selectRow(Index, rowOfName(view_.panels()[Index].pvlSqlObj, name));
}

bool frmMain::hasText(int Index) const {
    return !view_.panels()[Index].txtTXProc.text().isEmpty();
}

void frmMain::ignoreColumns(int Index) {
    if (!dataAccessUsable() || !TablesAreActive()) return;
    const SelectedPair pair = GetNamesOfSelected();
    const bool isSource = Index == SourcePanel;
    const QString table = isSource ? pair.sourceObject : pair.targetObject;
    if (table.isEmpty()) {
        shell().messageBox(
            QStringLiteral("Cannot continue - there is no structure displayed for selected table."),
            QStringLiteral("Cannot Continue"));
        return;
    }
    screens_.ignoreColumns(Index, database(Index), isSource ? pair.source() : pair.target());
}

}  // namespace zov
