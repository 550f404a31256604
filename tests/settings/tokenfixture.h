#pragma once

#include "settings/tokenstore.h"
#include "tests/places.h"
#include "tests/support/datafolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <gtest/gtest.h>

/// A data root with the token store's files, and a store whose waiting takes no time.
class TokenStoreTest : public testing::Test
{
  protected:
#ifdef Q_OS_WIN
    // Their places are fixed there, the same for all tests.
    TokenStoreTest()
    {
        for (const QString& path : {paths.database, paths.missing}) {
            QDir().mkpath(QFileInfo(path).path());
            QFile::remove(path);
        }
    }
#endif

    /// The text of a mirror with these elements of "tokens".
    static QByteArray mirrorText(const QByteArray& elements)
    {
        return R"({"version":1,"lastsave":"20260102_030405","tokens":[)" + elements + "]}";
    }
    void writeMirror(const QByteArray& text) const
    {
        writeBytes(paths.mirror, text);
    }
    QByteArray mirror() const
    {
        return bytesOf(paths.mirror);
    }
    /// The lines of the log of missing tokens.
    QList<QByteArray> missing() const
    {
        QList<QByteArray> lines = bytesOf(paths.missing).replace("\r\n", "\n").split('\n');
        lines.removeLast(); // behind the last line end
        return lines;
    }

    DataFolder folder;
    settings::TokenPaths paths = settings::systemTokenPaths();
    QVector<int> waits; ///< milliseconds of each wait
    settings::TokenStore store{paths, [this](int milliseconds) { waits.append(milliseconds); }};
};

/// `tests/settings/token_process.cpp` as a process of its own. It ends with the object.
class TokenProcess
{
  public:
    explicit TokenProcess(const QStringList& words)
    {
        m_process.start(QStringLiteral(SVP_TOKEN_PROCESS), words);
    }
    ~TokenProcess() { finish(); }
    Q_DISABLE_COPY(TokenProcess)

    /// Waits until the process says that it is ready.
    bool waitUntilReady()
    {
        while (!m_process.canReadLine()) {
            if (!m_process.waitForReadyRead(timeLimit))
                return false;
        }
        return m_process.readLine().trimmed() == "ready";
    }
    /// Sends it a line.
    void go()
    {
        m_process.write("\n");
        m_process.waitForBytesWritten(timeLimit);
    }
    /// Ends its input and waits for its end; true when it ended well.
    bool finish()
    {
        m_process.closeWriteChannel();
        if (m_process.state() != QProcess::NotRunning && !m_process.waitForFinished(timeLimit)) {
            m_process.kill();
            m_process.waitForFinished(timeLimit);
            return false;
        }
        return m_process.exitStatus() == QProcess::NormalExit && m_process.exitCode() == 0;
    }

  private:
    static constexpr int timeLimit = 60000; // ms
    QProcess m_process;
};
