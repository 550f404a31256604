#include "fuzz/fuzzengine.h"

#include <cstdint>

// Whole messages against the engine on an empty data folder.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzzEngine().requestWebSocket(
        0, QStringLiteral("SVP_WebInterface"),
        QString::fromUtf8(reinterpret_cast<const char*>(data), int(size)));
    return 0;
}
