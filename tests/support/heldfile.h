#pragma once

#include "tests/places.h"

#include <QProcess>
#include <QString>

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
