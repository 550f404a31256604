#pragma once

#include <QByteArray>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <string_view>

namespace profile {

/// A number read from a column: not a number where the line has none, or no finite one.
struct ColumnNumber
{
    double value = std::numeric_limits<double>::quiet_NaN();
    int decimals = 0; ///< digits that its text shows behind the point

    bool isKnown() const { return !std::isnan(value); }
};

/// Reads the numbers in `Count` chosen columns of a line, and nothing else of it: casts have tens
/// of thousands of lines, of which most columns are not wanted. Column numbers count from 0; a
/// negative one is absent. The same column may be chosen more than once.
///
/// Columns are separated by a character; a blank stands for a run of blanks and tabs, which may
/// also lead the line. White space around a number does not count, nor does one plus sign.
template <std::size_t Count> class RowReader
{
  public:
    RowReader(char separator, const std::array<int, Count>& columns)
        : m_separator(separator), m_isBlank(separator == ' ')
    {
        for (std::size_t place = 0; place < Count; ++place) {
            if (columns[place] >= 0)
                m_wanted[m_wantedCount++] = {columns[place], place};
        }
        std::sort(m_wanted.begin(), m_wanted.begin() + m_wantedCount,
                  [](const Wanted& a, const Wanted& b) { return a.column < b.column; });
    }

    /// The numbers of a line, in the order in which the columns were given.
    std::array<ColumnNumber, Count> read(std::string_view line) const
    {
        std::array<ColumnNumber, Count> numbers;
        const char* at = line.data();
        const char* const end = at + line.size();
        if (m_isBlank)
            at = skipSeparators(at, end);
        std::size_t next = 0;
        for (int column = 0; next < m_wantedCount; ++column) {
            if (column == m_wanted[next].column) {
                ColumnNumber number;
                at = readNumber(at, end, number);
                for (; next < m_wantedCount && m_wanted[next].column == column; ++next)
                    numbers[m_wanted[next].place] = number;
            }
            at = nextColumn(at, end);
            if (at == nullptr)
                break;
        }
        return numbers;
    }

  private:
    struct Wanted
    {
        int column = 0;
        std::size_t place = 0;
    };

    bool isSeparator(char c) const { return c == m_separator || (m_isBlank && c == '\t'); }

    bool isPadding(char c) const
    {
        return (c == ' ' || c == '\t' || c == '\v' || c == '\f') && !isSeparator(c);
    }

    const char* skipSeparators(const char* at, const char* end) const
    {
        while (at < end && isSeparator(*at))
            ++at;
        return at;
    }

    // Start of the next column, null behind the last one. A run of blanks at the end of a line
    // opens no column.
    const char* nextColumn(const char* at, const char* end) const
    {
        if (m_isBlank) {
            while (at < end && !isSeparator(*at))
                ++at;
            at = skipSeparators(at, end);
            return at < end ? at : nullptr;
        }
        if (at < end && *at == m_separator)
            return at + 1;
        const void* const found =
            at < end ? std::memchr(at, m_separator, std::size_t(end - at)) : nullptr;
        return found != nullptr ? static_cast<const char*>(found) + 1 : nullptr;
    }

    // Reads the column that begins at `at`. A number ends before any separator by itself, so the
    // end of the column need not be found first.
    const char* readNumber(const char* at, const char* end, ColumnNumber& number) const
    {
        while (at < end && isPadding(*at))
            ++at;
        if (end - at > 1 && at[0] == '+' && at[1] != '-')
            ++at;
        double value = 0.0;
        const auto parsed = std::from_chars(at, end, value);
        // Too large for a number, or too small: Qt tells, with infinity or 0.
        if (parsed.ec == std::errc::result_out_of_range)
            value = QByteArray(at, int(parsed.ptr - at)).toDouble();
        else if (parsed.ec != std::errc())
            return at;
        const char* behind = parsed.ptr;
        while (behind < end && isPadding(*behind))
            ++behind;
        if ((behind < end && !isSeparator(*behind)) || !std::isfinite(value))
            return at;
        number.value = value;
        number.decimals = decimalsOf(at, parsed.ptr);
        return behind;
    }

    static int decimalsOf(const char* at, const char* end)
    {
        while (at < end && *at != '.')
            ++at;
        int digits = 0;
        for (++at; at < end && *at >= '0' && *at <= '9'; ++at)
            ++digits;
        return digits;
    }

    char m_separator;
    bool m_isBlank;
    std::array<Wanted, Count> m_wanted;
    std::size_t m_wantedCount = 0;
};

} // namespace profile
