#include "profile/importfilter.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>

// The first line is a filter row, the rest the file that it reads.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::size_t end = std::min(input.find('\n'), input.size());
    profile::FilterRow row;
    if (!profile::parseFilterRow(QString::fromUtf8(input.data(), int(end)), row))
        return 0;
    const QVector<float> record = profile::decodeColumns(input.substr(end), row.format);
    for (const float value : record) {
        if (!std::isfinite(value))
            std::abort();
    }
    return 0;
}
