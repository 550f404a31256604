#pragma once

#include <QLatin1String>

#include <cstddef>

/// The words of the protocol between the engine and a front end, each spelled once.
namespace protocol {

/// A literal as a constant: its length is known when compiling, with every compiler.
template <std::size_t Size> constexpr QLatin1String word(const char (&text)[Size])
{
    return QLatin1String(text, int(Size) - 1);
}

/// Name under which the engine is registered with its host.
constexpr QLatin1String serviceName = word("SVP_WebInterface");

/// Values of "whoami": the action names without their prefix.
namespace action {
constexpr QLatin1String open = word("SVP_OpenSVP");
constexpr QLatin1String save = word("SVP_Save");
constexpr QLatin1String saveAs = word("SVP_SaveAs");
constexpr QLatin1String send = word("SendSVPtoQRV");
constexpr QLatin1String close = word("CloseSVP");
constexpr QLatin1String fix = word("FixProfile");
constexpr QLatin1String extendWithFile = word("ExtendWithFile");
constexpr QLatin1String extendDefault = word("ExtendDefault");
constexpr QLatin1String extendTempSal = word("ExtendTempSal");
constexpr QLatin1String thin = word("Thin");
constexpr QLatin1String receiver = word("RVT300");
constexpr QLatin1String distribute = word("Distribute");
constexpr QLatin1String rayPath = word("ShowRaypath");
constexpr QLatin1String saveFilter = word("SaveFilter");
constexpr QLatin1String allFilters = word("GetAllFilters");
constexpr QLatin1String deleteFilter = word("DeleteFilter");
constexpr QLatin1String check = word("CheckProfile");
constexpr QLatin1String selectExtension = word("SelectExtentionFile");
constexpr QLatin1String ready = word("SVPReadyConnected");
constexpr QLatin1String alert = word("SVPAlert");
} // namespace action

/// Keys and values that every reply may carry.
namespace reply {
constexpr QLatin1String whoami = word("whoami");
constexpr QLatin1String result = word("result");
constexpr QLatin1String success = word("SUCCESS");
constexpr QLatin1String failure = word("FAILURE");
constexpr QLatin1String reason = word("reason");
constexpr QLatin1String alert = word("alert");
constexpr QLatin1String fileName = word("filename");
constexpr QLatin1String speeds = word("svpX");
constexpr QLatin1String depths = word("svpY");
constexpr QLatin1String file = word("file");
constexpr QLatin1String svpType = word("svptype");
constexpr QLatin1String fullName = word("fullname");
constexpr QLatin1String toFix = word("tofix");
constexpr QLatin1String filters = word("filters");
constexpr QLatin1String extensionFile = word("extentionfile");
constexpr QLatin1String firstPathX = word("svp1X");
constexpr QLatin1String firstPathY = word("svp1Y");
constexpr QLatin1String secondPathX = word("svp2X");
constexpr QLatin1String secondPathY = word("svp2Y");
/// Followed by a horizontal range in whole metres.
constexpr QLatin1String differencesAt = word("err");
} // namespace reply

/// Keys of the seven arrays of a profile, in the order of a sample record's slots.
constexpr QLatin1String sampleKeys[] = {
    word("svp_Speed"), word("svp_Depth"), word("svp_Depth_CTD"), word("svp_Speed_CTD"),
    word("svp_Temp"),  word("svp_Sal"),   word("svp_AbsCoef"),
};

/// Keys of a profile's header, in the order of its thirteen fields.
namespace header {
constexpr QLatin1String type = word("hsvp_filetype");
constexpr QLatin1String version = word("hsvp_fileversion");
constexpr QLatin1String identifier = word("hsvp_fileid");
constexpr QLatin1String time = word("hsvp_filetime");
constexpr QLatin1String latitude = word("hsvp_filelat");
constexpr QLatin1String longitude = word("hsvp_filelon");
constexpr QLatin1String radius = word("hsvp_fileradii");
constexpr QLatin1String validFrom = word("hsvp_filevalidfrom");
constexpr QLatin1String validTo = word("hsvp_filevalidto");
constexpr QLatin1String source = word("hsvp_filesource");
constexpr QLatin1String history = word("hsvp_filehistory");
constexpr QLatin1String samples = word("hsvp_filesamp");
constexpr QLatin1String comment = word("hsvp_filecomment");
} // namespace header

/// Kind of a profile that holds depth and sound speed alone.
constexpr QLatin1String soundVelocity = word("SoundVelocity");

} // namespace protocol
