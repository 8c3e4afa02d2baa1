#include "tools/attach_database.h"

#include "data/mdlData.h"

#include <QSysInfo>

namespace zov {

bool opensFilesOfThisMachine(const QString& ServerName) {
    if (ServerName.startsWith(QLatin1StringView("local:"), Qt::CaseInsensitive)) return true;
    QString host = ServerName;
    if (host.startsWith(QLatin1StringView("tcp:"), Qt::CaseInsensitive)) host.remove(0, 4);
    for (const QChar end : {u'\\', u','})
        if (const qsizetype at = host.indexOf(end); at >= 0) host.truncate(at);
    for (const char* own : {"", ".", "(local)", "localhost", "127.0.0.1", "::1"})
        if (host.compare(QLatin1StringView(own), Qt::CaseInsensitive) == 0) return true;
    return host.compare(QSysInfo::machineHostName(), Qt::CaseInsensitive) == 0;
}

bool AttachDatabase(const ServerInfo& Server, const QString& Name, const QString& DatabaseFile,
                    const QString& LogFile) {
    std::vector<QVariant> parameters = {Name, DatabaseFile};
    if (!LogFile.isEmpty()) parameters.emplace_back(LogFile);
    return ExecAdoCmd(Server, adCmdStoredProc,
                      LogFile.isEmpty() ? QStringLiteral("sp_attach_single_file_db")
                                        : QStringLiteral("sp_attach_db"),
                      QStringLiteral("master"), parameters) == 0;
}

}  // namespace zov
