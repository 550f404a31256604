#pragma once

#include <QJsonObject>
#include <QLatin1String>
#include <QString>

/// Makes the one JSON object that answers an action.
///
///     send(Reply(action::check).failure(QStringLiteral("Too few samples in profile.")));
class Reply
{
  public:
    /// A reply of the action `whoami`, the action name without its prefix.
    explicit Reply(QLatin1String whoami);

    /// Adds a key of the action's own.
    Reply& with(QLatin1String key, const QJsonValue& value);
    /// Adds all keys of `fields`.
    Reply& with(const QJsonObject& fields);

    /// The object with "result" "SUCCESS".
    QJsonObject success() const;
    /// The object with "result" "FAILURE" and the reason.
    QJsonObject failure(const QString& reason) const;
    /// The object without a result.
    QJsonObject plain() const { return m_object; }

  private:
    QJsonObject m_object;
};
