#include "shell_qt/desktop.h"

#include "data/script_loading.h"
#include "data/server_list.h"
#include "shell/qt/object_list_view.h"

#include <QApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>

#include <gtest/gtest.h>

#include <algorithm>

namespace zov::test {

ModalUser::ModalUser() {
    timer_.setInterval(5);
    connect(&timer_, &QTimer::timeout, this, [this] { look(); });
    timer_.start();
}

void ModalUser::look() {
    QWidget* modal = QApplication::activeModalWidget();
    if (!modal) {
        handled_ = nullptr;
        return;
    }
    if (modal == handled_ || !modal->isVisible()) return;
    // Back in front of its own action, which a box had interrupted.
    if (std::find(acting_.begin(), acting_.end(), modal) != acting_.end()) return;
    handled_ = modal;
    if (auto* box = qobject_cast<QMessageBox*>(modal)) {
        seen += box->text().replace(QStringLiteral("\r\n"), QStringLiteral("|"));
        QAbstractButton* button = box->defaultButton();
        if (!answers_.empty()) {
            button = box->button(QMessageBox::StandardButton(answers_.front()));
            answers_.pop_front();
        }
        if (!button) button = box->buttons().value(0);
        // The next box may be made at the same place.
        handled_ = nullptr;
        button->click();
        return;
    }
    if (actions_.empty()) {
        seen += QStringLiteral("unexpected ") + modal->objectName();
        if (auto* dialog = qobject_cast<QDialog*>(modal)) dialog->done(QDialog::Rejected);
        handled_ = nullptr;
        return;
    }
    // Not from here: a timer doesn't fire again while its slot runs, and the action may raise
    // boxes.
    QTimer::singleShot(
        0, this, [this, modal = QPointer<QWidget>(modal), action = std::move(actions_.front())] {
            if (!modal) {
                // A screen that went by itself: the action is for the one behind it.
                actions_.push_front(action);
                handled_ = nullptr;
                return;
            }
            acting_.push_back(modal);
            action(modal);
            acting_.pop_back();
            if (QApplication::activeModalWidget() != modal) handled_ = nullptr;
        });
    actions_.pop_front();
}

namespace {

const QString Before = QStringLiteral(
    "CREATE SCHEMA sales\nGO\n"
    "CREATE TABLE dbo.Customer (Id int NOT NULL CONSTRAINT PK_Customer PRIMARY KEY,\n"
    "  Name nvarchar(40) NOT NULL, Phone varchar(20) NULL)\nGO\n"
    "CREATE TABLE dbo.Fax (Id int NOT NULL)\nGO\n"
    "CREATE TABLE sales.Invoice (Id int NOT NULL, Total money NOT NULL)\nGO\n"
    "CREATE PROCEDURE dbo.Report AS\nBEGIN\n  SELECT 1\n  SELECT 2\n  SELECT 3\n  SELECT 4\n"
    "  SELECT 5\n  SELECT 6\nEND\nGO\n"
    "CREATE PROCEDURE dbo.Same AS\nSELECT 1\nGO\n"
    "CREATE VIEW dbo.vCustomer AS SELECT Id, Name FROM dbo.Customer\nGO\n");

const QString After = QStringLiteral(
    "CREATE SCHEMA sales\nGO\n"
    "CREATE TABLE dbo.Customer (Id int NOT NULL CONSTRAINT PK_Customer PRIMARY KEY,\n"
    "  Name nvarchar(80) NOT NULL, Email varchar(80) NULL)\nGO\n"
    "CREATE TABLE sales.Invoice (Id int NOT NULL, Total money NOT NULL)\nGO\n"
    "CREATE PROCEDURE dbo.Report AS\nBEGIN\n  SELECT 1\n  SELECT 'new'\n  SELECT 2\n  SELECT 3\n"
    "  SELECT 5\n  SELECT 60\nEND\nGO\n"
    "CREATE PROCEDURE dbo.Same AS\nSELECT 1\nGO\n"
    "CREATE VIEW dbo.vCustomer AS SELECT Id, Name, Email FROM dbo.Customer\nGO\n");

}  // namespace

DesktopDatabases smallShop() {
    return {QStringLiteral("local:shop"), QStringLiteral("before"), Before, QStringLiteral("after"),
            After};
}

Desktop::Desktop(const DesktopDatabases& databases) : databases_(databases) {
    installShell(&shell);
    RunStartUp({}, [] { LoadServersFromRegistry(); });
    ServerInfo server;
    server.Name = databases.server;
    server.MRUDb = databases.source;
    const std::pair<QString, QString> scripts[] = {{databases.source, databases.sourceScript},
                                                   {databases.target, databases.targetScript}};
    for (const auto& [name, script] : scripts) {
        const LoadOutcome outcome =
            LoadScripts(server, name, {home.write(name + QStringLiteral(".sql"), script.toUtf8())});
        for (const LoadProblem& problem : outcome.problems)
            ADD_FAILURE() << problem.toString().toStdString();
    }
    SaveServerToRegistry(server);
    LoadServersFromRegistry();
}

Desktop::~Desktop() {
    window_.reset();
    installReportPrinter(nullptr);
    installShell(nullptr);
}

qt::MainWindow& Desktop::show(bool open) {
    window_ = std::make_unique<qt::MainWindow>(screens);
    screens.setWindow(window_.get());
    installReportPrinter(&screens);
    shell.setMainWindow(window_.get());
    if (open) {
        qt::StartOptions options;
        options.sides[0] = {databases_.server, databases_.source};
        options.sides[1] = {databases_.server, databases_.target};
        window_->openAtStart(options);
    }
    window_->show();
    window_->activateWindow();
    EXPECT_TRUE(waitUntil([this, open] {
        return window_->isStarted() && (!open || window_->list(1)->rowCount() > 0) &&
               !window_->controller().Busy();
    }));
    return *window_;
}

qt::MainWindow& Desktop::restart() {
    window_->close();
    window_.reset();
    home.resetState();
    RunStartUp({}, [] { LoadServersFromRegistry(); });
    return show();
}

void Desktop::select(const QString& source, const QString& target) {
    const QString names[] = {source, target};
    for (int Index = 0; Index < 2; ++Index) {
        qt::ObjectListView* list = window_->list(Index);
        int found = -1;
        for (int row = 0; row < list->rowCount(); ++row)
            if (list->row(row).name == names[Index]) found = row;
        EXPECT_GE(found, 0) << "no object " << names[Index].toStdString();
        list->selectRow(found);
    }
}

QString Desktop::compare() {
    QString report;
    user.plan([&](QWidget* screen) {
        const auto* text = screen->findChild<QPlainTextEdit*>(QStringLiteral("txtReport"));
        report = text ? text->toPlainText() : QStringLiteral("no report: ") + screen->objectName();
        static_cast<QDialog*>(screen)->reject();
    });
    window_->runCommand(command::CompareSelected);
    return report;
}

bool activate(QWidget& window) {
    window.activateWindow();
    return waitUntil([&] { return QApplication::activeWindow() == &window; });
}

bool waitUntil(const std::function<bool()>& done) {
    QElapsedTimer clock;
    clock.start();
    while (!done() && clock.elapsed() < 2000)
        QApplication::processEvents(QEventLoop::AllEvents, 20);
    return done();
}

}  // namespace zov::test
