#include "shell/qt/help_window.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QPointer>
#include <QTextBrowser>
#include <QToolBar>
#include <QVBoxLayout>

namespace zov::qt {
namespace {

class HelpWindow : public QWidget {
 public:
    HelpWindow() : QWidget(nullptr, Qt::Window), browser_(new QTextBrowser(this)) {
        setWindowTitle(QStringLiteral("Zovrand Help"));
        setObjectName(QStringLiteral("helpWindow"));
        auto* bar = new QToolBar(this);
        const auto add = [&](const QString& text, auto slot) {
            connect(bar->addAction(text), &QAction::triggered, browser_, slot);
        };
        add(QStringLiteral("Contents"), [this] { open(QStringLiteral("index")); });
        add(QStringLiteral("Back"), &QTextBrowser::backward);
        add(QStringLiteral("Forward"), &QTextBrowser::forward);
        auto* layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSpacing(0);
        layout->addWidget(bar);
        layout->addWidget(browser_);
        browser_->setOpenExternalLinks(true);
        browser_->setSearchPaths({helpFolder()});
        resize(760, 620);
    }

    void open(const QString& page) {
        QString file = helpFolder() + page + QStringLiteral(".html");
        if (!QFileInfo::exists(file)) file = helpFolder() + QStringLiteral("index.html");
        browser_->setSource(QUrl::fromLocalFile(file));
    }

 private:
    QTextBrowser* browser_;
};

}  // namespace

QString helpFolder() {
    const QString program = QCoreApplication::applicationDirPath();
    for (const QString& candidate :
         {program + QStringLiteral("/help/"), program + QStringLiteral("/../share/zovrand/help/"),
          QStringLiteral(ZOV_SOURCE_HELP "/")})
        if (QFileInfo::exists(candidate + QStringLiteral("index.html")))
            return QDir::cleanPath(candidate) + u'/';
    return {};
}

void showHelpPage(const QString& page, QWidget* parent) {
    static QPointer<HelpWindow> window;
    if (!window) {
        window = new HelpWindow;
        window->setAttribute(Qt::WA_DeleteOnClose);
        // A modal screen blocks windows that are not its own.
        if (parent && parent->isModal()) window->setWindowModality(Qt::ApplicationModal);
    }
    window->open(page);
    window->show();
    window->raise();
    window->activateWindow();
}

}  // namespace zov::qt
