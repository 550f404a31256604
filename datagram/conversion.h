#pragma once

#include "datagram/report.h"
#include "datagram/sspdatagram.h"
#include "datagram/sspfields.h"
#include "settings/defaultsettings.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

/// Turning a sound speed profile datagram into levels.
namespace datagram {

/// Vectors of a converted profile, equally long: sound speed (m/s) and depth (m) as converted, then
/// the five columns of the rows as they stand. That is the order of a profile record's slots.
enum ConvertedVector
{
    ConvertedSpeed,
    ConvertedDepth,
    ConvertedFirstColumn
};

/// What converting a datagram gave.
struct Conversion
{
    ConvertedProfile profile; ///< empty when a rule failed
    SspDatagram source;
    QString time;  ///< of acquisition, yyyyMMddHHmmss; in UTC where `now` had to stand in
    Report report; ///< the one message of the rule that failed
};

/// Where conversions are written: `qrvdata/svp_abscoeff` below the data root, whatever folder the
/// configuration names. Empty without a data root.
QString convertedFolder();

/// Verifies a datagram and converts its rows: depth from pressure (in the file: MPa), salinity from
/// conductivity (S/m) and sound speed, as the content identifier asks for. The levels are written
/// to `folder` as an `.asvp` file named after the time of acquisition; that file is read back and
/// checked against `limits` and the rules for samples. A datagram without a time is stamped with
/// `now`, to the minute.
///
/// A pressure in dbar, which the formulas take, is the first column times 100, for a depth too.
Conversion calcS00(const QByteArray& text, const QString& folder,
                   const settings::ProfileLimits& limits, const QDateTime& now);

} // namespace datagram
