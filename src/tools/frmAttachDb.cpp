#include "tools/frmAttachDb.h"

#include "core/error_report.h"
#include "shell/shell.h"
#include "tools/attach_database.h"
#include "util/text.h"

#include <QDir>
#include <QFileInfo>

namespace zov {
namespace {

constexpr const char* Module = "frmAttachDb";

QString fieldName(int field) {
    return QStringLiteral("txtPath_%1").arg(field);
}

}  // namespace

bool frmAttachDb::ShowUp(const ServerInfo& Server) {
    server_ = Server;
    attached_ = false;
    reopen();
    shell().showModal(*this);
    return attached_;
}

QString frmAttachDb::lblHeading() {
    return QStringLiteral("Specify database name and files to be attached to Source Server");
}

QString frmAttachDb::lblInfo() {
    return QStringLiteral(
        "When option \"Attach single file\" is used, the server builds a new log file and performs "
        "additional cleanup work to remove replication from the newly attached database.");
}

void frmAttachDb::chkAttachSingleFile_Click(bool On) {
    chkAttachSingleFile = On;
    refresh();
}

void frmAttachDb::cmdFileSelect_Click(File Which) {
    guardedRun(Module, "cmdFileSelect_Click", [&] {
        const bool log = Which == LogFile;
        // The embedded server's databases have an ending of their own.
        const bool embedded =
            server_.Name.startsWith(QLatin1StringView("local:"), Qt::CaseInsensitive);
        const QString path = shell().askOpenPath(
            log ? QStringLiteral("Select Log File") : QStringLiteral("Select Database File"),
            embedded ? QStringLiteral("Database files (*.db)|*.db")
            : log    ? QStringLiteral("SQL Server Log files (*.ldf)|*.ldf")
                     : QStringLiteral("SQL Server Database files (*.mdf)|*.mdf"),
            txtPath[1 + Which]);
        if (path.isEmpty()) return;
        txtPath[1 + Which] = QDir::toNativeSeparators(path);
        refresh();
    });
}

// The server opens the file: on another machine it can't be looked for from here.
bool frmAttachDb::fileMayBeTaken(const QString& Path, int Field) {
    if (QFileInfo(Path).isFile()) return true;
    const QString missing = QStringLiteral("File ") + Path + QStringLiteral(" doesn't exist");
    if (!opensFilesOfThisMachine(server_.Name))
        return shell().askYesNo(
            missing + QStringLiteral(" on this machine. It is opened by server ") + server_.Name +
                QStringLiteral(", on whose machine it must exist.") + CRLF + CRLF +
                QStringLiteral("Attach it?"),
            caption());
    shell().messageBox(missing + u'.', {}, BoxIcon::Information);
    focus(fieldName(Field), true);
    return false;
}

bool frmAttachDb::isValid() {
    const QString missing[] = {QStringLiteral("Please specify database name."),
                               QStringLiteral("Please specify database file."),
                               QStringLiteral("Please specify log file.")};
    const int fields = chkAttachSingleFile ? 2 : 3;
    for (int field = 0; field < fields; ++field) {
        if (!Trim(txtPath[field]).isEmpty()) continue;
        shell().messageBox(missing[field], {}, BoxIcon::Information);
        focus(fieldName(field), true);
        return false;
    }
    for (int field = 1; field < fields; ++field)
        if (!fileMayBeTaken(Trim(txtPath[field]), field)) return false;
    return true;
}

void frmAttachDb::cmdOK() {
    guardedRun(Module, "cmdOK_Click", [&] {
        if (!isValid()) return;
        const QString log = chkAttachSingleFile ? QString() : Trim(txtPath[2]);
        if (!AttachDatabase(server_, Trim(txtPath[0]), Trim(txtPath[1]), log)) return;
        attached_ = true;
        shell().messageBox(QStringLiteral("Attached Successfully"), {}, BoxIcon::Information);
        close();
    });
}

}  // namespace zov
