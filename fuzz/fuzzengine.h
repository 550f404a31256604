#pragma once

#include "platform/platform.h"
#include "plugin/csvp_webinterface.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

/// The engine on a data folder of its own, made at the first call, its log kept quiet.
inline CSVP_WebInterface& fuzzEngine()
{
    static int argumentCount = 1;
    static char name[] = "fuzz";
    static char* arguments[] = {name, nullptr};
    static const QCoreApplication application(argumentCount, arguments);
    static const QTemporaryDir folder;
    static CSVP_WebInterface* const plugin = [] {
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
        platform::setDebugSink([](const std::string&) {});
        qputenv("ProgramData", QFile::encodeName(folder.path()));
        return new CSVP_WebInterface;
    }();
    return *plugin;
}
