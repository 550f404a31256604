#pragma once

#include "datagram/sspdatagram.h"
#include "profile/asvpfile.h"
#include "profile/requestblock.h"
#include "raytrace/layers.h"

#include <QString>
#include <QStringRef>
#include <QVector>

#include <cstdint>
#include <optional>
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

/// Reads the form from `pieces`. A further list without text is no list.
ThinRequest parseThinRequest(const QVector<QStringRef>& pieces);

/// "Unsupported SSP type S%1" with the number of the kind, or with its text where that is no
/// number; empty when the kind is supported, as "SoundVelocity" is.
QString kindRefusal(const ThinRequest& request);

/// Why the samples of a request cannot be thinned, in the order of the tests: "Wrong svp input."
/// for fewer than 6 speeds in the `.asvp` kind, for unequal counts, for fewer than 3 samples;
/// "Depths not sorted."; in the `.asvp` kind "Profile not extended." unless it goes from exactly
/// 0 m to exactly 12000 m. Empty when they can.
QString thinRefusal(const ThinRequest& request);

/// Why the samples of a request cannot be fixed. In a datagram's kind, in the order of the tests:
/// "Stated sample count mismatch." unless the form states as many samples as there are depths;
/// "Sample count mismatch or too small." for lists of unequal length and for fewer than 3 samples.
/// In the `.asvp` kind "Invalid svp." for fewer than 6 speeds and for unequal counts. Empty when
/// they can.
QString fixRefusal(const ThinRequest& request);

/// Whether the first column of a kind's rows is a pressure: the content identifiers 4, 5, 7, 14,
/// 40 to 43 and 50 to 53.
bool hasPressureColumn(const ThinRequest& request);

/// Continues the lists of a cleaned profile by the rows that were joined below it: those of
/// `samples` beyond the lists' own. A row's probe speed is its speed; its probe depth is its depth,
/// or with `pressureLatitude` (decimal degrees) the pressure there in megapascals, the unit of such
/// a column; temperature, salinity and absorption stay as in the last measured sample. A
/// list without any value stays so.
void continueLists(profile::ValueLists& lists, const raytrace::Layers& samples,
                   std::optional<double> pressureLatitude);

/// Whether each further list of `lists` has as many values as there are depths. A list that the
/// kind of `request` does not write may be missing.
bool haveEqualLengths(const profile::ValueLists& lists, const ThinRequest& request);

/// What the datagram of these samples is made of; the header of `form` with the number of samples
/// there are.
DatagramParts datagramPartsOf(const profile::ProfileForm& form, const profile::ValueLists& lists);

/// The words of an `.asvp` header from the header fields of the form.
profile::AsvpHeader asvpHeaderOf(const profile::ProfileForm& form);

/// Name of a file made from the profile `name`: `ending` behind the name up to the last "." of its
/// last element; behind the whole name where that has none.
QString derivedName(const QString& name, const QString& ending);

} // namespace datagram
