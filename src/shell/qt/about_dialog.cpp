#include "shell/qt/about_dialog.h"

#include "core/globals.h"
#include "core/product.h"
#include "shell/qt/help_window.h"
#include "shell/qt/window_fit.h"

#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

namespace zov::qt {

AboutDialog::AboutDialog(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmAbout"));
    setWindowTitle(QStringLiteral("About %1").arg(product::Name));
    auto* picture = new QLabel;
    picture->setPixmap(QIcon(QStringLiteral(":/icons/zovrand.svg")).pixmap(96, 96));
    auto* text = new QLabel(
        QStringLiteral("<h2>%1 %2</h2><p>Build %3, Qt %4</p><p>Tells two SQL Server databases "
                       "apart: the structure of their objects and the rows of their tables.</p>"
                       "<p>%5<br>%6</p>")
            .arg(product::Name, ProgramVersionText())
            .arg(ProgramBuildNumber)
            .arg(QString::fromLatin1(qVersion()), product::Company, product::SupportAddress));
    text->setTextFormat(Qt::RichText);
    text->setWordWrap(true);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    text->setMinimumWidth(320);
    auto* close = new QPushButton(QStringLiteral("&Close"));
    close->setObjectName(QStringLiteral("cmdClose"));
    close->setDefault(true);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    auto* row = new QHBoxLayout;
    row->setSpacing(20);
    row->addWidget(picture, 0, Qt::AlignTop);
    row->addWidget(text, 1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(20, 20, 20, 14);
    layout->addLayout(row);
    layout->addWidget(close, 0, Qt::AlignRight);
    connect(new QShortcut(QKeySequence::HelpContents, this), &QShortcut::activated, this,
            [this] { showHelpPage(QStringLiteral("frmabout"), this); });
    close->setFocus();
    fitDialog(*this);
}

}  // namespace zov::qt
