// The dialogs that pick objects and columns: search, selective lists, ignored columns.
#pragma once

#include "datacompare/frmIgnoreColumns.h"
#include "shell/qt/screen_dialog.h"
#include "tools/frmListObjects.h"
#include "tools/frmSearchForObject_Gen.h"

class QLabel;
class QLineEdit;
class QListWidget;
class QTableWidget;

namespace zov::qt {

class SearchDialog : public ScreenDialog {
    Q_OBJECT
 public:
    SearchDialog(frmSearchForObject_Gen& screen, QWidget* parent);
    void refreshFields() override;

 private:
    frmSearchForObject_Gen& screen_;
    QLabel* info_;
    QLineEdit* text_;
    QListWidget* found_;
};

class ListObjectsDialog : public ScreenDialog {
    Q_OBJECT
 public:
    ListObjectsDialog(frmListObjects& screen, QWidget* parent);
    void refreshFields() override;

 private:
    frmListObjects& screen_;
    QListWidget* lists_[2];
    bool filling_ = false;
};

class IgnoreColumnsDialog : public ScreenDialog {
    Q_OBJECT
 public:
    IgnoreColumnsDialog(frmIgnoreColumnsAdd& screen, QWidget* parent);
    void refreshFields() override;

 private:
    frmIgnoreColumnsAdd& screen_;
    QListWidget* columns_;
    bool filling_ = false;
};

class IgnoredColumnsListDialog : public ScreenDialog {
    Q_OBJECT
 public:
    IgnoredColumnsListDialog(frmIgnoreColumnsView& screen, QWidget* parent);
    void refreshFields() override;

 private:
    frmIgnoreColumnsView& screen_;
    QTableWidget* grid_;
    QLabel* count_;
};

}  // namespace zov::qt
