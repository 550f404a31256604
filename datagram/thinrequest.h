#pragma once

#include "datagram/sspdatagram.h"
#include "profile/asvpfile.h"
#include "profile/requestblock.h"

#include <QString>
#include <QStringRef>
#include <QVector>

#include <cstdint>
#include <vector>

/// The request to thin or fix a profile: read, judged, and made into what is to be written.
namespace datagram {

/// A profile form with its value lists.
struct ThinRequest
{
    profile::ProfileForm form;
    profile::ValueLists lists;
    bool isAsvp = false; ///< of the kind "SoundVelocity", else a datagram's content identifier
};

/// Reads the form from `pieces`. In the `.asvp` kind a further list without text is no list.
ThinRequest parseThinRequest(const QVector<QStringRef>& pieces);

/// "Unsupported SSP type S%1" with the number of the kind, or with its text where that is no
/// number; empty when the kind is supported, as "SoundVelocity" is.
QString kindRefusal(const ThinRequest& request);

/// Why the samples of a request cannot be thinned, in the order of the tests: "Wrong svp input."
/// for fewer than 6 speeds in the `.asvp` kind, for unequal counts, for fewer than 3 samples;
/// "Depths not sorted."; in the `.asvp` kind "Profile not extended." unless it goes from exactly
/// 0 m to exactly 12000 m. Empty when they can.
QString thinRefusal(const ThinRequest& request);

/// Whether each further list has as many values as there are depths. In the `.asvp` kind, which
/// does not write them, a list may be missing.
bool haveEqualLengths(const profile::ValueLists& lists, bool isAsvp);

/// What the datagram of these samples is made of; the header of `form` with the number of samples
/// there are.
DatagramParts datagramPartsOf(const profile::ProfileForm& form, const profile::ValueLists& lists);

/// The words of an `.asvp` header from the header fields of the form.
profile::AsvpHeader asvpHeaderOf(const profile::ProfileForm& form);

/// Name of a file made from the profile `name`: `ending` behind the name up to the last "." of its
/// last element; behind the whole name where that has none.
QString derivedName(const QString& name, const QString& ending);

} // namespace datagram
