// A fresh home folder and fresh global state for the length of a test.
#pragma once

#include "core/globals.h"
#include "core/mdlMain.h"
#include "core/registry.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace zov::test {

/// Sets ZOVRAND_HOME to a new folder, resets globals() and forms the paths; puts the variable back
/// and deletes the folder at the end.
class TempHome {
 public:
    TempHome()
        : hadHome_(qEnvironmentVariableIsSet("ZOVRAND_HOME")), oldHome_(qgetenv("ZOVRAND_HOME")) {
        qputenv("ZOVRAND_HOME", folder_.path().toUtf8());
        resetState();
    }
    ~TempHome() {
        if (hadHome_) {
            qputenv("ZOVRAND_HOME", oldHome_);
        } else {
            qunsetenv("ZOVRAND_HOME");
        }
        resetGlobals();
        clearSettingOverrides();
        takeSettingsFailure();
    }
    TempHome(const TempHome&) = delete;
    TempHome& operator=(const TempHome&) = delete;

    /// As a newly started program is: nothing read yet but the paths. The folder stays as it is.
    void resetState() {
        resetGlobals();
        clearSettingOverrides();
        takeSettingsFailure();
        InitPaths();
        globals().gblnExtendedNames = true;
    }

    QString path(const QString& relative = {}) const { return folder_.filePath(relative); }
    QString registryPath() const { return path(QStringLiteral("registry.reg")); }

    /// Makes a file (and its folder) with these bytes; its path.
    QString write(const QString& relative, const QByteArray& bytes) const {
        const QString name = path(relative);
        QDir().mkpath(QFileInfo(name).absolutePath());
        QFile file(name);
        if (file.open(QIODevice::WriteOnly)) file.write(bytes);
        return name;
    }
    /// The file's bytes; empty when there is no such file.
    QByteArray read(const QString& relative) const {
        QFile file(path(relative));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

 private:
    QTemporaryDir folder_;
    bool hadHome_;
    QByteArray oldHome_;
};

}  // namespace zov::test
