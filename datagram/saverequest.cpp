#include "datagram/saverequest.h"

#include <algorithm>

namespace datagram {

namespace {

QVector<float> continuedTo(int count, QVector<float> values)
{
    values.resize(count); // new places hold 0
    return values;
}

} // namespace

Columns columnsOf(const profile::ValueLists& lists)
{
    const int count = lists.depth.size();
    return {lists.depth,
            continuedTo(count, lists.speed),
            continuedTo(count, lists.probeDepth),
            continuedTo(count, lists.temperature),
            continuedTo(count, lists.salinity),
            continuedTo(count, lists.absorption)};
}

QString listsRefusal(const profile::ValueLists& lists, const QString& statedSamples, int fewest)
{
    if (lists.speed.size() < 3)
        return QStringLiteral("Wrong svp input.");
    // As many of each list are read as there are depths: surplus sound speeds do not count.
    if (lists.speed.size() < lists.depth.size() || lists.depth.size() < fewest)
        return QStringLiteral("Sample count mismatch or too small.");
    if (statedSamples.toInt() != lists.depth.size())
        return QStringLiteral("Stated sample count mismatch.");
    return {};
}

QString datagramFileName(const QString& name)
{
    const QString suffix = QStringLiteral(".ssp");
    const int start =
        std::max(name.lastIndexOf(QLatin1Char('/')), name.lastIndexOf(QLatin1Char('\\'))) + 1;
    QString last = name.mid(start);
    for (const QLatin1String other : {QLatin1String(".vp2"), QLatin1String(".aml")}) {
        if (last.contains(other))
            return name.left(start) + last.replace(other, suffix);
    }
    return name;
}

bool parseDepthSpeedPairs(const QStringRef& list, DepthSpeedPairs& pairs)
{
    constexpr int fewestValues = 6;
    const QVector<float> values = profile::parseNumbers(list);
    if (values.size() < fewestValues || values.size() % 2 != 0)
        return false;
    for (int i = 0; i < values.size(); i += 2) {
        pairs.depths.append(values[i]);
        pairs.speeds.append(values[i + 1]);
    }
    return true;
}

} // namespace datagram
