// The window over namesakes and over objects whose text can't be read: a pane shows what is
// selected or nothing, and no verdict is given on what wasn't read.
#include "main_window_fixture.h"

namespace zov {
namespace {

const QString Common = QStringLiteral(
    "CREATE SCHEMA hr\nGO\n"
    "CREATE VIEW dbo.V AS SELECT 1 AS a\nGO\n"
    "CREATE PROCEDURE dbo.Open1 AS SELECT 1\nGO\n"
    "CREATE PROCEDURE dbo.Secret WITH ENCRYPTION AS SELECT %1\nGO\n"
    "CREATE TABLE dbo.T (a int)\nGO\n");
const QString Source =
    Common.arg(1) +
    QStringLiteral(
        "CREATE VIEW hr.V AS SELECT 2 AS a\nGO\n"
        "CREATE TABLE hr.T (a int IDENTITY(1,1) NOT NULL CONSTRAINT pk_T PRIMARY KEY)\nGO\n"
        "CREATE TABLE dbo.[p.q] (a int)\nGO\n");
const QString Target = Common.arg(2) + QStringLiteral(
                                           "CREATE VIEW hr.V AS SELECT 3 AS a\nGO\n"
                                           "CREATE TABLE hr.T (a int IDENTITY(7,1) NOT NULL)\nGO\n"
                                           "CREATE TABLE dbo.[p.q] (a int)\nGO\n");

class UnreadableTexts : public test::MainWindow {
 protected:
    explicit UnreadableTexts(test::Road road = test::Road::Embedded) : MainWindow(road) {}
    void SetUp() override {
        MainWindow::SetUp();
        loadDatabases(Source, Target);
        connect();
        keepReports();
    }
    /// The verdict's sentence and what follows it.
    std::string compare(const char* source, const char* target) {
        select(0, QString::fromLatin1(source));
        select(1, QString::fromLatin1(target));
        shell.takeLines();
        reports.clear();
        window.ExecuteAction(command::CompareSelected);
        EXPECT_EQ(reports.size(), 1);
        return shown(reports.value(0)
                         .section(QStringLiteral("\r\n\r\n"), 1)
                         .replace(QStringLiteral("\r\n"), QStringLiteral("|")));
    }
};
class UnreadableOverTheWire : public UnreadableTexts {
 protected:
    UnreadableOverTheWire() : UnreadableTexts(test::Road::Odbc) {}
};

const std::string SecretTrouble =
    "The text of Secret can't be read: it is encrypted, hidden from this login, or the object is "
    "gone.";

TEST_F(UnreadableTexts, ANamesakeShowsItsOwnText) {
    globals().gblnIgnoreColSeq = false;
    select(0, QStringLiteral("hr.T"));
    EXPECT_EQ(text(0).trimmed().toStdString(),
              "[a] [int] IDENTITY(1,1) NOT NULL\r\n\r\n"
              "CONSTRAINT [pk_T] PRIMARY KEY CLUSTERED ([a])");
    select(1, QStringLiteral("hr.T"));
    EXPECT_EQ(text(1).toStdString(), "[a] [int] IDENTITY(7,1) NOT NULL");
    select(1, QStringLiteral("p.q"));
    EXPECT_EQ(text(1).toStdString(), "[a] [int] NULL");

    chooseType(ObjectType::View);
    select(0, QStringLiteral("hr.V"));
    EXPECT_EQ(text(0).toStdString(), "CREATE VIEW hr.V AS SELECT 2 AS a");
    EXPECT_EQ(compare("hr.V", "hr.V"), "The selected views are different.");
    EXPECT_EQ(compare("dbo.V", "dbo.V"), "The selected views are identical.");
    EXPECT_EQ(told(), "screen frmReport");
}

TEST_F(UnreadableTexts, NoVerdictIsGivenOnThem) {
    chooseType(ObjectType::Procedure);
    select(0, QStringLiteral("Open1"));
    EXPECT_EQ(text(0).toStdString(), "CREATE PROCEDURE dbo.Open1 AS SELECT 1");
    shell.takeLines();
    select(0, QStringLiteral("Secret"));
    EXPECT_EQ(text(0), QString());
    EXPECT_EQ(told(), "exclamation [Cannot Show Text]: SERVER.Src: " + SecretTrouble);

    const std::string refused = "The selected procedures can't be compared.||";
    EXPECT_EQ(compare("Secret", "Secret"), refused + "SERVER.Src: " + SecretTrouble);
    EXPECT_EQ(compare("Open1", "Secret"), refused + "SERVER.Tgt: " + SecretTrouble);
    EXPECT_EQ(compare("Secret", "Open1"), refused + "SERVER.Src: " + SecretTrouble);
    globals().gblnIgnoreColSeq = false;
    EXPECT_EQ(compare("Open1", "Open1"), "The selected procedures are identical.");
}

// A failed query for columns is silent; the empty panes that it leaves are no equal tables.
TEST_F(UnreadableOverTheWire, TablesWhoseColumnsCannotBeReadArentCompared) {
    select(0, QStringLiteral("dbo.T"));
    TdsFaults faults;
    faults.onlyStatementsWith = QStringLiteral("ident_seed");
    faults.errorAfterRows = 0;
    faults.errorNumber = 229;
    faults.errorText = QStringLiteral("The SELECT permission was denied.");
    served.endpoint().setFaults(faults);
    shell.takeLines();
    const std::string verdict = compare("p.q", "p.q");
    EXPECT_EQ(text(0) + text(1), QString());
    EXPECT_EQ(verdict.substr(0, 42), "The selected tables can't be compared.||SE") << verdict;
    EXPECT_NE(verdict.find("permission was denied"), std::string::npos) << verdict;
}

TEST_F(UnreadableTexts, AreNoStatementThatDropsTheirObject) {
    chooseType(ObjectType::Procedure);
    select(0, QStringLiteral("Secret"));
    select(1, QStringLiteral("Open1"));
    told();
    reports.clear();
    window.ExecuteAction(command::CreateSource);
    EXPECT_EQ(told(), "information: Couldn't generate SQL CREATE statement.\\n\\nSERVER.Src: " +
                          SecretTrouble);
    window.ExecuteAction(command::CreateTarget);
    ASSERT_EQ(reports.size(), 1);
    EXPECT_TRUE(reports[0].contains(QStringLiteral("CREATE PROCEDURE dbo.Open1")));
}

}  // namespace
}  // namespace zov
