#include "catalog/run_checks.h"

#include "catalog/panel_loading.h"
#include "core/globals.h"
#include "core/run_account.h"
#include "data/image/image_statements.h"
#include "shell/shell.h"

#include <QRegularExpression>

namespace zov {
namespace {

constexpr int FirstVersionWithHiddenObjects = 9;

QString loginOf(const ServerInfo& server) {
    if (server.SQLAuth) return server.LoginName;
    for (const char* name : {"USERNAME", "USER", "LOGNAME"})
        if (const QString user = qEnvironmentVariable(name); !user.isEmpty()) return user;
    return QStringLiteral("of this user");
}

}  // namespace

bool knowVersion(ServerInfo& server) {
    static const QRegularExpression version(QStringLiteral("^\\d+\\.\\d+"));
    const QString answer = GetServerVersion(server);
    if (version.match(answer).hasMatch()) {
        server.Version = answer;
        server.NumVersion = GetMajorVersion(answer);
        return true;
    }
    addToAccount({server.Name, QStringLiteral("reading the version"),
                  QStringLiteral("The server doesn't tell its version."), 0, false, true});
    shell().messageBox(
        QStringLiteral("Cannot compare - the version of server %1 can't be read.\r\n\r\nTry again "
                       "when the server answers.")
            .arg(server.Name),
        QStringLiteral("Cannot Compare"), BoxIcon::Exclamation);
    return false;
}

bool seesWholeCatalogue(const ServerInfo& server, const QString& database, QString& sentence) {
    if (GetMajorVersion(server.Version) < FirstVersionWithHiddenObjects) return true;
    bool sees = false;
    {
        const ScopedValue<bool> silent(globals().gblnSuppressConnErrors, true);
        try {
            std::unique_ptr<Recordset> rs;
            if (GetAdoRS(server, adCmdText, QString::fromLatin1(image::rightsStatement), rs,
                         database) != -1 &&
                rs && !rs->isEof())
                sees = rs->field(0).toInt64() == 1;
        } catch (...) {
            sees = false;  // the account has it
        }
    }
    if (!sees)
        sentence = QStringLiteral(
                       "The login %1 may not see all objects of %2; what it can't see isn't "
                       "compared.")
                       .arg(loginOf(server), database);
    return sees;
}

}  // namespace zov
