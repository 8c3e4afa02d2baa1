// Loads are all or nothing; databases are files with any name; the published sample scripts load
// whole.
#include "data_local/scripted_server.h"

#include "data/local/server_store.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

namespace zov::test {
namespace {

QString databases(ScriptedServer& server) {
    return server
        .rows(QStringLiteral("select name from master..sysdatabases where dbid > 4 order by name"))
        .join(u',');
}

TEST(Loading, AFailedLoadLeavesEverythingAsItWas) {
    ScriptedServer server;
    ASSERT_EQ(
        server.load(QStringLiteral("create table t (a int)\ninsert t values (1)\ngo\ncreate "
                                   "database other\ngo\nuse other\ngo\ncreate table o (a int)")),
        QString());
    server.connect(QStringLiteral("shop"));
    EXPECT_EQ(server
                  .load(QStringLiteral(
                      "insert t values (2)\ncreate table u (b int)\nalter table t add c int\ngo\n"
                      "create database third\ngo\nuse third\ncreate table x (a int)\ngo\nuse "
                      "master\ndrop database other\ngo\nuse shop\ngo\ndrop table nothing"))
                  .section(u':', 0, 0),
              QStringLiteral("15"));
    server.connect(QStringLiteral("shop"));
    EXPECT_EQ(databases(server), QStringLiteral("other,shop"));
    EXPECT_EQ(server.one(QStringLiteral("select * from t")), QStringLiteral("1"));
    EXPECT_EQ(server.one(QStringLiteral("select name from sysobjects")), QStringLiteral("t"));
    EXPECT_EQ(server.one(QStringLiteral("select count(*) from other..o")), QStringLiteral("0"));
}

TEST(Loading, AFailedLoadTakesBackTheDatabaseThatWasMadeForIt) {
    ScriptedServer server;
    ASSERT_EQ(server.run(QStringLiteral("create table t (a int)")), QString());
    server.connect(QStringLiteral("fresh"));
    EXPECT_NE(server.load(QStringLiteral("create table t (a int)\ngo\nnonsense")), QString());
    server.connect(QStringLiteral("shop"));
    EXPECT_EQ(databases(server), QStringLiteral("shop"));
    EXPECT_EQ(
        QDir(server.folder() + QStringLiteral("/server")).entryList({QStringLiteral("fresh*")}),
        QStringList());
}

TEST(Loading, AFailedFirstLoadLeavesNoServerFolder) {
    QTemporaryDir folder;
    ConnectionSpec spec;
    spec.dataSource = QStringLiteral("local:") + folder.path() + QStringLiteral("/new");
    spec.database = QStringLiteral("db");
    {
        const auto connection = local::localProvider().open(spec, true);
        EXPECT_TRUE(connection->beginLoad());
        CommandSpec command;
        command.text = QStringLiteral("create table t (a int)");
        connection->execute(command);
        connection->rollbackLoad();
    }
    EXPECT_FALSE(QDir(folder.path() + QStringLiteral("/new")).exists());
}

TEST(Loading, ANewServerOnWhichNothingWasMadeGoesAgain) {
    QTemporaryDir folder;
    ConnectionSpec spec;
    spec.dataSource = QStringLiteral("local:") + folder.path() + QStringLiteral("/new");
    spec.database = QStringLiteral("master");
    {
        const auto connection = local::localProvider().open(spec, true);
        CommandSpec command;
        command.text = QStringLiteral("select count(*) from sysobjects");
        connection->execute(command);
    }
    EXPECT_FALSE(QDir(folder.path() + QStringLiteral("/new")).exists());
}

TEST(Loading, OtherSessionsSeeALoadOnlyWhenItIsDone) {
    ScriptedServer server;
    ASSERT_EQ(server.run(QStringLiteral("create table t (a int)\ninsert t values (1)")), QString());
    const auto other = local::localProvider().open(server.spec(QStringLiteral("shop")), false);
    const auto count = [&] {
        CommandSpec command;
        command.text = QStringLiteral("select count(*), max(a) from t");
        const auto results = other->execute(command);
        RowStore rows(results->columns());
        results->fetch(rows, 10);
        return cellText(rows.cell(0, 0));
    };
    EXPECT_EQ(count(), QStringLiteral("1"));
    server.connection().beginLoad();
    ASSERT_EQ(server.run(QStringLiteral(
                  "insert t values (2)\nalter table t add b int default 3\ncreate database later")),
              QString());
    EXPECT_EQ(count(), QStringLiteral("1"));  // a reader is not kept waiting
    server.connection().commitLoad();
    EXPECT_EQ(count(), QStringLiteral("2"));
    EXPECT_EQ(databases(server), QStringLiteral("later,shop"));
}

TEST(Loading, ADatabaseMadeAnewInALoadTakesTheOldOnesPlace) {
    ScriptedServer server;
    ASSERT_EQ(server.run(QStringLiteral("create table old (a int)")), QString());
    ASSERT_EQ(server.load(QStringLiteral("use master\ngo\ndrop database shop\ncreate database "
                                         "shop\ngo\nuse shop\ngo\ncreate table fresh (a int)")),
              QString());
    EXPECT_EQ(server.one(QStringLiteral("select name from shop..sysobjects where xtype = 'U'")),
              QStringLiteral("fresh"));
}

TEST(Loading, ADatabaseThatAnotherLoadMadeMeanwhileStays) {
    ScriptedServer server;
    const auto load = [&](const char* table) {
        auto connection = local::localProvider().open(server.spec(QStringLiteral("both")), true);
        connection->beginLoad();
        CommandSpec command;
        command.text = QStringLiteral("create table %1 (a int)").arg(QLatin1String(table));
        connection->execute(command);
        return connection;
    };
    const auto first = load("first"), second = load("second");
    EXPECT_EQ(databases(server), QStringLiteral("shop"));
    first->commitLoad();
    try {
        second->commitLoad();
        FAIL() << "two loads have made one database";
    } catch (const DbError& error) {
        EXPECT_EQ(error.native, 1801) << error.what();
    }
    second->rollbackLoad();
    server.connect(QStringLiteral("both"), false);
    EXPECT_EQ(server.one(QStringLiteral("select name from sysobjects where xtype = 'U'")),
              QStringLiteral("first"));
    EXPECT_EQ(QDir(server.folder() + QStringLiteral("/server"))
                  .entryList({QStringLiteral("*.new-*"), QStringLiteral("server.journal")}),
              QStringList());
}

TEST(Loading, TwoLoadsOfOneScriptMakeTheSameCatalogue) {
    const QString script = QStringLiteral(
        "create table customers (id int identity primary key, code char(5) unique, rating int "
        "default 3 check (rating between 1 and 5), parent int references customers)\n"
        "create table orders (id int primary key, customer int references customers, check (id > "
        "0), check (id < 99))");
    const QString query = QStringLiteral(
        "select o.name, o.id, m.text from sysobjects o left join syscomments m on m.id = o.id "
        "order by o.id");
    ScriptedServer first, second;
    ASSERT_EQ(first.load(script), QString());
    ASSERT_EQ(second.load(script), QString());
    const QStringList rows = first.rows(query);
    EXPECT_EQ(rows.size(), 11);
    EXPECT_EQ(rows, second.rows(query));
}

TEST(Files, DatabasesMayHaveAnyName) {
    ScriptedServer server;
    for (const char* name : {"plain", "two words", "dots.and/slashes\\", "quote'\"]", "trailing ",
                             "con", "Überlänge", "100%", "数据库"}) {
        const QString text = QString::fromUtf8(name);
        SCOPED_TRACE(name);
        server.connect(text);
        EXPECT_EQ(server.run(QStringLiteral("create table t (a int)")), QString());
        server.connect(text.toUpper(), false);  // found in any case
        EXPECT_EQ(server.one(QStringLiteral("select db_name(), object_name(object_id('t'))")),
                  text + QStringLiteral("|t"));
    }
    server.connect(QString(128, QChar(0x4E00)));
    EXPECT_EQ(server.one(QStringLiteral("select len(db_name())")), QStringLiteral("128"));
    EXPECT_EQ(
        server.rows(QStringLiteral("select name from master..sysdatabases where dbid > 4")).size(),
        11);
}

TEST(Files, MissingServersAndDatabasesAreTold) {
    ScriptedServer server;
    const auto opening = [](const ConnectionSpec& spec) {
        try {
            local::localProvider().open(spec, false);
        } catch (const DbError& error) {
            return QStringLiteral("%1 %2").arg(quint32(error.number), 0, 16).arg(error.description);
        }
        return QString();
    };
    EXPECT_EQ(
        opening(server.spec(QStringLiteral("nothing"))),
        QStringLiteral(
            "80004005 Cannot open database \"nothing\" requested by the login. The login failed."));
    ConnectionSpec spec;
    spec.dataSource = QStringLiteral("local:") + server.folder() + QStringLiteral("/none");
    EXPECT_EQ(
        opening(spec),
        QStringLiteral("80004005 SQL Server does not exist or access denied. There is no folder "
                       "%1/none; zovrand-cli load -S %2 -d DATABASE FILE.sql makes one.")
            .arg(server.folder(), spec.dataSource));
    spec.dataSource = QStringLiteral("local:");
    EXPECT_EQ(opening(spec).left(61),
              QStringLiteral("80004005 SQL Server does not exist or access denied. \"local:\""));
}

TEST(Files, DatabasesInUseAndSystemOnesStay) {
    ScriptedServer server;
    const auto other = local::localProvider().open(server.spec(QStringLiteral("shop")), false);
    EXPECT_EQ(server.run(QStringLiteral("use master\ndrop database shop")).toStdString(),
              "2: Cannot drop database \"shop\" because it is currently in use. [3702] near drop "
              "database shop");
    EXPECT_EQ(server.run(QStringLiteral("drop database msdb")).toStdString(),
              "1: Cannot drop the database 'msdb' because it is a system database. [3708] near "
              "drop database msdb");
    EXPECT_EQ(server.run(QStringLiteral("create database SHOP")).toStdString(),
              "1: Database 'SHOP' already exists. Choose a different database name. [1801] near "
              "create database SHOP");
    other->close();
    EXPECT_EQ(server.run(QStringLiteral("drop database shop")), QString());
    EXPECT_EQ(databases(server), QString());
}

TEST(Files, ADamagedFileIsToldAndSparesTheOthers) {
    ScriptedServer server;
    server.disconnect();
    QFile file(server.folder() + QStringLiteral("/server/broken.db"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(4096, 'x'));
    file.close();
    try {
        server.connect(QStringLiteral("broken"), false);
        FAIL() << "the file was taken for a database";
    } catch (const DbError& error) {
        EXPECT_EQ(error.native, 824) << error.what();
    }
    server.connect(QStringLiteral("shop"), false);
    EXPECT_EQ(databases(server), QStringLiteral("broken,shop"));
}

TEST(Files, ADamagedPageIsNoEndOfRows) {
    ScriptedServer server;
    // A database that was loaded whole has no log; a copy of it has no pages in anybody's memory.
    QString script = QStringLiteral(
        "create database big\ngo\nuse big\ngo\ncreate table t (a int, b varchar(200))\n");
    for (int i = 0; i < 400; ++i)
        script += QStringLiteral("insert t values (%1, '%2')\n").arg(i).arg(QString(200, u'x'));
    ASSERT_EQ(server.load(script), QString());
    const QString folder = server.folder() + QStringLiteral("/server/");
    ASSERT_TRUE(QFile::copy(folder + QStringLiteral("big.db"), folder + QStringLiteral("copy.db")));
    QFile file(folder + QStringLiteral("copy.db"));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    const QByteArray rows(200, 'x');  // of the table's own pages, the catalogue stays whole
    for (qint64 at = 4096; at < file.size(); at += 4096) {
        file.seek(at);
        if (!file.read(4096).contains(rows)) continue;
        file.seek(at);
        file.write(QByteArray(64, '\xff'));
    }
    file.close();
    CommandSpec command;
    command.text = QStringLiteral("select a, b from t");
    try {
        server.connect(QStringLiteral("copy"), false);
        const auto results = server.connection().execute(command);
        RowStore rows(results->columns());
        while (results->fetch(rows, 100) > 0) {
        }
        FAIL() << rows.rowCount() << " rows were taken for all";
    } catch (const DbError& error) {
        EXPECT_EQ(error.native, 824);
        EXPECT_TRUE(error.description.contains(QStringLiteral("copy.db"))) << error.what();
        EXPECT_TRUE(error.description.contains(QStringLiteral("PRAGMA integrity_check")));
    }
}

TEST(Files, ADamagedVersionFileIsNoOtherVersion) {
    ScriptedServer server(QStringLiteral("8.00.2039"));
    server.disconnect();
    const QString path = server.folder() + QStringLiteral("/server/server.json");
    for (const char* text : {"", "{", "{\"version\": 8}", "{\"version\": \"old\"}", "[]"}) {
        SCOPED_TRACE(text);
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        file.close();
        for (const bool create : {false, true}) {
            try {
                server.connect(QStringLiteral("shop"), create);
                FAIL() << "taken for a version";
            } catch (const DbError& error) {
                EXPECT_TRUE(error.description.startsWith(
                    QStringLiteral("The file %1, which tells").arg(path)))
                    << error.what();
            }
        }
    }
}

TEST(Files, ADamagedJournalIsNoLoadThatWasUndone) {
    ScriptedServer server;
    server.disconnect();
    const QString path = server.folder() + QStringLiteral("/server/server.journal");
    const char* const journals[] = {
        "",
        "{}",
        "[",
        "[1]",
        "[{}]",
        R"([{"undo":"remove"}])",
        R"([{"undo":"remove","file":".."}])",
        R"([{"undo":"restore","file":"shop.db"}])",
        R"([{"undo":"return","file":"shop.db","from":"x/"}])",
        R"([{"undo":"remove","file":"gone.db"},{"undo":"restroe","file":"a.db","from":"b"}])"};
    for (const char* text : journals) {
        SCOPED_TRACE(text);
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        file.close();
        try {
            server.connect(QStringLiteral("shop"));
            ADD_FAILURE() << "taken for undone";
        } catch (const DbError& error) {
            EXPECT_EQ(error.native, 824);
            EXPECT_TRUE(error.description.startsWith(QStringLiteral("The file %1 tells").arg(path)))
                << error.what();
        }
        EXPECT_TRUE(QFile::exists(path));
    }
    EXPECT_TRUE(QFile::remove(path));
    server.connect(QStringLiteral("shop"));
}

TEST(Files, WhatADeadProcessLeftIsSweptAndWhatALivingOneHasIsNot) {
    ScriptedServer server;
    const QString folder = server.folder() + QStringLiteral("/server/");
    server.connection().beginLoad();
    ASSERT_EQ(server.run(QStringLiteral("create database later")), QString());
    const QStringList living = QDir(folder).entryList({QStringLiteral("later.db.new-*")});
    ASSERT_EQ(living.size(), 1);
    const QStringList dead = {QStringLiteral("gone.db.new-1abc-1"),
                              QStringLiteral("gone.db.new-1abc-1-journal"),
                              QStringLiteral("shop.db.before-2abc"),
                              QStringLiteral("x.db.old-2abc"), QStringLiteral("staging-2abc.lock")};
    for (const QString& name : dead) {
        QFile file(folder + name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    local::localProvider().open(server.spec(QStringLiteral("shop")), false);
    for (const QString& name : dead)
        EXPECT_FALSE(QFile::exists(folder + name)) << name.toStdString();
    EXPECT_TRUE(QFile::exists(folder + living.first()));
    server.connection().commitLoad();
    EXPECT_EQ(databases(server), QStringLiteral("later,shop"));
}

TEST(Files, AServerOfAnOldVersionKeepsDefaultsAsWritten) {
    ScriptedServer server(QStringLiteral("8.00.2039"));
    ASSERT_EQ(server.run(QStringLiteral("create table t (a int default 0, b int default ((5)), c "
                                        "int constraint ck check (c > 0))")),
              QString());
    EXPECT_EQ(server.rows(QStringLiteral("select text from syscomments order by id")).join(u' '),
              QStringLiteral("(0) (5) (c > 0)"));
    EXPECT_EQ(server.one(QStringLiteral("select serverproperty('ProductVersion')")),
              QStringLiteral("8.00.2039"));
}

// The published sample databases are no part of the project; where they lie is told by the
// variable.
QString sampleScript(const QString& name) {
    QString folder = qEnvironmentVariable("ZOVRAND_SAMPLE_DATA");
    if (folder.isEmpty()) folder = QStringLiteral(ZOV_SOURCE_ROOT "/../shared/data");
    QFile file(folder + u'/' + name);
    return file.open(QIODevice::ReadOnly) ? QString::fromLatin1(file.readAll()) : QString();
}

constexpr const char* Kinds =
    "select rtrim(xtype), count(*) from sysobjects group by xtype order by xtype";

TEST(SampleScripts, NorthwindLoadsWholeTwice) {
    const QString script = sampleScript(QStringLiteral("northwind.sql"));
    if (script.isEmpty())
        GTEST_SKIP() << "northwind.sql is not here; set ZOVRAND_SAMPLE_DATA to its folder";
    ScriptedServer server;
    server.connect(QStringLiteral("Northwind"));
    for (int round = 1; round <= 2; ++round) {  // the second one drops what the first one made
        ASSERT_EQ(server.load(script), QString());
        EXPECT_EQ(server.rows(QLatin1String(Kinds)).join(u' '),
                  QStringLiteral("C|8 D|9 F|13 P|7 PK|13 U|13 V|16"));
        EXPECT_EQ(
            server.one(QStringLiteral("select (select count(*) from Customers), (select count(*) "
                                      "from Orders), (select count(*) from [Order Details])")),
            QStringLiteral("91|830|2155"));
    }
    EXPECT_EQ(server.one(QStringLiteral(
                  "select text from syscomments where id = object_id('CK_Discount')")),
              QStringLiteral("([Discount]>=(0) AND [Discount]<=(1))"));
    EXPECT_EQ(server.one(
                  QStringLiteral("select count(*) from sysindexes where id = object_id('Orders')")),
              QStringLiteral("9"));
}

TEST(SampleScripts, PubsLoadsWhole) {
    const QString script = sampleScript(QStringLiteral("pubs.sql"));
    if (script.isEmpty())
        GTEST_SKIP() << "pubs.sql is not here; set ZOVRAND_SAMPLE_DATA to its folder";
    ScriptedServer server;
    server.connect(QStringLiteral("master"));
    for (int round = 1; round <= 2; ++round) ASSERT_EQ(server.load(script), QString());
    server.connect(QStringLiteral("pubs"), false);
    EXPECT_EQ(server.rows(QLatin1String(Kinds)).join(u' '),
              QStringLiteral("C|6 D|9 F|10 P|4 PK|9 TR|1 U|11 V|1"));
    EXPECT_EQ(server
                  .rows(QStringLiteral("select name, length, allownulls from systypes where "
                                       "xusertype > 256 order by name"))
                  .join(u' '),
              QStringLiteral("empid|9|False id|11|False tid|6|False"));
    EXPECT_EQ(
        server.one(QStringLiteral("select count(*), sum(cast(contract as int)) from authors")),
        QStringLiteral("23|19"));
    EXPECT_EQ(
        server.one(QStringLiteral("select max(indid) from sysindexes where name = 'employee_ind'")),
        QStringLiteral("1"));
    EXPECT_EQ(
        server.one(QStringLiteral("select len(logo) from pub_info where pub_id = '0736'")).toInt() >
            0,
        true);
}

}  // namespace
}  // namespace zov::test
