#include "datagram/sendrequest.h"

#include "datagram/position.h"
#include "datagram/sspdatagram.h"

#include <algorithm>

namespace datagram {

namespace {

constexpr QLatin1Char zero('0');
constexpr QLatin1Char commaSign(',');

} // namespace

ShortSend parseShortSend(const QVector<QStringRef>& pieces, bool speedsFirst)
{
    ShortSend request;
    request.fileName = pieces.value(1).toString();
    request.depths = profile::parseNumbers(pieces.value(speedsFirst ? 3 : 2).trimmed());
    request.speeds = profile::parseNumbers(pieces.value(speedsFirst ? 2 : 3).trimmed());
    request.latitude = pieces.value(4).toString();
    request.longitude = pieces.value(5).toString();
    request.time = pieces.value(6).toString();
    return request;
}

QString shortPositionText(const QString& degrees)
{
    const DegreesMinutes split = splitDegrees(degrees, 5);
    return QString::number(split.degrees, 'f', 0).rightJustified(2, zero) +
           QString::number(split.minutes, 'f', 5).rightJustified(8, zero);
}

QByteArray shortDatagram(const ShortSend& request)
{
    const QString& time = request.time;
    const int samples = std::min(request.depths.size(), request.speeds.size());
    QByteArray text =
        (QStringLiteral("$QZS00,00001,") + QString::number(samples).rightJustified(4, zero) +
         commaSign + time.mid(8, 2) + time.mid(10, 2) + time.mid(12, 2) + commaSign +
         time.mid(6, 2) + commaSign + time.mid(4, 2) + commaSign + time.left(4) + commaSign)
            .toUtf8();
    for (int i = 0; i < samples; ++i) {
        text += QByteArray::number(double(request.depths[i]), 'g', 6);
        text += ',';
        text += QByteArray::number(double(request.speeds[i]), 'g', 6);
        text += ",,,\r\n";
    }
    text += shortPositionText(request.latitude).toLatin1();
    text += degreesOf(request.latitude) < 0.0 ? ",S," : ",N,";
    text += shortPositionText(request.longitude).toLatin1();
    text += degreesOf(request.longitude) < 0.0 ? ",W,,,PE*" : ",E,,,PE*";

    const QByteArray digits =
        QByteArray::number(checksum(text, text.indexOf('*')), 16).toUpper().rightJustified(2, '0');
    return text + digits + "\\\r\n";
}

} // namespace datagram
