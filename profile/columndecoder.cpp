#include "profile/columndecoder.h"

#include "profile/textfile.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace profile {

namespace {

// Cuts one line into columns, kept from line to line to spare the memory.
class Columns
{
  public:
    explicit Columns(char separator) : m_separator(separator) {}

    void split(std::string_view line)
    {
        m_fields.clear();
        if (m_separator == ' ')
            splitAtBlanks(line);
        else
            splitAtEach(line);
    }

    std::size_t size() const { return m_fields.size(); }

    // The number in a column. False when there is none, or no finite one.
    bool number(int column, double& value) const
    {
        if (column < 0 || std::size_t(column) >= m_fields.size())
            return false;
        std::string_view field = trimmedText(m_fields[std::size_t(column)]);
        if (field.size() > 1 && field[0] == '+' && field[1] != '-')
            field.remove_prefix(1);
        const char* const end = field.data() + field.size();
        const auto parsed = std::from_chars(field.data(), end, value);
        // Too large for a number, or too small: Qt tells, with infinity or 0.
        if (parsed.ec == std::errc::result_out_of_range)
            value = QByteArray(field.data(), int(field.size())).toDouble();
        else if (parsed.ec != std::errc())
            return false;
        return parsed.ptr == end && std::isfinite(value);
    }

    // Digits behind the point of the number in a column.
    int decimals(int column) const
    {
        if (column < 0 || std::size_t(column) >= m_fields.size())
            return 0;
        const std::string_view field = m_fields[std::size_t(column)];
        const std::size_t point = field.find('.');
        if (point == std::string_view::npos)
            return 0;
        const std::size_t end = field.find_first_not_of("0123456789", point + 1);
        return int(std::min(end, field.size()) - point - 1);
    }

  private:
    void splitAtBlanks(std::string_view line)
    {
        constexpr std::string_view blanks = " \t";
        std::size_t start = line.find_first_not_of(blanks);
        while (start != std::string_view::npos) {
            const std::size_t end = std::min(line.find_first_of(blanks, start), line.size());
            m_fields.push_back(line.substr(start, end - start));
            start = line.find_first_not_of(blanks, end);
        }
    }

    void splitAtEach(std::string_view line)
    {
        std::size_t start = 0;
        for (std::size_t end = line.find(m_separator); end != std::string_view::npos;
             end = line.find(m_separator, start)) {
            m_fields.push_back(line.substr(start, end - start));
            start = end + 1;
        }
        m_fields.push_back(line.substr(start));
    }

    char m_separator;
    std::vector<std::string_view> m_fields;
};

bool fitsFloat(double value)
{
    return std::abs(value) <= double(std::numeric_limits<float>::max());
}

} // namespace

LineSet::LineSet(const QString& text)
{
    const QVector<QStringRef> parts = text.splitRef(QLatin1Char(';'), Qt::SkipEmptyParts);
    for (const QStringRef& part : parts) {
        const int dash = part.indexOf(QLatin1Char('-'));
        bool firstRead = false;
        bool lastRead = false;
        const qint64 first = part.left(dash).toLongLong(&firstRead);
        const qint64 last = dash < 0 ? first : part.mid(dash + 1).toLongLong(&lastRead);
        if (firstRead && (dash < 0 || lastRead) && first <= last)
            m_ranges.emplace_back(first, last);
    }
    std::sort(m_ranges.begin(), m_ranges.end());
    std::vector<std::pair<qint64, qint64>> merged;
    for (const auto& range : m_ranges) {
        if (merged.empty() || range.first > merged.back().second)
            merged.push_back(range);
        else
            merged.back().second = std::max(merged.back().second, range.second);
    }
    m_ranges = std::move(merged);
}

bool LineSet::contains(qint64 line) const
{
    const auto next = std::upper_bound(
        m_ranges.begin(), m_ranges.end(), line,
        [](qint64 number, const std::pair<qint64, qint64>& range) { return number < range.first; });
    return next != m_ranges.begin() && line <= std::prev(next)->second;
}

QVector<float> decodeColumns(std::string_view text, const tagDecodeFmt& format,
                             DecimalCounts* decimals)
{
    QVector<float> record;
    const LineSet skipped(format.skipLines);
    Columns columns(format.separator);
    LineReader lines(text);
    std::string_view line;
    while (lines.next(line)) {
        if (skipped.contains(lines.number()))
            continue;
        columns.split(line);
        double depth = 0.0;
        double speed = 0.0;
        if (!columns.number(format.depthColumn, depth) ||
            !columns.number(format.speedColumn, speed))
            continue;
        depth *= format.depthFactor;
        speed *= format.speedFactor;
        if (!fitsFloat(depth) || !fitsFloat(speed))
            continue;
        const auto further = [&columns](int column) {
            double value = 0.0;
            return columns.number(column, value) && fitsFloat(value) ? float(value) : 0.0F;
        };
        for (const float value : {float(speed), float(depth), float(depth), float(speed),
                                  further(format.temperatureColumn), further(format.salinityColumn),
                                  further(format.absorptionColumn)})
            record.append(value);
        if (decimals != nullptr) {
            DecimalCounts shown;
            shown.depth = columns.decimals(format.depthColumn);
            shown.speed = columns.decimals(format.speedColumn);
            shown.temperature = columns.decimals(format.temperatureColumn);
            shown.salinity = columns.decimals(format.salinityColumn);
            shown.absorption = columns.decimals(format.absorptionColumn);
            decimals->raise(shown);
        }
    }
    return record;
}

} // namespace profile
