// The widgets of the data comparison: the grid, its keys and colours, what dialogs
// take from their fields and hand to them.
#include "reports/frmExport.h"
#include "shell/qt/appearance.h"
#include "shell/qt/data/grid_model.h"
#include "shell/qt/data/run_dialogs.h"
#include "shell/qt/help_window.h"
#include "shell/qt/mark_colors.h"
#include "shell_qt/data_stops.h"
#include "support/text_grid.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QTextDocument>
#include <QTreeWidget>

namespace zov {
namespace {

using test::Desktop;

template <typename Widget>
Widget* child(QWidget* screen, const char* name) {
    auto* widget = screen->findChild<Widget*>(QLatin1String(name));
    if (!widget) ADD_FAILURE() << "no " << name << " in " << screen->objectName().toStdString();
    return widget;
}

/// With ZOV_TEST_PICTURES set to a folder, what a screen looks like is kept there.
void keepPicture(QWidget* screen, const QString& name) {
    const QString folder = qEnvironmentVariable("ZOV_TEST_PICTURES");
    if (folder.isEmpty()) return;
    QApplication::processEvents();
    const bool dark = qt::isDarkPalette(screen->palette());
    screen->grab().save(folder + u'/' + name +
                        (dark ? QStringLiteral("-dark.png") : QStringLiteral("-light.png")));
}

void expectOwnLettersAndHelp(QWidget* screen) {
    QStringList letters;
    for (const QPushButton* button : screen->findChildren<QPushButton*>()) {
        if (button->objectName().isEmpty() || !button->isVisibleTo(screen)) continue;
        const qsizetype at = button->text().indexOf(u'&');
        EXPECT_GE(at, 0) << button->text().toStdString();
        letters += button->text().mid(at + 1, 1).toLower();
    }
    const QString all = letters.join(u' ');
    letters.sort();
    EXPECT_EQ(letters.removeDuplicates(), 0) << all.toStdString();
    EXPECT_TRUE(
        QFile::exists(qt::helpFolder() + screen->objectName().toLower() + QStringLiteral(".html")))
        << screen->objectName().toStdString();
}

QTableView* gridOf(QWidget* screen) {
    return child<QTableView>(screen, "VSFlexGrid1");
}

std::string cellAt(const QTableView* view) {
    const QModelIndex at = view->currentIndex();
    return (QString::number(at.row()) + u',' + QString::number(at.column())).toStdString();
}

TEST(GridModel, KeepsTheRulesOfModelsWhileTheGridChanges) {
    test::TextGrid grid{"Row|A", "1|x", "2|y\nz"};
    qt::GridModel model(grid, nullptr);
    const QAbstractItemModelTester tester(&model,
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    EXPECT_EQ(model.rowCount(), 0);
    model.readAnew();
    ASSERT_EQ(model.rowCount(), 2);
    EXPECT_EQ(model.data(model.index(1, 1), Qt::DisplayRole).toString(), u"y z");
    EXPECT_EQ(model.headerData(1, Qt::Horizontal, Qt::DisplayRole).toString(), u"A");
    grid.rows.pop_back();
    EXPECT_EQ(model.data(model.index(1, 1), Qt::DisplayRole).toString(), QString())
        << "a row that is gone is empty until the model is told";
    model.readAnew();
    EXPECT_EQ(model.rowCount(), 1);
    grid.rows.clear();
    model.readAnew();
    EXPECT_EQ(model.rowCount(), 0);
}

TEST(GridModel, ShowsTheGridsColoursInBothPalettes) {
    test::TextGrid grid{"Row|A|B", "1|x|y", "2|x|y"};
    grid.alternate = 0xFFFF00;
    grid.backColors[{1, 1}] = difference_color::TargetHalf;
    grid.foreColors[{1, 1}] = 255;
    const auto shade = [](const qt::GridModel& model, int row, int column, int role) {
        return model.data(model.index(row, column), role).value<QBrush>().color();
    };
    for (const qt::Appearance appearance : {qt::Appearance::Light, qt::Appearance::Dark}) {
        qt::applyAppearance(appearance);
        qt::GridModel model(grid, nullptr);
        model.setPalette(QApplication::palette());
        const bool light = appearance == qt::Appearance::Light;
        const QColor back = shade(model, 0, 1, Qt::BackgroundRole);
        const QColor text = shade(model, 0, 1, Qt::ForegroundRole);
        if (light) {
            EXPECT_EQ(back, QColor(0xFF, 0xFF, 0x80));
            EXPECT_EQ(text, QColor(255, 0, 0));
            EXPECT_EQ(shade(model, 1, 2, Qt::BackgroundRole), QColor(0, 255, 255));
        }
        EXPECT_GT(std::abs(back.lightness() - text.lightness()), 60);
        EXPECT_FALSE(model.data(model.index(0, 2), Qt::BackgroundRole).isValid());
        EXPECT_TRUE(model.data(model.index(0, 1), Qt::FontRole).value<QFont>().bold());
    }
    qt::applyAppearance(qt::Appearance::Light);
}

TEST(GridModel, SelectedCellsAreReadableAndKeepTheirColoursInBothPalettes) {
    const quint32 grounds[] = {difference_color::SourceHalf, difference_color::TargetHalf,
                               difference_color::SourceOnly, difference_color::TargetOnly,
                               0xFFFFFF};
    const auto apart = [](const QColor& a, const QColor& b) {
        return std::abs(a.red() - b.red()) + std::abs(a.green() - b.green()) +
               std::abs(a.blue() - b.blue());
    };
    for (const qt::Appearance appearance : {qt::Appearance::Light, qt::Appearance::Dark}) {
        qt::applyAppearance(appearance);
        const QPalette palette = QApplication::palette();
        std::vector<QColor> seen;
        for (const quint32 color : grounds) {
            const QColor ground = qt::shownMarkColor(color, palette);
            seen.push_back(qt::selectedGround(ground, palette));
            EXPECT_GT(apart(seen.back(), ground), 20) << "the selection isn't seen";
            for (const quint32 text : {0x000000U, difference_color::DifferingText}) {
                const QColor shade = qt::readableOn(seen.back(), qt::shownTextColor(text, palette));
                EXPECT_GE(qt::contrastOf(seen.back(), shade), 4.5)
                    << shade.name().toStdString() << " on " << seen.back().name().toStdString();
            }
        }
        for (size_t a = 0; a < seen.size(); ++a)
            for (size_t b = a + 1; b < seen.size(); ++b)
                EXPECT_GT(apart(seen[a], seen[b]), 15) << a << " and " << b;
    }
    qt::applyAppearance(qt::Appearance::Light);
}

TEST(DataScreens, ASelectedCellIsPaintedInItsOwnColour) {
    Desktop desktop;
    desktop.show();
    desktop.user.plan([&](QWidget* screen) {
        QTableView* view = gridOf(screen);
        ASSERT_NE(view, nullptr);
        const auto paintedGround = [&](const QModelIndex& at) {
            QApplication::processEvents();
            const QRect rect = view->visualRect(at);
            const QImage image = view->viewport()->grab().toImage();
            const double scale = image.devicePixelRatio();
            return image.pixelColor(int((rect.right() - 4) * scale), int((rect.top() + 3) * scale));
        };
        const QModelIndex cell = view->model()->index(0, 1);
        const auto ground = cell.data(Qt::BackgroundRole).value<QBrush>().color();
        view->setCurrentIndex(view->model()->index(1, 2));
        EXPECT_EQ(paintedGround(cell), ground);
        view->setCurrentIndex(cell);
        EXPECT_EQ(paintedGround(cell), qt::selectedGround(ground, view->palette()));
        static_cast<QDialog*>(screen)->reject();
    });
    test::showStockDifferences(desktop);
    EXPECT_TRUE(desktop.user.isDone());
}

TEST(DataScreens, DifferencesAreWalkedFoundCopiedAndSorted) {
    Desktop desktop;
    desktop.show();
    bool done = false;
    desktop.user.plan([&](QWidget* screen) {
        EXPECT_EQ(screen->objectName(), u"frmCompareData");
        EXPECT_EQ(screen->windowTitle(), u"Differences between data in tables 'Stock' and 'Stock'");
        expectOwnLettersAndHelp(screen);
        QTableView* view = gridOf(screen);
        EXPECT_EQ(QApplication::focusWidget(), view);
        EXPECT_EQ(view->model()->headerData(1, Qt::Horizontal, Qt::DisplayRole).toString(),
                  u"Shelf");
        EXPECT_TRUE(child<QPushButton>(screen, "cmdSave")->isEnabled());
        EXPECT_EQ(child<QLabel>(screen, "lblGen_11")->text(),
                  u"Comparison method: Primary Key \r\nSource PK: Shelf\r\nTarget PK: Shelf");
        EXPECT_EQ(child<QLabel>(screen, "lblStats_3")->text(), u"59");
        EXPECT_EQ(child<QLabel>(screen, "lblColor_0")->palette().color(QPalette::Window),
                  QColor(0, 255, 255));

        const std::string first = cellAt(view);
        QTest::keyClick(view, Qt::Key_F8);
        const std::string second = cellAt(view);
        EXPECT_NE(first, second);
        QTest::keyClick(view, Qt::Key_F8, Qt::ShiftModifier);
        EXPECT_NE(second, cellAt(view));

        QTest::keyClick(view, Qt::Key_F, Qt::ControlModifier);
        auto* text = child<QLineEdit>(screen, "findText");
        ASSERT_TRUE(text->hasFocus());
        text->setText(QStringLiteral("sØREN"));
        QTest::keyClick(text, Qt::Key_Return);
        EXPECT_EQ(view->currentIndex().data().toString(), u"Søren");
        EXPECT_TRUE(screen->isVisible());
        QTest::keyClick(text, Qt::Key_Escape);
        EXPECT_FALSE(text->isVisible());
        EXPECT_TRUE(screen->isVisible()) << "Esc closes the bar, not the window";
        QTest::keyClick(view, Qt::Key_C, Qt::ControlModifier);
        EXPECT_EQ(QApplication::clipboard()->text(), u"Søren");
        view->selectRow(view->currentIndex().row());
        QTest::keyClick(view, Qt::Key_C, Qt::ControlModifier);
        EXPECT_TRUE(QApplication::clipboard()->text().endsWith(QStringLiteral("\t77.5\tSøren\r\n")))
            << QApplication::clipboard()->text().toStdString();
        keepPicture(screen, QStringLiteral("frmcomparedata"));

        child<QAction>(screen, "mnuPopUpSortColumns")->trigger();
        EXPECT_EQ(view->model()->headerData(1, Qt::Horizontal, Qt::DisplayRole).toString(),
                  u"Counted");
        EXPECT_EQ(view->model()->headerData(0, Qt::Horizontal, Qt::DisplayRole).toString(), u"Row");
        QTest::keyClick(view, Qt::Key_Escape);
        done = !screen->isVisible();
    });
    test::showStockDifferences(desktop);
    EXPECT_TRUE(done);
    EXPECT_EQ(desktop.user.takeSeen(), QStringList());
}

TEST(DataScreens, ATableIsShownAndExported) {
    Desktop desktop;
    desktop.show();
    desktop.user.plan([&](QWidget* screen) {
        expectOwnLettersAndHelp(screen);
        QTableView* view = gridOf(screen);
        ASSERT_TRUE(test::waitUntil([&] { return view->model()->rowCount() == 59; }));
        ASSERT_TRUE(
            test::waitUntil([&] { return child<QPushButton>(screen, "cmdExport")->isEnabled(); }));
        EXPECT_FALSE(child<QProgressBar>(screen, "ProgressBar")->isVisible());
        EXPECT_FALSE(child<QPushButton>(screen, "cmdStop")->isEnabled());
        EXPECT_EQ(child<QLabel>(screen, "lblStats")->text(), u"Number of records: 59");
        EXPECT_EQ(view->model()->index(58, 1).data().toString(), u"60");
        keepPicture(screen, QStringLiteral("frmdataview"));
        QTest::keyClick(screen, Qt::Key_E, Qt::AltModifier);
    });
    desktop.user.plan([&](QWidget* screen) {
        ASSERT_EQ(screen->objectName(), u"frmExport");
        expectOwnLettersAndHelp(screen);
        EXPECT_TRUE(child<QRadioButton>(screen, "optGen_0")->isChecked());
        auto* safe = child<QCheckBox>(screen, "chkCsvSafe");
        EXPECT_FALSE(safe->isEnabled());
        QTest::keyClick(child<QRadioButton>(screen, "optGen_0"), Qt::Key_Down);
        EXPECT_TRUE(child<QRadioButton>(screen, "optGen_1")->isChecked());
        EXPECT_TRUE(safe->isEnabled() && !safe->isChecked());
        keepPicture(screen, QStringLiteral("frmexport"));
        QTest::keyClick(screen, Qt::Key_Escape);
    });
    desktop.user.plan([&](QWidget* screen) {
        ASSERT_EQ(screen->objectName(), u"frmDataView") << "behind the export it is there again";
        QTest::keyClick(gridOf(screen), Qt::Key_Escape);
        EXPECT_FALSE(screen->isVisible());
    });
    test::showStock(desktop);
    EXPECT_TRUE(desktop.user.isDone());
    EXPECT_EQ(desktop.user.takeSeen(), QStringList());
}

// What stands in a table is text, wherever it is shown.
TEST(DataScreens, CellsAreNeverTakenForHtml) {
    const QString cell = QStringLiteral("<img src='file:///x'><b>bold & more</b>");
    test::TextGrid grid{"Row|A", "1|x"};
    grid.rows[0][1] = grid.rows[1][1] = cell;
    qt::GridModel model(grid, nullptr);
    model.readAnew();
    for (const QString& tip : {model.data(model.index(0, 1), Qt::ToolTipRole).toString(),
                               model.headerData(1, Qt::Horizontal, Qt::ToolTipRole).toString()}) {
        QTextDocument shown;
        if (Qt::mightBeRichText(tip))
            shown.setHtml(tip);
        else
            shown.setPlainText(tip);
        EXPECT_EQ(shown.toPlainText().toStdString(), cell.toStdString());
    }
}

TEST(DataScreens, AnExportShowsItsProgressAndStopsOnEsc) {
    Desktop desktop;
    desktop.show();
    test::TextGrid grid{"Row|A"};
    for (int i = 0; i < 300'000; ++i)
        grid.rows.push_back({QString::number(i), QStringLiteral("x")});
    ExportSource source;
    source.grid = &grid;
    frmExport::Request request;
    request.Path = desktop.home.path(QStringLiteral("x.htm"));
    request.ExportType = ExportType::Html;
    bool seenRunning = false;
    desktop.user.plan([&](QWidget* screen) {
        seenRunning = child<QProgressBar>(screen, "ProgressBar")->isVisible();
        EXPECT_FALSE(child<QPushButton>(screen, "cmdOK")->isEnabled());
        QTest::keyClick(screen, Qt::Key_Escape);
    });
    EXPECT_FALSE(frmExport().ShowUp(source, request).Success);
    EXPECT_TRUE(seenRunning);
    EXPECT_EQ(desktop.user.takeSeen(), QStringList{QStringLiteral("Operation cancelled by user.")});
    EXPECT_FALSE(desktop.home.read(QStringLiteral("x.htm")).contains("</TABLE>"));
}

TEST(DataScreens, OptionsGoFromTheirPagesIntoTheSettings) {
    Desktop desktop;
    desktop.show();
    const CompareDataPair pair = test::stockTables(desktop, 3);
    DataCompSettings settings;
    desktop.user.plan([&](QWidget* screen) {
        expectOwnLettersAndHelp(screen);
        auto* pages = child<QTabWidget>(screen, "tbcContainer");
        EXPECT_EQ(pages->tabText(0), u"Comparison Method");
        EXPECT_EQ(pages->count(), 4);
        for (int page = 0; page < 4; ++page) {
            pages->setCurrentIndex(page);
            if (page == 0) child<QRadioButton>(screen, "optGen_1")->click();
            expectOwnLettersAndHelp(screen);
            keepPicture(screen, QStringLiteral("frmcomparedataoptions-%1").arg(page));
        }
        pages->setCurrentIndex(0);
        auto* key = child<QComboBox>(screen, "cmbPK_0");
        child<QRadioButton>(screen, "optGen_0")->click();
        EXPECT_FALSE(key->isEnabled());
        child<QRadioButton>(screen, "optGen_1")->click();
        ASSERT_TRUE(key->isEnabled());
        key->setFocus();
        QTest::keyClick(key, Qt::Key_Down);
        EXPECT_EQ(key->currentText(), u"Shelf");
        auto* second = child<QComboBox>(screen, "cmbPK_3");
        QTest::keyClick(second, Qt::Key_Down);
        EXPECT_EQ(second->currentText(), u"No Field") << "the Target has no primary field yet";
        EXPECT_EQ(desktop.user.takeSeen(),
                  QStringList{QStringLiteral(
                      "Please specify Primary Field before specifying Secondary Field.")});
        QTest::keyClick(child<QComboBox>(screen, "cmbPK_1"), Qt::Key_Down);
        pages->setCurrentIndex(2);
        auto* offset = child<QLineEdit>(screen, "txtOffset_1");
        QTest::keyClicks(offset, QStringLiteral("a1-4"));
        EXPECT_EQ(offset->text(), u"14");
        pages->setCurrentIndex(3);
        for (const char* list : {"pvlSqlObj_0", "pvlSqlObj_1"})
            child<QTreeWidget>(screen, list)->topLevelItem(3)->setCheckState(0, Qt::Unchecked);
        QTest::keyClick(screen, Qt::Key_Return);
        EXPECT_FALSE(screen->isVisible());
    });
    EXPECT_TRUE(frmCompareDataOptions().ShowUp(pair, settings));
    EXPECT_EQ(settings.Method, CompMethod::PrimaryKey);
    EXPECT_EQ(settings.CompKey1, u"Shelf");
    EXPECT_EQ(settings.CompKey2, u"Shelf");
    EXPECT_EQ(settings.Offset2, 14);
    EXPECT_TRUE(settings.DefaultOrder);

    desktop.user.plan([&](QWidget* screen) {
        const auto* list = child<QTreeWidget>(screen, "pvlSqlObj_1");
        EXPECT_EQ(list->topLevelItem(3)->checkState(0), Qt::Unchecked);
        EXPECT_EQ(child<QComboBox>(screen, "cmbPK_0")->currentText(), u"Shelf");
        QTest::keyClick(screen, Qt::Key_Escape);
    });
    EXPECT_FALSE(frmCompareDataOptions().ShowUp(pair, settings));
}

TEST(DataScreens, TwoSelectedTablesAreComparedFromTheMainWindow) {
    Desktop desktop;
    desktop.show();
    test::stockTables(desktop);
    desktop.window().runCommand(command::RefreshSource);
    desktop.window().runCommand(command::RefreshTarget);
    desktop.select(QStringLiteral("Stock"), QStringLiteral("Stock"));
    desktop.user.plan([&](QWidget* screen) {
        EXPECT_EQ(screen->objectName(), u"frmCompareDataOptions");
        QTest::keyClick(screen, Qt::Key_Return);
    });
    bool seen = false;
    // The run may be over before anybody can look.
    const std::function<void(QWidget*)> differences = [&](QWidget* screen) {
        if (screen->objectName() == u"frmCompareStatus") return desktop.user.plan(differences);
        EXPECT_EQ(screen->objectName(), u"frmCompareData");
        EXPECT_EQ(child<QLabel>(screen, "lblGen_11")->text(),
                  u"Comparison method: Record by Record");
        EXPECT_GT(gridOf(screen)->model()->rowCount(), 2);
        seen = true;
        QTest::keyClick(screen, Qt::Key_Escape);
    };
    desktop.user.plan(differences);
    desktop.window().runCommand(command::DataPair);
    EXPECT_TRUE(seen);
    EXPECT_EQ(desktop.user.takeSeen(), QStringList());
    EXPECT_FALSE(desktop.controller().Busy());
}

TEST(DataScreens, KeysAreValidatedFromTheOptions) {
    Desktop desktop;
    desktop.show();
    const CompareDataPair pair = test::stockTables(desktop, 3);
    DataCompSettings settings;
    desktop.user.plan([&](QWidget* screen) {
        child<QRadioButton>(screen, "optGen_1")->click();
        auto* key = child<QComboBox>(screen, "cmbPK_0");
        QTest::keyClick(key, Qt::Key_Down);
        // The screen of the checks comes and goes by itself.
        child<QPushButton>(screen, "cmdValidate_0")->click();
        EXPECT_TRUE(desktop.user.takeSeen().contains(
            QStringLiteral("Fields selection is valid - data stored in selected fields is unique "
                           "and doesn't contain nulls.")));
        QTest::keyClick(screen, Qt::Key_Escape);
    });
    frmCompareDataOptions().ShowUp(pair, settings);
}

TEST(DataScreens, ProgressScreensShowTheirFieldsAndTheirWayOut) {
    for (const qt::Appearance appearance : {qt::Appearance::Light, qt::Appearance::Dark}) {
        qt::applyAppearance(appearance);
        Desktop desktop;
        DataComparisonRun run;
        for (CompareDataTable& table : run.Tables)
            table = {ServerInfo{}, QStringLiteral("shop"), QStringLiteral("Stock"), 0};
        frmCompareData differences;
        frmCompareStatus status(run, differences);
        status.lblTable1 = QStringLiteral("Stock");
        status.lblRecsCount1 = QStringLiteral("1,000,000");
        status.lblCurRec = QStringLiteral("523,412");
        status.lblTime = QStringLiteral("00:00:07");
        status.lblTimeVisible = status.ProgressBarVisible = true;
        status.ProgressBar = 120;
        const auto dialog = qt::makeScreenDialog(status, nullptr);
        ASSERT_TRUE(dialog);
        dialog->refreshFields();
        expectOwnLettersAndHelp(dialog.get());
        EXPECT_EQ(child<QProgressBar>(dialog.get(), "ProgressBar")->value(), 100);
        EXPECT_EQ(child<QLabel>(dialog.get(), "lblCurRec")->text(), u"523,412");
        EXPECT_FALSE(child<QLabel>(dialog.get(), "lblStatus")->isVisibleTo(dialog.get()));
        keepPicture(dialog.get(), QStringLiteral("frmcomparestatus"));
        child<QPushButton>(dialog.get(), "cmdStop")->click();
        EXPECT_TRUE(status.isClosed());

        frmCompareDataValidation validation;
        validation.lblTable1 = QStringLiteral("Stock");
        validation.lblInfo[0] = QStringLiteral("Checking if selected fields contain nulls... Done");
        const auto checks = qt::makeScreenDialog(validation, nullptr);
        ASSERT_TRUE(checks);
        checks->refreshFields();
        expectOwnLettersAndHelp(checks.get());
        keepPicture(checks.get(), QStringLiteral("frmcomparedatavalidation"));
        child<QPushButton>(checks.get(), "cmdCancel")->click();
        EXPECT_TRUE(validation.isClosed());
        globals().gblnStop = false;

        // The other screens in this palette, for their pictures.
        if (appearance == qt::Appearance::Light) continue;
        desktop.show();
        const auto look = [](const char* name) {
            return [name](QWidget* screen) {
                QTest::qWait(60);
                keepPicture(screen, QString::fromLatin1(name));
                QTest::keyClick(screen, Qt::Key_Escape);
            };
        };
        desktop.user.plan(look("frmcomparedata"));
        test::showStockDifferences(desktop);
        desktop.user.plan(look("frmdataview"));
        test::showStock(desktop);
        desktop.user.plan(look("frmcomparedataoptions-0"));
        test::showStockOptions(desktop);
        desktop.user.plan(look("frmexport"));
        test::showStockExport();
        EXPECT_EQ(desktop.user.takeSeen(), QStringList());
    }
    qt::applyAppearance(qt::Appearance::Light);
}

}  // namespace
}  // namespace zov
