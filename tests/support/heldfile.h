#pragma once

#include <QDir>
#include <QString>
#include <qt_windows.h>

/// A file that another program has open without letting anybody replace or write it, as many
/// Windows programs do. Windows asks for each open handle, not for each program.
class HeldFile
{
  public:
    explicit HeldFile(const QString& path)
        : m_handle(CreateFileW(QDir::toNativeSeparators(path).toStdWString().c_str(), GENERIC_READ,
                               FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr))
    {
    }
    ~HeldFile() { CloseHandle(m_handle); }
    Q_DISABLE_COPY(HeldFile)

    /// Whether the file could be opened.
    bool isHeld() const { return m_handle != INVALID_HANDLE_VALUE; }

  private:
    HANDLE m_handle;
};
