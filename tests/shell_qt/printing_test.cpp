// Printing: pages into a PDF file, and what is said where there is no printer.
#include "reports/frmCompareAndPrint.h"
#include "shell/qt/object_list_view.h"
#include "shell/qt/pane_printer.h"
#include "shell/qt/print_preview.h"
#include "shell/qt/text_pane_widget.h"
#include "shell_qt/desktop.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QFile>
#include <QLabel>
#include <QPrinterInfo>
#include <QTest>

#include <gtest/gtest.h>

namespace zov {
namespace {

using test::Desktop;

/// Pages of a PDF, counted by their objects.
qsizetype pagesOf(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return -1;
    const QByteArray bytes = file.readAll();
    return bytes.startsWith("%PDF") ? bytes.count("/Type /Page\n") + bytes.count("/Type /Page ")
                                    : -1;
}

QString numberedLines(int count) {
    QString text;
    for (int i = 1; i <= count; ++i) text += QStringLiteral("line %1\r\n").arg(i);
    return text;
}

TEST(Printing, AMarkedTextGoesIntoAPdfPageByPage) {
    Desktop desktop;
    qt::TextPaneWidget pane;
    const struct {
        int lines;
        int least, most;
    } rows[] = {{1, 1, 1}, {30, 1, 1}, {300, 3, 7}};
    for (const auto& row : rows) {
        pane.setText(numberedLines(row.lines));
        pane.select(0, 3);
        pane.setSelectionBackColor(0xC0FFC0);
        const QString path = desktop.home.path(QStringLiteral("pages-%1.pdf").arg(row.lines));
        desktop.user.plan([&](QWidget* screen) {
            auto* preview = qobject_cast<qt::PrintPreview*>(screen);
            ASSERT_NE(preview, nullptr);
            EXPECT_TRUE(preview->writePdf(path));
            EXPECT_EQ(preview->pageCount(), pagesOf(path));
            preview->accept();
        });
        EXPECT_TRUE(qt::printPaneText(pane, QStringLiteral("Source: "), QStringLiteral("a.b.c"),
                                      false, nullptr));
        EXPECT_GE(pagesOf(path), row.least);
        EXPECT_LE(pagesOf(path), row.most);
    }
}

TEST(Printing, APathThatCannotBeWrittenIsToldAndThePreviewStays) {
    Desktop desktop;
    const QString folder = desktop.home.path(QStringLiteral("no such folder/a.pdf"));
    desktop.user.plan([&](QWidget* screen) {
        EXPECT_FALSE(qobject_cast<qt::PrintPreview*>(screen)->writePdf(folder));
        EXPECT_TRUE(screen->isVisible());
        static_cast<QDialog*>(screen)->reject();
    });
    EXPECT_FALSE(
        qt::printText(QStringLiteral("text"), QStringLiteral("Zovrand Report"), false, nullptr));
    const QString box = desktop.user.takeSeen().value(0);
    EXPECT_TRUE(box.startsWith(QStringLiteral("The file '%1' can't be written").arg(folder)))
        << box.toStdString();
}

TEST(Printing, WithoutAPrinterTheUserIsToldWhatElseToDo) {
    if (!QPrinterInfo::defaultPrinter().isNull()) GTEST_SKIP() << "this machine has a printer";
    Desktop desktop;
    desktop.user.plan([&](QWidget* screen) {
        screen->findChild<QAction*>(QStringLiteral("print"))->trigger();
        EXPECT_TRUE(screen->isVisible());
        static_cast<QDialog*>(screen)->reject();
    });
    EXPECT_FALSE(
        qt::printText(QStringLiteral("text"), QStringLiteral("Zovrand Report"), false, nullptr));
    EXPECT_EQ(
        desktop.user.takeSeen(),
        QStringList(QStringLiteral(
            "There is no default printer.||Please set one up in the settings of your desktop, "
            "or save the pages as a PDF file instead.")));
    qt::TextPaneWidget pane;
    pane.setText(QStringLiteral("text"));
    EXPECT_FALSE(qt::printPaneText(pane, {}, {}, true, nullptr)) << "at once: the run ends here";
    EXPECT_EQ(desktop.user.takeSeen().size(), 1);
}

/// A run that prints nothing: its first pair lasts until somebody stops it.
class EndlessPair : public CompareAndPrintWindow {
 public:
    explicit EndlessPair(qt::MainWindow& window) : window_(window) {}
    const ObjectList& objects(int Index) override { return *window_.list(Index); }
    void showObject(int, int) override {}
    bool compareAndPrintPair() override {
        ++pairs;
        return test::waitUntil([] { return globals().gblnStop; });
    }
    int pairs = 0;

 private:
    qt::MainWindow& window_;
};

TEST(Printing, TheRunOverAllTablesShowsItsTableAndEndsWithEsc) {
    Desktop desktop;
    EndlessPair window(desktop.show());
    desktop.user.plan([](QWidget* screen) {
        EXPECT_EQ(screen->objectName(), QStringLiteral("frmCompareAndPrint"));
        EXPECT_EQ(screen->findChild<QLabel*>(QStringLiteral("lblCurProcName"))->text(),
                  QStringLiteral("Customer"));
        QTest::keyClick(screen, Qt::Key_Escape);
    });
    frmCompareAndPrint().ShowUp(window);
    EXPECT_TRUE(desktop.user.isDone());
    EXPECT_EQ(window.pairs, 1) << "Invoice has a namesake too";
}

}  // namespace
}  // namespace zov
