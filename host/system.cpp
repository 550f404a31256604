#include "host/system.h"

#include <QByteArray>
#include <QtGlobal>

#include <clocale>
#include <csignal>
#include <string>

#ifndef Q_OS_WIN
#include <langinfo.h>
#endif

namespace host {

#ifdef Q_OS_WIN

void prepareProcess() {}

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
