// The common end of every procedure's error handling: a report to the user, and
// the procedure goes on or gives up. Failures never travel further up.
#pragma once

#include "core/caught_error.h"

#include <QString>

#include <functional>

namespace zov {

/// Shows the feedback screen with these facts, modally.
void ShowErrorReport(qint32 ErrNum, const QString& ErrDesc, const QString& ProgVer, qint32 BuildNum,
                     const QString& ModuleName, const QString& ProcName, const QString& ExtraDesc);

/// Reports the exception being handled with the program's version; call it in a catch block.
void reportCaughtError(const char* module, const char* procedure, const QString& extra = {});

/// Runs a procedure's body; an exception that leaves it is reported under the names given and
/// turned into `onFailure`. `extra` is asked only on failure.
template <typename Result, typename Body>
Result guarded(const char* module, const char* procedure, Result onFailure, Body body,
               const std::function<QString()>& extra = {}) {
    try {
        return body();
    } catch (...) {
        reportCaughtError(module, procedure, extra ? extra() : QString());
        return onFailure;
    }
}
template <typename Body>
void guardedRun(const char* module, const char* procedure, Body body,
                const std::function<QString()>& extra = {}) {
    try {
        body();
    } catch (...) {
        reportCaughtError(module, procedure, extra ? extra() : QString());
    }
}

/// For simple routines, in a catch block: a box "Error in Sub NAME, error nr N (DESCRIPTION).".
void showCaughtErrorInSub(const char* routine);
/// The same as a box titled with the procedure's name: "Error: N. DESCRIPTION".
void showCaughtErrorTitled(const char* procedure);

/// The trace call. Returns at once: the calls stay in the code, nothing is written.
void LogWrite(const QString& Message);
void DeleteLogFile();

}  // namespace zov
