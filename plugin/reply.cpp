#include "plugin/reply.h"

#include "profile/protocol.h"

using namespace protocol;

Reply::Reply(QLatin1String whoami)
{
    m_object.insert(reply::whoami, QString(whoami));
}

Reply& Reply::with(QLatin1String key, const QJsonValue& value)
{
    m_object.insert(key, value);
    return *this;
}

Reply& Reply::with(const QJsonObject& fields)
{
    for (auto field = fields.begin(); field != fields.end(); ++field)
        m_object.insert(field.key(), field.value());
    return *this;
}

QJsonObject Reply::success() const
{
    QJsonObject object = m_object;
    object.insert(reply::result, QString(reply::success));
    return object;
}

QJsonObject Reply::failure(const QString& reason) const
{
    QJsonObject object = m_object;
    object.insert(reply::result, QString(reply::failure));
    object.insert(reply::reason, reason);
    return object;
}
