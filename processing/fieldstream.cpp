#include "processing/fieldstream.h"

#include "profile/textfile.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace processing {

namespace {

constexpr std::size_t bufferSize = 256 * 1024;
constexpr std::ptrdiff_t longestField = 1000;
constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();

bool endsLine(char c)
{
    return c == '\n' || c == '\r';
}

bool endsField(char c)
{
    return c == ',' || endsLine(c);
}

// Reads a decimal number of up to 15 digits without an exponent, as nearly every one is, that ends
// with its field; null for any other text. Both parts of the quotient are integers that a double
// holds, so it is rounded once: the result is that of from_chars, in half the time.
const char* readPlain(const char* at, const char* end, double& value)
{
    constexpr double powers[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    constexpr std::ptrdiff_t mostDigits = 15;

    const bool isNegative = at != end && *at == '-';
    if (isNegative)
        ++at;
    const char* const begin = at;
    const char* const limit = end - at > mostDigits + 1 ? at + mostDigits + 1 : end;
    std::int64_t digits = 0;
    const auto takeDigits = [&] {
        for (; at != limit && *at >= '0' && *at <= '9'; ++at)
            digits = digits * 10 + (*at - '0');
    };
    takeDigits();
    std::ptrdiff_t count = at - begin;
    std::ptrdiff_t decimals = 0;
    if (at != limit && *at == '.') {
        const char* const point = at++;
        takeDigits();
        decimals = at - point - 1;
        count += decimals;
    }
    if (at == end || !endsField(*at) || count == 0 || count > mostDigits)
        return nullptr;
    const double amount = double(digits) / powers[decimals];
    value = isNegative ? -amount : amount;
    return at;
}

double numberOf(std::string_view field)
{
    field = profile::trimmedText(field);
    // from_chars knows no plus sign.
    if (field.size() > 1 && field[0] == '+' && field[1] != '-')
        field.remove_prefix(1);
    double value = 0.0;
    const char* const end = field.data() + field.size();
    const auto read = std::from_chars(field.data(), end, value);
    return read.ec == std::errc() && read.ptr == end && std::isfinite(value) ? value : noNumber;
}

} // namespace

FieldStream::FieldStream(std::FILE* stream)
    : m_stream(stream), m_buffer(bufferSize), m_at(m_buffer.data()), m_end(m_at)
{
}

// Reads on behind what has not been taken, which moves to the front of the buffer. False at the
// end of the text, or when the stream fails.
bool FieldStream::refill()
{
    const auto kept = std::size_t(m_end - m_at);
    if (m_hasFailed)
        return false;
    std::memmove(m_buffer.data(), m_at, kept);
    const std::size_t count =
        std::fread(m_buffer.data() + kept, 1, m_buffer.size() - kept, m_stream);
    m_hasFailed = std::ferror(m_stream) != 0;
    m_at = m_buffer.data();
    m_end = m_at + kept + count;
    return count > 0;
}

// A line end that began with a carriage return. Its other characters may lie in the next block,
// so they are left until something further is wanted: a field that was handed out stays valid.
void FieldStream::finishLineEnd()
{
    if (!m_isBehindReturn)
        return;
    m_isBehindReturn = false;
    while (m_end - m_at < 2 && refill()) {
    }
    if (m_end - m_at > 1 && m_at[0] == '\r' && m_at[1] == '\n')
        m_at += 2;
    else if (m_at != m_end && *m_at == '\n')
        ++m_at;
}

bool FieldStream::isAtEnd()
{
    finishLineEnd();
    return m_at == m_end && !refill();
}

FieldStream::End FieldStream::takeDelimiter()
{
    if (m_at == m_end)
        return End::Line;
    const char delimiter = *m_at++;
    m_isBehindReturn = delimiter == '\r';
    return delimiter == ',' ? End::Comma : End::Line;
}

std::string_view FieldStream::take(End& end)
{
    finishLineEnd();
    bool isTooLong = false;
    const char* stop = std::find_if(m_at, m_end, endsField);
    while (stop == m_end) {
        if (m_end - m_at > longestField) {
            isTooLong = true;
            m_at = m_end;
        }
        const std::ptrdiff_t seen = m_end - m_at;
        if (!refill()) {
            stop = m_end;
            break;
        }
        stop = std::find_if(m_at + seen, m_end, endsField);
    }
    const std::string_view field(m_at, std::size_t(stop - m_at));
    m_at = stop;
    end = takeDelimiter();
    return isTooLong || field.size() > std::size_t(longestField) ? std::string_view() : field;
}

double FieldStream::takeNumber(End& end)
{
    finishLineEnd();
    double value = 0.0;
    const char* const stop = readPlain(m_at, m_end, value);
    if (stop == nullptr)
        return numberOf(take(end));
    m_at = stop;
    end = takeDelimiter();
    return value;
}

bool FieldStream::skipBehind(char mark)
{
    finishLineEnd();
    while (!isAtEnd()) {
        m_at = std::find_if(m_at, m_end, [mark](char c) { return c == mark || endsLine(c); });
        if (m_at != m_end) {
            if (*m_at == mark && !endsLine(mark)) {
                ++m_at;
                return true;
            }
            takeDelimiter();
            return false;
        }
    }
    return false;
}

} // namespace processing
