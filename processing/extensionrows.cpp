#include "processing/extensionrows.h"

#include "platform/platform.h"
#include "processing/check.h"
#include "profile/requestblock.h"
#include "resources/resources.h"

#include <algorithm>

namespace processing {

namespace {

// A file that ends no deeper than this, m, does not reach full ocean depth.
constexpr float usableExtensionDepth = 11990.0F;

} // namespace

ExtensionRows parseExtensionRows(const QByteArray& text, RowRule rule)
{
    ExtensionRows rows;
    const QString decoded = QString::fromLatin1(text);
    QVector<QStringRef> lines = decoded.splitRef(QLatin1Char('\n'));
    lines.removeFirst();
    for (const QStringRef& line : qAsConst(lines)) {
        const QString words = line.toString().simplified();
        const QVector<QStringRef> parts = words.splitRef(QLatin1Char(' '), Qt::SkipEmptyParts);
        if (parts.size() != 2)
            continue;
        const float depth = profile::listNumber(parts[0]);
        if (rule == RowRule::DeeperThanLast && !rows.depths.isEmpty() &&
            depth <= rows.depths.constLast())
            continue;
        rows.depths.append(depth);
        rows.speeds.append(profile::listNumber(parts[1]));
    }
    return rows;
}

const ExtensionRows& defaultExtensionRows()
{
    static const ExtensionRows rows = parseExtensionRows(resources::extensionProfile());
    return rows;
}

const ExtensionRows& fallbackExtensionRows()
{
    static const ExtensionRows rows = {
        {500.0F, 700.0F, 1000.0F, 1500.0F, 4000.0F, 6000.0F, 8500.0F, 12000.0F},
        {1498.0F, 1486.2F, 1483.0F, 1487.2F, 1500.0F, 1524.1F, 1558.2F, 1602.8F, 1669.0F}};
    return rows;
}

ExtensionRows genExtensionData(const QString& path, const raytrace::Layers& samples)
{
    ExtensionRows rows;
    if (!samples.empty() && samples.back().d >= limits::fullOceanDepth)
        return rows;
    QByteArray text;
    if (!path.isEmpty() && platform::readFile(path, text))
        rows = parseExtensionRows(text);
    if (rows.depths.isEmpty() || rows.depths.constLast() <= usableExtensionDepth) {
        rows.depths += fallbackExtensionRows().depths;
        rows.speeds += fallbackExtensionRows().speeds;
    }
    return rows;
}

bool isUsableExtension(const ExtensionRows& rows)
{
    return rows.depths.size() >= 2 &&
           std::all_of(rows.depths.cbegin() + 1, rows.depths.cend(),
                       [first = rows.depths.constFirst()](float depth) { return depth > first; });
}

int extend(raytrace::Layers& samples, const ExtensionRows& rows)
{
    if (!samples.empty()) {
        const float lastDepth = float(samples.back().d);
        const auto first = std::find_if(rows.depths.cbegin(), rows.depths.cend(),
                                        [lastDepth](float depth) { return depth > lastDepth; });
        samples.reserve(samples.size() + std::size_t(rows.depths.cend() - first));
        for (auto depth = first; depth != rows.depths.cend(); ++depth) {
            const int row = int(depth - rows.depths.cbegin());
            samples.push_back({0.0, double(*depth), double(rows.speeds[row])});
        }
    }
    raytrace::computeGradients(samples);
    return 1;
}

} // namespace processing
