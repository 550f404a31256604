#include "processing/extensionrows.h"

#include "platform/platform.h"
#include "processing/check.h"
#include "profile/requestblock.h"
#include "resources/resources.h"

#include <algorithm>
#include <string_view>

namespace processing {

namespace {

// A file that ends no deeper than this, m, does not reach full ocean depth.
constexpr float usableExtensionDepth = 11990.0F;

bool isSpace(char byte)
{
    return QChar(QLatin1Char(byte)).isSpace();
}

// Takes the next word off a line; empty when there is none.
std::string_view takeWord(std::string_view& line)
{
    const auto begin = std::find_if_not(line.begin(), line.end(), isSpace);
    const auto end = std::find_if(begin, line.end(), isSpace);
    const std::string_view word =
        line.substr(std::size_t(begin - line.begin()), std::size_t(end - begin));
    line.remove_prefix(std::size_t(end - line.begin()));
    return word;
}

float floatOf(std::string_view word)
{
    const QString text = QString::fromLatin1(word.data(), int(word.size()));
    return profile::listNumber(QStringRef(&text));
}

} // namespace

ExtensionRows parseExtensionRows(const QByteArray& text, RowRule rule)
{
    ExtensionRows rows;
    const std::string_view bytes(text.constData(), std::size_t(text.size()));
    std::size_t start = bytes.find('\n');
    while (start != std::string_view::npos) {
        const std::size_t end = bytes.find('\n', ++start);
        std::string_view line = bytes.substr(start, end - start);
        start = end;
        const std::string_view depthWord = takeWord(line);
        const std::string_view speedWord = takeWord(line);
        if (speedWord.empty() || !takeWord(line).empty())
            continue;
        const float depth = floatOf(depthWord);
        if (rule == RowRule::DeeperThanLast && !rows.depths.isEmpty() &&
            depth <= rows.depths.constLast())
            continue;
        rows.depths.append(depth);
        rows.speeds.append(floatOf(speedWord));
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
