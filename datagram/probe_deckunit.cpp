#include "datagram/probe_header.h"
#include "datagram/probe_readers.h"
#include "datagram/probe_text.h"
#include "profile/textfile.h"

#include <QDateTime>

#include <array>

// What the Sea-Bird SBE 11plus deck unit sends in real time: no time, no position, rows of six
// numbers after the line that tells of its computation.

namespace datagram::probe {

int readSeaBirdDeckUnit(std::string_view text, ProbeCast& cast)
{
    constexpr std::string_view keyword = "computation";
    const std::size_t start = text.find(keyword);
    if (text.find("SBE 11plus") == std::string_view::npos || start == std::string_view::npos) {
        cast.reason = QStringLiteral("no line of an SBE 11plus with \"computation\"");
        return 0;
    }
    cast.instrument = QStringLiteral("SBE11plus");
    const QDateTime now = QDateTime::currentDateTimeUtc();
    setDateTime(cast.header, now.date().year(), now.date().month(), now.date().day(),
                now.time().hour(), now.time().minute(), now.time().second());

    profile::LineReader lines(text.substr(start));
    std::string_view line;
    lines.next(line);
    while (lines.next(line)) {
        Scanner row(line);
        std::array<double, 6> numbers{};
        bool isRow = true;
        for (double& number : numbers)
            isRow = isRow && row.number(number);
        if (!isRow || (numbers[0] == 0.0 && numbers[1] == 0.0))
            break;
        cast.samples.push_back({numbers[0], numbers[1], numbers[2]});
    }
    if (cast.samples.empty())
        cast.reason = QStringLiteral("no row of six numbers behind \"computation\"");
    return int(cast.samples.size());
}

} // namespace datagram::probe
