#include "processing/extensionrows.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace {

void check(bool holds)
{
    if (!holds)
        std::abort();
}

} // namespace

// The text of an extension profile, and its rows joined below a short cast.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const processing::ExtensionRows rows =
        processing::parseExtensionRows(QByteArray(reinterpret_cast<const char*>(data), int(size)));
    check(rows.depths.size() == rows.speeds.size());
    for (int i = 1; i < rows.depths.size(); ++i)
        check(rows.depths[i] > rows.depths[i - 1]);

    raytrace::Layers samples = {{0.0, 0.0, 1500.0}, {0.0, 10.0, 1490.0}};
    check(processing::extend(samples, rows) == 1);
    check(samples.size() >= 2 && samples.size() <= 2 + std::size_t(rows.depths.size()));
    check(samples[1].d == 10.0 && samples[1].c == 1490.0);
    for (std::size_t i = 2; i < samples.size(); ++i)
        check(samples[i].d > samples[i - 1].d && std::isfinite(samples[i].c));
    return 0;
}
