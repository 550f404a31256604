#pragma once

#include <QLatin1String>

/// The words of the protocol between the engine and a front end, each spelled once.
namespace protocol {

/// Name under which the engine is registered with its host.
constexpr QLatin1String serviceName("SVP_WebInterface");

/// Values of "whoami": the action names without their prefix.
namespace action {
constexpr QLatin1String open("SVP_OpenSVP");
constexpr QLatin1String save("SVP_Save");
constexpr QLatin1String saveAs("SVP_SaveAs");
constexpr QLatin1String send("SendSVPtoQRV");
constexpr QLatin1String close("CloseSVP");
constexpr QLatin1String fix("FixProfile");
constexpr QLatin1String extendWithFile("ExtendWithFile");
constexpr QLatin1String extendDefault("ExtendDefault");
constexpr QLatin1String extendTempSal("ExtendTempSal");
constexpr QLatin1String thin("Thin");
constexpr QLatin1String receiver("RVT300");
constexpr QLatin1String distribute("Distribute");
constexpr QLatin1String rayPath("ShowRaypath");
constexpr QLatin1String saveFilter("SaveFilter");
constexpr QLatin1String allFilters("GetAllFilters");
constexpr QLatin1String deleteFilter("DeleteFilter");
constexpr QLatin1String check("CheckProfile");
constexpr QLatin1String selectExtension("SelectExtentionFile");
constexpr QLatin1String ready("SVPReadyConnected");
constexpr QLatin1String alert("SVPAlert");
} // namespace action

/// Keys and values that every reply may carry.
namespace reply {
constexpr QLatin1String whoami("whoami");
constexpr QLatin1String result("result");
constexpr QLatin1String success("SUCCESS");
constexpr QLatin1String failure("FAILURE");
constexpr QLatin1String reason("reason");
constexpr QLatin1String alert("alert");
constexpr QLatin1String fileName("filename");
constexpr QLatin1String invalidSpeeds("svpX");
constexpr QLatin1String invalidDepths("svpY");
constexpr QLatin1String toFix("tofix");
} // namespace reply

/// Keys of the seven arrays of a profile, in the order of a sample record's slots.
constexpr QLatin1String sampleKeys[] = {
    QLatin1String("svp_Speed"),     QLatin1String("svp_Depth"), QLatin1String("svp_Depth_CTD"),
    QLatin1String("svp_Speed_CTD"), QLatin1String("svp_Temp"),  QLatin1String("svp_Sal"),
    QLatin1String("svp_AbsCoef"),
};

/// Keys of a profile's header, in the order of its thirteen fields.
namespace header {
constexpr QLatin1String type("hsvp_filetype");
constexpr QLatin1String version("hsvp_fileversion");
constexpr QLatin1String identifier("hsvp_fileid");
constexpr QLatin1String time("hsvp_filetime");
constexpr QLatin1String latitude("hsvp_filelat");
constexpr QLatin1String longitude("hsvp_filelon");
constexpr QLatin1String radius("hsvp_fileradii");
constexpr QLatin1String validFrom("hsvp_filevalidfrom");
constexpr QLatin1String validTo("hsvp_filevalidto");
constexpr QLatin1String source("hsvp_filesource");
constexpr QLatin1String history("hsvp_filehistory");
constexpr QLatin1String samples("hsvp_filesamp");
constexpr QLatin1String comment("hsvp_filecomment");
} // namespace header

/// Kind of a profile that holds depth and sound speed alone.
constexpr QLatin1String soundVelocity("SoundVelocity");

} // namespace protocol
