#include "processing/atlas.h"

#include "platform/platform.h"
#include "processing/fieldstream.h"
#include "profile/textfile.h"
#include "resources/resources.h"
#include "seawater/pressure.h"
#include "seawater/soundspeed.h"
#include "settings/numbers.h"

#include <QDateTime>
#include <QFileInfo>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <memory>

namespace processing {

namespace {

using End = FieldStream::End;

struct CloseStream
{
    void operator()(std::FILE* stream) const { std::fclose(stream); }
};
using Stream = std::unique_ptr<std::FILE, CloseStream>;

// The integer that a field begins with, as "5" of "5.5 m".
bool readDepth(std::string_view field, int& depth)
{
    field = profile::trimmedText(field);
    if (field.size() > 1 && field[0] == '+' && field[1] != '-')
        field.remove_prefix(1);
    return std::from_chars(field.data(), field.data() + field.size(), depth).ec == std::errc();
}

void readLevels(FieldStream& text, AtlasLevels& levels)
{
    if (!text.skipBehind(':'))
        return;
    End end = End::Comma;
    for (int level = 0; end == End::Comma; ++level) {
        if (level == AtlasGrid::levels) {
            text.skipLine();
            return;
        }
        int depth = 0;
        if (readDepth(text.take(end), depth))
            levels.insert(level, depth);
    }
}

// The cell at a position of the file; null for a position outside of the grid. The pole itself is
// outside: its cell is the one south of it.
double* cellAt(AtlasGrid& grid, double latitude, double longitude)
{
    const double north = double(settings::toFloat32(latitude));
    const double east = double(settings::toFloat32(longitude));
    if (!(north >= -90.0 && north < 90.0 && east >= -360.0 && east <= 360.0))
        return nullptr;
    return grid.cell(AtlasGrid::latitudeIndex(north), AtlasGrid::longitudeIndex(east));
}

} // namespace

bool WorldOceanAtlas::fnReadWOAFile(std::FILE* file, AtlasLevels& levels, AtlasGrid& grid)
{
    levels.clear();
    grid.clear();
    FieldStream text(file);
    if (text.isAtEnd())
        return false;
    text.skipLine();
    if (text.isAtEnd())
        return false;
    readLevels(text, levels);

    while (!text.isAtEnd()) {
        End end = End::Comma;
        const double latitude = text.takeNumber(end);
        if (end != End::Comma)
            return false;
        const double longitude = text.takeNumber(end);
        double* const cell = cellAt(grid, latitude, longitude);
        for (int level = 0; end == End::Comma; ++level) {
            if (cell == nullptr || level == AtlasGrid::levels) {
                text.skipLine();
                break;
            }
            const double value = text.takeNumber(end);
            cell[level] = std::isnan(value) ? AtlasGrid::noData : value;
        }
    }
    return !text.hasFailed();
}

WorldOceanAtlas::Stamp WorldOceanAtlas::stampOf(const QString& path)
{
    const QFileInfo file(path);
    return {file.absoluteFilePath(), file.size(), file.lastModified().toMSecsSinceEpoch()};
}

bool WorldOceanAtlas::load(Quantity& quantity, std::FILE* file, const QString& path)
{
    const Stamp before = stampOf(path);
    if (quantity.source == before)
        return true;
    quantity.source = Stamp();
    if (before.size <= maxFileSize && fnReadWOAFile(file, quantity.levels, quantity.grid)) {
        // A file that was written to meanwhile is read again the next time.
        if (stampOf(path) == before)
            quantity.source = before;
        return true;
    }
    quantity.levels.clear();
    quantity.grid.clear();
    return false;
}

WorldOceanAtlas::Read WorldOceanAtlas::read(const QString& salinityPath,
                                            const QString& temperaturePath)
{
    const Stream salinity(platform::openStream(salinityPath, "rb"));
    const Stream temperature(platform::openStream(temperaturePath, "rb"));
    if (!salinity || !temperature)
        return Read::NotOpened;
    const bool areRead = load(m_salinity, salinity.get(), salinityPath) &&
                         load(m_temperature, temperature.get(), temperaturePath);
    return areRead ? Read::Both : Read::NotRead;
}

AtlasProfile WorldOceanAtlas::woaProfile(double latitude, double longitude) const
{
    AtlasProfile profile;
    if (!std::isfinite(latitude) || !std::isfinite(longitude))
        return profile;
    const int row = AtlasGrid::latitudeIndex(latitude);
    const int column = AtlasGrid::longitudeIndex(longitude);
    for (int level = 0; level < AtlasGrid::levels; ++level) {
        const auto here = m_salinity.levels.constFind(level);
        const auto there = m_temperature.levels.constFind(level);
        if (here == m_salinity.levels.constEnd() || there == m_temperature.levels.constEnd() ||
            *here != *there)
            break;
        const double salinity = m_salinity.grid.value(row, column, level);
        const double temperature = m_temperature.grid.value(row, column, level);
        if (salinity == AtlasGrid::noData || temperature == AtlasGrid::noData)
            break;
        const double depth = *here;
        const float speed = settings::toFloat32(seawater::unescoSoundSpeed(
            salinity, temperature, seawater::depthToPressure(latitude, depth)));
        // Values that no sea has, such as 1e30, are no data either.
        if (!std::isfinite(speed))
            break;
        profile.depths.append(float(depth));
        profile.speeds.append(speed);
    }
    return profile;
}

int extendWOA(AtlasProfile& profile, const ExtensionRows& rows)
{
    if (profile.depths.isEmpty())
        return 0;
    const int count = std::min(rows.depths.size(), rows.speeds.size());
    const float lastDepth = profile.depths.constLast();
    int i = 0;
    while (i < count && !(rows.depths[i] > lastDepth))
        ++i;
    profile.depths += rows.depths.mid(i, count - i);
    profile.speeds += rows.speeds.mid(i, count - i);
    return 1;
}

QByteArray woaExtensionText(const AtlasProfile& profile)
{
    constexpr int significantDigits = 6;
    QByteArray text = resources::extensionProfile();
    text.truncate(text.indexOf("\r\n"));
    for (int i = 0; i < profile.depths.size(); ++i) {
        text += QByteArray::number(double(profile.depths[i]), 'g', significantDigits);
        text += ' ';
        text += QByteArray::number(double(profile.speeds[i]), 'g', significantDigits);
        text += "\r\n";
    }
    return text;
}

QString fnGeneratWOAExtFile(WorldOceanAtlas& atlas, double latitude, double longitude,
                            const QString& salinityPath, const QString& temperaturePath,
                            const std::function<ExtensionRows(double lastDepth)>& extensionRows,
                            const QString& folder)
{
    if (folder.isEmpty() ||
        atlas.read(salinityPath, temperaturePath) != WorldOceanAtlas::Read::Both)
        return {};
    AtlasProfile profile = atlas.woaProfile(latitude, longitude);
    if (profile.depths.isEmpty())
        return {};
    const double lastDepth = double(profile.depths.constLast());
    if (extendWOA(profile, extensionRows ? extensionRows(lastDepth) : ExtensionRows()) == 0)
        return {};
    QString path = QStringLiteral("%1/%2").arg(folder, QStringLiteral("WOASVPExtension.txt"));
    if (!platform::makeFolder(folder) || !platform::replaceFile(path, woaExtensionText(profile)))
        return {};
    return path;
}

} // namespace processing
