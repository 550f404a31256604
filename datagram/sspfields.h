#pragma once

#include "datagram/contentidentifier.h"
#include "datagram/sspdatagram.h"
#include "profile/decimalcounts.h"

#include <QByteArray>
#include <QString>

/// Taking a sound speed profile datagram apart.
namespace datagram {

/// A sound speed profile datagram, field by field. Made from fields that `fnVerifySXX` found sound.
struct SspDatagram
{
    ContentIdentifier identifier;
    QByteArray tag;    ///< field 0 without its "$"
    QByteArray number; ///< field 1
    int samples = 0;
    QByteArray time;   ///< hhmmss
    QByteArray day;    ///< two digits
    QByteArray month;  ///< two digits
    QByteArray year;   ///< four digits
    QString latitude;  ///< decimal degrees with eight decimals, negative south; empty for none
    QString longitude; ///< the same, negative west
    QString comment;
    DatagramFields fields;

    /// Number of sample `sample` (from 0) in column `column` (0 to 4); 0 for none.
    double value(int sample, int column) const;
};

/// Reads the header, the position and the comment out of `fields`.
SspDatagram readFields(const DatagramFields& fields);

/// Decimals that the rows show in the columns that the content identifier carries.
profile::DecimalCounts shownDecimals(const SspDatagram& datagram);

/// The two digits behind "$QZS" of a text that begins with a profile datagram's tag and a comma;
/// empty when it does not.
QByteArray leadingIdentifier(const QByteArray& text);

/// The first datagram of a file: up to and with the first line end behind "*", a checksum and a
/// backslash; the whole text where there is none. A file whose every line ends in LF alone, or in
/// CR CR LF, as transfers between systems leave it, is read as if they were CR LF.
QByteArray firstDatagram(const QByteArray& text);

} // namespace datagram
