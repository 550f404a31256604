#include "profile/columndecoder.h"

#include "profile/rowreader.h"
#include "profile/textfile.h"

#include <algorithm>

namespace profile {

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
    if (!m_ranges.empty())
        m_last = m_ranges.back().second;
}

bool LineSet::isInRange(qint64 line) const
{
    const auto next = std::upper_bound(
        m_ranges.begin(), m_ranges.end(), line,
        [](qint64 number, const std::pair<qint64, qint64>& range) { return number < range.first; });
    return next != m_ranges.begin() && line <= std::prev(next)->second;
}

void RecordBuilder::append(const std::array<float, recordSlots>& level)
{
    if (m_used + recordSlots > m_record.size())
        m_record.resize(std::max(m_record.size() * 2, firstLevels * recordSlots));
    std::copy(level.begin(), level.end(), m_record.data() + m_used);
    m_used += recordSlots;
}

QVector<float> RecordBuilder::take()
{
    m_record.resize(m_used);
    m_used = 0;
    return std::exchange(m_record, {});
}

QVector<float> decodeColumns(std::string_view text, const tagDecodeFmt& format,
                             DecimalCounts* decimals)
{
    const RowReader<5> columns(format.separator,
                               {format.depthColumn, format.speedColumn, format.temperatureColumn,
                                format.salinityColumn, format.absorptionColumn});
    const LineSet skipped(format.skipLines);
    RecordBuilder record;
    DecimalCounts shown;
    LineReader lines(text);
    std::string_view line;
    while (lines.next(line)) {
        if (skipped.contains(lines.number()))
            continue;
        const auto [depth, speed, temperature, salinity, absorption] = columns.read(line);
        const double depthValue = depth.value * format.depthFactor;
        const double speedValue = speed.value * format.speedFactor;
        if (!fitsFloat(depthValue) || !fitsFloat(speedValue))
            continue;
        const auto further = [](const ColumnNumber& number) {
            return fitsFloat(number.value) ? float(number.value) : 0.0F;
        };
        record.append({float(speedValue), float(depthValue), float(depthValue), float(speedValue),
                       further(temperature), further(salinity), further(absorption)});
        shown.depth = std::max(shown.depth, depth.decimals);
        shown.speed = std::max(shown.speed, speed.decimals);
        shown.temperature = std::max(shown.temperature, temperature.decimals);
        shown.salinity = std::max(shown.salinity, salinity.decimals);
        shown.absorption = std::max(shown.absorption, absorption.decimals);
    }
    if (decimals != nullptr)
        decimals->raise(shown);
    return record.take();
}

} // namespace profile
