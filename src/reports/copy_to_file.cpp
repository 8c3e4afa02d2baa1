#include "reports/copy_to_file.h"

#include "core/globals.h"
#include "shell/shell.h"
#include "util/atomic_file.h"
#include "util/numbered_error.h"

namespace zov {

bool CopyToFile(const QString& Text, const QString& DefaultName, QString& Path,
                const QString& GivenPath) {
    if (Text.isEmpty()) return false;
    Path = GivenPath;
    if (Path.isEmpty()) {
        // An object's name may hold what would be a folder here.
        QString name = DefaultName;
        name.replace(u'/', u'_').replace(u'\\', u'_');
        Path = shell().askSavePath(QStringLiteral("Specify Target File"), QStringLiteral("*.*"),
                                   globals().gstrUserDataFolder + name + QStringLiteral(".txt"));
    }
    if (Path.isEmpty()) return false;
    const QString failure = writeFileAtomically(Path, Text.toUtf8());
    if (failure.isEmpty()) return true;
    shell().messageBox(
        QStringLiteral("Error in Sub CopyToFile, error nr %1 (").arg(run_error::FileAccess) +
            failure + QStringLiteral(")."),
        {}, BoxIcon::Exclamation);
    return false;
}

}  // namespace zov
