#include "shell/qt/desktop_screens.h"

#include "core/frmTip.h"
#include "core/globals.h"
#include "datacompare/frmIgnoreColumns.h"
#include "options/frmOptions.h"
#include "reports/copy_to_file.h"
#include "shell/qt/main_window.h"
#include "shell/qt/pane_printer.h"
#include "shell/shell.h"
#include "structcompare/compare_all_menu.h"
#include "structcompare/frmCompareText.h"
#include "tools/frmSearchForObject_Gen.h"
#include "util/text.h"

namespace zov::qt {

bool DesktopScreens::showOptions() {
    return frmOptions().ShowUp();
}

QString DesktopScreens::searchForObject(int Panel, ObjectType Type) {
    return frmSearchForObject_Gen().ShowUp(Panel, Type, GetObjectTypeName(Type, false),
                                           window_->controller().database(Panel));
}

bool DesktopScreens::ignoreColumns(int Panel, const QString& Db, const QString& Table,
                                   qint32 ObjectId) {
    qint32 count = 0;
    return frmIgnoreColumnsAdd().ShowUp(IgnoreMode::StructureComparison,
                                        globals().gtCurrentServers[Panel], Db, Table, ObjectId,
                                        count);
}

void DesktopScreens::viewIgnoredColumns(int Mode) {
    frmIgnoreColumnsView().ShowUp(Mode);
}

void DesktopScreens::showColorSchema() {
    frmColorSchema().ShowUp();
}

void DesktopScreens::visualizeDifferences(const QString& sourceName, const QString& sourceText,
                                          const QString& targetName, const QString& targetText) {
    frmCompareText().ShowUp(sourceName, sourceText, targetName, targetText);
}

void DesktopScreens::showTip() {
    frmTip().ShowUp();
}

void DesktopScreens::showGenericReport(const QString& Caption) {
    frmReport().ShowUp_Generic(Caption);
}

void DesktopScreens::ShowUp(const ComparisonReport& report) {
    frmReport().ShowUp(report);
}

void DesktopScreens::printReport(const QString& documentName, const QString& text) {
    printText(text, documentName, window_);
}

void DesktopScreens::copyToFile(const QString& text, const QString& defaultName) {
    QString path;
    CopyToFile(text, defaultName, path);
}

void DesktopScreens::compareAll(Panels& panels, int kindIndex, bool selective, bool details) {
    ComparePanels scratch{{panels.source.pvlSqlObj, panels.source.txtTXProc},
                          {panels.target.pvlSqlObj, panels.target.txtTXProc}};
    CompareAllWindow window{panels.source.pvlDb, panels.target.pvlDb, scratch, chooser_, *this};
    CompStruct_BulkSel_SimpleDet_All(window, kindIndex, selective, details);
}

void DesktopScreens::compareAndPrint() {
    Panels& panels = window_->panels();
    const ObjectList& source = panels.source.pvlSqlObj;
    ObjectList& target = panels.target.pvlSqlObj;
    globals().gblnStop = false;
    for (int row = 0; row < source.rowCount() && !globals().gblnStop; ++row) {
        const QString name = partBehindLastDot(source.row(row).name);
        for (int other = 0; other < target.rowCount(); ++other) {
            if (partBehindLastDot(target.row(other).name) != name) continue;
            panels.source.pvlSqlObj.selectRow(row);
            target.selectRow(other);
            window_->controller().ExecuteAction(command::CompareSelected);
            break;
        }
        shell().pumpEvents();
    }
}

}  // namespace zov::qt
