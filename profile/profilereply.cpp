#include "profile/profilereply.h"

#include "profile/columndecoder.h"
#include "profile/protocol.h"

#include <QJsonArray>

#include <new>

namespace profile {

void insertAsvpHeader(QJsonObject& reply, const QStringList& words)
{
    namespace key = protocol::header;
    constexpr QLatin1String keys[] = {
        key::type,   key::version,   key::identifier, key::time,   key::latitude, key::longitude,
        key::radius, key::validFrom, key::validTo,    key::source, key::history,  key::samples};
    int index = 0;
    for (const QLatin1String word : keys) {
        if (index < words.size())
            reply.insert(word, words[index]);
        ++index;
    }
}

QString insertProfile(QJsonObject& reply, const QVector<float>& record, const QString& fileName)
{
    if (record.size() < minRecordValues)
        return QStringLiteral("Too few points in file.");
    try {
        QJsonObject profile = reply;
        for (int slot = 0; slot < recordSlots; ++slot) {
            QJsonArray values;
            for (int i = slot; i + recordSlots <= record.size() + slot; i += recordSlots)
                values.append(double(record[i]));
            profile.insert(protocol::sampleKeys[slot], values);
        }
        profile.insert(protocol::reply::fileName, fileName);
        if (!profile.contains(protocol::header::samples))
            profile.insert(protocol::header::samples, record.size() / recordSlots);
        reply = profile;
    } catch (const std::bad_alloc&) {
        return QStringLiteral("Memory allocation error");
    }
    return {};
}

} // namespace profile
