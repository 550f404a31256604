#pragma once

#include "processing/atlasgrid.h"
#include "processing/extensionrows.h"

#include <QMap>
#include <QString>
#include <QVector>

#include <cstdio>
#include <functional>

namespace processing {

/// Depth (m) of each level, by its index from 0. A level whose depth cannot be read has none.
using AtlasLevels = QMap<int, int>;

/// A profile of the atlas: depths (m) and sound speeds (m/s), index for index.
struct AtlasProfile
{
    QVector<float> depths;
    QVector<float> speeds;
};

/// The World Ocean Atlas: salinity and temperature of the sea in cells of one degree, from two
/// text files. A file that was read is kept until another one is wanted or it has changed.
class WorldOceanAtlas
{
  public:
    /// Outcome of `read`.
    enum class Read
    {
        Both,
        NotOpened, ///< one of the files: what was read before stays
        NotRead,   ///< one of the files is no atlas file: there are no profiles until both are
    };

    /// Largest file that is read. The largest one that makes sense has some 100 MB.
    static constexpr qint64 maxFileSize = 2LL * 1024 * 1024 * 1024;

    /// Makes the atlas hold these two files (a folder, a device or a pipe is none). One that it
    /// holds already is not read again while its path, size and time of change are the same.
    Read read(const QString& salinityPath, const QString& temperaturePath);

    /// The profile at a position in decimal degrees: the levels that both files have at the same
    /// depth, from the first one down to where one of them has no data. Empty on land, without
    /// files, and where the position is no number. Longitudes go round; beyond a pole it is the
    /// cell at the pole.
    AtlasProfile woaProfile(double latitude, double longitude) const;

    /// Reads an atlas file: a title line; a line with the depths of the levels behind its first
    /// ":"; then a line per cell, latitude, longitude and the values of the levels. Both `levels`
    /// and `grid` are emptied first. A value that is empty, missing or no number is no data; cells
    /// outside of the grid and levels beyond its 110 are left out.
    /// False when there is no title or no second line, when a line has fewer than two fields, or
    /// when the stream reports an error: what was read up to there stays in `levels` and `grid`.
    static bool fnReadWOAFile(std::FILE* file, AtlasLevels& levels, AtlasGrid& grid);

  private:
    // What tells one state of a file from another.
    struct Stamp
    {
        QString path;
        qint64 size = 0;
        qint64 changed = 0; // ms since 1970

        bool operator==(const Stamp& other) const
        {
            return path == other.path && size == other.size && changed == other.changed;
        }
    };

    // One file as it was read.
    struct Quantity
    {
        AtlasGrid grid;
        AtlasLevels levels;
        Stamp source; // empty where the grid holds no file
    };

    static Stamp stampOf(const QString& path);
    static bool load(Quantity& quantity, std::FILE* file, const QString& path);

    Quantity m_salinity;
    Quantity m_temperature;
};

/// Joins rows below an atlas profile as `extend` does below samples. 0 when the profile is empty,
/// else 1.
int extendWOA(AtlasProfile& profile, const ExtensionRows& rows);

/// The atlas profile as the text of an extension profile. The first row stands in the comment
/// line, so a reader of extension profiles begins with the second one.
QByteArray woaExtensionText(const AtlasProfile& profile);

/// Reads the two files into the atlas, continues the profile at the position by what
/// `extensionRows` gives for its last depth (m), and writes it to "WOASVPExtension.txt" in
/// `folder`, which is made if it is missing. An older file is replaced whole.
///
/// The path of the written file; empty when a file cannot be opened or read, there is no profile
/// at the position, or the file cannot be written.
QString fnGeneratWOAExtFile(WorldOceanAtlas& atlas, double latitude, double longitude,
                            const QString& salinityPath, const QString& temperaturePath,
                            const std::function<ExtensionRows(double lastDepth)>& extensionRows,
                            const QString& folder);

} // namespace processing
