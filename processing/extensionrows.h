#pragma once

#include "raytrace/layers.h"

#include <QByteArray>
#include <QString>
#include <QVector>

namespace processing {

/// Rows that continue a profile downward: depths (m) and sound speeds (m/s), index for index.
/// There are at least as many speeds as depths; surplus ones have no row.
struct ExtensionRows
{
    QVector<float> depths;
    QVector<float> speeds;
};

/// Which rows of an extension profile's text are taken.
enum class RowRule
{
    All,
    DeeperThanLast ///< a row not deeper than the last one taken is ignored
};

/// Reads the rows of an extension profile. The first line is a comment; each further one is a
/// depth and a sound speed, separated by white space (a number that cannot be read is 0). Lines
/// of another number of words are ignored.
ExtensionRows parseExtensionRows(const QByteArray& text, RowRule rule = RowRule::DeeperThanLast);

/// The rows of the default extension profile that is compiled in, 500 m to 12000 m.
const ExtensionRows& defaultExtensionRows();

/// The rows that are joined when no usable file is given, 500 m to 12000 m. Their speeds differ
/// from the default profile's in the first decimal, and a ninth speed, of no depth, is never
/// joined.
const ExtensionRows& fallbackExtensionRows();

/// The rows to continue `samples` with: none when they reach 11999 m; those of the file `path`
/// when they go below 11990 m; else the file's rows followed by the fallback rows, even where
/// these are shallower. A file that is missing or cannot be read has no rows.
ExtensionRows genExtensionData(const QString& path, const raytrace::Layers& samples);

/// Whether the rows of a file that a surveyor chose can continue a profile: at least 2, each one
/// after the first deeper than the first. Among themselves they may step back up.
bool isUsableExtension(const ExtensionRows& rows);

/// Joins rows below `samples`: the first row deeper than the last sample, both as 32-bit floats,
/// and all that follow it in the list, whatever their depths. Without such a row, or without a
/// sample to join below, the samples stay as they are; gradients are computed anew in any case.
/// Always 1.
int extend(raytrace::Layers& samples, const ExtensionRows& rows);

} // namespace processing
