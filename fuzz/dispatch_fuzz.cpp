#include "platform/platform.h"
#include "plugin/csvp_webinterface.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <cstdint>

// Whole messages against the engine on an empty data folder.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static int argumentCount = 1;
    static char name[] = "fuzz_dispatch";
    static char* arguments[] = {name, nullptr};
    static const QCoreApplication application(argumentCount, arguments);
    static const QTemporaryDir folder;
    static CSVP_WebInterface* const plugin = [] {
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
        platform::setDebugSink([](const std::string&) {});
        qputenv("ProgramData", QFile::encodeName(folder.path()));
        return new CSVP_WebInterface;
    }();
    plugin->requestWebSocket(0, QStringLiteral("SVP_WebInterface"),
                             QString::fromUtf8(reinterpret_cast<const char*>(data), int(size)));
    return 0;
}
