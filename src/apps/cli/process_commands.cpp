// zovrand-cli process, zovrand-cli run
#include "apps/cli/cli_support.h"
#include "apps/unattended/unattended_replay.h"
#include "core/main/frmMain.h"
#include "reports/frmExport.h"
#include "reports/frmReport.h"
#include "saved/process_texts.h"
#include "shell/console/interrupt.h"
#include "util/text.h"

#include <QFileInfo>

#include <algorithm>

namespace zov::cli {
namespace {

using ProcessList = std::vector<std::pair<QString, qint32>>;

ProcessList savedProcesses() {
    ProcessList processes;
    // Why not has been told.
    if (!ListSavedProcesses(processes))
        throw Failure(QStringLiteral("The saved processes can't be read."));
    return processes;
}

bool isNumber(const QString& text) {
    return !text.isEmpty() &&
           std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
}

/// The name of the process that the command line means: by number, or to the letter by its name.
QString meantProcess(const ProcessList& processes, const QString& given, bool byName) {
    const bool byNumber = !byName && isNumber(given);
    for (const auto& [name, id] : processes)
        if (byNumber ? id == ValInt32(given) : name == given) return name;
    const QString shown = QStringLiteral("\nThey are shown by: zovrand-cli process list.");
    throw Failure((byNumber ? QStringLiteral("There is no saved process with the number %1.")
                            : QStringLiteral("There is no saved process \"%1\" (letter case "
                                             "counts)."))
                      .arg(given) +
                  shown +
                  (byNumber ? QStringLiteral(" A name of digits alone needs --name.") : QString()));
}

QStringList meantProcesses(const Options& options) {
    const ProcessList processes = savedProcesses();
    QStringList names;
    for (const QString& given : options.processes)
        names += meantProcess(processes, given, options.byName);
    return names;
}

/// Says where a process can be printed, since this program can't.
class NoPrinter : public ReportPrinter {
 public:
    explicit NoPrinter(ConsoleShell& console) : console_(console) { installReportPrinter(this); }
    ~NoPrinter() override { installReportPrinter(nullptr); }
    bool printReport(const QString&, const QString&, bool) override {
        console_.showError(QStringLiteral(
            "The report was not printed: zovrand-cli prints nothing.\nRun the process "
            "with: zovrand --unattended /RunSavedComp ID."));
        return false;
    }

 private:
    ConsoleShell& console_;
};

/// What -o writes: rows that differ as the name's ending says, a report as text.
qint32 exportTypeOf(const SavedProcess& process, const QString& path) {
    if (process.CompType != comparison_code::Data ||
        process.CompSubType != comparison_code::SingleTable)
        return process.ExportType;
    if (path.endsWith(u".csv", Qt::CaseInsensitive)) return ExportType::Csv;
    if (path.endsWith(u".htm", Qt::CaseInsensitive) || path.endsWith(u".html", Qt::CaseInsensitive))
        return ExportType::Html;
    return process.ExportType;
}

unattended::Outcome replayNamed(const Options& options, UnattendedShell& console,
                                const QString& name) {
    const QString path =
        options.outputFile.isEmpty() ? QString() : QFileInfo(options.outputFile).absoluteFilePath();
    bool pathFits = true;
    unattended::Outcome outcome = unattended::replay(
        console, [&](frmMain& window) { window.RunSavedProcessNamed(name); },
        [&](SavedProcess& process) {
            if (path.isEmpty()) return;
            process.ExportType = exportTypeOf(process, path);
            process.ExportFilePath = path;
            pathFits = process.ExportType != ExportType::Ask ||
                       process.CompSubType != comparison_code::SingleTable;
        });
    if (!pathFits)
        throw Failure(QStringLiteral("Rows that differ are written to .htm, .html or .csv, not to "
                                     "%1.\nNothing was written.")
                          .arg(options.outputFile));
    return outcome;
}

void writeReplayReport(const QString& report) {
    if (report.isEmpty()) return;
    QString text = withLf(report);
    if (!text.endsWith(u'\n')) text += u'\n';
    writeOut(text);
    flushOut();
}

/// Trouble goes before differences, these before nothing.
int worse(int one, int other) {
    return std::max(one, other);
}

int replayAll(const Options& options, UnattendedShell& console) {
    static const char* const results[] = {"identical", "different", "trouble"};
    const ProcessList processes = savedProcesses();
    if (processes.empty()) throw Failure(QStringLiteral("There are no saved processes to run."));
    int status = Identical;
    for (const auto& [name, id] : processes) {
        const int one = replayNamed(options, console, name).status;
        writeOut(QStringLiteral("%1\t%2\t%3\n").arg(id).arg(name, QLatin1String(results[one])));
        flushOut();
        status = worse(status, one);
        if (interruptRequested()) {
            console.showError(
                QStringLiteral("Stopped: the processes behind \"%1\" were not run.").arg(name));
            return Trouble;
        }
    }
    return status;
}

}  // namespace

int runProcessList() {
    for (const auto& [name, id] : savedProcesses())
        writeOut(QStringLiteral("%1\t%2\n").arg(id).arg(name));
    flushOut();
    return Identical;
}

int runProcessShow(const Options& options) {
    int status = Identical;
    bool first = true;
    for (const QString& name : meantProcesses(options)) {
        SavedProcess process;
        // What isn't as it should be has been told.
        if (!GetSavedProcessDetails(name, process)) status = Trouble;
        if (!std::exchange(first, false)) writeOut(QStringLiteral("\n"));
        writeOut(withLf(ProcessPropertiesText(process)) + QStringLiteral("\n\n") + WhatIsNotKept() +
                 u'\n');
    }
    flushOut();
    return status;
}

int runProcessDelete(const Options& options) {
    return DeleteSavedProcesses(meantProcesses(options)) ? Identical : Trouble;
}

int runReplay(const Options& options, UnattendedShell& console) {
    const NoPrinter printer(console);
    if (options.allProcesses) return replayAll(options, console);
    if (!options.outputFile.isEmpty()) {
        const QString folder = QFileInfo(options.outputFile).absolutePath();
        if (!QFileInfo(folder).isDir())
            throw Failure(QStringLiteral("-o: there is no folder %1. Make it, or choose another "
                                         "place.")
                              .arg(folder));
    }
    const ProcessList processes = savedProcesses();
    if (processes.empty()) throw Failure(QStringLiteral("There are no saved processes to run."));
    const unattended::Outcome outcome = replayNamed(
        options, console, meantProcess(processes, options.processes.value(0), options.byName));
    writeReplayReport(outcome.report);
    return outcome.status;
}

}  // namespace zov::cli
