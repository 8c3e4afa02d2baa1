// Where the program keeps its files. ZOVRAND_HOME, when set, holds everything
// that it writes; without it the platform's own places do. Every folder ends in
// the platform's separator; none is created here.
#pragma once

#include <QString>

namespace zov {

/// The folder's name with the separator behind it unless it ends in one; empty stays empty.
QString withTrailingSeparator(const QString& folder);

/// ZOVRAND_HOME; empty when it isn't set.
QString portableHomeFolder();
/// The user's documents folder, where the INI files lie; empty when the platform names none.
QString documentsFolder();
/// The folder of the embedded server's named servers.
QString serversFolder();
/// The text file of the settings store (where the platform has no registry).
QString settingsFilePath();

/// The program's folder.
QString programFolder();

}  // namespace zov
