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

bool isSettingStored(const QString& name) {
    const Setting* setting = findSetting(name);
    const auto read = [&](qint32 whenMissing) {
        return RegGetDWordValue(RegRoot::CurrentUser, setting->key, setting->name, whenMissing);
    };
    return read(0) == read(1);
}

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
    values.chkUseCatalogImage = g.gblnUseCatalogImage;
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
        const Values& v = values;
        const Values& before = loaded_;
        // What the user left alone stays as it is stored: another instance may have changed it.
        const auto saveNumber = [](const char* name, qint32 value, qint32 was) {
            const QString setting = QString::fromLatin1(name);
            if (value != was || !isSettingStored(setting)) writeSetting(setting, value);
            return value;
        };
        const auto save = [&](const char* name, bool value, bool was) {
            return saveNumber(name, value ? 1 : 0, was ? 1 : 0) == 1;
        };
        g.glngMaxRowsInDiffTable =
            saveNumber("MaxRowsInDiffTable", v.txtMaxRows, before.txtMaxRows);
        g.gblnCaseSensitive = save("CaseSensitive", v.chkCaseSensitive, before.chkCaseSensitive);
        g.gblnDataCaseSensitive =
            save("DataCaseSensitive", v.chkDataCaseSensitive, before.chkDataCaseSensitive);
        g.gblnIgnoreWhitespace =
            save("IgnoreWhitespace", v.chkIgnoreWhitespaces, before.chkIgnoreWhitespaces);
        g.gblnIgnoreComments =
            save("IgnoreComments", v.chkIgnoreComments, before.chkIgnoreComments);
        g.gblnIgnoreIndexes = save("IgnoreIndexes", v.chkIgnoreIndexes, before.chkIgnoreIndexes);
        g.gblnIgnoreSysObjects =
            save("IgnoreSysObjects", v.chkIgnoreSysObjects, before.chkIgnoreSysObjects);
        g.gblnUseCatalogImage =
            save("UseCatalogImage", v.chkUseCatalogImage, before.chkUseCatalogImage);
        save("ShowDataCompOpt", v.chkDataComp, before.chkDataComp);
        g.gblnIgnoreColSeq = save("IgnoreColSeq", v.chkIgnoreColSeq, before.chkIgnoreColSeq);
        g.glngCacheSize = saveNumber("CacheSize", v.txtCacheSize, before.txtCacheSize);
        g.glngCursorLocation = save("CursorConnectionUseServer", v.serverSide, before.serverSide)
                                   ? adUseServer
                                   : adUseClient;
        g.glngTimeout = saveNumber("Timeout", v.txtTimeout, before.txtTimeout);
        save("AutoConnect", v.chkAutoConnect, before.chkAutoConnect);
        save("PreserveDbSel", v.chkPreserveDbSel, before.chkPreserveDbSel);
        g.gblnAutoSelTargetObj =
            save("AutoSelTargetObj", v.chkAutoSelTargetObj, before.chkAutoSelTargetObj);
        g.gblnAnalyzeConstraints =
            save("AnalyzeConstraints", v.chkAnalyzeConstraints, before.chkAnalyzeConstraints);
        g.gblnAutoSaveSchemas =
            save("AutoSaveSchemas", v.chkAutoSaveSchemas, before.chkAutoSaveSchemas);
        g.gblnFilterOfflineDbs =
            save("FilterOfflineDbs", v.chkFilterOfflineDbs, before.chkFilterOfflineDbs);
        g.gblnShowOwners = save("ShowOwners", v.chkShowOwners, before.chkShowOwners);
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
