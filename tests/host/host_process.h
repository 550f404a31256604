#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <chrono>
#include <thread>

namespace hosttest {

/// How long anything may take before a test gives up. Generous, since it is only ever waited out
/// by a test that fails.
constexpr int kPatienceMs = 60000;

/// Writes a file, folders included.
void writeFile(const QString& path, const QByteArray& content);
QByteArray readFile(const QString& path);

/// Waits until a condition holds; false if patience ends first.
template <class Condition> bool eventually(Condition holds)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(kPatienceMs);
    while (!holds()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

/// A folder of its own for one host: data/, web/ with an index.html, samples/.
class Scene
{
  public:
    explicit Scene(const QString& dataName = QStringLiteral("data"));

    QString path(const QString& name) const { return folder_.filePath(name); }
    QString dataFolder() const { return path(dataName_); }
    QString webFolder() const { return path(QStringLiteral("web")); }
    QString samplesFolder() const { return path(QStringLiteral("samples")); }
    QString profileFolder() const;

    /// Options that start a host with the echoing plug-in on any free port.
    QStringList arguments() const;

  private:
    QTemporaryDir folder_;
    QString dataName_;
};

/// A running host program.
class HostProcess
{
  public:
    /// Starts the program; with `arguments` alone, nothing is added.
    explicit HostProcess(const QStringList& arguments, const QStringList& environment = {});
    ~HostProcess();

    /// Waits for the line that says the address. False if the program ended instead.
    bool awaitAddress();

    /// The first line on stdout, without its end.
    QByteArray address() const { return address_; }
    quint16 port() const;

    /// Waits for the program's end by itself, and gives its exit code; -1 for a crash or none.
    int awaitExit(int patienceMs = kPatienceMs);

    /// Asks it to stop, as a service manager does.
    void terminate();

#ifdef Q_OS_WIN
    /// Has it told what it is told of its window (CTRL_BREAK_EVENT, CTRL_CLOSE_EVENT …). Windows
    /// tells programs in a thread of their own; this begins one, which a window is not needed for.
    /// The caller closes the handle of that thread.
    void* beginWindowEvent(unsigned long event);
#endif
    qint64 processId() const
    {
        return process_.processId();
    }
    bool isRunning();

    /// What it has written so far.
    QByteArray output();
    QByteArray errorOutput() const;

  private:
    QTemporaryDir folder_;
    QProcess process_;
    QByteArray address_;
    QByteArray output_;
};

/// A scene and a host that serves it, for the many tests that need no more.
struct RunningHost
{
    explicit RunningHost(const QStringList& moreArguments = {});

    Scene scene;
    HostProcess process;
    quint16 port() const { return process.port(); }
};

} // namespace hosttest
