// Scripts with commands and variables: what they become, and where each line comes from.
#include "data/sqlcmd_script.h"

#include <gtest/gtest.h>

#include <QMap>

namespace zov {
namespace {

std::string plain(const QString& text) {
    return text.toStdString();
}

/// Files by name, without a disk.
struct FilesInMemory {
    QMap<QString, QString> texts;

    SqlcmdFiles access() const {
        return {[this](const QString& path, QString& text) {
                    text = texts.value(path);
                    return text == u"?" ? QStringLiteral("It can't be read.") : QString();
                },
                [this](const QString& path) { return texts.contains(path); }};
    }
    ExpandedScript expand(const QString& text) { return expand(text, variables); }
    ExpandedScript expand(const QString& text, SqlcmdVariables& with) {
        return expandSqlcmdScript(QStringLiteral("dir/main.sql"), text, with, access());
    }
    SqlcmdVariables variables;
};

std::string problemsOf(const ExpandedScript& script) {
    std::string all;
    for (const LoadProblem& problem : script.problems) all += plain(problem.toString()) + "\n";
    return all;
}

TEST(SqlcmdScript, IsToldByACommandAtALinesBeginning) {
    const struct {
        const char* text;
        bool is;
    } cases[] = {
        {":setvar A 1", true},
        {"SELECT 1\n  :r other.sql\n", true},
        {"SELECT 1\r\nGO\r\n:ON ERROR EXIT\r\n", true},
        {":!! dir", true},
        {"SELECT '$(A)'", false},
        {"/*\n:setvar A 1\n*/", false},
        {"SELECT '\n:r x\n'", false},
        {"SELECT [\n:quit\n]", false},
        {"again:\nGOTO again", false},
        {"SELECT * FROM\n::fn_helpcollations()", false},
        {":nonsense", false},
        {"exit", false},
        {"-- :setvar A 1", false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(isSqlcmdScript(QString::fromUtf8(c.text)), c.is) << c.text;
}

TEST(SqlcmdScript, BecomesAPlainOne) {
    FilesInMemory files;
    files.texts = {{"dir/part.sql", "P1 $(A)\nGO\nP2"},
                   {"dir/deep/a.sql", ":r b.sql\nA2\n"},
                   {"dir/deep/b.sql", "B\n"},
                   {"dir/my file.sql", "spaced\n"},
                   {"here.sql", "current\n"}};
    files.variables.give("Given", "g");
    const struct {
        const char* name;
        const char* text;
        const char* expected;
    } cases[] = {
        {"values in code, names and literals", ":setvar A 1\nSELECT $(A), '$(a)', [$(A)]\n",
         "SELECT 1, '1', [1]\n"},
        {"not in comments", ":setvar A 1\n-- $(A)\n/* $(A)\n$(A) */ $(A)\n",
         "-- $(A)\n/* $(A)\n$(A) */ 1\n"},
        {"no comments behind a command", ":setvar A 1\n:setvar B a--$(A)/*$(A)\n'$(B)'\n",
         "'a--1/*1'\n"},
        {"quoted values", ":setvar A \"a \"\"b\"\" c\"\n$(A)\n", "a \"b\" c\n"},
        {"values of values", ":setvar A x\n:setvar B $(A)y\n$(B)\n", "xy\n"},
        {"a value isn't looked through again",
         ":setvar A \"$(Given)\"\n:setvar B \"$\"\n$(A) $(B)(A)\n", "g $(A)\n"},
        {"set anew", ":setvar A 1\n$(A)\n:setvar A 2\n$(A)\n", "1\n2\n"},
        {"set back", ":setvar Given 1\n$(Given)\n:setvar Given\n$(given)\n", "1\ng\n"},
        {"no variable", "SELECT '$()', '$(A B)', $x, '$('\n", "SELECT '$()', '$(A B)', $x, '$('\n"},
        {"included", ":setvar A 1\nM1\n:r part.sql\nM2\n", "M1\nP1 1\nGO\nP2\nM2\n"},
        {"included from where the file stands", ":r .\\deep\\a.sql\n", "B\nA2\n"},
        {"names with blanks", ":r \"my file.sql\"\n", "spaced\n"},
        {"by a variable", ":setvar F part\n:setvar A 2\n:r $(F).sql\n", "P1 2\nGO\nP2\n"},
        {"in the current folder", ":R here.sql\n", "current\n"},
        {"what writes nothing",
         ":list\n:listvar\n:xml on\n:serverlist\n:perftrace x\n:help\n:out f\n:error f\nS\n",
         "S\n"},
        {"reset drops the batch", "A\nGO\nB\nreset\nC\n", "A\nGO\nC\n"},
        {"quit drops what no GO has run", "A\nGO\nB\n:quit\nC\n", "A\nGO\n"},
        {"exit with a statement", "A\n:exit(SELECT 1)\nB\n", "A\nSELECT 1\n"},
        {"exit with none", "A\nexit()\nB\n", "A\n"},
        {"GO's count", ":setvar N 3\nA\nGO $(N)\n", "A\nGO 3\n"},
        {"no commands within texts", ":list\nSELECT '\n:r nowhere\nquit\n'\n",
         "SELECT '\n:r nowhere\nquit\n'\n"},
        {"line breaks stay", ":list\r\nA\r\n:list\r\nB", "A\r\nB"},
    };
    for (const auto& c : cases) {
        SqlcmdVariables variables = files.variables;
        const ExpandedScript script = files.expand(QString::fromUtf8(c.text), variables);
        EXPECT_EQ(plain(script.text), c.expected) << c.name;
        EXPECT_EQ(problemsOf(script), "") << c.name;
    }
}

TEST(SqlcmdScript, TellsWhatItCantDoWithFileAndLine) {
    FilesInMemory files;
    files.texts = {{"dir/self.sql", "A\n:r self.sql\n"},
                   {"dir/one.sql", ":r two.sql\n"},
                   {"dir/two.sql", "\n:r one.sql\n"},
                   {"dir/bad.sql", "?"},
                   {"dir/use.sql", "A\n$(Missing)\n"}};
    const struct {
        const char* text;
        const char* told;
    } cases[] = {
        {"\n$(Missing)\n$(missing)\n",
         "dir/main.sql:2: 'Missing' scripting variable not defined. Give it a value with -v "
         "Missing=VALUE.\n"},
        {":r use.sql",
         "dir/use.sql:2: 'Missing' scripting variable not defined. Give it a value "
         "with -v Missing=VALUE.\n"},
        {"A\n:r nowhere.sql",
         "dir/main.sql:2: There is no file nowhere.sql beside dir/main.sql, nor in the current "
         "folder.\n"},
        {":r", "dir/main.sql:1: :r takes the name of a file.\n"},
        {":r self.sql",
         "dir/self.sql:2: self.sql is being read already: a script can't include itself.\n"},
        {":r one.sql",
         "dir/two.sql:2: one.sql is being read already: a script can't include itself.\n"},
        {":r bad.sql", "dir/bad.sql: It can't be read.\n"},
        {":connect other",
         "dir/main.sql:1: :connect is not carried out here: a script is loaded "
         "into one server, and runs no other programs. Take the line out.\n"},
        {"!!del *",
         "dir/main.sql:1: !! is not carried out here: a script is loaded into one "
         "server, and runs no other programs. Take the line out.\n"},
        {":setvar",
         "dir/main.sql:1: :setvar takes a name and a value; a value with blanks stands "
         "in quotation marks.\n"},
        {":setvar A b c",
         "dir/main.sql:1: :setvar takes a name and a value; a value with blanks "
         "stands in quotation marks.\n"},
        {":on error", "dir/main.sql:1: :on error is followed by exit or ignore.\n"},
        {":sevtar A 1", "dir/main.sql:1: :sevtar is no command that scripts may hold.\n"},
    };
    for (const auto& c : cases) {
        SqlcmdVariables none;
        EXPECT_EQ(problemsOf(files.expand(QString::fromUtf8(c.text), none)), c.told) << c.text;
    }
    // Files that name each other twice each would be read without end.
    for (int i = 0; i < 20; ++i)
        files.texts.insert(QStringLiteral("dir/%1.sql").arg(i),
                           QStringLiteral(":r %1.sql\n:r %1.sql\n").arg(i + 1));
    files.texts.insert("dir/20.sql", "x\n");
    EXPECT_NE(problemsOf(files.expand(":r 0.sql")).find("includes more than 10000 files"),
              std::string::npos);
}

TEST(SqlcmdScript, LinesAreThoseOfTheirFiles) {
    FilesInMemory files;
    files.texts = {{"dir/p.sql", "P1\n:list\nP3\nGO\nP5\n"}};
    const ExpandedScript script =
        files.expand("M1\n:list\nM3\nGO\n:r p.sql\nM6\nreset\nM8\n:on error ignore\nM10\nGO\nM12");
    EXPECT_EQ(plain(script.text), "M1\nM3\nGO\nP1\nP3\nGO\nM8\nM10\nGO\nM12");
    std::string lines;
    for (int line = 1; line <= 10; ++line) {
        const ExpandedScript::Origin origin = script.originOf(line);
        lines += plain(origin.file.section(u'/', -1)) + std::to_string(origin.fileLine) + " ";
    }
    EXPECT_EQ(lines,
              "main.sql1 main.sql3 main.sql4 p.sql1 p.sql3 p.sql4 main.sql8 main.sql10 main.sql11 "
              "main.sql12 ");
    EXPECT_FALSE(script.ignoresErrors(3));
    EXPECT_FALSE(script.ignoresErrors(6));
    EXPECT_TRUE(script.ignoresErrors(9));
    EXPECT_TRUE(script.ignoresErrors(0));
}

TEST(SqlcmdScript, ValuesComeFromTheHighestPlace) {
    qputenv("ZOV_SQLCMD_TEST", "environment");
    const QString name = QStringLiteral("zov_sqlcmd_test");
    SqlcmdVariables variables;
    EXPECT_EQ(variables.value(QStringLiteral("ZOV_SQLCMD_TEST")), u"environment");
    variables.setOwn(name, QStringLiteral("own"));
    EXPECT_EQ(variables.value(name.toUpper()), u"own");
    variables.give(name, QStringLiteral("given"));
    EXPECT_EQ(variables.value(name), u"given");
    EXPECT_TRUE(variables.overridesGiven(name, QStringLiteral("set")));
    EXPECT_FALSE(variables.overridesGiven(name, QStringLiteral("given")));
    variables.set(name, QStringLiteral("set"));
    EXPECT_EQ(variables.value(name), u"set");
    variables.define(name, QStringLiteral("defined"));
    EXPECT_EQ(variables.value(name), u"defined");
    EXPECT_FALSE(variables.overridesGiven(name, QStringLiteral("set")));
    EXPECT_EQ(SqlcmdVariables().value(QStringLiteral("ZOV_NO_SUCH_VARIABLE")), std::nullopt);
    qunsetenv("ZOV_SQLCMD_TEST");
}

}  // namespace
}  // namespace zov
