#include "datagram/probe_text.h"

#include "settings/characters.h"
#include "settings/numbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace datagram::probe {

namespace {

bool sameLetter(char letter, char lowerCase)
{
    return settings::lower(letter) == lowerCase;
}

constexpr bool isSpace(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// As profile::trimmedText, for fields, which are short and many.
std::string_view trimmedField(std::string_view field)
{
    while (!field.empty() && isSpace(field.front()))
        field.remove_prefix(1);
    while (!field.empty() && isSpace(field.back()))
        field.remove_suffix(1);
    return field;
}

// As std::from_chars, but with a "+", and with what is too small as 0 and too large as infinity.
const char* takeNumber(const char* at, const char* end, double& value)
{
    const char* const start = at;
    if (end - at > 1 && *at == '+' && at[1] != '-' && at[1] != '+')
        ++at;
    const auto parsed = std::from_chars(at, end, value);
    if (parsed.ec == std::errc())
        return parsed.ptr;
    if (parsed.ec != std::errc::result_out_of_range)
        return start;
    value = settings::leadingDouble({at, std::size_t(parsed.ptr - at)});
    return parsed.ptr;
}

} // namespace

bool Scanner::number(double& value)
{
    skipBlanks();
    double found = 0.0;
    const char* const behind = takeNumber(m_at, m_end, found);
    if (behind == m_at || !std::isfinite(found))
        return false;
    m_at = behind;
    value = found;
    return true;
}

bool Scanner::anyNumber(double& value)
{
    skipBlanks();
    const char* const behind = takeNumber(m_at, m_end, value);
    const bool isNumber = behind != m_at;
    m_at = behind;
    return isNumber;
}

bool Scanner::word(std::string_view& text)
{
    skipBlanks();
    const char* const start = m_at;
    while (m_at != m_end && *m_at != ' ' && (*m_at < '\t' || *m_at > '\r'))
        ++m_at;
    text = {start, std::size_t(m_at - start)};
    return !text.empty();
}

bool Scanner::mark(char mark)
{
    skipBlanks();
    if (m_at == m_end || *m_at != mark)
        return false;
    ++m_at;
    return true;
}

double wholeNumber(std::string_view field)
{
    const std::string_view text = trimmedField(field);
    double value = 0.0;
    const char* const end = text.data() + text.size();
    const char* const behind = takeNumber(text.data(), end, value);
    if (text.empty() || behind != end || !std::isfinite(value))
        return std::numeric_limits<double>::quiet_NaN();
    return value;
}

bool wholeDigits(std::string_view field, int& value)
{
    const std::string_view text = trimmedField(field);
    if (text.empty() || text.front() < '0' || text.front() > '9')
        return false;
    int found = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), found);
    if (parsed.ec != std::errc() || parsed.ptr != text.data() + text.size())
        return false;
    value = found;
    return true;
}

bool isBlank(std::string_view line)
{
    return line.find_first_not_of(" \t\r\n\v\f") == std::string_view::npos;
}

bool equalsInAnyCase(std::string_view text, std::string_view lowerCase)
{
    return std::equal(text.begin(), text.end(), lowerCase.begin(), lowerCase.end(), sameLetter);
}

bool startsInAnyCase(std::string_view text, std::string_view lowerCase)
{
    return equalsInAnyCase(text.substr(0, lowerCase.size()), lowerCase);
}

bool containsInAnyCase(std::string_view text, std::string_view lowerCase)
{
    return std::search(text.begin(), text.end(), lowerCase.begin(), lowerCase.end(), sameLetter) !=
           text.end();
}

} // namespace datagram::probe
