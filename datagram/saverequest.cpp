#include "datagram/saverequest.h"

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
    if (lists.speed.size() != lists.depth.size() || lists.depth.size() < fewest)
        return QStringLiteral("Sample count mismatch or too small.");
    if (statedSamples.toInt() != lists.depth.size())
        return QStringLiteral("Stated sample count mismatch.");
    return {};
}

QString datagramFileName(const QString& name)
{
    const QString suffix = QStringLiteral(".ssp");
    QString renamed = name;
    for (const QLatin1String other : {QLatin1String(".vp2"), QLatin1String(".aml")}) {
        if (name.contains(other))
            return renamed.replace(other, suffix);
    }
    return renamed;
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
