#include "platform/filelock.h"
#include "tests/support/datafolder.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <gtest/gtest.h>

#include <memory>

#ifdef Q_OS_WIN
#include <qt_windows.h>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace {

/// Whether some lock lies on the byte `at` of the file.
bool isLocked(const QString& path, int at)
{
#ifdef Q_OS_WIN
    HANDLE file = CreateFileW(QDir::toNativeSeparators(path).toStdWString().c_str(),
                              GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                              nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_NE(file, INVALID_HANDLE_VALUE);
    const bool isFree = LockFile(file, static_cast<DWORD>(at), 0, 1, 0) != 0;
    CloseHandle(file);
    return !isFree;
#else
    const int file = ::open(QFile::encodeName(path).constData(), O_RDWR);
    struct flock range = {};
    range.l_type = F_WRLCK;
    range.l_whence = SEEK_SET;
    range.l_start = at;
    range.l_len = 1;
    EXPECT_EQ(::fcntl(file, F_OFD_GETLK, &range), 0);
    ::close(file);
    return range.l_type != F_UNLCK;
#endif
}

class FileLockTest : public testing::Test
{
  protected:
    FileLockTest() { writeBytes(path, QByteArray()); }

    DataFolder folder;
    QString path = folder.path(QStringLiteral("temp/größe 測.lck"));
};

} // namespace

TEST_F(FileLockTest, OneHolderAtATime)
{
    platform::FileLock one;
    platform::FileLock other;
    ASSERT_TRUE(one.open(path) && other.open(path));
    EXPECT_TRUE(one.tryLock());
    EXPECT_TRUE(one.tryLock()); // it has it already
    EXPECT_FALSE(other.tryLock());
    EXPECT_FALSE(other.tryLock());
    one.close();
    EXPECT_TRUE(other.tryLock());
    EXPECT_TRUE(QFile::exists(path));
    one.close(); // closed already
    EXPECT_FALSE(one.tryLock());
    ASSERT_TRUE(one.open(path));
    EXPECT_FALSE(one.tryLock());
}

TEST_F(FileLockTest, ClosingAnotherOpenFileGivesNothingBack)
{
    platform::FileLock one;
    ASSERT_TRUE(one.open(path) && one.tryLock());
    {
        platform::FileLock other;
        ASSERT_TRUE(other.open(path));
        EXPECT_FALSE(other.tryLock());
    }
    EXPECT_TRUE(isLocked(path, 0));
}

TEST_F(FileLockTest, TheFirst256BytesAreLocked)
{
    platform::FileLock lock;
    ASSERT_TRUE(lock.open(path));
    EXPECT_FALSE(isLocked(path, 0));
    ASSERT_TRUE(lock.tryLock());
    EXPECT_TRUE(isLocked(path, 0));
    EXPECT_TRUE(isLocked(path, 255));
    EXPECT_FALSE(isLocked(path, 256));
    ASSERT_TRUE(lock.open(path)); // opening anew gives it back
    EXPECT_FALSE(isLocked(path, 0));
}

TEST_F(FileLockTest, ItGoesWithTheObject)
{
    auto lock = std::make_unique<platform::FileLock>();
    ASSERT_TRUE(lock->open(path) && lock->tryLock());
    lock.reset();
    EXPECT_FALSE(isLocked(path, 0));
}

TEST_F(FileLockTest, AProcessThatIsStartedMeanwhileDoesNotKeepIt)
{
    platform::FileLock lock;
    ASSERT_TRUE(lock.open(path) && lock.tryLock());
    QProcess child;
#ifdef Q_OS_WIN
    child.start(QStringLiteral("cmd"), QStringList());
#else
    child.start(QStringLiteral("cat"), QStringList());
#endif
    ASSERT_TRUE(child.waitForStarted());
    lock.close();
    EXPECT_FALSE(isLocked(path, 0));
    child.closeWriteChannel();
    EXPECT_TRUE(child.waitForFinished());
}

TEST_F(FileLockTest, OnlyFilesAreOpened)
{
    platform::FileLock lock;
    EXPECT_FALSE(lock.tryLock());
    EXPECT_FALSE(lock.open(QString()));
    EXPECT_FALSE(lock.open(path + QChar(0)));
    EXPECT_FALSE(lock.open(folder.path(QStringLiteral("temp"))));
    EXPECT_FALSE(lock.open(folder.path(QStringLiteral("none/token.lck"))));
    EXPECT_FALSE(lock.open(path + QStringLiteral("/token.lck")));
#ifdef Q_OS_WIN
    EXPECT_FALSE(lock.open(QStringLiteral("NUL")));
#else
    const QString pipe = folder.path(QStringLiteral("temp/pipe"));
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    EXPECT_FALSE(lock.open(pipe));
    EXPECT_FALSE(lock.open(QStringLiteral("/dev/null")));
#endif
    EXPECT_FALSE(lock.tryLock());
    const QString fresh = folder.path(QStringLiteral("temp/new.lck"));
    EXPECT_TRUE(lock.open(fresh));
    EXPECT_TRUE(QFile::exists(fresh));
}
