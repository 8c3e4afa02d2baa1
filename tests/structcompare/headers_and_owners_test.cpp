// Views that are named in different ways, and procedures that differ in "dbo.".
#include "core/globals.h"
#include "shell/memory_controls.h"
#include "structcompare/modCompareObjects.h"

#include <gtest/gtest.h>

namespace zov {
namespace {

TEST(ViewHeaders, AViewNamedInAnotherWayTakesTheSourcesHeader) {
    resetGlobals();
    globals().gblnCaseSensitive = true;
    const QString blanks20(20, u' ');
    struct Row {
        const char* name;
        QString source, target, adjusted;
    };
    const QString plain = QStringLiteral("CREATE VIEW dbo.V AS SELECT 1");
    const Row rows[] = {
        {"brackets, no owner", plain, "CREATE VIEW [V] AS SELECT 1", plain},
        {"quotes, other case", plain, "create view \"DBO\".\"v\" as SELECT 1",
         "CREATE VIEW dbo.V as SELECT 1"},
        {"another body", plain, "CREATE VIEW V AS SELECT 2", "CREATE VIEW dbo.V AS SELECT 2"},
        {"AS on a line of its own, line feeds", "CREATE VIEW V\nAS\nSELECT 1",
         "CREATE VIEW [V]\nAS\nSELECT 1", "CREATE VIEW V\nAS\nSELECT 1"},
        {"line feeds against one line", "CREATE VIEW V\nAS\nSELECT 1", "CREATE VIEW V AS SELECT 1",
         "CREATE VIEW V\nAS SELECT 1"},
        {"AS on a line of its own, CR LF", "CREATE VIEW dbo.V\r\nAS\r\nSELECT 1",
         "CREATE VIEW V\r\nAS\r\nSELECT 1", "CREATE VIEW dbo.V\r\nAS\r\nSELECT 1"},
        {"CR LF against one line: the carriage return stays in the name", plain,
         "CREATE VIEW V\r\nAS\r\nSELECT 1", "CREATE VIEW V\r\nAS\r\nSELECT 1"},
        {"a later AS ends the header", "CREATE VIEW dbo.V\r\nAS\r\nSELECT 1 AS x",
         "CREATE VIEW V\r\nAS\r\nSELECT 1 AS y", "CREATE VIEW dbo.V\r\nAS\r\nSELECT 1 AS y"},
        {"what stands before a later AS counts as the name",
         "CREATE VIEW dbo.V\r\nAS\r\nSELECT 1 AS x", "CREATE VIEW V\r\nAS\r\nSELECT 2 AS x",
         "CREATE VIEW V\r\nAS\r\nSELECT 2 AS x"},
        {"blanks in front", plain, "  CREATE VIEW V AS SELECT 1", plain},
        {"twenty characters apart", "CREATE VIEW V AS SELECT 1",
         "CREATE VIEW " + blanks20 + "V AS SELECT 1", "CREATE VIEW V AS SELECT 1"},
        {"twenty-one apart", "CREATE VIEW V AS SELECT 1",
         "CREATE VIEW  " + blanks20 + "V AS SELECT 1",
         "CREATE VIEW  " + blanks20 + "V AS SELECT 1"},
        {"a dot within the name", "CREATE VIEW dbo.[p.q] AS SELECT 1",
         "CREATE VIEW [p.q] AS SELECT 1", "CREATE VIEW dbo.[p.q] AS SELECT 1"},
        {"another name behind a dot", "CREATE VIEW dbo.[p.q] AS SELECT 1",
         "CREATE VIEW dbo.[r.q] AS SELECT 1", "CREATE VIEW dbo.[r.q] AS SELECT 1"},
        {"a bracket within the name", "CREATE VIEW dbo.[a]].b] AS SELECT 1",
         "CREATE VIEW \"a].b\" AS SELECT 1", "CREATE VIEW dbo.[a]].b] AS SELECT 1"},
        {"a blank within the brackets", "CREATE VIEW dbo.[ V] AS SELECT 1",
         "CREATE VIEW dbo.V AS SELECT 1", "CREATE VIEW dbo.V AS SELECT 1"},
        {"a body with a dot", "CREATE VIEW dbo.V\r\nAS\r\nSELECT T.a AS x FROM T",
         "CREATE VIEW V\r\nAS\r\nSELECT DISTINCT T.a AS x FROM T",
         "CREATE VIEW V\r\nAS\r\nSELECT DISTINCT T.a AS x FROM T"},
        {"the same body with a dot", "CREATE VIEW dbo.V\r\nAS\r\nSELECT T.a AS x FROM T",
         "CREATE VIEW V\r\nAS\r\nSELECT T.a AS x FROM U",
         "CREATE VIEW dbo.V\r\nAS\r\nSELECT T.a AS x FROM U"},
        {"a body that is read from another table",
         "CREATE VIEW V\nAS SELECT 1, (SELECT a FROM T) AS x",
         "CREATE VIEW V\nAS SELECT 1, (SELECT b FROM T) AS x",
         "CREATE VIEW V\nAS SELECT 1, (SELECT b FROM T) AS x"},
        {"commas within columns", "CREATE VIEW V([a],[b,c]) AS SELECT 1",
         "CREATE VIEW V([a,b],[c]) AS SELECT 1", "CREATE VIEW V([a,b],[c]) AS SELECT 1"},
        {"columns in other letters", "CREATE VIEW V(A) AS SELECT 1",
         "CREATE VIEW [V](a) AS SELECT 1", "CREATE VIEW [V](a) AS SELECT 1"},
        {"a comment with a dot", "CREATE VIEW V(x) /* v1.0 */ AS SELECT 1",
         "CREATE VIEW V(y) /* v1.0 */ AS SELECT 1", "CREATE VIEW V(y) /* v1.0 */ AS SELECT 1"},
        {"the same columns and comment", "CREATE VIEW V(x) /* v1.0 */ AS SELECT 1",
         "CREATE VIEW [dbo].[V](x) /* v1.0 */ AS SELECT 2",
         "CREATE VIEW V(x) /* v1.0 */ AS SELECT 2"},
        {"another view", plain, "CREATE VIEW W AS SELECT 1", "CREATE VIEW W AS SELECT 1"},
        {"no view", "CREATE PROC V AS SELECT 1", "CREATE PROC [V] AS SELECT 1",
         "CREATE PROC [V] AS SELECT 1"},
        {"no end of the header", "CREATE VIEW V", "CREATE VIEW [V]", "CREATE VIEW [V]"},
        {"an end on one side", plain, "CREATE VIEW [V] (a)", "CREATE VIEW [V] (a)"},
        {"heads that differ in case only", plain, "create view dbo.V as SELECT 1",
         "create view dbo.V as SELECT 1"},
    };
    for (const Row& row : rows) {
        QString target = row.target;
        AdjustCreateViewStatements(row.source, target);
        EXPECT_EQ(target.toStdString(), row.adjusted.toStdString()) << row.name;
    }
    resetGlobals();
}

TEST(ViewHeaders, OnlyTheFirstFiveHundredCharactersAreLookedAt) {
    const QString comment = QStringLiteral("/*%1*/ ").arg(QString(500, u'x'));
    QString target = comment + QStringLiteral("CREATE VIEW [V] AS SELECT 1");
    const QString before = target;
    AdjustCreateViewStatements(comment + QStringLiteral("CREATE VIEW V AS SELECT 1"), target);
    EXPECT_EQ(target, before);
}

TEST(Owners, TheOwnerDoesNotCountFromTheHeaderOn) {
    struct Row {
        const char* name;
        QString source, target;
        bool same;
        bool caseSensitive = true, ignoreWhitespace = true, ignoreComments = true;
    };
    const QString header = QStringLiteral("CREATE PROCEDURE dbo.p\r\n");
    const QString bare = QStringLiteral("CREATE PROCEDURE p\r\n");
    const Row rows[] = {
        {"in the header", header + "AS", bare + "AS", true},
        {"in other case", "CREATE PROCEDURE DBO.p", "CREATE PROCEDURE p", true},
        {"in the header and behind it", header + "EXEC dbo.q", bare + "EXEC q", true},
        {"several in a line", header + "EXEC dbo.a dbo.b", bare + "EXEC a b", true},
        {"before the header", "EXEC dbo.q\r\n" + header, "EXEC q\r\n" + bare, false},
        {"behind a header that is the same", header + "EXEC dbo.q", header + "EXEC q", false},
        {"another owner", "CREATE PROCEDURE me.p", bare.chopped(2), false},
        {"a header on one side", header.chopped(2), "CREATE PROC p", false},
        {"another line count", header + "AS", bare + "AS\r\n", false},
        {"another text", header + "EXEC dbo.q", bare + "EXEC r", false},
        {"white space", header + "EXEC  q", bare + "EXEC q", true},
        {"white space that counts", header + "EXEC  q", bare + "EXEC q", false, true, false},
        {"a comment", header + "AS -- x", bare + "AS ", true},
        {"a comment that counts", header + "AS -- x", bare + "AS ", false, true, true, false},
        {"a comment over two lines isn't removed as one", header + "/* x\r\nx */",
         bare + "/* y\r\ny */", false},
        {"letter case", header + "as", bare + "AS", false},
        {"letter case that doesn't count", header + "as", bare + "AS", true, false},
        {"both empty", "", "", true},
    };
    for (const Row& row : rows) {
        resetGlobals();
        globals().gblnCaseSensitive = row.caseSensitive;
        globals().gblnIgnoreWhitespace = row.ignoreWhitespace;
        globals().gblnIgnoreComments = row.ignoreComments;
        MemoryTextPane source, target;
        source.setText(row.source);
        target.setText(row.target);
        EXPECT_EQ(CompareProcs_IgnoreOwnerInName(source, target), row.same) << row.name;
    }
    resetGlobals();
}

}  // namespace
}  // namespace zov
