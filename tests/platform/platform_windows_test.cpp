// What only Windows does: files that others hold, devices among the files, its debug output.

#include "platform/platform.h"
#include "platform/process.h"
#include "settings/cdatafile.h"
#include "tests/support/datafolder.h"
#include "tests/support/heldfile.h"

#include <QDir>
#include <gtest/gtest.h>
#include <qt_windows.h>

#include <chrono>
#include <cstdint>
#include <cstring>
#include <memory>
#include <thread>
#include <winsock2.h>

namespace {

/// What the system hands to a debugger that watches all programs.
class DebugMonitor
{
  public:
    DebugMonitor()
        : m_mapping(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, kSize,
                                       L"DBWIN_BUFFER")),
          m_isFree(CreateEventW(nullptr, FALSE, TRUE, L"DBWIN_BUFFER_READY")),
          m_isFilled(CreateEventW(nullptr, FALSE, FALSE, L"DBWIN_DATA_READY")),
          m_view(static_cast<const char*>(MapViewOfFile(m_mapping, FILE_MAP_READ, 0, 0, kSize)))
    {
    }
    ~DebugMonitor()
    {
        UnmapViewOfFile(m_view);
        for (HANDLE handle : {m_mapping, m_isFree, m_isFilled})
            CloseHandle(handle);
    }
    Q_DISABLE_COPY(DebugMonitor)

    /// The next text of this process; empty when none comes. Other tests' programs have theirs.
    std::string next() const
    {
        while (WaitForSingleObject(m_isFilled, 60000) == WAIT_OBJECT_0) {
            DWORD process = 0;
            std::memcpy(&process, m_view, sizeof process);
            std::string text(m_view + sizeof process);
            SetEvent(m_isFree);
            if (process == GetCurrentProcessId())
                return text;
        }
        return {};
    }

  private:
    static constexpr DWORD kSize = 4096;
    HANDLE m_mapping;
    HANDLE m_isFree;
    HANDLE m_isFilled;
    const char* m_view;
};

} // namespace

TEST(PlatformWindows, DiagnosticsGoToTheDebuggerWithTheirTags)
{
    const DebugMonitor monitor;
    const platform::DebugSink earlier = platform::setDebugSink(nullptr);
    std::thread program([] {
        CDataFile store;
        store.Trace(0, "a %d", 1);
        store.Trace(1, "b");
        store.Trace(2, "c");
        store.Trace(3, "d");
        store.Trace(4, "e");
        store.Trace(5, "f\n");
    });
    for (const char* text : {"<debug> a 1\n", "<info> b\n", "<warn> c\n", "<error> d\n",
                             "<fatal> e\n", "<critical> f\n"})
        EXPECT_EQ(monitor.next(), text);
    program.join();
    platform::setDebugSink(earlier);
}

TEST(PlatformWindows, AFileThatIsHeldStaysAsItIs)
{
    const DataFolder folder;
    const QString path = folder.path(QStringLiteral("cast.asvp"));
    writeBytes(path, "old");
    const QString backup = folder.path(QStringLiteral("cast_bck.asvp"));
    {
        const HeldFile held(path);
        ASSERT_TRUE(held.isHeld());
        QString error;
        EXPECT_EQ(platform::replaceFileKeeping(path, backup, "new", &error),
                  platform::Replaced::NotOpened);
        EXPECT_FALSE(error.isEmpty());
        EXPECT_FALSE(platform::replaceFile(path, "new", &error));
        EXPECT_EQ(bytesOf(path), "old");
        EXPECT_EQ(QDir(folder.path(QString())).entryList(QDir::Files),
                  QStringList{QStringLiteral("cast.asvp")});
    }
    EXPECT_EQ(platform::replaceFileKeeping(path, backup, "new"), platform::Replaced::Whole);
    EXPECT_EQ(bytesOf(path), "new");
    EXPECT_EQ(bytesOf(backup), "old");
}

TEST(PlatformWindows, AFileThatIsHeldForAMomentIsReplacedAfterwards)
{
    const DataFolder folder;
    const QString path = folder.path(QStringLiteral("cast.asvp"));
    writeBytes(path, "old");
    auto held = std::make_unique<FileHeldHere>(path);
    ASSERT_TRUE(held->isHeld());
    bool isReplaced = false;
    std::thread writer([&] { isReplaced = platform::replaceFile(path, "new"); });
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_EQ(bytesOf(path), "old");
    held.reset();
    writer.join();
    EXPECT_TRUE(isReplaced);
    EXPECT_EQ(bytesOf(path), "new");
}

TEST(PlatformWindows, AClaimedPortIsNotShared)
{
    WSADATA data;
    ASSERT_EQ(WSAStartup(MAKEWORD(2, 2), &data), 0);
    const SOCKET socket = ::socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    ASSERT_NE(socket, INVALID_SOCKET);
    const auto isExclusive = [socket] {
        BOOL value = 2;
        int size = sizeof value;
        EXPECT_EQ(::getsockopt(socket, SOL_SOCKET, SO_EXCLUSIVEADDRUSE,
                               reinterpret_cast<char*>(&value), &size),
                  0);
        return value;
    };
    EXPECT_EQ(isExclusive(), FALSE);
    platform::claimPort(std::intptr_t(socket));
    EXPECT_EQ(isExclusive(), TRUE);
    ::closesocket(socket);
    WSACleanup();
}

TEST(PlatformWindows, DevicesAreNoFiles)
{
    const DataFolder folder;
    folder.write(QStringLiteral("x"), "x");
    QByteArray content;
    for (const QString& path :
         {QStringLiteral("NUL"), QStringLiteral("nul.asvp"), QStringLiteral("C:/con"),
          QStringLiteral("\\\\.\\pipe\\x"), QStringLiteral("//./C:"),
          QStringLiteral("\\\\?\\C:\\x"), folder.path(QStringLiteral("CONIN$")),
          folder.path(QStringLiteral("aux.txt"))}) {
        EXPECT_FALSE(platform::isFile(path)) << path.toStdString();
        EXPECT_FALSE(platform::readFile(path, content)) << path.toStdString();
    }
    EXPECT_TRUE(platform::isFile(folder.path(QStringLiteral("x"))));
}

TEST(PlatformWindows, TheDataRootMayHaveAnyLetters)
{
    const DataFolder folder(QStringLiteral("Daten Süd 測深 Ω"));
    EXPECT_EQ(platform::dataRoot(), folder.programData() + QStringLiteral("\\Ardentide\\"));
    const QString path = platform::dataRoot() + QStringLiteral("größe\\測.bin");
    ASSERT_TRUE(platform::makeFolder(platform::dataRoot() + QStringLiteral("größe")));
    EXPECT_TRUE(platform::replaceFile(path, "x"));
    EXPECT_EQ(bytesOf(folder.path(QStringLiteral("größe/測.bin"))), "x");
}

TEST(PlatformWindows, LongValuesOfTheEnvironmentAreReadWhole)
{
    const DataFolder folder;
    for (const int length : {1, 254, 255, 256, 257, 1000}) {
        const QString value(length, QLatin1Char('x'));
        setEnvironment("ProgramData", value);
        EXPECT_EQ(platform::environmentValue("ProgramData"), value) << length;
    }
}
