// The screen that narrows a panel to some schemas or owners: a check list with
// "(Select All)" on top.
#pragma once

#include "shell/modGridReport.h"
#include "shell/screen.h"

#include <QString>
#include <QStringList>

namespace zov {

/// Which of the two buttons asked. Both keep their choice in the same place.
enum class FilterType : qint32 { Schema = 1, Owner = 2 };

class frmFilterBySchema : public Screen {
 public:
    QString screenName() const override { return QStringLiteral("frmFilterBySchema"); }
    QString caption() const override { return Caption; }

    /// True when the choice was confirmed: `Applied` then says whether it narrows anything (all
    /// names checked is no filter), and `List` has the names, joined by commas. `Index` is the
    /// panel, whose present filter decides what is checked at first.
    bool ShowUp(const QStringList& Names, int Index, bool& Applied, QString& List, FilterType Type);

    QString Caption;
    QString lblInfo;
    GridReport rpcReport;

    void LoadGrid();
    /// The user clicked the check box of a row; row 0 is "(Select All)".
    void rpcReport_ItemCheck(int row);
    void cmdSave();
    void cmdCancel();
    /// The user leaves the screen otherwise; false keeps it open.
    bool Form_QueryUnload();

 private:
    bool SaveData();
    bool isChecked(int row) const;
    void setChecked(int row, bool checked);

    QStringList names_;
    int index_ = 0;
    QString result_;
    bool applied_ = false;
    bool confirmed_ = false;
    bool changed_ = false;
};

}  // namespace zov
