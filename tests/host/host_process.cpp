#include "tests/host/host_process.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcessEnvironment>
#include <gtest/gtest.h>

#ifdef Q_OS_WIN
#include <qt_windows.h>
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
#ifdef Q_OS_WIN
    // On our console, and in a group of its own: Ctrl+Break is to reach it alone.
    process_.setCreateProcessArgumentsModifier([](QProcess::CreateProcessArguments* start) {
        start->flags &= ~static_cast<unsigned long>(CREATE_NO_WINDOW);
        start->flags |= CREATE_NEW_PROCESS_GROUP;
    });
#endif
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
    return ended ? process_.exitCode() : -1;
}

void HostProcess::terminate()
{
#ifdef Q_OS_WIN
    EXPECT_NE(GenerateConsoleCtrlEvent(CTRL_BREAK_EVENT, static_cast<DWORD>(processId())), 0);
#else
    process_.terminate();
#endif
}

bool HostProcess::canBeAsked()
{
#ifdef Q_OS_WIN
    return GetConsoleCP() != 0;
#else
    return true;
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
