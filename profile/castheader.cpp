#include "profile/castheader.h"

#include "profile/protocol.h"

#include <QDateTime>

#include <algorithm>

namespace profile {

namespace {

constexpr qint64 oneDay = 24LL * 60 * 60 * 1000; // ms
constexpr int stampDigits = 14;

} // namespace

void insertCastHeader(QJsonObject& reply, const CastHeader& header)
{
    namespace key = protocol::header;
    qint64 moment = 0;
    const bool isKnown = parseStamp(header.time, moment);
    if (!isKnown)
        moment = QDateTime::currentMSecsSinceEpoch();
    if (isKnown && header.isTimeNumber) {
        reply.insert(key::time, moment);
    } else {
        reply.insert(key::time, QDateTime::fromMSecsSinceEpoch(moment, Qt::UTC)
                                    .toString(QStringLiteral("yyyyMMddHHmmss")));
    }
    reply.insert(key::validFrom, moment - oneDay);
    reply.insert(key::validTo, moment + oneDay);
    reply.insert(key::type, header.type);
    reply.insert(key::version, 1.0);
    reply.insert(key::identifier, 0);
    reply.insert(key::radius, 0);
    reply.insert(key::source, header.source);
    reply.insert(key::history, QStringLiteral("NA"));
    if (!header.latitude.isEmpty())
        reply.insert(key::latitude, header.latitude);
    if (!header.longitude.isEmpty())
        reply.insert(key::longitude, header.longitude);
    QStringList comment = {header.comment};
    if (!isKnown && header.isTimeUnread)
        comment << QStringLiteral("The time in the file is not understood: it is the current one.");
    comment.removeAll(QString());
    if (!comment.isEmpty())
        reply.insert(key::comment, comment.join(QLatin1Char(' ')));
}

bool parseStamp(const QString& stamp, qint64& milliseconds)
{
    const bool isDigits = std::all_of(stamp.begin(), stamp.end(), [](QChar c) {
        return c >= QLatin1Char('0') && c <= QLatin1Char('9');
    });
    if (stamp.size() != stampDigits || !isDigits)
        return false;
    const auto part = [&stamp](int from, int length) { return stamp.midRef(from, length).toInt(); };
    const QDate date(part(0, 4), part(4, 2), part(6, 2));
    const QTime time(part(8, 2), part(10, 2), part(12, 2));
    if (!date.isValid() || !time.isValid())
        return false;
    milliseconds = QDateTime(date, time, Qt::UTC).toMSecsSinceEpoch();
    return true;
}

QString baseName(const QString& fileName)
{
    const int slash =
        std::max(fileName.lastIndexOf(QLatin1Char('/')), fileName.lastIndexOf(QLatin1Char('\\')));
    return fileName.mid(slash + 1);
}

} // namespace profile
