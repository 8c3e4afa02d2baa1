// Marking the columns of one table as ignored, and listing all such marks.
#pragma once

#include "core/modIgnoreColumns.h"
#include "core/server_info.h"
#include "shell/screen.h"

#include <vector>

namespace zov {

class frmIgnoreColumnsAdd : public Screen {
 public:
    QString screenName() const override { return QStringLiteral("frmIgnoreColumnsAdd"); }
    QString caption() const override { return Caption; }

    /// `Mode` as in IgnoreMode. True when the marks were changed; `IgnoredCount` is their number
    /// then. `StoredName` is the table in the key of the marks; empty: of a table shown by its bare
    /// name.
    bool ShowUp(qint32 Mode, const ServerInfo& Server, const QString& Db, const QString& Table,
                qint32 ObjectId, qint32& IgnoredCount, const QString& StoredName = {});

    QString Caption;
    QString lblInfo;
    QString lblTableName;
    QString lblSelected = QStringLiteral("Selected columns are processed during comparison.");
    struct Row {
        QString column;
        bool checked = true;
    };
    std::vector<Row> pvlSqlObj;

    void selectAll(bool checked);
    void cmdOK();
    void cmdCancel();

 private:
    bool load(const ServerInfo& server, const QString& db, const QString& table, qint32 objectId);

    qint32 mode_ = 0;
    QString key_;
    qint32 ignored_ = 0;
    bool changed_ = false;
};

class frmIgnoreColumnsView : public Screen {
 public:
    QString screenName() const override { return QStringLiteral("frmIgnoreColumnsView"); }
    QString caption() const override { return Caption; }
    QString plainText() const override { return listing(); }

    void ShowUp(qint32 Mode);

    QString Caption;
    QString lblInfo;
    QString lblCount;
    std::vector<IgnoredColumnRow> vsfGrid;

    void ScreenWriteAllIgnoredCols();
    void cmdExit();
    void cmdCopyClip();
    void cmdCopyToFile();
    void cmdSendToNotepad();

 private:
    /// A line for each mark, its parts joined with ", ".
    QString listing() const;

    qint32 mode_ = 0;
};

}  // namespace zov
