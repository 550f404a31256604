#pragma once

#include "datagram/conversion.h"
#include "profile/openprofile.h"

#include <QString>

/// Opening a datagram file.
namespace datagram {

/// Whether the `.ssp` file content can be given to the conversion: "Header not correct in file."
/// when it does not begin with a profile datagram, "Unsupported SSP type S%1" for a content
/// identifier that is none; empty when it can.
QString sspRefusal(const QByteArray& content);

/// The open reply's part of a converted datagram. Kind "01" for rows of depth, sound speed,
/// temperature and salinity, "03" for depth, temperature and conductivity, else "00". The samples
/// carry the converted sound speed and depth and the row's columns as they stand, in the places
/// from which a save under the same identifier writes them back.
profile::OpenedProfile openedSsp(const Conversion& conversion, const QString& name);

} // namespace datagram
