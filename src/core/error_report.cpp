#include "core/error_report.h"

#include "core/frmErrorReport.h"
#include "core/globals.h"
#include "core/run_account.h"
#include "shell/shell.h"

#include <QFile>
#include <QTime>

namespace zov {
namespace {

QString logFilePath() {
    return globals().gstrAppPath + QStringLiteral("ErrorLog.txt");
}

}  // namespace

void ShowErrorReport(qint32 ErrNum, const QString& ErrDesc, const QString& ProgVer, qint32 BuildNum,
                     const QString& ModuleName, const QString& ProcName, const QString& ExtraDesc) {
    frmErrorReport report;
    report.ShowUp(ErrNum, ErrDesc, ProgVer, BuildNum, ModuleName, ProcName, ExtraDesc);
}

void reportCaughtError(const char* module, const char* procedure, const QString& extra) {
    const CaughtError error = caughtError();
    addCaughtErrorToAccount({}, QString::fromLatin1(procedure), true);
    ShowErrorReport(error.number, error.description, ProgramVersionText(), ProgramBuildNumber,
                    QString::fromLatin1(module), QString::fromLatin1(procedure), extra);
}

void showCaughtErrorInSub(const char* routine) {
    const CaughtError error = caughtError();
    addCaughtErrorToAccount({}, QString::fromLatin1(routine), true);
    shell().messageBox(QStringLiteral("Error in Sub ") + QString::fromLatin1(routine) +
                           QStringLiteral(", error nr ") + QString::number(error.number) +
                           QStringLiteral(" (") + error.description + QStringLiteral(")."),
                       {}, BoxIcon::Exclamation);
}

void showCaughtErrorTitled(const char* procedure) {
    const CaughtError error = caughtError();
    addCaughtErrorToAccount({}, QString::fromLatin1(procedure), true);
    shell().messageBox(QStringLiteral("Error: ") + QString::number(error.number) +
                           QStringLiteral(". ") + error.description,
                       QString::fromLatin1(procedure), BoxIcon::Exclamation);
}

void LogWrite(const QString& Message) {
    // The trace is off: the calls stay, and this constant is what turns them on again.
    constexpr bool traceIsOff = true;
    if (traceIsOff) return;
    if (!globals().gblnDebugMode) return;
    QFile log(logFilePath());
    if (!log.open(QIODevice::WriteOnly | QIODevice::Append)) return;
    log.write((QTime::currentTime().toString(QStringLiteral("hh:mm:ss")) + QStringLiteral("     ") +
               Message + QStringLiteral("\r\n"))
                  .toUtf8());
}

void DeleteLogFile() {
    // Without a program folder the name would mean the current folder's file.
    if (!globals().gstrAppPath.isEmpty()) QFile::remove(logFilePath());
}

}  // namespace zov
