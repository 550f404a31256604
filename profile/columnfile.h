#pragma once

#include "profile/columndecoder.h"
#include "profile/openedprofile.h"

#include <QByteArray>
#include <QString>

namespace profile {

/// Reads a column file by the user's filter row `format`. Its header tells the name of the file and
/// the current time, since such a file says nothing about itself. Where the row has both a
/// temperature and a salinity column, the kind is the content identifier that fits them: "01" with
/// salinities, "03" with conductivities, "00" where the row leaves that open; the source is then
/// ".ssp". Otherwise the kind is "SoundVelocity".
OpenedProfile openColumnFile(const QByteArray& content, const tagDecodeFmt& format,
                             const QString& name);

} // namespace profile
