#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QVector>

namespace profile {

/// Puts the twelve words of an `.asvp` header, as strings, under their header keys.
void insertAsvpHeader(QJsonObject& reply, const QStringList& words);

/// Puts a profile record into a reply: the seven arrays, each value widened from its 32-bit float
/// without rounding; the file's name; and the number of levels where no header has given one.
/// Returns why the profile cannot be delivered ("Too few points in file." below two levels,
/// "Memory allocation error"), with the reply as it was, or an empty text.
QString insertProfile(QJsonObject& reply, const QVector<float>& record, const QString& fileName);

} // namespace profile
