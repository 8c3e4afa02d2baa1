// Proves that the fields chosen as key of a table hold no Nulls and no
// repetition, by asking the server; changes nothing. Enter at ShowUp.
#pragma once

#include "core/server_info.h"
#include "data/connection.h"
#include "data/recordset.h"
#include "shell/screen.h"

#include <QElapsedTimer>
#include <QHash>
#include <QStringList>

#include <memory>

namespace zov {

/// False for a definition that says "NOT NULL" at its end.
bool ColumnCanContainNulls(const QString& KeyDef);
bool ColumnIsIdentity(const QString& KeyDef);

class frmCompareDataValidation : public Screen {
 public:
    struct Request {
        int ServerIndex = 0;  ///< 0 Source, 1 Target
        QString Db;
        QString Table;           ///< as listed
        QString QualifiedTable;  ///< as statements name it
        QString BareName;        ///< as the catalogue has it; empty: `Table` is that
        QString Schema;          ///< where the bare name alone doesn't find the table
        qint32 RecordsCount = 0;
        QString Keys[3];     ///< empty or "No Field": not used
        QString KeyDefs[3];  ///< the columns' definitions, "[int] IDENTITY(1,1) NOT NULL"
    };

    QString screenName() const override { return QStringLiteral("frmCompareDataValidation"); }
    QString caption() const override { return QStringLiteral("Validate Fields Selection"); }

    /// Modal; runs the checks once, says what they found, and closes.
    void ShowUp(const Request& request);

    QString lblServer1, lblDb1, lblTable1, lblRecsCount1;
    QString lblInfo[2];
    QString lblCurRec;
    QString lblTime;
    int prbProgressBar = 0;  ///< percent
    bool cmdOKEnabled = true;

    /// The screen is shown for the first time.
    void Form_Activate();
    /// Also Esc: ends the checks at their next record.
    void cmdCancel_Click();

 private:
    struct NullCheck {
        bool Ok = true;
        bool Found = false;
        QString FieldName;
    };
    struct DuplicateCheck {
        bool Ok = true;
        bool Found = false;
        QString Values;  ///< of the key that comes twice
    };

    void ValidateFields();
    NullCheck CheckForNulls();
    DuplicateCheck CheckForDuplications();
    DuplicateCheck walkKeys(const std::shared_ptr<Connection>& connection, const QString& names);
    /// Whether the current row's key comes more than once. False: the server could not say.
    bool AreFieldsDuplicated(bool& Duplicated, const std::shared_ptr<Connection>& Connection,
                             Recordset& Rs, const QStringList& Values);
    bool comesTwiceAmongRows(Recordset& Rs, const QStringList& Values);
    /// The used keys' names joined with ", "; `Count` is their number.
    QString BuildColumnNamesString(bool UseBrackets, int& Count) const;
    QString tableForNullCheck() const;
    bool cancelled() const;
    void tell(const QString& text, bool bad = true);

    Request request_;
    ServerInfo server_;
    QElapsedTimer elapsed_;
    QHash<QStringList, int> keysRead_;  ///< how often each comes among the rows; once it is needed
    bool activated_ = false;
    bool running_ = false;
};

}  // namespace zov
