// Which dialog shows which screen.
#include "shell/qt/data/analyzer_dialog.h"
#include "shell/qt/data/compare_data_dialog.h"
#include "shell/qt/data/compare_options_dialog.h"
#include "shell/qt/data/data_view_dialog.h"
#include "shell/qt/data/run_dialogs.h"
#include "shell/qt/screens/compare_all_dialog.h"
#include "shell/qt/screens/compare_and_print_dialog.h"
#include "shell/qt/screens/db_info_dialog.h"
#include "shell/qt/screens/debug_dialogs.h"
#include "shell/qt/screens/error_report_dialog.h"
#include "shell/qt/screens/filter_dialog.h"
#include "shell/qt/screens/object_dialogs.h"
#include "shell/qt/screens/options_dialog.h"
#include "shell/qt/screens/report_dialog.h"
#include "shell/qt/screens/saved_dialogs.h"
#include "shell/qt/screens/server_dialogs.h"
#include "shell/qt/screens/tool_dialogs.h"
#include "shell/qt/screens/view_dialogs.h"

namespace zov::qt {
namespace {

template <typename Dialog, typename Logic>
bool tryDialog(Screen& screen, QWidget* parent, std::unique_ptr<ScreenDialog>& dialog) {
    auto* logic = dynamic_cast<Logic*>(&screen);
    if (logic) dialog = std::make_unique<Dialog>(*logic, parent);
    return logic != nullptr;
}

}  // namespace

std::unique_ptr<ScreenDialog> makeScreenDialog(Screen& screen, QWidget* parent) {
    std::unique_ptr<ScreenDialog> dialog;
    (void)(tryDialog<AddServerDialog, frmAddServer>(screen, parent, dialog) ||
           tryDialog<DeleteServerDialog, frmDeleteServer>(screen, parent, dialog) ||
           tryDialog<ErrorReportDialog, frmErrorReport>(screen, parent, dialog) ||
           tryDialog<FilterDialog, frmFilterBySchema>(screen, parent, dialog) ||
           tryDialog<CompareAllDialog, frmCompareAllTables>(screen, parent, dialog) ||
           tryDialog<CompareAndPrintDialog, frmCompareAndPrint>(screen, parent, dialog) ||
           tryDialog<ReportDialog, frmReport>(screen, parent, dialog) ||
           tryDialog<SaveComparisonDialog, frmSaveComparison>(screen, parent, dialog) ||
           tryDialog<SaveCompRunDialog, frmSaveCompRun>(screen, parent, dialog) ||
           tryDialog<SearchDialog, frmSearchForObject_Gen>(screen, parent, dialog) ||
           tryDialog<ListObjectsDialog, frmListObjects>(screen, parent, dialog) ||
           tryDialog<IgnoreColumnsDialog, frmIgnoreColumnsAdd>(screen, parent, dialog) ||
           tryDialog<IgnoredColumnsListDialog, frmIgnoreColumnsView>(screen, parent, dialog) ||
           tryDialog<ColorSchemaDialog, frmColorSchema>(screen, parent, dialog) ||
           tryDialog<CompareTextDialog, frmCompareText>(screen, parent, dialog) ||
           tryDialog<CompareOptionsDialog, frmCompareDataOptions>(screen, parent, dialog) ||
           tryDialog<ValidationDialog, frmCompareDataValidation>(screen, parent, dialog) ||
           tryDialog<DataViewDialog, frmDataView>(screen, parent, dialog) ||
           tryDialog<AnalyzerDialog, frmDataAnalyze>(screen, parent, dialog) ||
           tryDialog<DbInfoDialog, frmGetDbInfo>(screen, parent, dialog) ||
           tryDialog<CompareStatusDialog, frmCompareStatus>(screen, parent, dialog) ||
           tryDialog<CompareDataDialog, frmCompareData>(screen, parent, dialog) ||
           tryDialog<ExportDialog, frmExport>(screen, parent, dialog) ||
           tryDialog<TipDialog, frmTip>(screen, parent, dialog) ||
           tryDialog<OptionsDialog, frmOptions>(screen, parent, dialog) ||
           tryDialog<OptionsDebugDialog, frmOptionsDebug>(screen, parent, dialog) ||
           tryDialog<AttachDialog, frmAttachDb>(screen, parent, dialog) ||
           tryDialog<ExecSpDialog, frmExecSp>(screen, parent, dialog) ||
           tryDialog<SpareDialog, frmSpare>(screen, parent, dialog));
    return dialog;
}

}  // namespace zov::qt
