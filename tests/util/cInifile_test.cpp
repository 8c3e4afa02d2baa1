// INI files: the private-profile reading rules, and that a rewrite keeps what it
// does not understand.
#include "util/cInifile.h"

#include "util/atomic_file.h"
#include "util/ini_document.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

namespace zov {
namespace {

const char* const Sample =
    "; my marks\r\n"
    "[SERVER1.Sales.Orders]\r\n"
    "0=Modified\r\n"
    "this line is broken\r\n"
    " 1 =  RowGuid  \r\n"
    "0=second of its name\r\n"
    "quoted=\"  two blanks  \"\r\n"
    "empty=\r\n"
    "=no key\r\n"
    "\r\n"
    "; about the next one\r\n"
    "[a]b]\r\n"
    "k=x=y\r\n"
    "[no end\r\n"
    "[server1.sales.ORDERS]\r\n"
    "0=of a repeated section\r\n";

TEST(IniDocument, ReadsAsPrivateProfilesAreRead) {
    const IniDocument document{QString::fromLatin1(Sample)};
    struct Row {
        const char* section;
        const char* key;
        const char* value;  // null: none
    };
    const Row rows[] = {
        {"SERVER1.Sales.Orders", "0", "Modified"},
        {"server1.SALES.orders", "1", "RowGuid"},
        {"SERVER1.Sales.Orders", "quoted", "  two blanks  "},
        {"SERVER1.Sales.Orders", "QUOTED", "  two blanks  "},
        {"SERVER1.Sales.Orders", "empty", ""},
        {"SERVER1.Sales.Orders", "", nullptr},
        {"SERVER1.Sales.Orders", "this line is broken", nullptr},
        {"a]b", "k", "x=y"},
        {"no end", "0", nullptr},
        {"nowhere", "0", nullptr},
    };
    for (const Row& row : rows) {
        const auto value =
            document.value(QString::fromLatin1(row.section), QString::fromLatin1(row.key));
        EXPECT_EQ(value.has_value(), row.value != nullptr) << row.section << ' ' << row.key;
        if (value && row.value) {
            EXPECT_EQ(*value, QString::fromLatin1(row.value)) << row.key;
        }
    }
    EXPECT_EQ(document.sections().join(u'|'), u"SERVER1.Sales.Orders|a]b");
    EXPECT_EQ(document.keys(QStringLiteral("SERVER1.Sales.Orders")).join(u'|'),
              u"0|1|quoted|empty");
}

TEST(IniDocument, AChangeLeavesEveryOtherLineAsItWas) {
    IniDocument document{QString::fromLatin1(Sample)};
    document.setValue(QStringLiteral("SERVER1.Sales.Orders"), QStringLiteral("1"),
                      QStringLiteral("Other"));
    QString expected = QString::fromLatin1(Sample);
    expected.replace(QStringLiteral(" 1 =  RowGuid  "), QStringLiteral("1=Other"));
    EXPECT_EQ(document.text(), expected);
}

TEST(IniDocument, ANewKeyStandsBehindItsSectionsLastEntry) {
    IniDocument document{QStringLiteral("[a]\nx=1\n\n; of b\n[b]\ny=2\n")};
    document.setValue(QStringLiteral("a"), QStringLiteral("new"), QStringLiteral("3"));
    document.setValue(QStringLiteral("c"), QStringLiteral("z"), QStringLiteral("4"));
    EXPECT_EQ(document.text(), u"[a]\nx=1\nnew=3\n\n; of b\n[b]\ny=2\n[c]\nz=4\n");
}

TEST(IniDocument, RemovingASectionLeavesTheCommentOfTheNextOne) {
    IniDocument document{QStringLiteral("[a]\nx=1\n\n; of b\n[b]\ny=2\n")};
    document.removeSection(QStringLiteral("A"));
    EXPECT_EQ(document.text(), u"; of b\n[b]\ny=2\n");
    document.removeSection(QStringLiteral("not there"));
    document.removeKey(QStringLiteral("b"), QStringLiteral("Y"));
    EXPECT_EQ(document.text(), u"; of b\n[b]\n");
}

TEST(IniDocument, EveryValueComesBackAsItWasSet) {
    for (const QString& value :
         {QStringLiteral(" x "), QStringLiteral("\"x\""), QStringLiteral("'x'"),
          QStringLiteral("\""), QStringLiteral("a;b"), QStringLiteral("[a]"), QStringLiteral("a=b"),
          QString(), QStringLiteral("Größe 値")}) {
        IniDocument document{QString()};
        document.setValue(QStringLiteral("s"), QStringLiteral("k"), value);
        const IniDocument back(document.text());
        EXPECT_EQ(back.value(QStringLiteral("s"), QStringLiteral("k")), value) << qPrintable(value);
    }
}

TEST(IniDocument, ALineBreakInAValueCannotMakeALine) {
    IniDocument document{QString()};
    document.setValue(QStringLiteral("s"), QStringLiteral("k"), QStringLiteral("a\r\n[evil]\nx=1"));
    const IniDocument back(document.text());
    EXPECT_EQ(back.sections(), QStringList{QStringLiteral("s")});
    EXPECT_EQ(back.value(QStringLiteral("s"), QStringLiteral("k")), u"a [evil] x=1");
}

class Inifile : public ::testing::Test {
 protected:
    Inifile() : ini(folder.filePath(QStringLiteral("t.ini"))) { ini.Section = QStringLiteral("s"); }
    QTemporaryDir folder;
    cInifile ini;
};

TEST_F(Inifile, AValueIsCutAt255AndLosesItsNuls) {
    ini.Key = QStringLiteral("k");
    ini.setValue(QString(300, u'x'));
    EXPECT_TRUE(ini.Success());
    EXPECT_EQ(ini.Value(), QString(255, u'x'));
    ini.setValue(QStringLiteral("a") + QChar(u'\0') + QStringLiteral("b") + QChar(u'\0'));
    EXPECT_EQ(ini.Value(), u"ab");
    EXPECT_EQ(ini.LastReturnCode(), 2);
    ini.Key = QStringLiteral("none");
    EXPECT_EQ(ini.Value(), u"");
    EXPECT_FALSE(ini.Success());
}

TEST_F(Inifile, TheDefaultIsForAMissingKeyNotForAnEmptyValue) {
    ini.Default = QStringLiteral("d");
    ini.Key = QStringLiteral("k");
    EXPECT_EQ(ini.Value(), u"d");
    ini.setValue(QString());
    EXPECT_EQ(ini.Value(), u"");
    ini.DeleteKey();
    EXPECT_EQ(ini.Value(), u"d");
}

TEST_F(Inifile, AListIsCutAt8192WithItsLastEntryBroken) {
    ini.change([](IniDocument& document) {
        for (int i = 0; i < 1000; ++i) {
            document.setValue(QStringLiteral("s"),
                              QStringLiteral("key%1").arg(i, 6, 10, QChar(u'0')),
                              QStringLiteral("x"));
        }
    });
    const QString list = ini.INISection();
    EXPECT_EQ(list.size(), 8192);
    const QStringList keys = ini.EnumerateCurrentSection();
    ASSERT_EQ(keys.size(), 820);  // 819 keys of ten characters with their NUL, and two left
    EXPECT_EQ(keys[818], u"key000818");
    EXPECT_EQ(keys[819], u"ke");
}

TEST_F(Inifile, ASectionIsReplacedByANulSeparatedList) {
    ini.setINISection(QStringLiteral("a=1") + QChar(u'\0') + QStringLiteral("b=2") + QChar(u'\0'));
    ini.setINISection(QStringLiteral("b=3") + QChar(u'\0') + QStringLiteral("no equals sign"));
    EXPECT_EQ(ini.EnumerateCurrentSection(), QStringList{QStringLiteral("b")});
    EXPECT_EQ(ini.EnumerateAllSections(), QStringList{QStringLiteral("s")});
    ini.DeleteSection();
    EXPECT_EQ(ini.EnumerateAllSections(), QStringList());
    EXPECT_EQ(ini.EnumerateCurrentSection(), QStringList());
}

TEST_F(Inifile, AFailedWriteIsTold) {
    cInifile unwritable(ini.Path + QStringLiteral("/below/a/file.ini"));
    ini.Key = QStringLiteral("k");
    ini.setValue(QStringLiteral("v"));
    unwritable.Section = unwritable.Key = QStringLiteral("x");
    unwritable.setValue(QStringLiteral("y"));
    EXPECT_FALSE(unwritable.Success());
    EXPECT_FALSE(unwritable.lastError().isEmpty());
}

struct RecordedForm : PlacedForm {
    int state = 0;
    qint32 place[4] = {1, 2, 3, 4};
    int moves = 0;
    int WindowState() const override { return state; }
    void setWindowState(int s) override { state = s; }
    qint32 Left() const override { return place[0]; }
    qint32 Top() const override { return place[1]; }
    qint32 Width() const override { return place[2]; }
    qint32 Height() const override { return place[3]; }
    void Move(qint32 l, qint32 t, qint32 w, qint32 h) override {
        place[0] = l, place[1] = t, place[2] = w, place[3] = h;
        ++moves;
    }
};

TEST_F(Inifile, AFormsPlaceIsKept) {
    RecordedForm form;
    ini.LoadFormPosition(form);
    EXPECT_EQ(form.moves, 0);
    form.state = 1;
    ini.SaveFormPosition(form);
    EXPECT_TRUE(ini.EnumerateAllSections().isEmpty());  // minimised: nothing

    form.state = 0;
    ini.Key = QStringLiteral("mine");
    ini.SaveFormPosition(form);
    EXPECT_EQ(ini.Key, u"mine");
    RecordedForm other;
    other.place[0] = 99;
    ini.LoadFormPosition(other);
    EXPECT_EQ(other.place[0], 1);
    EXPECT_EQ(other.moves, 1);
    EXPECT_EQ(other.state, 0);

    form.state = 2;
    ini.SaveFormPosition(form);
    ini.LoadFormPosition(other);
    EXPECT_EQ(other.state, 2);
}

TEST(CLngDefault, GivesTheDefaultForWhatIsNoNumber) {
    EXPECT_EQ(cInifile::CLngDefault(QStringLiteral("12.5"), 7), 12);
    EXPECT_EQ(cInifile::CLngDefault(QStringLiteral(" -3 "), 7), -3);
    EXPECT_EQ(cInifile::CLngDefault(QStringLiteral("12a"), 7), 7);
    EXPECT_EQ(cInifile::CLngDefault(QString(), 7), 7);
    EXPECT_EQ(cInifile::CLngDefault(QStringLiteral("3000000000"), 7), 7);
}

}  // namespace
}  // namespace zov
