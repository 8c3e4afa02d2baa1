// What a bulk comparison needs of the screens around it: the status display of
// its own form, the panels' lists and panes as scratch, the choice of objects
// and the report screen.
#pragma once

#include "catalog/mdlObjects.h"

#include <QStringList>

#include <array>

namespace zov {

/// `chkObjType`: tables, procedures, functions, views, triggers, relationships, constraints,
/// permissions.
using ObjectKindBoxes = std::array<bool, 8>;

/// The status display of a run.
class CompareAllForm {
 public:
    virtual ~CompareAllForm() = default;
    /// From choosing to running: hides `lblInfo`, swaps the frames, empties and shows
    /// `lblCurProcName`.
    virtual void showRunning() = 0;
    /// `lblComparing(index)`, shown from now on.
    virtual void setComparing(int index, const QString& text) = 0;
    virtual void setCurrentName(const QString& name) = 0;
    virtual void setTime(const QString& elapsed) = 0;
    /// `tmrStatus`, which animates the dots.
    virtual void runStatusTimer(bool on) = 0;
};

/// One side's list and pane.
struct ComparePanel {
    ObjectList& pvlSqlObj;
    TextPane& txtTXProc;
};
struct ComparePanels {
    ComparePanel source;
    ComparePanel target;
};

/// `frmListObjects`: the user ticks the objects of a selective comparison.
class ObjectChooser {
 public:
    virtual ~ObjectChooser() = default;
    /// False when the user cancelled.
    virtual bool ShowUp(const QString& DbName1, const QString& DbName2, ObjectType Type,
                        QStringList& SourceNames, QStringList& TargetNames) = 0;
};

/// What a run came to.
enum class RunVerdict {
    None,  ///< it didn't take place, or didn't reach its end
    Identical,
    Different,
    Trouble,  ///< it reached its end, but something could not be read or compared
};

/// What a run is called in saved processes.
namespace comparison_code {
inline constexpr qint32 Data = 0;      ///< CompType: rows
inline constexpr qint32 MetaData = 1;  ///< CompType: structure
// CompSubType.
inline constexpr qint32 AllObjects = 10;
inline constexpr qint32 Bulk = 20;
inline constexpr qint32 Selective = 30;
inline constexpr qint32 Individual = 35;
inline constexpr qint32 SingleTable = 40;     ///< rows of one pair of tables
inline constexpr qint32 SelectedTables = 50;  ///< rows of chosen tables
inline constexpr qint32 AllTables = 60;       ///< rows of all tables
// CompSubSubType; 0 where a run knows no difference.
inline constexpr qint32 BulkSimple = 10;
inline constexpr qint32 BulkDetails = 20;
inline constexpr qint32 SelectiveSimple = 30;
inline constexpr qint32 SelectiveDetails = 40;
}  // namespace comparison_code

/// What the report screen is opened with, beside the text in gstrReport: everything that a saved
/// process would need.
struct ComparisonReport {
    QString Caption;
    QString ServerName1, ServerName2, DbName1, DbName2;
    QString TableName1, TableName2;  ///< the two objects of a pair, whatever their type
    qint32 CompType = 0;
    qint32 CompSubType = 0;
    qint32 CompSubSubType = 0;
    /// The kinds, "1" or "0", eight in all, joined by commas in the order of the boxes.
    QString EncObjTypes;
    qint32 CompMethod = -1;
    QString ObjId1, ObjId2;
    QStringList SourceNames, TargetNames;
    bool Replay = false;
    QString ExportPath;
    bool Print = false;
};

/// `frmReport`, modal.
class ReportScreen {
 public:
    virtual ~ReportScreen() = default;
    virtual void ShowUp(const ComparisonReport& report) = 0;
};

}  // namespace zov
