#pragma once

#include "datagram/receivedata.h"

#include <string_view>

/// The readers behind `CReceiveData`, one per kind of file. Each takes a whole text, whose line
/// ends may be LF, CR LF, CR CR LF or CR, and fills `cast`; the result is that of
/// `CReceiveData::parse`.
namespace datagram::probe {

int readConvertedProfile(std::string_view text, ProbeCast& cast); ///< 4

} // namespace datagram::probe
