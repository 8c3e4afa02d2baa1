// Attaching database files to the Source server.
#pragma once

#include "core/server_info.h"
#include "shell/screen.h"

namespace zov {

class frmAttachDb : public Screen {
 public:
    enum File { DatabaseFile = 0, LogFile = 1 };

    QString screenName() const override { return QStringLiteral("frmAttachDb"); }
    QString caption() const override { return QStringLiteral("Attach Database"); }

    /// Modal. True when a database was attached.
    bool ShowUp(const ServerInfo& Server);

    static QString lblHeading();
    static QString lblInfo();  ///< what "Attach single file" does

    QString txtPath[3];  ///< database name, database file, log file
    bool chkAttachSingleFile = false;
    /// The log file's row.
    bool logFileEnabled() const { return !chkAttachSingleFile; }

    void chkAttachSingleFile_Click(bool On);
    void cmdFileSelect_Click(File Which);
    void cmdOK();
    void cmdCancel() { close(); }

 private:
    bool isValid();
    bool fileMayBeTaken(const QString& Path, int Field);

    ServerInfo server_;
    bool attached_ = false;
};

}  // namespace zov
