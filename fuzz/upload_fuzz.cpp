#include "plugin/upload.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    const QByteArray request(reinterpret_cast<const char*>(data), int(size));
    QString name;
    if (extractUpload(request, name).size() > request.size() ||
        lastElement(name).contains(QLatin1Char('/')))
        std::abort();
    return 0;
}
