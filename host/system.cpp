#include "host/system.h"

#include <QFile>
#include <QtGlobal>

#include <clocale>
#include <csignal>
#include <string>

#ifdef Q_OS_WIN
#include <qt_windows.h>

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <io.h>
#else
#include <langinfo.h>
#endif

namespace host {

#ifdef Q_OS_WIN

namespace {

UINT earlierCodePage = 0;

} // namespace

void prepareProcess()
{
    // The same bytes on every system: scripts read the address line and the log.
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    // Elsewhere it is never buffered; here it is in a file, and what a crash leaves there counts.
    std::setvbuf(stderr, nullptr, _IONBF, 0);
    // File names in a console are UTF-8 as in the log of a service; the console outlives us.
    earlierCodePage = GetConsoleOutputCP();
    if (earlierCodePage != 0 && SetConsoleOutputCP(CP_UTF8) != 0)
        std::atexit([] { SetConsoleOutputCP(earlierCodePage); });
}

void setEnvironment(const char* name, const QString& value)
{
    // Wide: a narrow value would lose the letters outside of the system's code page.
    _wputenv_s(QString::fromLatin1(name).toStdWString().c_str(), value.toStdWString().c_str());
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

bool reusesAddress()
{
    return false;
}

#else

void prepareProcess()
{
    std::signal(SIGPIPE, SIG_IGN);

    // Qt takes the codec of file names from the locale. LC_ALL, because it would overrule a
    // narrower variable.
    const bool known = std::setlocale(LC_ALL, "") != nullptr;
    if (!known || std::string(nl_langinfo(CODESET)) != "UTF-8")
        qputenv("LC_ALL", "C.UTF-8");
}

void setEnvironment(const char* name, const QString& value)
{
    qputenv(name, QFile::encodeName(value));
}

void holdConsole() {}

std::vector<int> stopSignals()
{
    return {SIGINT, SIGTERM};
}

bool reusesAddress()
{
    return true;
}

#endif

void keepNumbersPlain()
{
    std::setlocale(LC_NUMERIC, "C");
}

} // namespace host
