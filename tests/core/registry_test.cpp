// The settings store: typed values, its text form, what survives a damaged file,
// another process, and a disk that can't be written.
#include "core/registry.h"

#include "core/registry_document.h"
#include "core/settings.h"
#include "support/temp_home.h"
#include "util/file_lock.h"
#include "util/text_decode.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFileInfo>

#include <stdexcept>

namespace zov {
namespace {

constexpr auto User = RegRoot::CurrentUser;
const QString Key = QStringLiteral("Software\\ZOV");
const QString Success = QStringLiteral("Success");

QString str(const char* name, const char* fallback = "default") {
    return RegGetStringValue(User, Key, QString::fromLatin1(name), QString::fromLatin1(fallback));
}
qint32 num(const char* name, qint32 fallback = -77) {
    return RegGetDWordValue(User, Key, QString::fromLatin1(name), fallback);
}

class Registry : public ::testing::Test {
 protected:
    test::TempHome home;
    QByteArray stored() const { return home.read(QStringLiteral("registry.reg")); }
    void store(const QByteArray& text) { home.write(QStringLiteral("registry.reg"), text); }
};

TEST_F(Registry, WritesTheExportFormat) {
    EXPECT_EQ(
        RegSetStringValue(User, Key, QStringLiteral("Location"), QStringLiteral("C:\\Zov \"x\"\\")),
        Success);
    EXPECT_EQ(RegSetDWordValue(User, Key, QStringLiteral("Timeout"), 30), Success);
    EXPECT_EQ(
        RegSetDWordValue(User, Key + QStringLiteral("\\Servers"), QStringLiteral("Count"), -1),
        Success);
    EXPECT_EQ(RegSetStringValue(User, Key, QStringLiteral("Location"), QStringLiteral("D:\\")),
              Success);
    EXPECT_EQ(stored(),
              "Windows Registry Editor Version 5.00\r\n"
              "\r\n"
              "[HKEY_CURRENT_USER\\Software\\ZOV]\r\n"
              "\"Location\"=\"D:\\\\\"\r\n"
              "\"Timeout\"=dword:0000001e\r\n"
              "\r\n"
              "[HKEY_CURRENT_USER\\Software\\ZOV\\Servers]\r\n"
              "\"Count\"=dword:ffffffff\r\n");
}

TEST_F(Registry, EveryTextComesBack) {
    for (const QString& text :
         {QString(), QStringLiteral("a\\\\b\\"), QStringLiteral("\""), QStringLiteral("[x]"),
          QStringLiteral("dword:00000001"), QStringLiteral("two\r\nlines\t"), QStringLiteral(" x "),
          QStringLiteral("Größe 値 \U0001F600"), QStringLiteral(";=@")}) {
        RegSetStringValue(User, Key, QStringLiteral("k\"\\]"), text);
        EXPECT_EQ(RegGetStringValue(User, Key, QStringLiteral("K\"\\]"), QStringLiteral("default")),
                  text)
            << qPrintable(text);
    }
    RegSetStringValue(User, Key, QStringLiteral("nul"), QStringLiteral("ab") + QChar(u'\0') + u'c');
    EXPECT_EQ(str("nul"), u"ab");
}

TEST_F(Registry, TheDefaultStandsInForAMissingValueOrAnotherType) {
    store(
        "Windows Registry Editor Version 5.00\n\n"
        "[HKEY_CURRENT_USER\\Software\\ZOV]\n"
        "\"Text\"=\"30\"\n"
        "\"Empty\"=\"\"\n"
        "\"Number\"=dword:2\n"
        "\"Bytes\"=hex:01,02,\\\n  03\n"
        "\"Behind\"=\"x\"\n"
        "\"Wide\"=hex(1):61,00,62,00,00,00\n"
        "@=\"unnamed\"\n");
    EXPECT_EQ(num("Text"), -77);
    EXPECT_EQ(str("Text"), u"30");
    EXPECT_EQ(str("Empty"), u"");
    EXPECT_EQ(num("Number"), 2);
    EXPECT_EQ(str("Number"), u"default");
    EXPECT_EQ(str("Bytes"), u"default");
    EXPECT_EQ(num("Bytes"), -77);
    EXPECT_EQ(str("Behind"), u"x");
    EXPECT_EQ(str("Wide"), u"ab");
    EXPECT_EQ(str(""), u"unnamed");
    EXPECT_EQ(str("Missing"), u"default");
    EXPECT_EQ(RegGetStringValue(User, QStringLiteral("Software\\None"), QStringLiteral("Text"), {}),
              u"");
}

TEST_F(Registry, KeysAreDeletedOnlyWithoutSubkeys) {
    const QString notFound = QStringLiteral("No! Key to Delete Or Key Not Found");
    const QString servers = Key + QStringLiteral("\\Servers");
    EXPECT_EQ(RegDeleteKeyPath(User, servers), notFound);
    EXPECT_FALSE(QFileInfo::exists(home.registryPath()));
    RegSetDWordValue(User, servers, QStringLiteral("Count"), 1);
    RegCreateKeyPath(User, servers + QStringLiteral("\\Server1"));
    EXPECT_EQ(RegDeleteKeyPath(User, servers), notFound);
    EXPECT_EQ(RegDeleteKeyPath(User, servers + QStringLiteral("\\SERVER1")), Success);
    EXPECT_EQ(RegDeleteKeyPath(User, servers), Success);
    EXPECT_EQ(RegDeleteKeyPath(User, servers), notFound);
}

const char* const Damaged =
    "Windows Registry Editor Version 5.00\r\n"
    "\r\n"
    "; mine\r\n"
    "[HKEY_CURRENT_USER\\Software\\ZOV]\r\n"
    "\"Timeout\"=dword:0000000a\r\n"
    "\"Broken\"=dword:xyz\r\n"
    "\"Unended\"=\"text\r\n"
    "noise\r\n"
    "\"CacheSize\"=dword:00000007\r\n"
    "\r\n"
    "[HKEY_CURRENT_USER\\Software\\ZOV\\Servers\r\n"
    "\"Timeout\"=dword:00000063\r\n"
    "\r\n"
    "[HKEY_CURRENT_USER\\Software\\ZOV\\Comparisons]\r\n"
    "\"IgnoreComments\"=dword:00000000\r\n";

TEST_F(Registry, BrokenLinesAreLeftOutAndTheGoodOnesCount) {
    store(Damaged);
    EXPECT_EQ(num("Timeout"), 10);  // not the one below the header that has no end
    EXPECT_EQ(num("CacheSize"), 7);
    EXPECT_EQ(num("Broken"), -77);
    EXPECT_EQ(str("Unended"), u"default");
    EXPECT_FALSE(readBooleanSetting(QStringLiteral("IgnoreComments")));
    EXPECT_EQ(brokenSettingsLines(), 4);
    EXPECT_EQ(stored(), Damaged);  // reading writes nothing
}

TEST_F(Registry, BrokenLinesSurviveASave) {
    store(Damaged);
    RegSetDWordValue(User, Key, QStringLiteral("Timeout"), 11);
    QByteArray expected = Damaged;
    expected.replace("\"Timeout\"=dword:0000000a", "\"Timeout\"=dword:0000000b");
    EXPECT_EQ(stored(), expected);
    EXPECT_EQ(takeSettingsFailure(), QString());
}

// What other programs keep in the same file stays to the byte: values over several lines, their
// types, remarks between them.
TEST_F(Registry, LongBinaryValuesAndCommentsSurviveASave) {
    QByteArray bytes = "\"Blob\"=hex:";
    for (int i = 0; i < 400; ++i) {
        if (i > 0) bytes += i % 25 == 0 ? ",\\\r\n  " : ",";
        bytes += QByteArray(1, char(i % 256)).toHex();
    }
    const QByteArray before =
        "Windows Registry Editor Version 5.00\r\n\r\n"
        "; kept by hand\r\n"
        "[HKEY_CURRENT_USER\\Software\\ZOV]\r\n"
        "  ; a remark on the next one\r\n" +
        bytes + "\r\n; behind it\r\n";
    const QByteArray after =
        "\"Multi\"=hex(7):61,00,\\\r\n  00,00,00,00\r\n"
        "; the end\r\n\r\n"
        "[HKEY_CURRENT_USER\\Software\\Other]\r\n\"Timeout\"=dword:00000063\r\n";
    store(before + "\"Timeout\"=dword:0000000a\r\n" + after);
    EXPECT_EQ(num("Timeout"), 10);
    EXPECT_EQ(brokenSettingsLines(), 0);
    RegSetDWordValue(User, Key, QStringLiteral("Timeout"), 11);
    EXPECT_EQ(stored().toStdString(),
              (before + "\"Timeout\"=dword:0000000b\r\n" + after).toStdString());
    // A value in place of the long one takes all of its lines.
    RegSetDWordValue(User, Key, QStringLiteral("Blob"), 1);
    EXPECT_EQ(num("Blob"), 1);
    EXPECT_EQ(brokenSettingsLines(), 0);
    EXPECT_FALSE(stored().contains("\r\n  19"));
}

TEST_F(Registry, TheLastOfARepeatedValueCountsAndIsTheOneChanged) {
    store(
        "[HKEY_CURRENT_USER\\Software\\ZOV]\n\"A\"=dword:1\n"
        "[HKEY_CURRENT_USER\\Software\\ZOV]\n\"a\"=dword:2\n");
    EXPECT_EQ(num("A"), 2);
    RegSetDWordValue(User, Key, QStringLiteral("A"), 3);
    EXPECT_EQ(num("A"), 3);
}

TEST_F(Registry, AUtf16ExportIsReadAndStaysUtf16) {
    const QString text = QStringLiteral(
        "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\Software\\ZOV]\r\n"
        "\"Name\"=\"Größe\"\r\n");
    store(encodeText(text, TextEncoding::Utf16Le));
    EXPECT_EQ(str("Name"), QStringLiteral("Größe"));
    RegSetStringValue(User, Key, QStringLiteral("Name"), QStringLiteral("値"));
    const DecodedText decoded = decodeText(stored());
    EXPECT_EQ(decoded.encoding, TextEncoding::Utf16Le);
    EXPECT_TRUE(decoded.text.contains(QStringLiteral("\"Name\"=\"値\"\r\n")));
}

TEST_F(Registry, AnotherProcessesChangesAreSeenAndKept) {
    RegSetDWordValue(User, Key, QStringLiteral("Timeout"), 1);
    {
        const RegistryBatch batch;
        RegSetDWordValue(User, Key, QStringLiteral("CacheSize"), 9);
        EXPECT_EQ(num("CacheSize"), 9);
        // Meanwhile, elsewhere:
        QByteArray text = stored();
        text.replace("dword:00000001", "dword:00000002");
        store(text + "\"Other\"=\"x\"\r\n");
        EXPECT_EQ(num("Timeout"), 1);  // one look
    }
    EXPECT_EQ(num("Timeout"), 2);
    EXPECT_EQ(num("CacheSize"), 9);
    EXPECT_EQ(str("Other"), u"x");
}

TEST_F(Registry, TheFileIsTheOwnersAlone) {
    store("");
    QFile::setPermissions(home.registryPath(), QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                                   QFileDevice::ReadGroup | QFileDevice::ReadOther);
    RegSetStringValue(User, Key, QStringLiteral("Pwd"), QStringLiteral("secret"));
    EXPECT_FALSE(QFile::permissions(home.registryPath()) &
                 (QFileDevice::ReadGroup | QFileDevice::ReadOther));
}

TEST_F(Registry, AHomeThatCannotBeWrittenIsToldOnceAndReadsAsDefaults) {
    // A file in the home's place: not even the administrator can write below it.
    const QString file = home.write(QStringLiteral("file"), "x");
    qputenv("ZOVRAND_HOME", (file + QStringLiteral("/home")).toUtf8());
    EXPECT_EQ(RegSetDWordValue(User, Key, QStringLiteral("Timeout"), 1),
              QStringLiteral("No! Failed to save Value"));
    EXPECT_EQ(RegSetStringValue(User, Key, QStringLiteral("VerNum"), QStringLiteral("1.1")),
              QStringLiteral("No! Key to Delete Or Key Not Found"));
    EXPECT_EQ(readSetting(QStringLiteral("Timeout")), 30);
    EXPECT_EQ(
        takeSettingsFailure(),
        QStringLiteral("Cannot write %1/home/registry.reg: the folder %1/home cannot be made.")
            .arg(file));
    EXPECT_EQ(takeSettingsFailure(), QString());
}

TEST_F(Registry, AStoreThatCannotBeReadIsNoEmptyOne) {
    QDir().mkpath(home.registryPath());  // not even the administrator reads a folder
    EXPECT_EQ(settingsReadFailure(), QString());
    EXPECT_EQ(readSetting(QStringLiteral("Timeout")), 30);
    const QString sentence =
        QStringLiteral("Cannot read %1: it is a folder.").arg(home.registryPath());
    EXPECT_EQ(settingsReadFailure(), sentence);
    bool ran = false;
    EXPECT_FALSE(changeSettings([&] { ran = true; }));
    EXPECT_FALSE(ran);
    EXPECT_EQ(RegSetDWordValue(User, Key, QStringLiteral("Timeout"), 1),
              QStringLiteral("No! Failed to save Value"));
    EXPECT_EQ(takeSettingsFailure(), sentence);
    EXPECT_EQ(settingsReadFailure(), QString());
}

TEST_F(Registry, AChangeSeesWhatIsStoredNowAndReachesTheStoreAsOne) {
    RegSetDWordValue(User, Key, QStringLiteral("Count"), 1);
    EXPECT_TRUE(changeSettings([&] {
        // Nobody else may write meanwhile.
        FileLock other;
        EXPECT_EQ(other.acquire(home.registryPath() + QStringLiteral(".lock"),
                                FileLock::Mode::Exclusive, 0),
                  FileLock::Outcome::Busy);
        RegSetDWordValue(User, Key, QStringLiteral("Count"), num("Count") + 1);
        RegSetDWordValue(User, Key, QStringLiteral("Count"), num("Count") + 1);
        EXPECT_TRUE(stored().contains("\"Count\"=dword:00000001"));
    }));
    EXPECT_TRUE(stored().contains("\"Count\"=dword:00000003"));
    EXPECT_THROW(changeSettings([] {
                     RegSetDWordValue(User, Key, QStringLiteral("Count"), 9);
                     throw std::runtime_error("no");
                 }),
                 std::runtime_error);
    EXPECT_EQ(num("Count"), 3);
    EXPECT_EQ(takeSettingsFailure(), QString());
}

TEST_F(Registry, ALockedStoreIsReadAndWhatIsStoredAlreadyIsNotWaitedFor) {
    RegSetDWordValue(User, Key, QStringLiteral("Timeout"), 7);
    FileLock other;
    ASSERT_EQ(
        other.acquire(home.registryPath() + QStringLiteral(".lock"), FileLock::Mode::Exclusive, 0),
        FileLock::Outcome::Locked);
    QElapsedTimer time;
    time.start();
    EXPECT_EQ(num("Timeout"), 7);
    EXPECT_EQ(RegSetDWordValue(User, Key, QStringLiteral("Timeout"), 7), Success);
    EXPECT_FALSE(changeSettings([] { RegSetDWordValue(User, Key, QStringLiteral("Timeout"), 8); },
                                LockWait::None));
    EXPECT_LT(time.elapsed(), 1000);
    EXPECT_EQ(num("Timeout"), 7);
    EXPECT_EQ(takeSettingsFailure(), QString());
}

TEST_F(Registry, OverridesHoldForTheRunAndAreNotStored) {
    EXPECT_EQ(overrideSettingForThisRun(QStringLiteral("ignorecomments"), QStringLiteral("0")),
              QString());
    EXPECT_EQ(overrideSettingForThisRun(QStringLiteral("CaseSensitive"), QStringLiteral("off")),
              QString());
    EXPECT_EQ(overrideSettingForThisRun(QStringLiteral("Timeout"), QStringLiteral("5")), QString());
    EXPECT_FALSE(readBooleanSetting(QStringLiteral("IgnoreComments")));
    EXPECT_FALSE(readBooleanSetting(QStringLiteral("CaseSensitive")));
    EXPECT_EQ(readSetting(QStringLiteral("Timeout")), 5);
    EXPECT_FALSE(QFileInfo::exists(home.registryPath()));

    EXPECT_TRUE(overrideSettingForThisRun(QStringLiteral("NoSuch"), QStringLiteral("1"))
                    .startsWith(QStringLiteral(
                        "There is no setting \"NoSuch\"; there are: Run, Timeout, ")));
    EXPECT_EQ(overrideSettingForThisRun(QStringLiteral("Timeout"), QStringLiteral("on")),
              QStringLiteral("The setting Timeout takes a whole number, not \"on\"."));
    EXPECT_EQ(overrideSettingForThisRun(QStringLiteral("IgnoreComments"), QStringLiteral("maybe")),
              QStringLiteral("The setting IgnoreComments takes 1 or 0, not \"maybe\"."));
}

}  // namespace
}  // namespace zov
