#pragma once

#include <QByteArray>
#include <QVector>

namespace processing {

/// Rows that continue a profile downward: depths (m) and sound speeds (m/s), index for index.
struct ExtensionRows
{
    QVector<float> depths;
    QVector<float> speeds;
};

/// Reads the rows of an extension profile. The first line is a comment; each further one is a
/// depth and a sound speed, separated by white space (a number that cannot be read is 0). Lines
/// of another number of words, and rows not deeper than the last one taken, are ignored.
ExtensionRows parseExtensionRows(const QByteArray& text);

/// The rows of the default extension profile that is compiled in, 500 m to 12000 m.
const ExtensionRows& defaultExtensionRows();

} // namespace processing
