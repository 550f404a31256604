#pragma once

#include "profile/openedprofile.h"
#include "profile/profilefolder.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>

namespace profile {

/// The file name in an open request, "[" name "," kind "]": every "[" is dropped, the tokens
/// ",asvp]" and ",ssp]" are dropped wherever they stand, and so is one more ",kind]" of letters
/// and digits at the end. What remains is the name, which may hold commas and "]" itself.
QString requestedFileName(const QString& request);

/// Reads the content of a datagram file (".ssp"). The rooms that know datagrams build on this one,
/// so the caller of `openProfile` brings the reader along.
using SspReader = std::function<OpenedProfile(const QByteArray& content, const QString& name)>;

/// Reads the profile file `name` of `folder`, by the first of the filter rows `filters` that fits
/// its suffix. Reasons, in the order of the tests: "File does not exist or cannot be opened for
/// reading", "Filter not found.", then what the kind of file gives. A suffix that the engine does
/// not know by itself is that of a column file.
OpenedProfile openProfile(const ProfileFolder& folder, const QString& name,
                          const QStringList& filters, const SspReader& readSsp);

} // namespace profile
