// The screen of a bulk comparison, without its widgets: boxes to choose the
// kinds, then the status of the run. Enter at ShowUp. What is run is handed in.
#pragma once

#include "shell/screen.h"
#include "structcompare/compare_all_screens.h"

#include <functional>

namespace zov {

class frmCompareAllTables : public Screen, public CompareAllForm {
 public:
    /// The comparison; true when it reached its end.
    using Run = std::function<bool(frmCompareAllTables& form)>;

    struct Request {
        QString Caption = QStringLiteral("Compare All");
        /// The box that is ticked at load; 0 for none.
        ObjectType Type{};
        /// The boxes' states joined by commas; takes the place of `Type` when valid.
        QString EncObjTypes;
        /// Boxes that are offered, from the first; -1 for all that there are. Rows are compared of
        /// tables alone.
        int offeredBoxes = -1;
        /// A saved process runs: the comparison starts by itself.
        bool startAtOnce = false;
        Run run;
    };

    QString screenName() const override { return QStringLiteral("frmCompareAllTables"); }
    QString caption() const override { return Caption; }

    /// Modal; true when the comparison reached its end.
    bool ShowUp(const Request& request);

    /// The screen is shown for the first time.
    void Form_Activate();
    void cmdCompare_Click();
    /// Also Esc: stops a run at its next object, closes the form otherwise.
    void cmdCancel_Click();
    void tmrStatus_Timer();

    void showRunning() override;
    void setComparing(int index, const QString& text) override;
    void setCurrentName(const QString& name) override;
    void setTime(const QString& elapsed) override;
    void runStatusTimer(bool on) override;

    QString Caption;
    ObjectKindBoxes chkObjType{};
    /// Boxes from this one on are hidden.
    int visibleBoxes = 0;
    bool lblInfoVisible = true;
    bool fraContainerVisible = false;     ///< the status; in its place at first the boxes
    std::array<QString, 8> lblComparing;  ///< empty: hidden
    QString lblCurProcName;
    bool lblCurProcNameVisible = false;
    QString lblTime;
    bool cmdCompareEnabled = true;
    bool tmrStatusEnabled = false;

 private:
    Request request_;
    bool activated_ = false;
    bool running_ = false;
    bool success_ = false;
    int comparing_ = -1;  ///< the kind that is compared
    int dots_ = 3;
};

}  // namespace zov
