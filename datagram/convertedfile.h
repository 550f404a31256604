#pragma once

#include "datagram/receivedata.h"

#include <QByteArray>
#include <QString>

#include <vector>

namespace datagram {

/// The text of a converted profile, an `.asvp` file with three decimals that
/// `CReceiveData::parse` reads as format 4.
///
/// @param time       yyyyMMddHHmm or yyyyMMddHHmmss
/// @param latitude   decimal degrees, "0" where it is not known; so for `longitude`
/// @param source     where the profile comes from, two words joined by "_"
///
/// White space inside a word becomes "_" and an empty word "0" ("NA" for the source), so that
/// twelve words always read back.
QByteArray convertedFileText(const QString& time, const QString& latitude, const QString& longitude,
                             const QString& source, const std::vector<ProbeSample>& samples);

} // namespace datagram
