// Ticking the Source and Target objects of a selective comparison.
#pragma once

#include "core/server_info.h"
#include "shell/screen.h"
#include "structcompare/compare_all_screens.h"

#include <vector>

namespace zov {

class frmListObjects : public Screen, public ObjectChooser {
 public:
    QString screenName() const override { return QStringLiteral("frmListObjects"); }
    QString caption() const override { return QStringLiteral("List Objects"); }

    /// Lists both databases of the current servers and asks. The names go out without their schema,
    /// as a selective run compares them. False when cancelled.
    bool ShowUp(const QString& DbName1, const QString& DbName2, ObjectType Type,
                QStringList& SourceNames, QStringList& TargetNames) override;

    QString lblServer1, lblServer2, lblDb1, lblDb2, lblObjectType;
    /// `pvlSqlObj(0)` and `(1)`.
    struct Row {
        QString name;
        bool ticked = false;
    };
    std::vector<Row> pvlSqlObj[2];

    /// Both lists at once.
    void cmdSelectAll();
    void cmdDeselectAll();
    void cmdOK();
    void cmdCancel();

 private:
    void tickAll(bool ticked);
    QStringList tickedNames(int Index) const;

    bool done_ = false;
};

}  // namespace zov
