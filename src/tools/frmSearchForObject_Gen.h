// Finding an object of the current type by the first letters of its name.
#pragma once

#include "catalog/mdlObjects.h"
#include "shell/screen.h"

namespace zov {

class frmSearchForObject_Gen : public Screen {
 public:
    QString screenName() const override { return QStringLiteral("frmSearchForObject_Gen"); }
    QString caption() const override { return Caption; }

    /// The chosen object's name as the panel's list shows it; empty when none was chosen.
    QString ShowUp(int Panel, ObjectType Type, const QString& TypeName, const QString& DbName);

    QString Caption;
    QString lblInfo;
    QString txtFind;
    QStringList lstFound;
    int selectedRow = -1;

    void cmdFind_Click();
    void cmdOK_Click();
    void cmdCancel_Click();

 private:
    int panel_ = 0;
    ObjectType type_ = ObjectType::Table;
    QString typeName_;
    QString database_;
    QString chosen_;
};

}  // namespace zov
