#pragma once

#include "settings/cdatafile.h"

#include <string>

/// The settings file `SVPEditor.ini`: what it holds when it is written anew, and when that is due.
namespace settings {

/// Names of the sections and keys that the engine reads itself.
namespace ini {
constexpr char versionSection[] = "iniVer";
constexpr char versionKey[] = "SVPEditorVersion";
constexpr char profileSection[] = "profileHandl";
constexpr char messageSection[] = "absReportMsg";
constexpr char minSoundSpeed[] = "dSVMin";
constexpr char maxSoundSpeed[] = "dSVMax";
constexpr char minTemperature[] = "dTMin";
constexpr char maxTemperature[] = "dTMax";
} // namespace ini

/// Version of the default content; a file with a lower one is written anew.
constexpr int currentVersion = 8;

/// Sound speed (m/s) and temperature (degrees Celsius) limits of a profile. The values here hold
/// where the settings file has none.
struct ProfileLimits
{
    float minSoundSpeed = 1400.0F;
    float maxSoundSpeed = 1700.0F;
    float minTemperature = -5.0F;
    float maxTemperature = 45.0F;
};

/// Puts the whole default content into `store`, in the order in which it is written.
void fillDefaults(CDataFile& store);

/// Whether the file `path` (UTF-8) is outdated: its version is below `currentVersion`, missing,
/// or the file cannot be read.
bool isOutdated(const std::string& path);

/// The limits that `store` holds, with the default for each key that it has not. A value that is
/// no number reads as 0.
ProfileLimits readProfileLimits(const CDataFile& store);

} // namespace settings
