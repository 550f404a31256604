#include "platform/process.h"

#include <QDir>
#include <QFileInfo>
#include <qt_windows.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <io.h>
#include <winsock2.h>

namespace platform {

namespace {

BOOL WINAPI onConsoleEvent(DWORD event)
{
    if (event == CTRL_C_EVENT)
        return FALSE; // as the C library has it
    std::raise(SIGBREAK);
    if (event == CTRL_BREAK_EVENT)
        return TRUE;
    // The process is ended as soon as this returns.
    Sleep(INFINITE);
    return TRUE;
}

} // namespace

void useUtf8()
{
    static const UINT earlier = GetConsoleOutputCP();
    if (earlier != 0 && SetConsoleOutputCP(CP_UTF8) != 0)
        std::atexit([] { SetConsoleOutputCP(earlier); }); // the console outlives us
}

void useBareOutput()
{
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    // Elsewhere it is never buffered; here it is in a file, and what a crash leaves there counts.
    std::setvbuf(stderr, nullptr, _IONBF, 0);
}

void setEnvironment(const char* name, const QString& value)
{
    // Wide: a narrow value would lose the letters outside of the system's code page.
    _wputenv_s(QString::fromLatin1(name).toStdWString().c_str(), value.toStdWString().c_str());
}

QStringList expandedPatterns(const QStringList& arguments)
{
    QStringList expanded;
    for (const QString& argument : arguments) {
        const QFileInfo pattern(argument);
        const QString name = pattern.fileName();
        QStringList names;
        if (name.contains(QLatin1Char('*')) || name.contains(QLatin1Char('?'))) {
            // Windows has no sets of letters: a bracket is part of the name.
            const QString filter = QString(name).replace(QLatin1Char('['), QLatin1String("[[]"));
            names = QDir(pattern.path()).entryList({filter}, QDir::Files, QDir::Name);
        }
        // As it was written, so that messages name the files as the user does.
        const QString folder = argument.chopped(name.size());
        for (const QString& found : qAsConst(names))
            expanded.append(folder + found);
        if (names.isEmpty())
            expanded.append(argument);
    }
    return expanded;
}

QString moduleFileName(const QString& module)
{
    return module + QStringLiteral(".dll");
}

void holdConsole()
{
    DWORD processes[2];
    if (_isatty(_fileno(stderr)) == 0 || GetConsoleProcessList(processes, 2) != 1)
        return;
    std::fputs("Press Enter to close this window.\n", stderr);
    std::getchar();
}

std::vector<int> stopSignals()
{
    return {SIGINT, SIGTERM, SIGBREAK};
}

void stopWithTheWindow()
{
    // Handlers are asked from the last to the first, and that of the C library, which comes with
    // the first signal that is listened to, lets the process end at once.
    SetConsoleCtrlHandler(onConsoleEvent, TRUE);
}

void claimPort(std::intptr_t socket)
{
    // Otherwise a program that asks to reuse addresses could take the port over.
    const BOOL isExclusive = TRUE;
    ::setsockopt(SOCKET(socket), SOL_SOCKET, SO_EXCLUSIVEADDRUSE,
                 reinterpret_cast<const char*>(&isExclusive), sizeof isExclusive);
}

} // namespace platform
