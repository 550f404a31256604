#include "datagram/probe_header.h"
#include "datagram/probe_readers.h"
#include "datagram/probe_text.h"
#include "profile/textfile.h"

#include <array>

// The `.asvp` files that the conversion writes, read back with every doubt an error: what passes
// here goes to the echo-sounder.

namespace datagram::probe {

namespace {

constexpr std::string_view firstKeyword = "SoundVelocity";

// Words of the header, from the keyword on.
constexpr std::size_t timeWord = 3;
constexpr std::size_t latitudeWord = 4;
constexpr std::size_t longitudeWord = 5;
constexpr std::size_t countWord = 11;
constexpr std::size_t headerWords = 12;

using HeaderWords = std::array<std::string_view, headerWords>;

HeaderWords wordsOf(std::string_view line)
{
    HeaderWords words;
    Scanner scanner(line.substr(0, line.rfind(')')));
    for (std::string_view& word : words)
        scanner.word(word);
    return words;
}

// The bounds admit hour 24, minute 60 and second 60; files with them are about.
bool takeTime(std::string_view stamp, ProbeHeader& header)
{
    if ((stamp.size() != 12 && stamp.size() != 14) ||
        stamp.find_first_not_of("0123456789") != std::string_view::npos)
        return false;
    const auto number = [&stamp](std::size_t first, std::size_t length) {
        int value = 0;
        return first < stamp.size() && wholeDigits(stamp.substr(first, length), value) ? value : 0;
    };
    header.year = number(0, 4);
    header.month = number(4, 2);
    header.day = number(6, 2);
    header.hours = number(8, 2);
    header.minutes = number(10, 2);
    header.seconds = number(12, 2);
    header.hasTime = header.year >= 1900 && header.year <= 2500 && header.month >= 1 &&
                     header.month <= 12 && header.day >= 1 && header.day <= 31 &&
                     header.hours < 25 && header.minutes < 61 && header.seconds < 61;
    return header.hasTime;
}

void takePosition(const HeaderWords& words, ProbeHeader& header)
{
    // A bare "0" is what the conversion writes where there is no position.
    if (words[latitudeWord] != "0")
        setLatitude(header, wholeNumber(words[latitudeWord]));
    if (words[longitudeWord] != "0")
        setLongitude(header, wholeNumber(words[longitudeWord]));
}

bool countAgrees(std::string_view stated, std::size_t found)
{
    int count = 0;
    return stated.empty() || (wholeDigits(stated, count) && std::size_t(count) == found);
}

} // namespace

int readConvertedProfile(std::string_view text, ProbeCast& cast)
{
    const std::size_t start = text.find(firstKeyword);
    if (start == std::string_view::npos)
        return ProbeUnknownFormat;
    profile::LineReader lines(text.substr(start));
    std::string_view line;
    lines.next(line);
    const HeaderWords words = wordsOf(line);
    if (!takeTime(words[timeWord], cast.header)) {
        cast.header = {};
        return ProbeIllegalTime;
    }
    takePosition(words, cast.header);

    while (lines.next(line)) {
        Scanner row(line);
        ProbeSample sample;
        // What is no number at all is told from "nan", which the check of the samples names.
        if (row.anyNumber(sample.depth) && row.anyNumber(sample.speed))
            cast.samples.push_back(sample);
        else if (!isBlank(line))
            return ProbeIllegalRow;
    }
    if (!countAgrees(words[countWord], cast.samples.size()))
        return ProbeCountDiffers;
    return int(cast.samples.size());
}

} // namespace datagram::probe
