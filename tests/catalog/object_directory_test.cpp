// What lists carry beside what they show: schema and bare name of every object, and which names
// stand for several objects, read from real catalogues over both roads.
#include "catalog/object_directory.h"

#include "catalog/modOwner.h"
#include "core/run_account.h"
#include "shell/memory_controls.h"
#include "support/recording_shell.h"
#include "support/served_database.h"
#include "support/temp_home.h"

namespace zov {
namespace {

using test::Road;
using test::ServedDatabases;

const QString script = QStringLiteral(R"(
CREATE SCHEMA hr
GO
CREATE SCHEMA [h.r]
GO
CREATE TABLE dbo.T (a int)
CREATE TABLE hr.T (a int)
CREATE TABLE dbo.[hr.T] (a int)
CREATE TABLE [h.r].[p.q] (a int)
CREATE TABLE dbo.[a]]b] (a int)
CREATE TABLE dbo.Once (a int)
GO
CREATE VIEW hr.Once AS SELECT 1 AS a
GO
CREATE VIEW dbo.Alone AS SELECT 1 AS a
GO
CREATE PROCEDURE dbo.Große AS SELECT 1
GO
CREATE PROCEDURE hr.GROSSE AS SELECT 1
)");

class Directory : public ::testing::TestWithParam<Road> {
 protected:
    void SetUp() override {
        served.load(db, script);
        if (!HasFailure()) server = served.server();
    }
    void TearDown() override { EXPECT_EQ(shell.takeLines().join(u'\n').toStdString(), ""); }

    /// "shown = schema / name", namesakes with a star.
    std::string rows(ObjectType type) {
        MemoryObjectList list;
        MemoryTextPane pane;
        LoadObjects(server, list, pane, type, db, false, {}, SourcePanel, nullptr);
        QStringList lines;
        for (int row = 0; row < list.rowCount(); ++row) {
            const ObjectRef object = objectOf(list.row(row), type);
            lines += object.shownName + QStringLiteral(" = ") + object.schema +
                     QStringLiteral(" / ") + object.name +
                     (object.hasNamesakes ? QStringLiteral(" *") : QString());
        }
        return lines.join(u'\n').toStdString();
    }

    const QString db = QStringLiteral("Named");
    test::TempHome home;
    test::RecordingShell shell;
    ServedDatabases served{GetParam()};
    ServerInfo server;
};
INSTANTIATE_TEST_SUITE_P(Roads, Directory, ::testing::Values(Road::Embedded, Road::Odbc),
                         test::roadName);

TEST_P(Directory, ListsKnowSchemaAndNameApart) {
    EXPECT_EQ(rows(ObjectType::Table),
              "a]b = dbo / a]b\n"
              "hr.T = dbo / hr.T\n"
              "Once = dbo / Once *\n"
              "p.q = h.r / p.q\n"
              "dbo.T = dbo / T *\n"
              "hr.T = hr / T *");
    // A name that another kind of object has is shared, too.
    EXPECT_EQ(rows(ObjectType::View), "Alone = dbo / Alone\nOnce = hr / Once *");
    // Some collation takes these for one name.
    const std::string procedures = rows(ObjectType::Procedure);
    EXPECT_NE(procedures.find("dbo / Große *"), std::string::npos) << procedures;
    EXPECT_NE(procedures.find("hr / GROSSE *"), std::string::npos) << procedures;
}

TEST_P(Directory, ANameGoesIntoAStatementWithItsSchemaWhateverItHolds) {
    MemoryObjectList list;
    MemoryTextPane pane;
    LoadObjects(server, list, pane, ObjectType::Table, db, false, {}, SourcePanel, nullptr);
    QStringList names;
    for (int row = 0; row < list.rowCount(); ++row)
        names += GetExtendedObjectName(server, db, objectOf(list.row(row), ObjectType::Table));
    EXPECT_EQ(names.join(u' ').toStdString(),
              "[dbo].[a]]b] [dbo].[hr.T] [dbo].[Once] [h.r].[p.q] [dbo].[T] [hr].[T]");
}

TEST_P(Directory, OneThatCantBeReadTrustsNoName) {
    const ScopedValue<bool> silent(globals().gblnSuppressConnErrors, true);
    RunAccount account;
    const KeepAccount keep(account);
    const ObjectDirectory nothing = ObjectDirectory::read(server, QStringLiteral("NoSuchDatabase"));
    EXPECT_FALSE(nothing.isRead());
    EXPECT_TRUE(nothing.isShared(QStringLiteral("Alone")));
    EXPECT_FALSE(account.isWhole());
    const ObjectDirectory read = ObjectDirectory::read(server, db);
    EXPECT_TRUE(read.isRead());
    EXPECT_FALSE(read.isShared(QStringLiteral("Alone")));
    EXPECT_TRUE(read.isShared(QStringLiteral("t  ")));
}

TEST(LooseNames, LeaveOutWhatSomeCollationDoesntSee) {
    const struct {
        const char16_t* a;
        const char16_t* b;
        bool same;
    } rows[] = {
        {u"Orders", u"ORDERS", true},   {u"Orders", u"Orders  ", true},
        {u"Orders", u" Orders", false}, {u"café", u"CAFE", true},
        {u"ﬁn", u"fin", true},          {u"Ａ", u"a", true},
        {u"x\U0001F600", u"x", true},   {u"a_b", u"ab", false},
        {u"p.q", u"pq", false},         {u"日本", u"日", false},
        {u"straße", u"STRASSE", true},
    };
    for (const auto& row : rows)
        EXPECT_EQ(looseName(QString::fromUtf16(row.a)) == looseName(QString::fromUtf16(row.b)),
                  row.same)
            << QString::fromUtf16(row.a).toStdString();
}

}  // namespace
}  // namespace zov
