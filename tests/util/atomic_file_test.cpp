// A file is replaced whole or not at all, and the failure says where and why.
#include "util/atomic_file.h"

#include "support/full_disk.h"
#include "util/file_lock.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace zov {
namespace {

class AtomicFile : public ::testing::Test {
 protected:
    QString path(const char* name) const { return folder.filePath(QString::fromLatin1(name)); }
    QByteArray bytesOf(const QString& name) const {
        QByteArray bytes;
        EXPECT_EQ(readWholeFile(name, bytes), QString());
        return bytes;
    }
    QStringList filesLeft() const {
        return QDir(folder.path()).entryList(QDir::Files | QDir::Hidden);
    }

    QTemporaryDir folder;
};

TEST_F(AtomicFile, IsMadeWithItsFolderAndReplaced) {
    const QString name = path("a/b/file.ini");
    EXPECT_EQ(writeFileAtomically(name, "one"), QString());
    EXPECT_EQ(writeFileAtomically(name, "two"), QString());
    EXPECT_EQ(bytesOf(name), "two");
}

TEST_F(AtomicFile, OwnerOnlyHoldsForANewFileAndForAnOpenOne) {
    const auto others = QFileDevice::ReadGroup | QFileDevice::ReadOther | QFileDevice::WriteGroup |
                        QFileDevice::WriteOther;
    const QString name = path("secret");
    EXPECT_EQ(writeFileAtomically(name, "x", FileAccess::OwnerOnly), QString());
    EXPECT_FALSE(QFile::permissions(name) & others);
    QFile::setPermissions(name, QFile::permissions(name) | others);
    EXPECT_EQ(writeFileAtomically(name, "y", FileAccess::OwnerOnly), QString());
    EXPECT_FALSE(QFile::permissions(name) & others);
}

TEST_F(AtomicFile, ALinkStaysALink) {
    const QString real = path("real"), link = path("link");
    ASSERT_EQ(writeFileAtomically(real, "old"), QString());
    ASSERT_TRUE(QFile::link(real, link));
    EXPECT_EQ(writeFileAtomically(link, "new"), QString());
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    EXPECT_EQ(bytesOf(real), "new");
}

TEST_F(AtomicFile, AFullDiskLeavesTheOldFileAndNoOther) {
    const QString name = path("file");
    ASSERT_EQ(writeFileAtomically(name, "old"), QString());
    QString trouble;
    {
        const test::FullDisk full(1000);
        trouble = writeFileAtomically(name, QByteArray(5000, 'x'));
    }
    EXPECT_EQ(trouble, QStringLiteral("Cannot write %1: File too large.").arg(name));
    EXPECT_EQ(bytesOf(name), "old");
    EXPECT_EQ(filesLeft(), QStringList{QStringLiteral("file")});
}

#ifdef Q_OS_UNIX
// Who reads from a pipe gets the text; a file in its place would be lost on them.
TEST_F(AtomicFile, APipeIsWrittenToAndStaysOne) {
    const QString name = path("pipe");
    ASSERT_EQ(mkfifo(QFile::encodeName(name).constData(), 0600), 0);
    const int reader = open(QFile::encodeName(name).constData(), O_RDONLY | O_NONBLOCK);
    EXPECT_EQ(writeFileAtomically(name, "text"), QString());
    char bytes[10] = {};
    EXPECT_EQ(read(reader, bytes, sizeof bytes), 4);
    EXPECT_STREQ(bytes, "text");
    close(reader);
    EXPECT_EQ(filesLeft(), QStringList());
    EXPECT_EQ(writeFileAtomically(QStringLiteral("/dev/full"), "text"),
              QStringLiteral("Cannot write /dev/full: No space left on device."));
}
#endif

TEST_F(AtomicFile, AFolderThatMustBeThereIsNotMade) {
    const QString name = path("missing/file");
    zov::AtomicFile file(name, FileAccess::Default, MissingFolder::Refuse);
    EXPECT_EQ(file.commit(),
              QStringLiteral("Cannot write %1: there is no folder %2.").arg(name, path("missing")));
    EXPECT_FALSE(QFileInfo::exists(path("missing")));
}

TEST_F(AtomicFile, AFolderThatCannotBeMadeIsNamed) {
    const QString file = path("file");
    ASSERT_EQ(writeFileAtomically(file, "x"), QString());
    EXPECT_EQ(
        writeFileAtomically(file + QStringLiteral("/home/registry.reg"), "y"),
        QStringLiteral("Cannot write %1/home/registry.reg: the folder %1/home cannot be made.")
            .arg(file));
    EXPECT_EQ(bytesOf(file), "x");
}

TEST_F(AtomicFile, AFolderInTheFilesPlaceIsNoFile) {
    QByteArray bytes;
    EXPECT_EQ(readWholeFile(folder.path(), bytes),
              QStringLiteral("Cannot read %1: it is a folder.").arg(folder.path()));
    EXPECT_FALSE(writeFileAtomically(folder.path(), "x").isEmpty());
    EXPECT_FALSE(writeFileAtomically(QString(), "x").isEmpty());
}

TEST_F(AtomicFile, AMissingFileIsEmpty) {
    QByteArray bytes("left over");
    bool exists = true;
    EXPECT_EQ(readWholeFile(path("none"), bytes, &exists), QString());
    EXPECT_FALSE(exists);
    EXPECT_TRUE(bytes.isEmpty());
}

TEST_F(AtomicFile, AnUpdateKeepsTheEncoding) {
    const QString name = path("file");
    ASSERT_EQ(writeFileAtomically(name, encodeText(QStringLiteral("ü"), TextEncoding::Utf16Le)),
              QString());
    EXPECT_EQ(updateTextFile(name, FileAccess::Default, [](QString& text) { text += u'ä'; }),
              QString());
    const DecodedText decoded = decodeText(bytesOf(name));
    EXPECT_EQ(decoded.text, QStringLiteral("üä"));
    EXPECT_EQ(decoded.encoding, TextEncoding::Utf16Le);
}

TEST_F(AtomicFile, AnUpdateWithoutAChangeTouchesNothing) {
    EXPECT_EQ(updateTextFile(path("file"), FileAccess::Default, [](QString&) {}), QString());
    EXPECT_EQ(filesLeft(), QStringList{QStringLiteral("file.lock")});
}

TEST_F(AtomicFile, AnUpdateReadsWhatAnotherWroteAndHoldsNoLock) {
    const QString name = path("file");
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(updateTextFile(name, FileAccess::Default, [](QString& text) { text += u'x'; }),
                  QString());
    }
    EXPECT_EQ(bytesOf(name), "xxx");
    // The lock's file stays, so that nobody locks one that another is about to remove.
    EXPECT_EQ(filesLeft(), (QStringList{QStringLiteral("file"), QStringLiteral("file.lock")}));
    FileLock lock;
    EXPECT_EQ(lock.acquire(name + QStringLiteral(".lock"), FileLock::Mode::Exclusive, 0),
              FileLock::Outcome::Locked);
}

}  // namespace
}  // namespace zov
