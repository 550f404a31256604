#include "platform/process.h"

#include <QFile>

#include <clocale>
#include <csignal>
#include <langinfo.h>
#include <string>
#include <sys/socket.h>

namespace platform {

void useUtf8()
{
    // Qt takes the codec of file names from the locale. LC_ALL, because it would overrule a
    // narrower variable.
    const bool known = std::setlocale(LC_ALL, "") != nullptr;
    if (!known || std::string(nl_langinfo(CODESET)) != "UTF-8")
        qputenv("LC_ALL", "C.UTF-8");
}

void useBareOutput()
{
    std::signal(SIGPIPE, SIG_IGN);
}

void setEnvironment(const char* name, const QString& value)
{
    qputenv(name, QFile::encodeName(value));
}

QStringList expandedPatterns(const QStringList& arguments)
{
    return arguments;
}

QString moduleFileName(const QString& module)
{
    return QStringLiteral("lib%1.so").arg(module);
}

void holdConsole() {}

std::vector<int> stopSignals()
{
    return {SIGINT, SIGTERM};
}

void stopWithTheWindow() {}

void claimPort(std::intptr_t socket)
{
    const int isReused = 1;
    ::setsockopt(int(socket), SOL_SOCKET, SO_REUSEADDR, &isReused, sizeof isReused);
}

} // namespace platform
