// `frmAbout`: what this program is and which version of it runs.
#pragma once

#include <QDialog>

namespace zov::qt {

class AboutDialog : public QDialog {
    Q_OBJECT
 public:
    explicit AboutDialog(QWidget* parent = nullptr);
};

}  // namespace zov::qt
