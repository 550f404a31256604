#pragma once

#include <QString>

namespace datagram {

/// Whether the text of a receiver or distribution request is a profile: a list of values
/// separated by ",", depths at even places and sound speeds at odd ones, at least three of each
/// and as many of the one as of the other.
bool isPairList(const QString& request);

} // namespace datagram
