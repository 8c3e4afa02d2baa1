#include "shell/qt/help_window.h"

#include "shell/qt/mark_colors.h"
#include "shell/qt/window_fit.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QPointer>
#include <QShortcut>
#include <QTextBrowser>
#include <QToolBar>
#include <QVBoxLayout>

namespace zov::qt {
namespace {

/// Pictures wider than a page are made smaller well: a text document leaves out pixels instead.
class HelpBrowser : public QTextBrowser {
 public:
    using QTextBrowser::QTextBrowser;

    QVariant loadResource(int type, const QUrl& name) override {
        const QVariant resource = QTextBrowser::loadResource(type, name);
        if (type != QTextDocument::ImageResource) return resource;
        QImage picture = resource.canConvert<QImage>() ? resource.value<QImage>() : QImage();
        if (picture.isNull()) picture.loadFromData(resource.toByteArray());
        const int width = int(WidthOfPictures * devicePixelRatioF());
        if (picture.width() <= width) return resource;
        picture = picture.convertToFormat(QImage::Format_RGB32)
                      .scaledToWidth(width, Qt::SmoothTransformation);
        return picture;
    }

 private:
    static constexpr int WidthOfPictures = 720;  ///< as the pages give it
};

class HelpWindow : public QWidget {
 public:
    HelpWindow() : QWidget(nullptr, Qt::Window), browser_(new HelpBrowser(this)) {
        setWindowTitle(QStringLiteral("Zovrand Help"));
        setObjectName(QStringLiteral("helpWindow"));
        setWindowIcon(QIcon(QStringLiteral(":/icons/help.svg")));
        auto* bar = new QToolBar(this);
        bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        const auto add = [&](const char* icon, const QString& text, const QKeySequence& keys,
                             auto slot) {
            QAction* action = bar->addAction(
                QIcon(QStringLiteral(":/icons/%1.svg").arg(QLatin1String(icon))), text);
            action->setShortcut(keys);
            connect(action, &QAction::triggered, browser_, slot);
            return action;
        };
        add("home", QStringLiteral("Contents"), Qt::ALT | Qt::Key_Home,
            [this] { open(QStringLiteral("index")); });
        QAction* back = add("back", QStringLiteral("Back"), QKeySequence::Back,
                            [this] { browser_->backward(); });
        QAction* forward = add("forward", QStringLiteral("Forward"), QKeySequence::Forward,
                               [this] { browser_->forward(); });
        back->setEnabled(false);
        forward->setEnabled(false);
        connect(browser_, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);
        connect(browser_, &QTextBrowser::forwardAvailable, forward, &QAction::setEnabled);
        auto* layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSpacing(0);
        layout->addWidget(bar);
        layout->addWidget(browser_);
        browser_->setOpenExternalLinks(true);
        browser_->setSearchPaths({helpFolder()});
        browser_->document()->setDocumentMargin(18);
        connect(new QShortcut(Qt::Key_Escape, this), &QShortcut::activated, this, &QWidget::close);
        resize(820, 680);
        browser_->setFocus();
    }

    void open(const QString& page) {
        QString file = helpFolder() + page + QStringLiteral(".html");
        if (!QFileInfo::exists(file)) file = helpFolder() + QStringLiteral("index.html");
        if (QFileInfo::exists(file))
            browser_->setSource(QUrl::fromLocalFile(file));
        else
            browser_->setPlainText(
                QStringLiteral("The help pages weren't found beside the program. Installing it "
                               "anew puts them back."));
    }

 private:
    HelpBrowser* browser_;
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

namespace {

QPointer<HelpWindow>& helpWindow() {
    static QPointer<HelpWindow> window;
    return window;
}

}  // namespace

void closeHelp() {
    if (helpWindow()) helpWindow()->close();
}

void showHelpPage(const QString& page, QWidget* parent) {
    QPointer<HelpWindow>& window = helpWindow();
    // A modal screen blocks windows that came before it: its help is a new one, above it.
    if (window && parent && parent->isModal()) delete window.data();
    if (!window) {
        window = new HelpWindow;
        window->setAttribute(Qt::WA_DeleteOnClose);
        if (parent) {
            window->setScreen(parent->screen());
            const QRect over = parent->window()->frameGeometry();
            window->move(over.center() - QRect(QPoint(), window->size()).center());
        }
        fitToScreen(*window);
        if (parent && parent->isModal()) window->setWindowModality(Qt::ApplicationModal);
    }
    window->open(page);
    window->show();
    window->raise();
    window->activateWindow();
}

}  // namespace zov::qt
