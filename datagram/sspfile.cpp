#include "datagram/sspfile.h"

#include "profile/columndecoder.h"
#include "profile/profilereply.h"
#include "profile/protocol.h"

#include <cmath>

namespace datagram {

namespace {

QString kindOf(int identifier)
{
    switch (identifier) {
    case 1:
    case 12:
        return QStringLiteral("01");
    case 3:
    case 30:
    case 32:
        return QStringLiteral("03");
    default:
        return QStringLiteral("00");
    }
}

// Milliseconds since 1970 of "yyyyMMddHHmmss" in UTC; negative when that is no time.
qint64 milliseconds(const QString& time)
{
    QDateTime moment = QDateTime::fromString(time, QStringLiteral("yyyyMMddHHmmss"));
    moment.setTimeSpec(Qt::UTC);
    return moment.isValid() ? moment.toMSecsSinceEpoch() : -1;
}

void insertHeader(QJsonObject& reply, const Conversion& conversion)
{
    namespace key = protocol::header;
    constexpr qint64 day = 24LL * 60 * 60 * 1000;
    const SspDatagram& source = conversion.source;
    reply.insert(key::type, kindOf(source.identifier.number));
    reply.insert(key::version, 1.0);
    reply.insert(key::identifier, 0);
    reply.insert(key::radius, 0);
    reply.insert(key::source, QStringLiteral(".ssp"));
    reply.insert(key::history, QStringLiteral("NA"));
    reply.insert(key::samples, source.samples);
    reply.insert(key::comment, source.comment);
    reply.insert(key::time, conversion.time);
    const qint64 taken = milliseconds(conversion.time);
    if (taken >= 0) {
        reply.insert(key::validFrom, double(taken - day));
        reply.insert(key::validTo, double(taken + day));
    }
    if (!source.latitude.isEmpty() && !source.longitude.isEmpty()) {
        reply.insert(key::latitude, source.latitude);
        reply.insert(key::longitude, source.longitude);
    }
}

} // namespace

QString sspRefusal(const QByteArray& content)
{
    const QByteArray digits = leadingIdentifier(content);
    if (digits.isEmpty())
        return QStringLiteral("Header not correct in file.");
    if (!contentIdentifier(digits.toInt()).isLegal)
        return QStringLiteral("Unsupported SSP type S%1").arg(QString::fromLatin1(digits));
    return {};
}

profile::OpenedProfile openedSsp(const Conversion& conversion, const QString& name)
{
    QVector<float> record;
    if (!conversion.profile.empty()) {
        const int levels = conversion.profile[ConvertedDepth].size();
        record.reserve(levels * profile::recordSlots);
        for (int level = 0; level < levels; ++level) {
            // The vectors stand in the order of a record's slots.
            for (int vector = 0; vector < profile::recordSlots; ++vector) {
                const double value = getFromS00(conversion.profile, level, vector);
                record.append(std::isfinite(value) ? float(value) : 0.0F);
            }
        }
    }
    profile::OpenedProfile opened;
    if (!record.isEmpty())
        insertHeader(opened.reply, conversion);
    opened.reason = profile::insertProfile(opened.reply, record, name);
    if (opened.reason.isEmpty())
        opened.decimals = shownDecimals(conversion.source);
    return opened;
}

} // namespace datagram
