#include "settings/reportformat.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view format(reinterpret_cast<const char*>(data), size);
    if (settings::formatReport(format, {3, 10.5, -1e300}).size() > settings::maxReportLength)
        std::abort();
    settings::formatReport(format, {});
    return 0;
}
