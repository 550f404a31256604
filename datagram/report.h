#pragma once

#include "settings/reportformat.h"

#include <vector>

namespace datagram {

/// A message of the settings file's report section: its number, which is its key there, and what
/// its text is filled with. Number 0 is no message.
struct Report
{
    int number = 0;
    std::vector<settings::ReportArgument> arguments;
};

} // namespace datagram
