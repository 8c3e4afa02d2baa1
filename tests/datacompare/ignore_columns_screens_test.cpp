// Marking columns as ignored, and the list of all marks.
#include "datacompare/frmIgnoreColumns.h"
#include "scripting/modNew.h"
#include "support/recording_shell.h"
#include "support/served_database.h"
#include "support/temp_home.h"

#include <QFile>

namespace zov {
namespace {

using test::Road;

class IgnoreColumns : public ::testing::TestWithParam<Road> {
 protected:
    void SetUp() override {
        served.load(QStringLiteral("Src"),
                    QStringLiteral("CREATE TABLE dbo.T (Id int, Born date, Changed datetime)\nGO\n"
                                   "CREATE TABLE dbo.[O'Brien] (A int, B int)\nGO\n"));
        server = served.server();
        shell.takeLines();
    }
    bool add(qint32 mode, const QString& table,
             const std::function<void(frmIgnoreColumnsAdd&)>& user, qint32 id = 0) {
        shell.onScreen = [&](Screen& screen) { user(dynamic_cast<frmIgnoreColumnsAdd&>(screen)); };
        return frmIgnoreColumnsAdd().ShowUp(mode, server, QStringLiteral("Src"), table, id, count);
    }
    static QString rows(const frmIgnoreColumnsAdd& form) {
        QStringList rows;
        for (const auto& row : form.pvlSqlObj)
            rows += row.column + (row.checked ? QString() : QStringLiteral("-"));
        return rows.join(u' ');
    }
    std::string told() { return shell.takeLines().join(u'\n').toStdString(); }

    test::TempHome home;
    test::RecordingShell shell;
    test::ServedDatabases served{GetParam()};
    ServerInfo server;
    qint32 count = -1;
};
INSTANTIATE_TEST_SUITE_P(Roads, IgnoreColumns, ::testing::Values(Road::Embedded, Road::Odbc),
                         test::roadName);

TEST_P(IgnoreColumns, AreMarkedPerPurpose) {
    const struct {
        qint32 mode;
        const char* caption;
        const char* info;
        const char* file;
    } table[] = {
        {IgnoreMode::DataComparison, "Ignore Columns - Data Comparison",
         "Deselect columns which you want to be ignored during data comparison.",
         "zov_ignored_cols_data.ini"},
        {IgnoreMode::StructureComparison, "Ignore Columns - Structure Comparison",
         "Deselect columns which you want to be ignored during structure comparison.",
         "zov_ignored_cols_struct.ini"},
        {IgnoreMode::DataAnalysis, "Ignore Columns - Data Analysis",
         "Deselect columns which you want to be ignored during data analysis.",
         "zov_ignored_cols_dataanalysis.ini"},
    };
    for (const auto& row : table) {
        EXPECT_TRUE(add(row.mode, QStringLiteral("T"), [&](frmIgnoreColumnsAdd& form) {
            EXPECT_EQ(form.caption().toStdString(), row.caption);
            EXPECT_EQ(form.lblInfo.toStdString(), row.info);
            EXPECT_EQ(form.lblTableName,
                      QStringLiteral("Table: T (Database: Src, Server: ") + server.Name + u')');
            EXPECT_EQ(rows(form).toStdString(), "Id Born Changed");
            form.pvlSqlObj[1].checked = false;
            form.cmdOK();
        }));
        EXPECT_EQ(count, 1);
        QFile ini(globals().gstrUserDataFolder + QString::fromLatin1(row.file));
        ASSERT_TRUE(ini.open(QIODevice::ReadOnly)) << row.file;
        EXPECT_TRUE(ini.readAll().contains("0=Born")) << row.file;
    }
    EXPECT_EQ(told(),
              "screen frmIgnoreColumnsAdd\nscreen frmIgnoreColumnsAdd\nscreen "
              "frmIgnoreColumnsAdd");
    for (const qint32 mode : {0, 4, -1}) {
        EXPECT_FALSE(add(mode, QStringLiteral("T"), [](auto&) {}));
        EXPECT_EQ(told(), "information: menmMode not set");
    }
}

TEST_P(IgnoreColumns, AtLeastOneIsProcessed) {
    const qint32 mode = IgnoreMode::StructureComparison;
    add(mode, QStringLiteral("T"), [&](frmIgnoreColumnsAdd& form) {
        form.selectAll(false);
        shell.takeLines();
        form.cmdOK();
        EXPECT_EQ(told(), "information: Please select at least one column or click Cancel button.");
        EXPECT_FALSE(form.isClosed());
        form.pvlSqlObj[0].checked = true;
        form.cmdOK();
    });
    EXPECT_EQ(count, 2);
    // What was marked shows again, and goes away with a full list.
    EXPECT_FALSE(add(mode, QStringLiteral("T"), [&](frmIgnoreColumnsAdd& form) {
        EXPECT_EQ(rows(form).toStdString(), "Id Born- Changed-");
        form.selectAll(true);
        form.cmdCancel();
    }));
    QStringList columns;
    const QString key = GetObjectKeyName(server.Name, QStringLiteral("Src"), QStringLiteral("T"));
    EXPECT_EQ(GetIgnoredColumnsList(mode, key, columns), 2);
    EXPECT_EQ(GetTableStructureWithIndexes(server, QStringLiteral("T"), QStringLiteral("Src"), true,
                                           nullptr, 0)
                  .toStdString(),
              "[Id] [int] NULL");
    EXPECT_TRUE(add(mode, QStringLiteral("T"), [&](frmIgnoreColumnsAdd& form) {
        form.selectAll(true);
        form.cmdOK();
    }));
    EXPECT_EQ(count, 0);
    EXPECT_EQ(GetIgnoredColumnsList(mode, key, columns), 0);
}

TEST_P(IgnoreColumns, OfAnOddNameAreFoundAndOfAMissingTableTold) {
    EXPECT_TRUE(add(2, QStringLiteral("O'Brien"), [&](frmIgnoreColumnsAdd& form) {
        EXPECT_EQ(rows(form).toStdString(), "A B");
        form.pvlSqlObj[0].checked = false;
        form.cmdOK();
    }));
    shell.takeLines();
    EXPECT_FALSE(add(2, QStringLiteral("Dropped"), [](auto&) {}));
    EXPECT_EQ(told(),
              "information [Ignore Columns - Structure Comparison]: The columns of table 'Dropped' "
              "can't be read.\\n\\nPlease refresh the list of tables: it may have been dropped.");
}

TEST(IgnoredColumnsList, ShowsAllMarksOfOnePurpose) {
    test::TempHome home;
    test::RecordingShell shell;
    const QString clipboard = QStringLiteral("S, Db, T, B\r\nS, Db, T, A\r\nS, Other, T, C\r\n");
    SaveIgnoredColumnsList(1, QStringLiteral("S.Db.T"), {QStringLiteral("B"), QStringLiteral("A")});
    SaveIgnoredColumnsList(1, QStringLiteral("S.Other.T"), {QStringLiteral("C")});
    shell.savePaths = {home.path(QStringLiteral("list.txt"))};
    QString opened;
    shell.onScreen = [&](Screen& screen) {
        auto& list = dynamic_cast<frmIgnoreColumnsView&>(screen);
        EXPECT_EQ(list.caption(), u"Ignore Columns - Data Comparison");
        EXPECT_EQ(list.lblInfo, u"The columns listed below are ignored during data comparisons.");
        EXPECT_EQ(list.lblCount, u"Number of columns listed: 3");
        ASSERT_EQ(list.vsfGrid.size(), 3u);
        EXPECT_EQ(list.vsfGrid[2].Db.toStdString() + list.vsfGrid[2].Column.toStdString(),
                  "OtherC");
        list.cmdCopyClip();
        list.cmdCopyToFile();
        shell.takeLines();
        list.cmdSendToNotepad();
        opened = shell.takeLines().value(0);
        list.cmdExit();
        EXPECT_TRUE(list.isClosed());
    };
    frmIgnoreColumnsView().ShowUp(1);
    EXPECT_EQ(shell.clipboard, clipboard);
    EXPECT_EQ(QString::fromUtf8(home.read(QStringLiteral("list.txt"))), clipboard);
    ASSERT_TRUE(opened.startsWith(QStringLiteral("open /"))) << opened.toStdString();
    QFile file(opened.mid(5));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromUtf8(file.readAll()), clipboard);
    file.remove();

    shell.onScreen = [&](Screen& screen) {
        auto& list = dynamic_cast<frmIgnoreColumnsView&>(screen);
        EXPECT_EQ(list.caption(), u"Ignore Columns - Structure Comparison");
        EXPECT_EQ(list.lblInfo,
                  u"The columns listed below are ignored during structure comparisons.");
        EXPECT_EQ(list.lblCount, u"Number of columns listed: 0");
        shell.takeLines();
        list.cmdCopyClip();
        list.cmdCopyToFile();
    };
    frmIgnoreColumnsView().ShowUp(2);
    EXPECT_EQ(shell.takeLines().join(u'\n').toStdString(),
              "information: There is nothing to copy to the Clipboard.\n"
              "information: There is nothing to copy to file.");
}

}  // namespace
}  // namespace zov
