#include "options/frmOptions.h"

#include "core/error_report.h"
#include "core/globals.h"
#include "core/mdlMain.h"
#include "core/registry.h"
#include "core/settings.h"
#include "shell/shell.h"

namespace zov {
namespace {

constexpr qint32 LeastRows = 10;
constexpr qint32 LeastCacheSize = 1;

}  // namespace

bool frmOptions::ShowUp() {
    saved_ = false;
    LoadData();
    reopen();
    shell().showModal(*this);
    return saved_;
}

void frmOptions::LoadData() {
    const Globals& g = globals();
    values.chkAutoConnect = GetAutoConnect();
    values.chkPreserveDbSel = GetPreserveDbSel();
    values.chkAutoSelTargetObj = g.gblnAutoSelTargetObj;
    values.chkShowOwners = g.gblnShowOwners;
    values.chkFilterOfflineDbs = g.gblnFilterOfflineDbs;
    values.txtTimeout = g.glngTimeout;
    values.chkIgnoreColSeq = g.gblnIgnoreColSeq;
    values.chkAnalyzeConstraints = g.gblnAnalyzeConstraints;
    values.chkAutoSaveSchemas = g.gblnAutoSaveSchemas;
    values.chkIgnoreSysObjects = g.gblnIgnoreSysObjects;
    values.chkIgnoreIndexes = g.gblnIgnoreIndexes;
    values.chkIgnoreComments = g.gblnIgnoreComments;
    values.chkIgnoreWhitespaces = g.gblnIgnoreWhitespace;
    values.chkCaseSensitive = g.gblnCaseSensitive;
    values.chkDataComp = GetShowDataCompOpt();
    values.txtMaxRows = g.glngMaxRowsInDiffTable;
    values.txtCacheSize = g.glngCacheSize;
    values.serverSide = g.glngCursorLocation == adUseServer;
    values.chkDataCaseSensitive = g.gblnDataCaseSensitive;
    loaded_ = values;
}

void frmOptions::ValidateData() {
    if (values.txtMaxRows < LeastRows) {
        shell().messageBox(
            QStringLiteral(
                "Maximum number of rows displayed in differences table cannot be smaller than "
                "10.\r\n\r\nProgram will reset this value to 10."),
            {}, BoxIcon::Exclamation);
        values.txtMaxRows = LeastRows;
    }
    if (values.txtCacheSize < LeastCacheSize) {
        shell().messageBox(
            QStringLiteral(
                "Cache Size cannot be smaller than 1.\r\n\r\nProgram will reset this value to 1."),
            {}, BoxIcon::Exclamation);
        values.txtCacheSize = LeastCacheSize;
    }
    refresh();
}

void frmOptions::SaveData() {
    guardedRun("frmOptions", "SaveData", [&] {
        Globals& g = globals();
        const RegistryBatch together;
        const auto save = [](const char* setting, bool value) {
            writeBooleanSetting(QString::fromLatin1(setting), value);
            return value;
        };
        const auto saveNumber = [](const char* setting, qint32 value) {
            writeSetting(QString::fromLatin1(setting), value);
            return value;
        };
        g.glngMaxRowsInDiffTable = saveNumber("MaxRowsInDiffTable", values.txtMaxRows);
        g.gblnCaseSensitive = save("CaseSensitive", values.chkCaseSensitive);
        g.gblnDataCaseSensitive = save("DataCaseSensitive", values.chkDataCaseSensitive);
        g.gblnIgnoreWhitespace = save("IgnoreWhitespace", values.chkIgnoreWhitespaces);
        g.gblnIgnoreComments = save("IgnoreComments", values.chkIgnoreComments);
        g.gblnIgnoreIndexes = save("IgnoreIndexes", values.chkIgnoreIndexes);
        g.gblnIgnoreSysObjects = save("IgnoreSysObjects", values.chkIgnoreSysObjects);
        save("ShowDataCompOpt", values.chkDataComp);
        g.gblnIgnoreColSeq = save("IgnoreColSeq", values.chkIgnoreColSeq);
        g.glngCacheSize = saveNumber("CacheSize", values.txtCacheSize);
        g.glngCursorLocation =
            save("CursorConnectionUseServer", values.serverSide) ? adUseServer : adUseClient;
        g.glngTimeout = saveNumber("Timeout", values.txtTimeout);
        save("AutoConnect", values.chkAutoConnect);
        save("PreserveDbSel", values.chkPreserveDbSel);
        g.gblnAutoSelTargetObj = save("AutoSelTargetObj", values.chkAutoSelTargetObj);
        g.gblnAnalyzeConstraints = save("AnalyzeConstraints", values.chkAnalyzeConstraints);
        g.gblnAutoSaveSchemas = save("AutoSaveSchemas", values.chkAutoSaveSchemas);
        g.gblnFilterOfflineDbs = save("FilterOfflineDbs", values.chkFilterOfflineDbs);
        g.gblnShowOwners = save("ShowOwners", values.chkShowOwners);
        loaded_ = values;
        saved_ = true;
    });
}

void frmOptions::cmdSave() {
    ValidateData();
    SaveData();
    close();
}

void frmOptions::cmdCancel() {
    if (Form_QueryUnload()) close();
}

bool frmOptions::Form_QueryUnload() {
    if (saved_ || values == loaded_) return true;
    switch (shell().askYesNoCancel(QStringLiteral("Do you wish to save your changes?"))) {
        case BoxAnswer::Yes:
            ValidateData();
            SaveData();
            return true;
        case BoxAnswer::No:
            return true;
        default:
            return false;
    }
}

}  // namespace zov
