#include "fuzz/fuzzengine.h"

#include <cstdint>

// Datagrams of other processes against the engine on an empty data folder.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzzEngine().processUdpDatagram(QByteArray(reinterpret_cast<const char*>(data), int(size)));
    return 0;
}
