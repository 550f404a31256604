#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace settings {

/// A value for a report message: a sample number, or a depth or sound speed.
using ReportArgument = std::variant<int, double>;

/// Most bytes that a formatted report message has: a buffer of 1500 with its end mark.
constexpr std::size_t maxReportLength = 1499;

/// Fills a report message as `printf` would, but only as far as the messages need it: "%d" takes
/// the next integer argument, "%.2f" the next floating-point one, "%%" is a percent sign. The
/// texts can be edited by hand in the settings file, so whatever else stands behind a "%" ("%s",
/// "%n", a conversion without an argument left) is shown as text. The result is cut at
/// `maxReportLength` bytes. The decimal point is a point in every locale.
std::string formatReport(std::string_view format, const std::vector<ReportArgument>& arguments);

} // namespace settings
