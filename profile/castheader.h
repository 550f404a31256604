#pragma once

#include <QJsonObject>
#include <QString>

/// The header of a profile whose file has none of its own kind.
namespace profile {

/// What is known about a cast. The rest of a header is the same for each: version 1.0, identifier
/// and radius 0, history "NA", valid from one day before its time to one day after.
struct CastHeader
{
    QString type;              ///< "SoundVelocity", or two digits of a content identifier
    QString source;            ///< where the profile came from
    QString time;              ///< yyyyMMddHHmmss, UTC; the current time where it is no moment
    bool isTimeNumber = false; ///< a known time goes out as milliseconds since 1970
    bool isTimeUnread = false; ///< the file tells a time that could not be understood
    QString latitude;          ///< decimal degrees; left out when empty
    QString longitude;         ///< decimal degrees; left out when empty
    QString comment;           ///< left out when empty
};

/// Puts the header keys into a reply. A time that could not be understood is told at the end of the
/// comment: nobody would see it from the current time that stands in.
void insertCastHeader(QJsonObject& reply, const CastHeader& header);

/// Milliseconds since 1970 of "yyyyMMddHHmmss", UTC. False when the text names no moment.
bool parseStamp(const QString& stamp, qint64& milliseconds);

/// The last element of a file name as it came in a request: what stands behind "/" and "\".
QString baseName(const QString& fileName);

} // namespace profile
