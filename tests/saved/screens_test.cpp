// The screens that save a run and that pick one, what they say and what the store
// holds afterwards.
#include "saved_fixture.h"

#include "saved/frmSaveCompRun.h"
#include "saved/frmSaveComparison.h"
#include "saved/process_texts.h"

#include <QDate>
#include <QLocale>

namespace zov {
namespace {

using test::SavedProcesses;

class SaveScreen : public SavedProcesses {
 protected:
    /// Opens the screen, enters a name and presses OK; the rest is Cancel.
    bool saveAs(const QString& entered) {
        shell.onScreen = [&](Screen& screen) {
            auto& save = dynamic_cast<frmSaveComparison&>(screen);
            save.Form_Activate();
            proposed = save.txtProcessName;
            listed = save.lstServers;
            save.txtProcessName = entered;
            save.optPrint = print;
            save.cmdOK();
            stayedOpen = !save.isClosed();
            save.cmdCancel();
        };
        shell.takeLines();
        return frmSaveComparison().ShowUp(run, name);
    }
    SavedProcess run = process({}, {QStringLiteral("T")}, {QStringLiteral("T")});
    QString name, proposed;
    QStringList listed;
    bool print = false;
    bool stayedOpen = false;
};

const char* const Opened = "screen frmSaveComparison\nfocus txtProcessName, text selected\n";
const char* const Stored =
    "information: Comparison process saved successfully.\\n\\nIf you want to include automatic "
    "exporting in your saved comparison process, please export the results now. The program will "
    "add exporting info to saved comparison process.";

TEST_F(SaveScreen, StoresARunUnderAName) {
    run.TableName1 = QStringLiteral("dbo.Orders");
    print = true;
    EXPECT_TRUE(saveAs(QStringLiteral("  Nightly ")));
    EXPECT_EQ(told(), std::string(Opened) + Stored);
    EXPECT_EQ(name, u"Nightly");
    EXPECT_EQ(proposed,
              QLocale::c().toString(QDate::currentDate(), QStringLiteral("MMM dd, yyyy")) +
                  QStringLiteral(" - dbo.Orders"));
    SavedProcess read;
    EXPECT_TRUE(GetSavedProcessDetails(name, read));
    EXPECT_TRUE(read.Print);
    EXPECT_EQ(read.TableName1, run.TableName1);
    run.TableName1.clear();
    EXPECT_TRUE(saveAs(QStringLiteral("nightly"))) << "letter case makes another one";
    EXPECT_EQ(told(), std::string(Opened) + Stored);
    EXPECT_TRUE(proposed.endsWith(QStringLiteral(" - ")));
    EXPECT_EQ(listed.join(u'|'), u"Nightly");
}

TEST_F(SaveScreen, ChecksTheName) {
    const char* const focused = "\nfocus txtProcessName";
    const struct {
        const char* entered;
        const char* told;
    } rows[] = {
        {"", "information: Please enter a name for comparison process."},
        {" \t ", "information: Please enter a name for comparison process."},
        {"a[b",
         "information: Invalid character(s) in comparison process' name.\\n\\nSquare brackets "
         "- [ ] - are not allowed."},
        {"b]",
         "information: Invalid character(s) in comparison process' name.\\n\\nSquare brackets "
         "- [ ] - are not allowed."},
    };
    for (const auto& row : rows) {
        EXPECT_FALSE(saveAs(QString::fromLatin1(row.entered)));
        EXPECT_EQ(told(), std::string(Opened) + row.told + focused);
        EXPECT_TRUE(stayedOpen);
    }
    EXPECT_TRUE(ini().isEmpty());

    EXPECT_TRUE(saveAs(QStringLiteral("A")));
    const QByteArray before = ini();
    const std::string question =
        "yes/no [Overwrite Comparison Process]: Comparison process with name A already "
        "exists.\\n\\nDo you want to overwrite it? -> ";
    EXPECT_FALSE(saveAs(QStringLiteral("A")));
    EXPECT_EQ(told(), Opened + question + "no" + focused);
    EXPECT_EQ(ini(), before);
    shell.yesNoAnswers = {true};
    EXPECT_TRUE(saveAs(QStringLiteral("A")));
    EXPECT_EQ(told(), Opened + question + "yes\n" + Stored);
    EXPECT_EQ(GetSavedProcessId(QStringLiteral("A")), 2);
}

TEST_F(SaveScreen, TellsThatNothingWasStored) {
    QDir().mkpath(listPath("zov_comps.ini.lock/x"));
    EXPECT_FALSE(saveAs(QStringLiteral("A")));
    const std::string lines = told();
    EXPECT_NE(lines.find("Failed to save comparison's process name."), std::string::npos) << lines;
    EXPECT_NE(lines.find("\ninformation: Comparison process not saved."), std::string::npos);
    EXPECT_FALSE(stayedOpen);
    EXPECT_TRUE(name.isEmpty());
}

class RunScreen : public SavedProcesses {
 protected:
    void SetUp() override {
        for (const char* name : {"B", "A", "C"})
            save(process(QLatin1String(name), {QStringLiteral("T")}, {QStringLiteral("T")}));
    }
    QString choose(const std::function<void(frmSaveCompRun&)>& user) {
        shell.onScreen = [&](Screen& screen) { user(dynamic_cast<frmSaveCompRun&>(screen)); };
        shell.takeLines();
        const QString chosen = frmSaveCompRun().ShowUp();
        shell.lines.removeFirst();
        return chosen;
    }
};

TEST_F(RunScreen, GivesTheFirstSelectedName) {
    EXPECT_EQ(choose([](frmSaveCompRun& screen) {
                  EXPECT_EQ(screen.lstComps.size(), 3u);
                  EXPECT_EQ(screen.lstComps[1].first, u"A") << "in the file's order";
                  EXPECT_EQ(screen.lstComps[1].second, 2);
                  screen.cmdOK();
                  EXPECT_FALSE(screen.isClosed());
                  screen.selected = {QStringLiteral("C"), QStringLiteral("A")};
                  screen.cmdOK();
                  EXPECT_TRUE(screen.isClosed());
              }),
              u"C");
    EXPECT_EQ(told(), "information: Please select the comparison process to be run");
    EXPECT_EQ(choose([](frmSaveCompRun& screen) {
                  screen.selected = {QStringLiteral("C")};
                  screen.cmdCancel();
              }),
              QString());
}

TEST_F(RunScreen, DeletesWithOneQuestion) {
    shell.yesNoAnswers = {false, true, true};
    choose([](frmSaveCompRun& screen) {
        screen.cmdDelete();
        screen.selected = {QStringLiteral("A")};
        screen.cmdDelete();
        EXPECT_EQ(screen.lstComps.size(), 3u);
        screen.cmdDelete();
        EXPECT_EQ(screen.lstComps.size(), 2u);
        EXPECT_TRUE(screen.selected.isEmpty());
        screen.selected = {QStringLiteral("C"), QStringLiteral("B")};
        screen.cmdDelete();
        EXPECT_TRUE(screen.lstComps.empty());
    });
    EXPECT_EQ(
        told(),
        "information: Please select the comparison process to be deleted\n"
        "yes/no [Confirm Process Deletion]: Are you sure you want to remove comparison process "
        "'A' ? -> no\n"
        "yes/no [Confirm Process Deletion]: Are you sure you want to remove comparison process "
        "'A' ? -> yes\n"
        "yes/no [Confirm Process Deletion]: Are you sure you want to remove these 2 comparison "
        "processes?\\n\\n'C'\\n'B' -> yes");
    EXPECT_EQ(CountSavedProcesses(), 0);
    EXPECT_EQ(
        QDir(home.path(QStringLiteral("documents"))).entryList({QStringLiteral("zov_0*")}).size(),
        0);
    EXPECT_EQ(shell.waitDepth, 0);
}

TEST_F(SavedProcesses, ShowTheirPropertiesLineByLine) {
    const QString start =
        QStringLiteral("Comparison Process Name: P\\nComparison Process Id: 1\\n\\n");
    const QString print = QStringLiteral("\\n\\nAutomatically print final report: No");
    const QString end =
        QStringLiteral("\\n\\nAutomatically close the program after replaying the comparison: No");
    SavedProcess base;
    base.Name = QStringLiteral("P");
    base.ServerName1 = QStringLiteral("A");
    base.ServerName2 = QStringLiteral("B");
    base.DbName1 = QStringLiteral("S");
    base.DbName2 = QStringLiteral("T");
    using Edit = std::function<void(SavedProcess&)>;
    const struct {
        const char* kind;
        Edit edit;
        QString shown;
    } rows[] = {
        {"all objects",
         [](SavedProcess& p) {
             p.CompType = 1;
             p.CompSubType = 10;
             p.EncObjTypes = QStringLiteral("1,1,0,0,0,0,0,0");
             p.Print = p.AutoClose = true;
             p.ExportFilePath = QStringLiteral("/r.txt");
         },
         start + "Comparison Type: Meta-Data Comparison\\nComparison Sub Type: All\\nObject Types: "
                 "Tables, Procedures\\n\\nSource: A.S\\nTarget: B.T\\n\\nExport File Path: "
                 "/r.txt\\n\\nAutomatically print final report: Yes\\n\\nAutomatically close the "
                 "program after replaying the comparison: Yes"},
        {"bulk",
         [](SavedProcess& p) {
             p.CompType = 1;
             p.CompSubType = 20;
             p.CompSubSubType = 20;
             p.EncObjTypes = QStringLiteral("0,0,0,1,0,0,0,0");
         },
         start +
             "Comparison Type: Meta-Data Comparison\\nComparison Sub Type: Bulk\\nComparison Sub "
             "Sub Type: Details\\nObject Types: Views\\n\\nSource: A.S\\nTarget: B.T" +
             print + end},
        {"selective",
         [](SavedProcess& p) {
             p.CompType = 1;
             p.CompSubType = 30;
             p.CompSubSubType = 30;
             p.EncObjTypes = QStringLiteral("0,0,0,0,0,0,0,0");
             for (int n = 0; n < 1234; ++n) p.SourceNames += QString::number(n);
         },
         start +
             "Comparison Type: Meta-Data Comparison\\nComparison Sub Type: Selective\\nComparison "
             "Sub Sub Type: Simple\\nObject Types: N/A\\n\\nNumber of objects compared: "
             "1,234\\n\\nSource: A.S\\nTarget: B.T" +
             print + end},
        {"individual",
         [](SavedProcess& p) {
             p.CompType = 1;
             p.CompSubType = 35;
             p.EncObjTypes = QStringLiteral("0,1,0,0,0,0,0,0");
             p.TableName1 = p.TableName2 = QStringLiteral("p1");
         },
         start +
             "Comparison Type: Meta-Data Comparison\\nComparison Sub Type: Individual\\nObject "
             "Types: Procedures\\n\\nSource: A.S.p1\\nTarget: B.T.p1" +
             print + end},
        {"one table",
         [](SavedProcess& p) {
             p.CompType = 0;
             p.CompSubType = 40;
             p.CompMethod = 1;
             p.TableName1 = p.TableName2 = QStringLiteral("t");
             p.ObjId1 = 5;
             p.ObjId2 = 6;
             p.ExportFilePath = QStringLiteral("/r.csv");
             p.ExportType = 2;
             p.CSVWrapInQuot = true;
         },
         start +
             "Comparison Type: Data Comparison\\nComparison Sub Type: Single Table\\nComparison "
             "Method: Primary Key\\n\\nSource: A.S.t\\nTarget: B.T.t\\n\\nExport File Path: "
             "/r.csv\\nExport Type: Excel - Comma Separated Values (CSV) file\\nWrap up data in "
             "quotation marks: Yes" +
             print + "\\n\\nSource Object Id: 5\\nTarget Object Id: 6" + end},
        {"one table, HTML, one id",
         [](SavedProcess& p) {
             p.CompType = 0;
             p.CompSubType = 40;
             p.CompMethod = 7;
             p.ObjId2 = 6;
             p.ExportType = 1;
             p.CSVWrapInQuot = true;
         },
         start +
             "Comparison Type: Data Comparison\\nComparison Sub Type: Single Table\\nComparison "
             "Method: N/A\\n\\nSource: A.S\\nTarget: B.T\\nExport Type: Hyper Text Markup Language "
             "(HTML) file" +
             print + "\\n\\nTarget Object Id: 6" + end},
        {"selected tables",
         [](SavedProcess& p) {
             p.CompType = 0;
             p.CompSubType = 50;
             p.EncObjTypes = QStringLiteral("1,0,0,0,0,0,0,0");
             p.SourceNames = p.TargetNames = QStringList{QStringLiteral("t")};
         },
         start +
             "Comparison Type: Data Comparison\\nComparison Sub Type: Selective\\nObject Types: "
             "Tables\\n\\nSource: A.S\\nTarget: B.T" +
             print + end},
        {"all tables",
         [](SavedProcess& p) {
             p.CompType = 0;
             p.CompSubType = 60;
         },
         start +
             "Comparison Type: Data Comparison\\nComparison Sub Type: All\\n\\nSource: "
             "A.S\\nTarget: B.T" +
             print + end},
        {"codes that nobody knows",
         [](SavedProcess& p) {
             p.CompType = 4;
             p.CompSubType = 4;
             p.CompSubSubType = 4;
         },
         start +
             "Comparison Type: N/A\\nComparison Sub Type: N/A\\nComparison Sub Sub Type: "
             "N/A\\n\\nSource: A.S\\nTarget: B.T" +
             print + end},
    };
    for (const auto& row : rows) {
        SavedProcess p = base;
        row.edit(p);
        save(p);
        ShowProcessProperties(p.Name);
        EXPECT_EQ(told(), QStringLiteral("information [Properties]: ").toStdString() +
                              row.shown.toStdString())
            << row.kind;
        DeleteSavedProcesses({p.Name});
    }
    ShowProcessProperties({});
    EXPECT_EQ(told(), "");
}

}  // namespace
}  // namespace zov
