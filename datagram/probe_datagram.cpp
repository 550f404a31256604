#include "datagram/probe_header.h"
#include "datagram/probe_level.h"
#include "datagram/probe_readers.h"
#include "datagram/probe_text.h"
#include "profile/textfile.h"

// Sound speed profile datagrams of content identifier 50: rows of pressure (MPa), an empty field,
// temperature and conductivity (S/m).

namespace datagram::probe {

namespace {

constexpr std::size_t headerFields = 7;
constexpr std::size_t rowFields = 5;
constexpr std::size_t tailFields = 7;
constexpr int mostSamples = 1000;
constexpr double decibarsPerMegapascal = 100.0;
constexpr double millisiemensPerSiemens = 10.0;

// Line ends separate fields as commas do; a comma right after one adds no field. Without commas
// blanks separate. Fields beyond `most` are passed over.
std::vector<std::string_view> fieldsOf(std::string_view text, std::size_t most)
{
    const Delimiter delimiter =
        text.find(',') == std::string_view::npos ? Delimiter::Blanks : Delimiter::Comma;
    std::vector<std::string_view> all;
    std::vector<std::string_view> fields;
    profile::LineReader lines(text.substr(0, text.rfind('*')));
    std::string_view line;
    while (all.size() < most && lines.next(line)) {
        if (!all.empty() && !line.empty() && line.front() == ',')
            line.remove_prefix(1);
        splitFields(line, delimiter, fields, most - all.size());
        all.insert(all.end(), fields.begin(), fields.end());
    }
    return all;
}

void takeTime(const std::vector<std::string_view>& fields, ProbeHeader& header)
{
    const std::string_view clock = profile::trimmedText(fields[3]);
    int day = 0;
    int month = 0;
    int year = 0;
    int hours = 0;
    int minutes = 0;
    int seconds = 0;
    if (clock.size() == 6 && wholeDigits(clock.substr(0, 2), hours) &&
        wholeDigits(clock.substr(2, 2), minutes) && wholeDigits(clock.substr(4), seconds) &&
        wholeDigits(fields[4], day) && wholeDigits(fields[5], month) &&
        wholeDigits(fields[6], year))
        setDateTime(header, year, month, day, hours, minutes, seconds);
}

// Degrees times 100 plus minutes, and the letter of the hemisphere.
void takePosition(const std::vector<std::string_view>& fields, std::size_t first,
                  ProbeHeader& header)
{
    if (fields.size() < first + 4)
        return;
    const auto letterOf = [&fields](std::size_t index) {
        return std::string(profile::trimmedText(fields[index]));
    };
    if (!letterOf(first + 1).empty())
        takeLatitude(header, std::string(fields[first]) + letterOf(first + 1),
                     Packing::DegreesMinutes);
    if (!letterOf(first + 3).empty())
        takeLongitude(header, std::string(fields[first + 2]) + letterOf(first + 3),
                      Packing::DegreesMinutes);
}

} // namespace

int readPressureDatagram(std::string_view text, ProbeCast& cast)
{
    if (text.size() < 4 || text[0] != '$' || text[3] != 'S' ||
        text.find("S50") == std::string_view::npos) {
        cast.reason = QStringLiteral("no profile datagram of content identifier 50");
        return 0;
    }
    constexpr std::size_t countField = 2;
    const std::vector<std::string_view> start = fieldsOf(text, countField + 1);
    int stated = 0;
    if (start.size() <= countField || !wholeDigits(start[countField], stated)) {
        cast.reason = QStringLiteral("no rows of levels");
        return 0;
    }
    if (stated < 1 || stated > mostSamples) {
        cast.reason =
            QStringLiteral("it states %1 samples; 1 to %2 are legal").arg(stated).arg(mostSamples);
        return 0;
    }
    const std::vector<std::string_view> fields =
        fieldsOf(text, headerFields + std::size_t(stated) * rowFields + tailFields);
    if (fields.size() < headerFields + rowFields) {
        cast.reason = QStringLiteral("no rows of levels");
        return 0;
    }
    const std::size_t count =
        std::min(std::size_t(stated), (fields.size() - headerFields) / rowFields);
    takeTime(fields, cast.header);
    takePosition(fields, headerFields + count * rowFields, cast.header);
    const double latitude = latitudeDegrees(cast.header);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t row = headerFields + i * rowFields;
        seawater::Level level;
        level.pressure = wholeNumber(fields[row]) * decibarsPerMegapascal;
        level.temperature = wholeNumber(fields[row + 2]);
        level.conductivity = wholeNumber(fields[row + 3]) * millisiemensPerSiemens;
        addLevel(cast, level, latitude);
    }
    return finished(cast);
}

} // namespace datagram::probe
