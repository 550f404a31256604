#pragma once

#include "datagram/receivedata.h"

#include <string_view>

/// The readers behind `CReceiveData`, one per kind of file. Each takes a whole text, whose line
/// ends may be LF, CR LF, CR CR LF or CR, and fills `cast`; the result is that of
/// `CReceiveData::parse`. What each takes is told in docs/probe-files.md.
namespace datagram::probe {

int readCalcListing(std::string_view text, ProbeCast& cast);          ///< 0
int readDelimitedRows(std::string_view text, ProbeCast& cast);        ///< 1, 2
int readPressureDatagram(std::string_view text, ProbeCast& cast);     ///< 3
int readConvertedProfile(std::string_view text, ProbeCast& cast);     ///< 4
int readSeaBirdConverted(std::string_view text, ProbeCast& cast);     ///< 5
int readScanListing(std::string_view text, ProbeCast& cast);          ///< 6
int readBreakpointProfile(std::string_view text, ProbeCast& cast);    ///< 7, 8
int readSvPlus(std::string_view text, ProbeCast& cast);               ///< 9
int readSeaBirdDeckUnit(std::string_view text, ProbeCast& cast);      ///< 10
int readCalibrationExtension(std::string_view text, ProbeCast& cast); ///< 11
int readEdf(std::string_view text, ProbeCast& cast);                  ///< 12
int readPlainColumns(std::string_view text, ProbeCast& cast);         ///< 13

} // namespace datagram::probe
