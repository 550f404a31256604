#include "profile/asvpfile.h"
#include "profile/importfilter.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    profile::FilterRow row;
    profile::findFilter(profile::builtInFilters(), QStringLiteral("x.asvp"), row);
    const profile::AsvpFile file =
        profile::readAsvp(QByteArray(reinterpret_cast<const char*>(data), int(size)), row.format);
    if (file.record.size() % profile::recordSlots != 0 ||
        (!file.header.isEmpty() && file.header.size() != profile::asvpHeaderWords))
        std::abort();
    return 0;
}
