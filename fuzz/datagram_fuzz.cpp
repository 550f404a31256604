#include "datagram/sspdatagram.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray text(reinterpret_cast<const char*>(data), int(size));
    const datagram::DatagramFields fields(text);
    const int code = datagram::fnVerifySXX(text, fields);
    if (fields.size() == 0 || code < 0 || code > 10)
        std::abort();
    return 0;
}
