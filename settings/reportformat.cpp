#include "settings/reportformat.h"

#include "settings/numbers.h"

namespace settings {

namespace {

// Hands out the arguments of one kind in their order, as the argument registers of a C call do.
template <typename Kind> class Cursor
{
  public:
    explicit Cursor(const std::vector<ReportArgument>& arguments) : m_arguments(arguments) {}

    const Kind* next()
    {
        while (m_index < m_arguments.size()) {
            if (const Kind* value = std::get_if<Kind>(&m_arguments[m_index++]))
                return value;
        }
        return nullptr;
    }

  private:
    const std::vector<ReportArgument>& m_arguments;
    std::size_t m_index = 0;
};

bool startsWith(std::string_view text, std::string_view start)
{
    return text.substr(0, start.size()) == start;
}

} // namespace

std::string formatReport(std::string_view format, const std::vector<ReportArgument>& arguments)
{
    Cursor<int> integers(arguments);
    Cursor<double> reals(arguments);
    std::string text;
    while (!format.empty() && text.size() < maxReportLength) {
        std::size_t used = 1;
        if (startsWith(format, "%%")) {
            text += '%';
            used = 2;
        } else if (startsWith(format, "%d")) {
            const int* value = integers.next();
            text += value != nullptr ? std::to_string(*value) : "%d";
            used = 2;
        } else if (startsWith(format, "%.2f")) {
            const double* value = reals.next();
            text += value != nullptr ? fixedText(*value, 2) : "%.2f";
            used = 4;
        } else {
            used = std::min(format.find('%', 1), format.size());
            text.append(format.substr(0, used));
        }
        format.remove_prefix(used);
    }
    if (text.size() > maxReportLength)
        text.resize(maxReportLength);
    return text;
}

} // namespace settings
