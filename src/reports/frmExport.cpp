#include "reports/frmExport.h"

#include "core/error_report.h"
#include "core/globals.h"
#include "shell/shell.h"
#include "util/text.h"

#include <QDate>
#include <QDir>
#include <QFileInfo>

namespace zov {
namespace {

constexpr const char* Module = "frmExport";

/// "20261115.htm", as a save dialog proposes it.
QString proposedPath(const QString& extension) {
    return globals().gstrUserDataFolder +
           QDate::currentDate().toString(QStringLiteral("yyyyMMdd")) + u'.' +
           (extension.isEmpty() ? QStringLiteral("txt") : extension);
}

QString quotedPath(const QString& path) {
    return CRLF + CRLF + u'\'' + QDir::toNativeSeparators(path) + u'\'' + CRLF + CRLF;
}

void offerCsvFile(const QString& path) {
    if (shell().askYesNo(QStringLiteral("Data was successfully exported to file") +
                             quotedPath(path) +
                             QStringLiteral("Do you want to view that file now?\r\n"),
                         QStringLiteral("Comma Delimited File Generated")))
        shell().openWithDesktop(path);
}

}  // namespace

frmExport::Result frmExport::ShowUp(const ExportSource& source, const Request& request) {
    source_ = &source;
    request_ = request;
    result_ = {};
    result_.Wrap = request.Wrap;
    activated_ = running_ = stopped_ = false;
    optionsVisible = cmdOKEnabled = true;
    row_ = rows_ = ProgressBar = 0;
    globals().gblnStop = false;
    reopen();
    shell().showModal(*this);
    // A stop of this export is no stop of what comes next.
    globals().gblnStop = false;
    if (request.Replay) result_.Wrap = request.Wrap;
    source_ = nullptr;
    return result_;
}

QString frmExport::lblProgress() const {
    return rows_ == 0 ? QString() : formatCount(row_) + QStringLiteral(" of ") + formatCount(rows_);
}

void frmExport::Form_Activate() {
    if (activated_) return;
    activated_ = true;
    if (request_.ExportType == ExportType::Ask || request_.Path.isEmpty()) return;
    optGen = request_.ExportType == ExportType::Html ? 0 : 1;
    cmdOK_Click();
}

void frmExport::cmdOK_Click() {
    if (running_) return;
    running_ = true;
    stopped_ = false;
    globals().gblnStop = false;
    const bool html = optGen == 0;
    const bool fromReport = source_->mode == ExportMode::DataAnalysis;
    bool cancelled = false;
    const QString& given = request_.Path;
    if (!fromReport && source_->mode != ExportMode::DataDifferences &&
        source_->mode != ExportMode::TableData)
        shell().messageBox(QStringLiteral("Error in cmdOK_Click, wrong value of mlngMode"));
    else if (html)
        result_.Success = fromReport ? ExportRepControlToHtml(result_.Path, given, cancelled)
                                     : ExportGridToHtml(result_.Path, given, cancelled);
    else
        result_.Success = fromReport ? ExportRepControlToCSV(result_.Path, given, cancelled)
                                     : ExportGridToCSV(result_.Path, given, cancelled);
    result_.Type = html ? ExportType::Html : ExportType::Csv;
    running_ = false;
    close();
}

void frmExport::cmdCancel_Click() {
    if (running_)
        stopped_ = globals().gblnStop = true;
    else
        close();
}

bool frmExport::showProgress(int row, int rows) {
    row_ = row;
    rows_ = rows;
    ProgressBar = int(qint64(row) * 100 / rows);
    refresh();
    shell().pumpEvents();
    return !stopped_ && !globals().gblnStop;
}

bool frmExport::choosePath(bool html, QString& path, const QString& givenPath, bool& cancelled) {
    path = givenPath;
    if (!path.isEmpty()) return true;
    const QString extension = html ? QStringLiteral("htm") : QStringLiteral("csv");
    path = shell().askSavePath(
        html ? QStringLiteral("Save (H)yper (T)est (M)arkup (L)anguage Export File")
             : QStringLiteral("Save Excel - (C)omma (S)eparated (V)alues Export File"),
        QStringLiteral("Export Files (*.%1)|*.%1").arg(extension), proposedPath(extension));
    if (!path.isEmpty() && QFileInfo(path).suffix().isEmpty()) {
        // The dialog asked about the name as it was typed, not about this one.
        path += u'.' + extension;
        if (QFileInfo::exists(path) &&
            !shell().askYesNoDefaultNo(QDir::toNativeSeparators(path) +
                                       QStringLiteral(" already exists.\r\nDo you want to replace "
                                                      "it?")))
            path.clear();
    }
    if (!path.isEmpty()) return true;
    cancelled = true;
    shell().messageBox(
        QStringLiteral("The export operation was cancelled.\r\n"),
        html ? QStringLiteral("HTML Export File") : QStringLiteral("Comma Delimited Export File"),
        BoxIcon::Information);
    return false;
}

bool frmExport::write(const char* routine, const QString& path, bool& cancelled,
                      const Writer& writer) {
    ExportRun run;
    run.onRow = [this](int row, int rows) { return showProgress(row, rows); };
    run.safeForSpreadsheets = chkCsvSafe;
    optionsVisible = cmdOKEnabled = false;
    refresh();
    const ExportEnd end = guarded(
        Module, routine, ExportEnd::Failed,
        [&] {
            const WaitPointer wait;
            return writer(path, run);
        },
        [&] { return QStringLiteral("Row = %1").arg(run.row); });
    switch (end) {
        case ExportEnd::Written:
            return true;
        case ExportEnd::Stopped:
            cancelled = true;
            shell().messageBox(QStringLiteral("Operation cancelled by user."));
            return false;
        case ExportEnd::Failed:
            break;
    }
    // An exception has been reported already and leaves no sentence.
    if (!run.failure.isEmpty())
        shell().messageBox(run.failure + QStringLiteral("\r\n\r\nNothing was exported. An older "
                                                        "file of this name is as it was."),
                           {}, BoxIcon::Exclamation);
    return false;
}

bool frmExport::toHtml(const char* routine, QString& path, const QString& givenPath,
                       bool& cancelled, const Writer& writer) {
    if (!choosePath(true, path, givenPath, cancelled) || !write(routine, path, cancelled, writer))
        return false;
    if (shell().askYesNo(QStringLiteral("HTML code was generated and saved in file") +
                             quotedPath(path) +
                             QStringLiteral("Do you want to view that file in your browser "
                                            "now?\r\n"),
                         QStringLiteral("HTML Code Generated")))
        shell().openWithDesktop(path);
    return true;
}

bool frmExport::ExportGridToHtml(QString& Path, const QString& GivenPath, bool& Cancelled) {
    return toHtml(
        "ExportGridToHtml", Path, GivenPath, Cancelled,
        [this](const QString& path, ExportRun& run) { return writeGridHtml(*source_, path, run); });
}

bool frmExport::ExportRepControlToHtml(QString& Path, const QString& GivenPath, bool& Cancelled) {
    return toHtml("ExportRepControlToHtml", Path, GivenPath, Cancelled,
                  [this](const QString& path, ExportRun& run) {
                      return writeReportHtml(*source_, path, run);
                  });
}

bool frmExport::chooseCsv(QString& path, const QString& givenPath, bool& cancelled) {
    if (!choosePath(false, path, givenPath, cancelled)) return false;
    if (!givenPath.isEmpty()) return true;
    if (chkCsvSafe) {
        result_.Wrap = true;
        return true;
    }
    result_.Wrap = shell().askYesNoDefaultNo(
        QStringLiteral("Data which has commas in it is split into separate pieces in comma "
                       "separated values file.\r\n\r\nTo prevent that, the program can wrap up "
                       "data into quotation marks.\r\n\r\nIf your data doesn't have commas, adding "
                       "quotation marks is not needed.\r\n\r\n\r\nDo you want to wrap up data in "
                       "quotation marks?"),
        QStringLiteral("Comma Delimited File"));
    return true;
}

bool frmExport::ExportGridToCSV(QString& Path, const QString& GivenPath, bool& Cancelled) {
    if (!chooseCsv(Path, GivenPath, Cancelled) ||
        !write("ExportGridToCSV", Path, Cancelled, [this](const QString& path, ExportRun& run) {
            return writeGridCsv(*source_, path, result_.Wrap, run);
        }))
        return false;
    if (!request_.AutoClose) offerCsvFile(Path);
    return true;
}

bool frmExport::ExportRepControlToCSV(QString& Path, const QString& GivenPath, bool& Cancelled) {
    if (!chooseCsv(Path, GivenPath, Cancelled) ||
        !write("ExportRepControlToCSV", Path, Cancelled,
               [this](const QString& path, ExportRun& run) {
                   return writeReportCsv(*source_, path, result_.Wrap, run);
               }))
        return false;
    offerCsvFile(Path);
    return true;
}

}  // namespace zov
