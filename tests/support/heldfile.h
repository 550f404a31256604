#pragma once

#include "tests/places.h"

#include <QDir>
#include <QProcess>
#include <QString>
#include <qt_windows.h>

/// A file that another program has open without letting anybody replace or write it, as many
/// Windows programs do, until the object goes.
class HeldFile
{
  public:
    explicit HeldFile(const QString& path)
    {
        m_program.start(QStringLiteral(SVP_HOLD_FILE), {path});
        while (!m_program.canReadLine() && m_program.waitForReadyRead(timeLimit)) {
        }
        m_isHeld = m_program.readLine().trimmed() == "held";
    }
    ~HeldFile()
    {
        m_program.closeWriteChannel();
        if (!m_program.waitForFinished(timeLimit))
            m_program.kill();
    }
    Q_DISABLE_COPY(HeldFile)

    /// Whether the file could be opened.
    bool isHeld() const { return m_isHeld; }

  private:
    static constexpr int timeLimit = 60000; // ms
    QProcess m_program;
    bool m_isHeld = false;
};

/// A file that is held in the same way by the test itself. The engine waits a second for a held
/// file, and another program may take that long to end on a busy machine; this lets go at once.
class FileHeldHere
{
  public:
    explicit FileHeldHere(const QString& path)
        : m_file(CreateFileW(QDir::toNativeSeparators(path).toStdWString().c_str(), GENERIC_READ,
                             FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr))
    {
    }
    ~FileHeldHere()
    {
        if (isHeld())
            CloseHandle(m_file);
    }
    Q_DISABLE_COPY(FileHeldHere)

    /// Whether the file could be opened.
    bool isHeld() const { return m_file != INVALID_HANDLE_VALUE; }

  private:
    HANDLE m_file;
};
