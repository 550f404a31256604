#pragma once

#include <QByteArray>

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
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
                insert({columns[place], place});
        }
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

    // Keeps the chosen columns in their order in the line.
    void insert(const Wanted& wanted)
    {
        std::size_t at = m_wantedCount++;
        for (; at > 0 && m_wanted[at - 1].column > wanted.column; --at)
            m_wanted[at] = m_wanted[at - 1];
        m_wanted[at] = wanted;
    }

    bool isSeparator(char c) const { return c == m_separator || (m_isBlank && c == '\t'); }

    bool isPadding(char c) const
    {
        return c <= ' ' && (c == ' ' || c == '\t' || c == '\v' || c == '\f') && !isSeparator(c);
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
        ColumnNumber parsed;
        const char* behind = parsePlain(at, end, parsed);
        if (behind == nullptr || !isColumnEnd(behind, end))
            behind = parseAny(at, end, parsed);
        if (behind == nullptr || !isColumnEnd(behind, end))
            return at;
        number = parsed;
        return behind;
    }

    // Whether nothing but white space stands between here and the end of the column.
    bool isColumnEnd(const char* at, const char* end) const
    {
        while (at < end && isPadding(*at))
            ++at;
        return at == end || isSeparator(*at);
    }

    // Digits with or without a point, as nearly all numbers are: up to 15 digits are a whole number
    // that a double holds exactly, and so is the power of ten to divide it by, so that the quotient
    // is the nearest double. Null when there are more digits, or none.
    static const char* parsePlain(const char* at, const char* end, ColumnNumber& number)
    {
        constexpr int maxDigits = 15;
        constexpr double powers[maxDigits + 1] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                  1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
        const bool isNegative = at < end && *at == '-';
        if (isNegative)
            ++at;
        const char* const start = at;
        std::int64_t digits = 0;
        // A run too long is cut here, and refused below.
        const char* const limit = end - at > maxDigits + 2 ? at + maxDigits + 2 : end;
        for (; at < limit && *at >= '0' && *at <= '9'; ++at)
            digits = digits * 10 + (*at - '0');
        auto count = at - start;
        std::ptrdiff_t decimals = 0;
        if (at < limit && *at == '.') {
            const char* const point = at;
            for (++at; at < limit && *at >= '0' && *at <= '9'; ++at)
                digits = digits * 10 + (*at - '0');
            decimals = at - point - 1;
            count += decimals;
        }
        if (count == 0 || count > maxDigits)
            return nullptr;
        const double size = double(digits) / powers[decimals];
        number.value = isNegative ? -size : size;
        number.decimals = int(decimals);
        return at;
    }

    // Any number that the standard library reads, if it is finite.
    static const char* parseAny(const char* at, const char* end, ColumnNumber& number)
    {
        double value = 0.0;
        const auto parsed = std::from_chars(at, end, value);
        // Too large for a number, or too small: Qt tells, with infinity or 0.
        if (parsed.ec == std::errc::result_out_of_range)
            value = QByteArray(at, int(parsed.ptr - at)).toDouble();
        else if (parsed.ec != std::errc())
            return nullptr;
        if (!std::isfinite(value))
            return nullptr;
        number.value = value;
        number.decimals = decimalsOf(at, parsed.ptr);
        return parsed.ptr;
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
