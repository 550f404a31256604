#include "datagram/sspdatagram.h"
#include "datagram/sspfields.h"

#include <cstdint>
#include <cstdlib>

// The content of a datagram file, taken apart.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray text =
        datagram::firstDatagram(QByteArray(reinterpret_cast<const char*>(data), int(size)));
    const datagram::DatagramFields fields(text);
    if (datagram::fnVerifySXX(text, fields) != 0)
        return 0;
    const datagram::SspDatagram read = datagram::readFields(fields);
    const profile::DecimalCounts shown = datagram::shownDecimals(read);
    if (read.samples < 1 || read.samples > 1000 || shown.depth < 0)
        std::abort();
    for (int sample = 0; sample < read.samples; ++sample) {
        for (int column = 0; column < 5; ++column)
            (void)read.value(sample, column);
    }
    return 0;
}
