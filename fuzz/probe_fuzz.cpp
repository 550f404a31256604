#include "convert/detection.h"
#include "datagram/convertedfile.h"
#include "datagram/receivedata.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace {

void check(bool holds)
{
    if (!holds)
        std::abort();
}

// Whatever was read can be written, and reads back as many samples.
void checkWritten(const datagram::CReceiveData& data)
{
    const QString nothing;
    const QByteArray text = datagram::convertedFileText(
        QStringLiteral("20261115123456"), nothing, nothing, data.cast().instrument, data.samples());
    check(datagram::CReceiveData().parse(datagram::ConvertedAsvp, text) ==
          int(data.samples().size()));
}

void checkHeader(const datagram::ProbeHeader& header)
{
    check(header.latitude >= 0.0 && header.latitude <= 9000.0);
    check(header.longitude >= 0.0 && header.longitude <= 18000.0);
    check(header.latitudeMark == 'N' || header.latitudeMark == 'S' ||
          (header.latitudeMark == 'I' && header.latitude == 0.0));
    check(header.longitudeMark == 'E' || header.longitudeMark == 'W' ||
          (header.longitudeMark == 'I' && header.longitude == 0.0));
    check(!header.hasTime || (header.year >= 1900 && header.year <= 2500));
}

} // namespace

// The first byte is the format, the rest the text; beyond the formats the text is recognised first.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    constexpr int choices = 16;
    if (size == 0)
        return 0;
    const QByteArray text(reinterpret_cast<const char*>(bytes) + 1, int(size) - 1);
    int format = bytes[0] % choices;
    if (format > datagram::PlainColumns) {
        const convert::Detection detection = convert::detectFormat(text, QStringLiteral("csv"));
        check((detection.format < 0) == !detection.refusal.isEmpty());
        format = detection.format;
    }
    datagram::CReceiveData data;
    const int result = data.parse(format, text);
    check(result <= 0 ? data.samples().empty() : std::size_t(result) == data.samples().size());
    // What is no number in a converted profile is left to the check of its samples.
    const bool isCheckedLater = format == datagram::ConvertedAsvp;
    for (const datagram::ProbeSample& sample : data.samples())
        check(isCheckedLater || (std::isfinite(sample.depth) && std::isfinite(sample.speed) &&
                                 std::isfinite(sample.third)));
    checkHeader(data.header());
    checkWritten(data);
    return 0;
}
