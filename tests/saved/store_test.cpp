// The file of saved processes: what is written in which order, numbers, lists, and
// files that somebody damaged.
#include "saved_fixture.h"

#include "saved/process_texts.h"
#include "structcompare/enc_obj_types.h"
#include "support/full_disk.h"

#include <QFile>

#include <cstring>

namespace zov {
namespace {

using test::SavedProcesses;

TEST_F(SavedProcesses, AreWrittenInTheOrderOfTheirKeys) {
    SavedProcess p =
        process(QStringLiteral("Nightly"), {QStringLiteral("Orders"), QStringLiteral(" Ä ")},
                {QStringLiteral("Orders")});
    p.Print = true;
    p.ObjId1 = 7;
    p.TableName1 = QStringLiteral(" led");
    EXPECT_EQ(save(p), 1);
    EXPECT_EQ(told(), "");
    EXPECT_EQ(
        ini().toStdString(),
        "[Nightly]\r\nName=Nightly\r\nCompType=1\r\nCompSubType=30\r\nCompSubSubType=30\r\n"
        "EncObjTypes=1,0,0,0,0,0,0,0\r\nCompMethod=-1\r\nServerName1=A\r\nServerName2=B\r\n"
        "DbName1=Src\r\nDbName2=Tgt\r\nTableName1=\" led\"\r\nTableName2=\r\n"
        "ExportFilePath=\r\nExportType=0\r\nId=1\r\nSelCompCountSource=2\r\n"
        "SelCompCountTarget=1\r\nPrint=True\r\nObjId1=7\r\nObjId2=0\r\nCSVWrapInQuot=False\r\n"
        "AutoClose=False\r\n");
    EXPECT_EQ(home.read(QStringLiteral("documents/zov_001_src.txt")).toStdString(),
              "Orders\r\n \xC3\x84 \r\n");
    EXPECT_EQ(home.read(QStringLiteral("documents/zov_001_tgt.txt")).toStdString(), "Orders\r\n");

    SavedProcess read;
    EXPECT_TRUE(GetSavedProcessDetails(p.Name, read));
    EXPECT_EQ(read.SourceNames, p.SourceNames);
    EXPECT_EQ(read.TableName1, p.TableName1);
    EXPECT_EQ(read.Id, 1);
    EXPECT_TRUE(read.Print);
}

TEST_F(SavedProcesses, TakeTheLowestFreeNumberAndANewOneWhenOverwritten) {
    const QStringList names{QStringLiteral("T")};
    for (const char* name : {"A", "B", "C"}) save(process(QLatin1String(name), names, names));
    EXPECT_TRUE(DeleteSavedProcesses({QStringLiteral("B")}));
    EXPECT_FALSE(QFile::exists(listPath("zov_002_src.txt")));
    EXPECT_FALSE(QFile::exists(listPath("zov_002_tgt.txt")));
    EXPECT_EQ(GetNextProcessId(), 2);
    EXPECT_EQ(save(process(QStringLiteral("D"), names, names)), 2);

    EXPECT_EQ(save(process(QStringLiteral("A"), {}, {})), 4);
    EXPECT_TRUE(QFile::exists(listPath("zov_001_src.txt"))) << "stays behind";
    EXPECT_EQ(GetSavedProcessName(1), QString());
    EXPECT_EQ(GetSavedProcessName(4), u"A");
    EXPECT_EQ(FillProcessList().join(u'|'), u"A|C|D") << "in its old place";
    // What was left behind never comes back with the number.
    EXPECT_EQ(save(process(QStringLiteral("E"), {}, names)), 1);
    EXPECT_FALSE(QFile::exists(listPath("zov_001_src.txt")));
    EXPECT_EQ(CountSavedProcesses(), 4);
    EXPECT_EQ(told(), "");
    EXPECT_EQ(ArrayFilePath(1234, QStringLiteral("F/"), true), u"F/zov_1234_src.txt");
}

TEST_F(SavedProcesses, KeepNamesAndValuesOfEveryKind) {
    const QStringList names = {
        QStringLiteral("a"),        QStringLiteral("A"), QStringLiteral("x=y"),
        QStringLiteral("\"q\""),    QStringLiteral("'"), QStringLiteral(";c"),
        QStringLiteral("Отчёт 表"), QString(255, u'n'),  QString(9000, u'v')};
    for (const QString& name : names) {
        SavedProcess p = process(name, {name}, {name});
        p.DbName1 = name;
        p.ExportFilePath = u' ' + name + u' ';
        save(p);
    }
    EXPECT_EQ(FillProcessList(), names);
    for (const QString& name : names) {
        SavedProcess read;
        EXPECT_TRUE(GetSavedProcessDetails(name, read)) << name.toStdString();
        EXPECT_EQ(read.DbName1, name);
        EXPECT_EQ(read.ExportFilePath, u' ' + name + u' ');
        EXPECT_EQ(read.SourceNames, QStringList{name});
        EXPECT_EQ(GetSavedProcessName(GetSavedProcessId(name)), name);
    }
    EXPECT_TRUE(DeleteSavedProcesses({QStringLiteral("A")}));
    EXPECT_EQ(FillProcessList().value(0), u"a") << "letter case tells two apart";
    EXPECT_EQ(TrimmedProcessName(QStringLiteral(" \tlast\r\nnight \t")), u"last  night");
    EXPECT_EQ(told(), "");
}

TEST_F(SavedProcesses, ThatCannotBeStoredLeaveTheOthers) {
    save(process(QStringLiteral("A"), {QStringLiteral("T")}, {QStringLiteral("T")}));
    save(process(QStringLiteral("Z")));
    const QByteArray before = ini();
    EXPECT_FALSE(SaveComparisonProcess(process(QStringLiteral("B"), {QStringLiteral("a\nb")}, {})));
    EXPECT_NE(told().find("holds a line break"), std::string::npos);

    bool exists = false;
    EXPECT_FALSE(SaveComparisonProcess(process(QStringLiteral("A")), false, &exists));
    EXPECT_TRUE(exists);
    EXPECT_EQ(told(), "");
    EXPECT_EQ(ini(), before);
    {
        const test::FullDisk disk(300);
        EXPECT_FALSE(SaveComparisonProcess(process(QStringLiteral("B"), {QString(400, u'T')}, {})));
        EXPECT_EQ(told().rfind("exclamation: Error in Sub ArraySaveToFile, error nr ", 0), 0u);
        EXPECT_FALSE(
            SaveComparisonProcess(process(QStringLiteral("B"), {QStringLiteral("T")}, {})));
        EXPECT_EQ(told().rfind("information: Failed to save comparison's process name.", 0), 0u);
        EXPECT_FALSE(DeleteSavedProcesses({QStringLiteral("A")}));
        EXPECT_NE(told().find("Nothing was deleted."), std::string::npos);
        EXPECT_FALSE(AddPrintInfoToSavedProcess(QStringLiteral("A"), true));
        EXPECT_NE(told().find("Nothing was added to the saved comparison process 'A'."),
                  std::string::npos);
    }
    EXPECT_EQ(ini(), before);
    EXPECT_TRUE(QFile::exists(listPath("zov_001_src.txt")));
    EXPECT_EQ(save(process(QStringLiteral("B"))), 3);

    // One that is gone isn't made again by what would be added to it.
    EXPECT_FALSE(AddExportInfoToSavedProcess(QStringLiteral("gone"), QStringLiteral("x"), 1, true));
    EXPECT_NE(told().find("isn't there any more"), std::string::npos);
    EXPECT_EQ(FillProcessList().join(u'|'), u"A|Z|B");
}

TEST_F(SavedProcesses, ExportAndPrintAreAddedInPlace) {
    save(process(QStringLiteral("A")));
    RecordExportingResultsToTxtFile(QStringLiteral("A"), QStringLiteral("/x/r.csv"), 2, true,
                                    comparison_code::Data);
    EXPECT_EQ(
        told(),
        "information: Export info:\\nExport File Path: /x/r.csv\\nExport Type: Excel - Comma "
        "Separated Values (CSV) file\\nWrap up data in quotation marks: Yes\\n\\nwas added to the "
        "saved comparison process:\\n'A'.\\n\\nNext time when this process is run, the program "
        "will automatically export data to the above file.");
    RecordExportingResultsToTxtFile(QStringLiteral("A"), QStringLiteral("/x/r.txt"), 0, false,
                                    comparison_code::MetaData);
    EXPECT_EQ(
        told(),
        "information: Export info:\\nExport File Path: /x/r.txt\\nExport Type: N/A\\n\\nwas added "
        "to the saved comparison process:\\n'A'.\\n\\nNext time when this process is run, the "
        "program will automatically export data to the above file.");
    EXPECT_TRUE(AddPrintInfoToSavedProcess(QStringLiteral("A"), true));
    EXPECT_TRUE(ini().contains("ExportFilePath=/x/r.txt\r\nExportType=0\r\nId=1\r\n"));
    EXPECT_TRUE(ini().contains("\r\nPrint=True\r\n"));
}

TEST_F(SavedProcesses, DamagedSectionsReadAsWhatIsLeft) {
    const struct {
        const char* name;
        const char* section;
        const char* told;  ///< the start of what is told; empty: nothing
        qint32 type, id;
    } rows[] = {
        {"no keys", "", "", 0, 0},
        {"numbers that are none", "CompType=x\r\nId=7up\r\nObjId1=--\r\n", "", 0, 7},
        {"numbers beyond all", "CompType=99999999999999\r\nId=-99999999999\r\n", "", 2147483647,
         -2147483647 - 1},
        {"a flag in figures", "Print=1\r\nId=3\r\n", "", 0, 3},
        {"a flag that is none", "Print=perhaps\r\nId=3\r\n", "screen frmErrorReport", 0, 3},
        {"a list that is gone", "Id=5\r\nSelCompCountSource=2\r\n",
         "exclamation [Inconsistent Data]: Inconsistent data while retrieving details of saved "
         "comparison process.\\n\\nComparison Id: 5\\n\\nSource objects count: 0\\n\\nSource "
         "objects in "
         "file: 0",
         0, 5},
        {"both lists of other lengths", "Id=9\r\nSelCompCountSource=2\r\nSelCompCountTarget=3\r\n",
         "exclamation [Inconsistent Data]: Inconsistent data while retrieving details of saved "
         "comparison process.\\n\\nComparison Id: 9\\n\\nSource objects count: 3\\n\\nSource "
         "objects in "
         "file: 1\nexclamation [Inconsistent Data]: Inconsistent data while retrieving details of "
         "saved comparison process.\\n\\nComparison Id: 9\\n\\nTarget objects count: 3\\n\\nTarget "
         "objects in file: 0",
         0, 9},
    };
    home.write(QStringLiteral("documents/zov_009_src.txt"), "one");
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        home.write(QStringLiteral("documents/zov_comps.ini"),
                   QByteArray("[other]\r\nId=1\r\n[P]\r\n") + row.section);
        SavedProcess read;
        EXPECT_EQ(GetSavedProcessDetails(QStringLiteral("P"), read), *row.told == 0);
        const std::string lines = told();
        EXPECT_EQ(lines.substr(0, std::strlen(row.told)), row.told);
        EXPECT_EQ(lines.empty(), *row.told == 0);
        EXPECT_EQ(read.CompType, row.type);
        EXPECT_EQ(read.Id, row.id);
        EXPECT_EQ(GetSavedProcessName(1), u"other");
    }
    SavedProcess read;
    read.Id = 4;
    EXPECT_FALSE(GetSavedProcessDetails({}, read));
    EXPECT_EQ(read.Id, 0);
    EXPECT_EQ(read.CompType, -1);
}

TEST_F(SavedProcesses, FilesThatCannotBeReadAreTold) {
    QDir().mkpath(listPath("zov_comps.ini"));
    EXPECT_EQ(CountSavedProcesses(), -1);
    EXPECT_NE(told().find("Cannot read "), std::string::npos);
    EXPECT_FALSE(SaveComparisonProcess(process(QStringLiteral("A"))));
    EXPECT_EQ(told().rfind("information: Failed to save comparison's process name.", 0), 0u);

    QStringList names{QStringLiteral("old")};
    const QString& folder = globals().gstrUserDataFolder;
    QDir().mkpath(ArrayFilePath(7, folder, true));
    EXPECT_EQ(ArrayReadFromFile(names, 7, folder, true), 0);
    EXPECT_TRUE(names.isEmpty());
    EXPECT_EQ(told().rfind("exclamation: Error in Sub ArrayReadFromFile, error nr ", 0), 0u);
    QFile big(ArrayFilePath(8, folder, false));
    ASSERT_TRUE(big.open(QIODevice::WriteOnly) && big.resize(100 * 1024 * 1024));
    EXPECT_EQ(ArrayReadFromFile(names, 8, folder, false), 0);
    EXPECT_NE(told().find("too long to be a list of names"), std::string::npos);
    EXPECT_EQ(ArrayReadFromFile(names, 6, folder, true), 0);
    EXPECT_EQ(told(), "") << "a missing list is an empty one";
    // Lists that an editor saved: another encoding, plain line feeds, no end.
    home.write(QStringLiteral("documents/zov_006_src.txt"), QByteArray("\xFF\xFE"
                                                                       "a\0\n\0b\0",
                                                                       8));
    EXPECT_EQ(ArrayReadFromFile(names, 6, folder, true), 2);
    EXPECT_EQ(names.join(u'|'), u"a|b");
}

TEST(ObjectTypeFlags, AreReadAndWritten) {
    const struct {
        qint32 type;
        const char* flags;
        int index;
        const char* text;
    } types[] = {
        {0, "0,0,0,0,0,0,0,0", -1, "N/A"},           {50, "1,0,0,0,0,0,0,0", 0, "Tables"},
        {10, "0,1,0,0,0,0,0,0", 1, "Procedures"},    {20, "0,0,1,0,0,0,0,0", 2, "Functions"},
        {30, "0,0,0,1,0,0,0,0", 3, "Views"},         {40, "0,0,0,0,1,0,0,0", 4, "Triggers"},
        {60, "0,0,0,0,0,1,0,0", 5, "Relationships"}, {80, "0,0,0,0,0,0,1,0", 6, "Constraints"},
        {90, "0,0,0,0,0,0,0,1", 7, "Permissions"},   {70, "", -1, "N/A"},
    };
    for (const auto& row : types) {
        const QString flags = ObjectTypeToEncObjTypes(ObjectType(row.type));
        EXPECT_EQ(flags.toStdString(), row.flags);
        EXPECT_EQ(EncObjTypesToIndex(flags), row.index);
        EXPECT_EQ(EncObjTypesToText(flags).toStdString(), row.text);
    }
    const struct {
        const char* flags;
        bool valid;
        const char* text;
    } strings[] = {
        {"0,1,0,0,0,0", true, "Procedures"},
        {"0,1,0,0,0,0,1", true, "Procedures, Constraints"},
        {"1,1,0,0,0,0,0,0", true, "Tables, Procedures"},
        {"x,y,z,1,?,0,0,0", true, "Views"},
        {"0,1,0,0,0", false, "N/A"},
        {"1,1,1,1,1,1,1,1,1", false, "N/A"},
        {"0.1.0.0.0.0.0.0", false, "N/A"},
    };
    for (const auto& row : strings) {
        QString flags = QLatin1String(row.flags);
        EXPECT_EQ(IsEncObjTypesValid(flags), row.valid) << row.flags;
        EXPECT_EQ(EncObjTypesToText(QLatin1String(row.flags)).toStdString(), row.text);
        EXPECT_EQ(EncObjTypesToIndex(QLatin1String(row.flags)), -1) << row.flags;
        ObjectKindBoxes boxes{};
        boxes[7] = true;
        ApplyObjTypeChecks(boxes, QLatin1String(row.flags));
        EXPECT_EQ(boxes[7], !row.valid) << row.flags;
    }
}

}  // namespace
}  // namespace zov
