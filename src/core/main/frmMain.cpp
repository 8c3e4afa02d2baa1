#include "core/main/frmMain.h"

#include "catalog/modOwner.h"
#include "catalog/modSchema.h"
#include "core/error_report.h"
#include "core/globals.h"
#include "core/main/main_screens.h"
#include "core/mdlMain.h"
#include "core/settings.h"
#include "data/data_access_check.h"
#include "data/frmAddServer.h"
#include "data/frmDeleteServer.h"
#include "data/server_list.h"
#include "scripting/modNew.h"
#include "scripting/modSql.h"
#include "shell/shell.h"
#include "util/text.h"

namespace zov {
namespace {

constexpr const char* Module = "frmMain";
constexpr int StructureComparisons = 2;
constexpr int DataComparisons = 1;

QString cannotCompare() {
    return QStringLiteral("Cannot Compare");
}

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

void selectByName(ObjectList& list, const QString& name) {
    for (int row = 0; row < list.rowCount(); ++row) {
        if (list.row(row).name == name) {
            list.selectRow(row);
            return;
        }
    }
}

}  // namespace

void frmMain::Form_Load() {
    guardedRun(Module, "Form_Load", [&] {
        const WaitPointer wait;
        SetInitialServers();
        LoadObjectTypesCombo(view_.panels().cmbType);
        refillServerBoxes();
        view_.setConnectPicture(PictureDisconnected);
        view_.setOwnerControlsVisible(globals().gblnShowOwners);
        if (GetAutoConnect()) {
            if (!dataAccessUsable()) return;
            InitializeDisplay(true, view_.panels(), *this);
        }
        ResetFilter(SourcePanel);
        ResetFilter(TargetPanel);
        Filtering_UpdateDisplay(FilterType::Owner, *this);
        Filtering_UpdateDisplay(FilterType::Schema, *this);
        Loaded = true;
    });
    // Whatever failed above was told; the window is there and works.
    Loaded = true;
}

void frmMain::Form_Activate() {
    if (activated_) return;
    activated_ = true;
    guardedRun(Module, "Form_Activate", [&] {
        if (readBooleanSetting(QStringLiteral("ShowTipOfDay"))) screens_.showTip();
        ServerInfoSet(view_.panels(), *this);
    });
}

bool frmMain::dataAccessUsable() {
    return CheckMDACVersion();
}

void frmMain::refillServerBoxes() {
    FillServerCombo(view_.panels().source.cmbServer, 0);
    FillServerCombo(view_.panels().target.cmbServer, 0);
}

bool frmMain::addServer() {
    frmAddServer screen;
    if (!screen.ShowUp()) return false;
    refillServerBoxes();
    return true;
}

const ServerInfo& frmMain::server(int Index) {
    return globals().gtCurrentServers[Index];
}
QString frmMain::database(int Index) {
    return view_.panels()[Index].pvlDb.text();
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
    const auto read = [this](int Index, QString& name, qint32& id) {
        ObjectList& list = view_.panels()[Index].pvlSqlObj;
        const int row = list.selectedIndex();
        if (row < 0) return;
        name = list.row(row).name;
        id = list.row(row).id;
    };
    read(SourcePanel, pair.sourceObject, pair.sourceId);
    read(TargetPanel, pair.targetObject, pair.targetId);
    return pair;
}

void frmMain::cmdConnect_Click() {
    if (!Loaded || Busy_) return;
    guardedRun(Module, "cmdConnect_Click", [&] {
        const ScopedValue<bool> busy(Busy_, true);
        if (dataAccessUsable()) InitializeDisplay(true, view_.panels(), *this);
    });
}

void frmMain::cmbServer_Click(int Index) {
    Panel& panel = view_.panels()[Index];
    if (panel.cmbServer.Tag == u"OFF" || Busy_) return;
    guardedRun(Module, "cmbServer_Click", [&] {
        const ScopedValue<bool> busy(Busy_, true);
        ServerInfo chosen;
        chosen.Name = panel.cmbServer.text();
        if (chosen.Name.isEmpty()) return;
        GetServerInfoByName(chosen);
        globals().gtCurrentServers[Index] = chosen;
        ResetFilter(Index);
        Filtering_UpdateDisplay(FilterType::Schema, *this);
        ClearPanel(panel);
        const bool loaded = LoadServer(globals().gtCurrentServers[Index], panel,
                                       view_.panels().cmbType, true, Index, view_.panels().texts);
        if (loaded) view_.setConnectPicture(PictureConnected);
    });
}

void frmMain::pvlDb_Click(int Index) {
    Panel& panel = view_.panels()[Index];
    if (panel.pvlDb.Tag == u"OFF" || Busy_) return;
    guardedRun(Module, "pvlDb_Click", [&] {
        const ScopedValue<bool> busy(Busy_, true);
        const QString name = Trim(panel.pvlDb.text());
        if (name.isEmpty()) return;
        DatabaseChanged(globals().gtCurrentServers[Index], name, panel, view_.panels().cmbType,
                        Index, view_.panels().texts);
        Filtering_UpdateDisplay(FilterType::Schema, *this);
    });
}

void frmMain::cmbType_Click() {
    ObjectTypeChanged(10, 1, 3);
}

void frmMain::cmbOwners_Click(int Index) {
    Panel& panel = view_.panels()[Index];
    if (panel.cmbOwners.Tag == u"OFF" || Busy_) return;
    guardedRun(Module, "cmbOwners_Click", [&] {
        const ScopedValue<bool> busy(Busy_, true);
        zov::cmbOwners_Click(server(Index), panel, view_.panels().cmbType, Index,
                             view_.panels().texts);
    });
}

void frmMain::pvlSqlObj_Click(int Index) {
    Panel& panel = view_.panels()[Index];
    if (panel.pvlSqlObj.Tag == u"OFF") return;
    guardedRun(Module, "pvlSqlObj_Click", [&] {
        refreshPaneText(Index);
        if (!Loaded || Busy_ || Index != SourcePanel || !globals().gblnAutoSelTargetObj) return;
        const int row = panel.pvlSqlObj.selectedIndex();
        if (row < 0) return;
        const QString name = panel.pvlSqlObj.row(row).name;
        if (!name.isEmpty()) selectByName(view_.panels().target.pvlSqlObj, name);
    });
}

void frmMain::refreshPaneText(int Index) {
    Panel& panel = view_.panels()[Index];
    UpdateProcedureTextBox(server(Index), panel.txtTXProc, panel.pvlSqlObj, selectedType(),
                           database(Index), {}, 0, Index);
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

void frmMain::cmdCopyClip_Click(int Index) {
    shell().setClipboardText(view_.panels()[Index].txtTXProc.text());
}

void frmMain::cmdCopyToFile_Click(int Index) {
    Panel& panel = view_.panels()[Index];
    const int row = panel.pvlSqlObj.selectedIndex();
    screens_.copyToFile(panel.txtTXProc.text(),
                        row < 0 ? QString() : panel.pvlSqlObj.row(row).name);
}

void frmMain::ObjectTypeChanged(int Mode, int Value, int PanelBits) {
    ChoiceList& box = view_.panels().cmbType;
    if (Busy_ || box.Tag == u"OFF") return;
    guardedRun(Module, "ObjectTypeChanged", [&] {
        const ScopedValue<bool> busy(Busy_, true);
        if (!ServerInfoSet(view_.panels(), *this)) return;
        const ObjectType type = Mode == 20 ? ObjectTypeFromPosition(Value) : selectedType();
        QString plural = GetObjectTypeName(type, true);
        if (plural.isEmpty()) plural = QStringLiteral("objects");
        view_.setCompareToolTip(QStringLiteral("Compare selected ") + plural +
                                QStringLiteral(" (F7)"));
        view_.setListToolTips(QStringLiteral("List of all ") + plural);
        Panels& panels = view_.panels();
        if (panels.source.pvlDb.text().isEmpty() && panels.target.pvlDb.text().isEmpty()) {
            InitializeDisplay(false, panels, *this);
            return;
        }
        for (int Index = SourcePanel; Index <= TargetPanel; ++Index) {
            if (!(PanelBits & (1 << Index)) || panels[Index].pvlDb.text().isEmpty()) continue;
            {
                const ListOff off(panels[Index].pvlSqlObj);
                panels[Index].pvlSqlObj.selectRow(-1);
            }
            LoadObjects(server(Index), panels[Index].pvlSqlObj, panels[Index].txtTXProc, type,
                        database(Index), true, {}, Index, &panels.texts);
        }
    });
}

void frmMain::RefreshDisplayForPanel(int Index) {
    ObjectList& list = view_.panels()[Index].pvlSqlObj;
    const int row = list.selectedIndex();
    const QString name = row < 0 ? QString() : list.row(row).name;
    // A filter button holds the window busy while it refreshes its panel.
    const ScopedValue<bool> idle(Busy_, false);
    ObjectTypeChanged(10, 1, Index + 1);
    if (!name.isEmpty()) selectByName(list, name);
}

void frmMain::RefreshSourceTarget(int Index) {
    if (dataAccessUsable()) RefreshDisplayForPanel(Index);
}

void frmMain::showComparisonReport(const SelectedPair& pair) {
    ComparisonReport report;
    report.Caption = QStringLiteral("Comparison Report");
    report.ServerName1 = pair.sourceServer.Name;
    report.ServerName2 = pair.targetServer.Name;
    report.DbName1 = pair.sourceDb;
    report.DbName2 = pair.targetDb;
    report.SourceNames = {pair.sourceObject};
    report.TargetNames = {pair.targetObject};
    screens_.reportScreen().ShowUp(report);
}

void frmMain::printBothPanes() {
    view_.printPane(SourcePanel, QStringLiteral("Source: "), GetNamesOfSelected().sourceFullName());
    view_.printPane(TargetPanel, QStringLiteral("Target: "), GetNamesOfSelected().targetFullName());
}

void frmMain::cmdCompare_Click() {
    if (Busy_) return;
    Panels& panels = view_.panels();
    if (panels.source.pvlDb.text().isEmpty() || panels.target.pvlDb.text().isEmpty()) {
        shell().messageBox(QStringLiteral("Cannot compare - the list of databases is empty."),
                           cannotCompare());
        return;
    }
    CompareSelProcs(*this, panels.source.txtTXProc, panels.target.txtTXProc);
}

void frmMain::compareBulk(int kindIndex, bool selective, bool details) {
    if (Busy_ || !dataAccessUsable()) return;
    Panels& panels = view_.panels();
    const auto restore = [&](int Index, const QString& name) {
        if (panels[Index].pvlDb.text().isEmpty()) return;
        RefreshDisplayForPanel(Index);
        selectByName(panels[Index].pvlSqlObj, name);
    };
    const SelectedPair before = GetNamesOfSelected();
    {
        const ScopedValue<bool> busy(Busy_, true);
        screens_.compareAll(panels, kindIndex, selective, details);
    }
    // The run used the lists and panes as its scratch.
    restore(SourcePanel, before.sourceObject);
    restore(TargetPanel, before.targetObject);
}

void frmMain::cmdCompareAll_Click() {
    static const ObjectType order[] = {
        ObjectType::Table,   ObjectType::Procedure,    ObjectType::Function,  ObjectType::View,
        ObjectType::Trigger, ObjectType::Relationship, ObjectType::Constraint};
    int index = 0;
    for (int i = 0; i < int(std::size(order)); ++i)
        if (order[i] == selectedType()) index = i;
    compareBulk(index, false, false);
}

void frmMain::MenuRemoveServer() {
    if (GetServerCount() == 0) {
        shell().messageBox(QStringLiteral("There are no servers stored in the list."));
        return;
    }
    frmDeleteServer screen;
    if (!screen.ShowUp()) return;
    refillServerBoxes();
    InitializeDisplay(false, view_.panels(), *this);
}

void frmMain::MenuToolsOptions() {
    Globals& settings = globals();
    const bool hadOwners = settings.gblnShowOwners;
    const qint32 oldLocation = settings.glngCursorLocation;
    const qint32 oldCache = settings.glngCacheSize;
    const bool hadConstraints = settings.gblnAnalyzeConstraints;
    if (!screens_.showOptions()) return;
    Panels& panels = view_.panels();
    if (settings.gblnShowOwners != hadOwners) {
        view_.setOwnerControlsVisible(settings.gblnShowOwners);
        if (settings.gblnShowOwners) {
            if (panels.source.pvlDb.text().isEmpty() && panels.target.pvlDb.text().isEmpty()) {
                InitializeDisplay(false, panels, *this);
            } else {
                for (int Index = SourcePanel; Index <= TargetPanel; ++Index)
                    LoadOwners(server(Index), database(Index), panels[Index].cmbOwners);
            }
        }
    }
    if (settings.glngCursorLocation != oldLocation) {
        shell().messageBox(
            QStringLiteral("Cursor location setting was changed.\r\n\r\nPlease click OK and wait "
                           "while the connections are refreshed."));
        InitializeDisplay(false, panels, *this);
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
        InitializeDisplay(false, panels, *this);
    }
}

void frmMain::MenuToolsFindInDb(int Index) {
    if (!CanSearchForObject(Index)) return;
    const QString name = screens_.searchForObject(Index, selectedType());
    if (!name.isEmpty()) selectByName(view_.panels()[Index].pvlSqlObj, name);
}

void frmMain::MenuSqlCreate(int Index) {
    if (dataAccessUsable()) BuildSQLCreateStatement(Index);
}

void frmMain::BuildSQLCreateStatement(int Index) {
    if (!hasText(SourcePanel) && !hasText(TargetPanel)) {
        shell().messageBox(
            QStringLiteral(
                "Cannot continue - there is no structure displayed for selected object."),
            QStringLiteral("Cannot Continue"));
        return;
    }
    CreateStatementRequest request;
    const SelectedPair pair = GetNamesOfSelected();
    request.dbName = Index == SourcePanel ? pair.sourceDb : pair.targetDb;
    request.objectName = Index == SourcePanel ? pair.sourceObject : pair.targetObject;
    request.objectId = Index == SourcePanel ? pair.sourceId : pair.targetId;
    request.objectType = pair.objectType;
    request.lineSuffix = QStringLiteral(",");
    bool ok = false;
    const QString text = BuildObjectCreateStatement(server(Index), request, ok);
    if (text.isEmpty()) {
        shell().messageBox(QStringLiteral("Couldn't generate SQL CREATE statement."));
        return;
    }
    const ScopedValue<QString> report(globals().gstrReport, text);
    screens_.showGenericReport(QStringLiteral("SQL CREATE Statement"));
}

bool frmMain::hasText(int Index) const {
    return !view_.panels()[Index].txtTXProc.text().isEmpty();
}

void frmMain::MenuPopUpPrint(int Index) {
    if (!hasText(Index)) {
        shell().messageBox(
            QStringLiteral("Cannot continue - there is no structure displayed for selected table."),
            QStringLiteral("Cannot Continue"));
        return;
    }
    const SelectedPair pair = GetNamesOfSelected();
    if (Index == SourcePanel)
        view_.printPane(Index, QStringLiteral("Source: "), pair.sourceFullName());
    else
        view_.printPane(Index, QStringLiteral("Target: "), pair.targetFullName());
}

void frmMain::ignoreColumns(int Index) {
    if (!TablesAreActive()) return;
    const SelectedPair pair = GetNamesOfSelected();
    const bool isSource = Index == SourcePanel;
    screens_.ignoreColumns(Index, database(Index), isSource ? pair.sourceObject : pair.targetObject,
                           isSource ? pair.sourceId : pair.targetId);
}

void frmMain::visualizeDifferences() {
    const SelectedPair pair = GetNamesOfSelected();
    screens_.visualizeDifferences(pair.sourceFullName(), view_.panels().source.txtTXProc.text(),
                                  pair.targetFullName(), view_.panels().target.txtTXProc.text());
}

void frmMain::CompareAndPrintAllTables() {
    Panels& panels = view_.panels();
    const auto refuse = [](const QString& text) { shell().messageBox(text, cannotCompare()); };
    if (server(SourcePanel).Name.isEmpty())
        return refuse(QStringLiteral("Please select Source server first."));
    if (server(TargetPanel).Name.isEmpty())
        return refuse(QStringLiteral("Please select Target server first."));
    const QString source = database(SourcePanel), target = database(TargetPanel);
    if (source.isEmpty() || target.isEmpty())
        return refuse(QStringLiteral("Cannot compare - the list of databases is empty."));
    if (server(SourcePanel).Name == server(TargetPanel).Name && source == target)
        return refuse(QStringLiteral("Cannot compare - Source and Target database are the same."));
    if (panels.source.pvlSqlObj.rowCount() == 0)
        return refuse(QStringLiteral("Cannot compare - there are no tables in Source database."));
    if (panels.target.pvlSqlObj.rowCount() == 0)
        return refuse(QStringLiteral("Cannot compare - there are no tables in Target database."));
    const ScopedValue<bool> printing(printJob_, true);
    screens_.compareAndPrint();
}

}  // namespace zov
