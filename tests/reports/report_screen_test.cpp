// The report screen, saving a text, and the print job's form.
#include "reports/copy_to_file.h"
#include "reports/frmCompareAndPrint.h"
#include "reports/frmReport.h"
#include "reports/process_recorder.h"
#include "shell/memory_controls.h"
#include "support/recording_shell.h"
#include "support/temp_home.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>

namespace zov {
namespace {

class Reports : public ::testing::Test {
 protected:
    void SetUp() override { globals().gstrReport = QStringLiteral("One\r\nTwo"); }

    test::TempHome home;
    test::RecordingShell shell;
};

TEST_F(Reports, AreCopiedSavedAndClosed) {
    const QString path = home.path(QStringLiteral("r.txt"));
    home.write(QStringLiteral("r.txt"), "a longer text that was there before");
    shell.savePaths = {path};
    shell.onScreen = [](Screen& screen) {
        auto& report = dynamic_cast<frmReport&>(screen);
        EXPECT_EQ(report.caption(), u"Comparison Report");
        EXPECT_TRUE(report.cmdSaveVisible);
        report.cmdCopyClip();
        report.cmdCopyToFile();
        report.cmdCopyToFile();  // given up this time
        report.cmdExit();
        EXPECT_TRUE(report.isClosed());
    };
    ComparisonReport fields;
    fields.Caption = QStringLiteral("Comparison Report");
    // A path that belongs to a replay is no answer to the user's click.
    fields.ExportPath = home.path(QStringLiteral("elsewhere.txt"));
    frmReport().ShowUp(fields);
    const QString dialog = QStringLiteral("save [Specify Target File] *.* | ") +
                           globals().gstrUserDataFolder + QStringLiteral("Report.txt -> ");
    EXPECT_EQ(shell.takeLines().join(u'\n'),
              QStringLiteral("screen frmReport\nclipboard: One\\nTwo\n") + dialog + path +
                  QStringLiteral("\n") + dialog);
    EXPECT_EQ(home.read(QStringLiteral("r.txt")).toStdString(), "One\r\nTwo");
    EXPECT_FALSE(QFile::exists(fields.ExportPath));
    // The caller clears the text.
    EXPECT_EQ(globals().gstrReport.toStdString(), "One\r\nTwo");
}

TEST_F(Reports, OfAReplayGoToItsPath) {
    shell.onScreen = [](Screen& screen) { dynamic_cast<frmReport&>(screen).cmdCopyToFile(); };
    ComparisonReport fields;
    fields.Replay = true;
    fields.ExportPath = home.path(QStringLiteral("x.txt"));
    frmReport().ShowUp(fields);
    EXPECT_EQ(shell.lines.join(u'\n').toStdString(), "screen frmReport");
    EXPECT_EQ(home.read(QStringLiteral("x.txt")).toStdString(), "One\r\nTwo");
}

TEST_F(Reports, ThatCannotBecomeAProcessHaveNoSaveButton) {
    shell.onScreen = [](Screen& screen) {
        EXPECT_EQ(screen.caption(), u"SQL CREATE Statement");
        EXPECT_FALSE(dynamic_cast<frmReport&>(screen).cmdSaveVisible);
        EXPECT_EQ(screen.plainText(), u"One\r\nTwo");
    };
    frmReport().ShowUp_Generic(QStringLiteral("SQL CREATE Statement"));
    EXPECT_EQ(shell.lines.size(), 1);
}

struct Printer : ReportPrinter {
    QStringList printed;
    std::function<void()> meanwhile;
    bool works = true;
    bool printReport(const QString& documentName, const QString& text, bool silent) override {
        printed += documentName + u'|' + text + (silent ? QStringLiteral(" at once") : QString());
        if (meanwhile) meanwhile();
        return works;
    }
};

// Writes down what the screen wants kept.
struct Recorder : ProcessRecorder {
    Recorder() { installProcessRecorder(this); }
    ~Recorder() override { installProcessRecorder(nullptr); }
    bool saveRun(const ComparisonReport& Run, bool, QString& Name) override {
        told += QStringLiteral("save %1").arg(Run.CompSubType);
        Name = QStringLiteral("P");
        return saves;
    }
    void recordExport(const QString& Name, const QString& Path, qint32 Type, bool,
                      qint32 CompType) override {
        told += QStringLiteral("export %1 %2 %3 %4")
                    .arg(Name, QFileInfo(Path).fileName())
                    .arg(Type)
                    .arg(CompType);
    }
    bool recordPrint(const QString& Name) override {
        told += QStringLiteral("print ") + Name;
        return true;
    }
    std::string takeTold() { return std::exchange(told, {}).join(u'\n').toStdString(); }
    QStringList told;
    bool saves = true;
};

const char* const PrintNoted =
    "information: Printing info was added to the saved comparison process:\\n\\n\t- process name:\t"
    "'P'\\n\\nNext time when this process is run, the program will automatically print final "
    "report "
    "on the default printer.";

TEST_F(Reports, OnlyTheFirstExportOrPrintBehindASaveIsKept) {
    Printer printer;
    installReportPrinter(&printer);
    Recorder recorder;
    const auto exportTo = [&](frmReport& report, const char* name) {
        shell.savePaths = {*name ? home.path(QLatin1String(name)) : QString()};
        report.cmdCopyToFile();
    };
    shell.onScreen = [&](Screen& screen) {
        auto& report = dynamic_cast<frmReport&>(screen);
        EXPECT_TRUE(report.cmdSaveEnabled);
        exportTo(report, "before.txt");
        report.cmdPrint();
        EXPECT_EQ(recorder.takeTold(), "") << "not saved yet";
        recorder.saves = false;
        report.cmdSave();
        exportTo(report, "given up.txt");
        EXPECT_EQ(recorder.takeTold(), "save 20");
        recorder.saves = true;
        report.cmdSave();
        exportTo(report, "");  // given up
        exportTo(report, "one.txt");
        report.cmdPrint();
        exportTo(report, "two.txt");
        EXPECT_EQ(recorder.takeTold(), "save 20\nexport P one.txt 0 1");
        report.cmdSave();
        printer.works = false;
        report.cmdPrint();
        printer.works = true;
        EXPECT_EQ(recorder.takeTold(), "save 20");
        shell.takeLines();
        report.cmdPrint();
        EXPECT_EQ(shell.takeLines().join(u'\n').toStdString(), PrintNoted);
        exportTo(report, "three.txt");
        EXPECT_EQ(recorder.takeTold(), "print P");
    };
    ComparisonReport fields;
    fields.CompType = comparison_code::MetaData;
    fields.CompSubType = comparison_code::Bulk;
    frmReport().ShowUp(fields);
    installReportPrinter(nullptr);
}

TEST_F(Reports, OfAReplayExportAndPrintByThemselves) {
    Printer printer;
    installReportPrinter(&printer);
    Recorder recorder;
    const struct {
        const char* path;
        bool print, autoClose;
    } rows[] = {
        {"a.txt", true, true}, {"b.txt", false, false}, {"", true, false}, {"", false, true}};
    for (const auto& row : rows) {
        globals().gblnAutoClose = row.autoClose;
        shell.onScreen = [&](Screen& screen) {
            auto& report = dynamic_cast<frmReport&>(screen);
            report.Form_Activate();
            report.Form_Activate();
            EXPECT_EQ(screen.isClosed(), row.autoClose);
            // From here on it is a report as any other.
            EXPECT_FALSE(report.fields.Replay);
        };
        ComparisonReport fields;
        fields.Replay = true;
        fields.Print = row.print;
        if (*row.path) fields.ExportPath = home.path(QLatin1String(row.path));
        frmReport().ShowUp(fields);
        EXPECT_EQ(shell.takeLines().join(u'\n').toStdString(), "screen frmReport");
        EXPECT_EQ(std::exchange(printer.printed, {}).join(u'\n').toStdString(),
                  row.print ? "Zovrand Report|One\r\nTwo at once" : "");
        if (*row.path) {
            EXPECT_EQ(home.read(QLatin1String(row.path)).toStdString(), "One\r\nTwo");
        }
        EXPECT_EQ(recorder.takeTold(), "");
    }
    // A user's own report does nothing by itself.
    globals().gblnAutoClose = true;
    shell.onScreen = [](Screen& screen) {
        dynamic_cast<frmReport&>(screen).Form_Activate();
        EXPECT_FALSE(screen.isClosed());
    };
    ComparisonReport fields;
    fields.ExportPath = home.path(QStringLiteral("c.txt"));
    frmReport().ShowUp(fields);
    EXPECT_FALSE(QFile::exists(fields.ExportPath));
    installReportPrinter(nullptr);
}

TEST_F(Reports, ArePrintedUnderTheProgramsName) {
    Printer printer;
    installReportPrinter(&printer);
    shell.onScreen = [&](Screen& screen) {
        auto& report = dynamic_cast<frmReport&>(screen);
        // Clicks that come while it prints do nothing.
        printer.meanwhile = [&] {
            report.cmdPrint();
            report.cmdCopyClip();
            report.cmdCopyToFile();
        };
        report.cmdPrint();
    };
    frmReport().ShowUp_Generic(QStringLiteral("R"));
    installReportPrinter(nullptr);
    EXPECT_EQ(printer.printed.join(u'\n').toStdString(), "Zovrand Report|One\r\nTwo");
    EXPECT_EQ(shell.takeLines().join(u'\n').toStdString(), "screen frmReport");
    printer.meanwhile = nullptr;
    frmReport().ShowUp_Generic(QStringLiteral("R"));
    EXPECT_EQ(shell.lines.join(u'\n').toStdString(),
              "screen frmReport\n"
              "information: There is no printer here. Save the report to a file instead.");
}

TEST_F(Reports, TidyTemporaryFilesOfTheCurrentFolderUp) {
    const QString before = QDir::currentPath();
    home.write(QStringLiteral("here/a.tmp"), "x");
    home.write(QStringLiteral("here/a.txt"), "x");
    home.write(QStringLiteral("here/deeper/b.tmp"), "x");
    ASSERT_TRUE(QDir::setCurrent(home.path(QStringLiteral("here"))));
    shell.onScreen = [](Screen&) { EXPECT_TRUE(QFile::exists(QStringLiteral("a.tmp"))); };
    frmReport().ShowUp_Generic(QStringLiteral("R"));
    EXPECT_FALSE(QFile::exists(QStringLiteral("a.tmp")));
    EXPECT_TRUE(QFile::exists(QStringLiteral("a.txt")));
    EXPECT_TRUE(QFile::exists(QStringLiteral("deeper/b.tmp")));
    QDir::setCurrent(before);
}

TEST_F(Reports, ATextIsSavedOrTheReasonTold) {
    const struct {
        const char* name;
        const char* text;
        const char* defaultName;
        const char* proposed;  ///< empty: no dialog
        const char* answer;
        bool saved;
    } rows[] = {
        {"written", "a\r\n", "T", "T.txt", "good.txt", true},
        {"given up", "a", "T", "T.txt", "", false},
        {"no text, no question", "", "T", "", "unused.txt", false},
        {"a name with what parts folders", "a", "x/y\\z", "x_y_z.txt", "odd.txt", true},
        {"a file where a folder should be", "a", "T", "T.txt", "plain/t.txt", false},
    };
    home.write(QStringLiteral("plain"), "x");
    for (const auto& row : rows) {
        shell.savePaths.clear();
        if (*row.answer) shell.savePaths = {home.path(QString::fromLatin1(row.answer))};
        QString path;
        EXPECT_EQ(
            CopyToFile(QString::fromLatin1(row.text), QString::fromLatin1(row.defaultName), path),
            row.saved)
            << row.name;
        const QStringList said = shell.takeLines();
        if (!*row.proposed) {
            EXPECT_TRUE(said.isEmpty()) << row.name;
            continue;
        }
        EXPECT_TRUE(said.value(0).contains(QStringLiteral(" | ") + globals().gstrUserDataFolder +
                                           QString::fromLatin1(row.proposed) +
                                           QStringLiteral(" -> ")))
            << row.name;
        if (row.saved) {
            EXPECT_EQ(home.read(QString::fromLatin1(row.answer)).toStdString(), row.text);
            EXPECT_EQ(said.size(), 1);
        }
    }
    QString path;
    const QString blocked = home.path(QStringLiteral("plain/t.txt"));
    EXPECT_FALSE(CopyToFile(QStringLiteral("a"), {}, path, blocked));
    const QString said = shell.takeLines().join(u'\n');
    EXPECT_TRUE(said.startsWith(QStringLiteral("exclamation: Error in Sub CopyToFile, error nr ")));
    EXPECT_TRUE(said.contains(blocked)) << said.toStdString();
    EXPECT_TRUE(said.endsWith(QStringLiteral(").")));
}

TEST_F(Reports, AFailedWriteLeavesTheOldFile) {
    home.write(QStringLiteral("dir/old"), "x");
    QString path;
    // A folder stands where the file should go.
    EXPECT_FALSE(CopyToFile(QStringLiteral("a"), {}, path, home.path(QStringLiteral("dir"))));
    EXPECT_EQ(home.read(QStringLiteral("dir/old")).toStdString(), "x");
    EXPECT_EQ(shell.lines.size(), 1);
}

// Lists of names; pairs that were compared as "Source=Target".
struct Job : CompareAndPrintWindow {
    MemoryObjectList lists[2];
    int shown[2] = {-1, -1};
    QStringList pairs;
    int printable = 99;

    void fill(int Index, const QStringList& names) {
        std::vector<ObjectListRow> rows;
        for (const QString& name : names) {
            const QString schema = name.contains(u'.') ? name.section(u'.', 0, 0) : QString();
            rows.push_back({name, {}, 1, schema, name.section(u'.', -1)});
        }
        lists[Index].setRows(std::move(rows));
    }
    const ObjectList& objects(int Index) override { return lists[Index]; }
    void showObject(int Index, int row) override { shown[Index] = row; }
    bool compareAndPrintPair() override {
        pairs += lists[0].row(shown[0]).name + u'=' + lists[1].row(shown[1]).name;
        return --printable > 0;
    }
};

TEST_F(Reports, APrintJobPairsTablesByName) {
    const struct {
        const char* source;
        const char* target;
        const char* pairs;
    } rows[] = {
        {"A B", "B C", "B=B"},
        {"dbo.T hr.T", "T", "dbo.T=T hr.T=T"},
        {"T", "dbo.T hr.T", "T=dbo.T"},
        {"hr.T dbo.T", "dbo.T hr.T", "hr.T=hr.T dbo.T=dbo.T"},
        {"a", "A", ""},
    };
    for (const auto& row : rows) {
        Job job;
        job.fill(0, QString::fromLatin1(row.source).split(u' '));
        job.fill(1, QString::fromLatin1(row.target).split(u' '));
        shell.onScreen = [](Screen& screen) {
            auto& form = dynamic_cast<frmCompareAndPrint&>(screen);
            form.Form_Activate();
            form.Form_Activate();
            EXPECT_TRUE(form.isClosed());
        };
        frmCompareAndPrint().ShowUp(job);
        EXPECT_EQ(job.pairs.join(u' ').toStdString(), row.pairs);
    }
}

TEST_F(Reports, APrintJobEndsWithCancelOrWithoutAPrinter) {
    Job job;
    job.fill(0, {QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")});
    job.fill(1, {QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")});
    job.printable = 2;
    shell.onScreen = [](Screen& screen) {
        dynamic_cast<frmCompareAndPrint&>(screen).Form_Activate();
    };
    frmCompareAndPrint().ShowUp(job);
    EXPECT_EQ(job.pairs.join(u' ').toStdString(), "A=A B=B");

    job.printable = 99;
    job.pairs.clear();
    shell.onScreen = [&](Screen& screen) {
        auto& form = dynamic_cast<frmCompareAndPrint&>(screen);
        shell.onPump = [&] {
            if (form.lblCurProcName == u"C") form.cmdCancel_Click();
        };
        form.Form_Activate();
        EXPECT_EQ(form.lblTime.toStdString(), "00:00:00");
        shell.onPump = nullptr;
    };
    frmCompareAndPrint().ShowUp(job);
    EXPECT_EQ(job.pairs.join(u' ').toStdString(), "A=A B=B");
    EXPECT_EQ(shell.waitDepth, 0);

    shell.onScreen = [](Screen& screen) {
        dynamic_cast<frmCompareAndPrint&>(screen).cmdCancel_Click();
        EXPECT_TRUE(screen.isClosed());
    };
    globals().gblnStop = false;
    frmCompareAndPrint().ShowUp(job);
    EXPECT_FALSE(globals().gblnStop);
}

}  // namespace
}  // namespace zov
