#include "util/paths.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

namespace zov {

QString withTrailingSeparator(const QString& folder) {
    if (folder.isEmpty() || folder.endsWith(u'/') || folder.endsWith(QDir::separator())) {
        return folder;
    }
    return folder + QDir::separator();
}

QString portableHomeFolder() {
    const QString home = qEnvironmentVariable("ZOVRAND_HOME");
    return home.isEmpty()
               ? QString()
               : withTrailingSeparator(QDir::toNativeSeparators(QDir(home).absolutePath()));
}

QString documentsFolder() {
    const QString home = portableHomeFolder();
    if (!home.isEmpty()) return home + QStringLiteral("documents") + QDir::separator();
    return withTrailingSeparator(QDir::toNativeSeparators(
        QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)));
}

QString serversFolder() {
    const QString home = portableHomeFolder();
    if (!home.isEmpty()) return home + QStringLiteral("servers") + QDir::separator();
    return withTrailingSeparator(QDir::toNativeSeparators(
        QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
        QStringLiteral("/zovrand/servers")));
}

QString settingsFilePath() {
    const QString home = portableHomeFolder();
    if (!home.isEmpty()) return home + QStringLiteral("registry.reg");
    return QDir::toNativeSeparators(
        QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
        QStringLiteral("/zovrand/registry.reg"));
}

QString programFolder() {
    return withTrailingSeparator(QDir::toNativeSeparators(QCoreApplication::applicationDirPath()));
}

}  // namespace zov
