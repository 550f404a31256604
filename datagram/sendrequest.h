#pragma once

#include "profile/requestblock.h"

#include <QByteArray>
#include <QString>
#include <QVector>

/// The short form of a send request, made into its datagram.
namespace datagram {

/// Where the survey system on this machine listens (UDP).
constexpr unsigned short surveySystemPort = 14002;

/// The short form: depths and sound speeds alone.
struct ShortSend
{
    QString fileName;
    QVector<float> depths; ///< m
    QVector<float> speeds; ///< m/s
    QString latitude;      ///< decimal degrees, negative south
    QString longitude;     ///< decimal degrees, negative west
    QString time;          ///< yyyyMMddHHmmss
};

/// Reads the pieces of a short send request. Senders put the two lists in either order;
/// `speedsFirst` says that the sound speeds stand before the depths.
ShortSend parseShortSend(const QVector<QStringRef>& pieces, bool speedsFirst);

/// A coordinate without its sign as whole degrees, at least two digits, directly followed by the
/// minutes with five decimals in eight characters: 5.5 is "0530.00000".
QString shortPositionText(const QString& degrees);

/// The datagram of the short form, content identifier 0: numbers with six significant digits,
/// comment "PE". The checksum ends at the first "*". Lists of unequal length give their complete
/// pairs.
QByteArray shortDatagram(const ShortSend& request);

} // namespace datagram
