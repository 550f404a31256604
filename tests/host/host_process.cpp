#include "tests/host/host_process.h"

#include "tests/places.h"

#include <QDebug>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcessEnvironment>
#include <gtest/gtest.h>

#ifdef Q_OS_WIN
#include <qt_windows.h>

#include <cstdint>
#endif

namespace hosttest {

void writeFile(const QString& path, const QByteArray& content)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    ASSERT_EQ(file.write(content), content.size());
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

Scene::Scene(const QString& dataName) : dataName_(dataName)
{
    writeFile(webFolder() + QStringLiteral("/index.html"), "<!doctype html><title>page</title>");
    QDir().mkpath(samplesFolder());
}

QString Scene::profileFolder() const
{
    return dataFolder() + QStringLiteral("/Ardentide/qrvdata/svp_abscoeff");
}

QStringList Scene::arguments() const
{
    return {QStringLiteral("--plugin"),  QStringLiteral(SVP_ECHO_PLUGIN),
            QStringLiteral("--data"),    dataFolder(),
            QStringLiteral("--web"),     webFolder(),
            QStringLiteral("--samples"), samplesFolder(),
            QStringLiteral("--listen"),  QStringLiteral("127.0.0.1:0")};
}

HostProcess::HostProcess(const QStringList& arguments, const QStringList& environment)
{
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    for (const QString& assignment : environment)
        variables.insert(assignment.section(QLatin1Char('='), 0, 0),
                         assignment.section(QLatin1Char('='), 1));
    process_.setProcessEnvironment(variables);
    // A file, since nobody drains a pipe while a test talks to the host.
    process_.setStandardErrorFile(folder_.filePath(QStringLiteral("stderr")));
    process_.start(QStringLiteral(SVP_HOST_FILE), arguments);
}

HostProcess::~HostProcess()
{
    if (testing::Test::HasFailure())
        std::fprintf(stderr, "---- log of the host ----\n%s\n", errorOutput().constData());
    if (process_.state() == QProcess::NotRunning)
        return;
    process_.kill();
    process_.waitForFinished(kPatienceMs);
}

bool HostProcess::awaitAddress()
{
    QElapsedTimer clock;
    clock.start();
    while (!process_.canReadLine() && clock.elapsed() < kPatienceMs) {
        if (!process_.waitForReadyRead(100) && process_.state() == QProcess::NotRunning)
            return false;
    }
    if (!process_.canReadLine())
        return false;
    const QByteArray line = process_.readLine();
    output_ += line;
    address_ = line.trimmed();
    return true;
}

quint16 HostProcess::port() const
{
    return address_.mid(address_.lastIndexOf(':') + 1).toUShort();
}

int HostProcess::awaitExit(int patienceMs)
{
    if (process_.state() != QProcess::NotRunning)
        process_.waitForFinished(patienceMs);
    const bool ended = process_.state() == QProcess::NotRunning &&
                       process_.exitStatus() == QProcess::NormalExit &&
                       process_.error() != QProcess::FailedToStart;
    if (ended)
        return process_.exitCode();
    qWarning("the host did not end by itself: %s; exit code 0x%x",
             qPrintable(process_.errorString()), unsigned(process_.exitCode()));
    return -1;
}

#ifdef Q_OS_WIN
void* HostProcess::beginWindowEvent(unsigned long event)
{
    // Loaded at the same place in all programs.
    const auto routine = reinterpret_cast<LPTHREAD_START_ROUTINE>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"kernelbase.dll"), "CtrlRoutine")));
    const HANDLE process =
        OpenProcess(PROCESS_CREATE_THREAD | PROCESS_QUERY_INFORMATION | PROCESS_VM_OPERATION |
                        PROCESS_VM_WRITE | PROCESS_VM_READ,
                    FALSE, static_cast<DWORD>(processId()));
    const HANDLE thread = CreateRemoteThread(
        process, nullptr, 0, routine, reinterpret_cast<void*>(std::uintptr_t(event)), 0, nullptr);
    EXPECT_NE(thread, nullptr) << GetLastError();
    CloseHandle(process);
    return thread;
}
#endif

void HostProcess::terminate()
{
#ifdef Q_OS_WIN
    CloseHandle(beginWindowEvent(CTRL_BREAK_EVENT));
#else
    process_.terminate();
#endif
}

bool HostProcess::isRunning()
{
    process_.waitForFinished(1);
    return process_.state() == QProcess::Running;
}

QByteArray HostProcess::output()
{
    output_ += process_.readAllStandardOutput();
    return output_;
}

QByteArray HostProcess::errorOutput() const
{
    return readFile(folder_.filePath(QStringLiteral("stderr")));
}

RunningHost::RunningHost(const QStringList& moreArguments)
    : process(scene.arguments() + moreArguments)
{
    EXPECT_TRUE(process.awaitAddress()) << "the host did not start";
}

} // namespace hosttest
