#include "platform/filelock.h"

#include <QDir>
#include <qt_windows.h>

namespace platform {

namespace {

HANDLE handleOf(std::intptr_t value)
{
    return reinterpret_cast<HANDLE>(value);
}

} // namespace

bool FileLock::open(const QString& path)
{
    close();
    if (path.isEmpty() || path.contains(QChar(0)))
        return false;
    const std::wstring name = QDir::toNativeSeparators(path).toStdWString();
    const HANDLE handle =
        CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                    nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return false;
    m_handle = reinterpret_cast<std::intptr_t>(handle);
    if (GetFileType(handle) == FILE_TYPE_DISK)
        return true;
    close();
    return false;
}

bool FileLock::tryLock()
{
    if (m_handle != -1 && !m_isLocked)
        m_isLocked = LockFile(handleOf(m_handle), 0, 0, lockedBytes, 0) != 0;
    return m_isLocked;
}

void FileLock::close()
{
    if (m_handle == -1)
        return;
    // Closing gives the lock back as well, but at a time of the system's choosing. Without a lock
    // this fails, which is as good.
    UnlockFile(handleOf(m_handle), 0, 0, lockedBytes, 0);
    CloseHandle(handleOf(m_handle));
    m_handle = -1;
    m_isLocked = false;
}

} // namespace platform
