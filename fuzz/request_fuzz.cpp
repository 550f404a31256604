#include "processing/check.h"
#include "profile/openprofile.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), int(size));
    processing::quickCheck(text);
    profile::requestedFileName(text);

    const QString block = profile::withoutBrackets(text);
    const auto pieces = profile::splitPieces(block, Qt::KeepEmptyParts);
    profile::parseAsvpSaveForm(pieces);
    const profile::ValueLists lists =
        profile::parseValueLists(profile::parseProfileForm(pieces).valueLists);
    for (const float depth : lists.depth) {
        if (!std::isfinite(depth))
            std::abort();
    }
    processing::profileReport(lists.depth, lists.speed, false);
    processing::profileReport(lists.depth, lists.speed, true);
    return 0;
}
