#include "settings/defaultsettings.h"

namespace settings {

namespace {

struct ReportMessage
{
    const char* key;
    const char* text;
};

// The formats take a sample number, a depth (m) and a sound speed (m/s). Two keys carry the same
// text on purpose: they are reported from different places.
constexpr ReportMessage reportMessages[] = {
    {"2600", "No samples. Profile not accepted."},
    {"2601", "Faulty header start format. Profile not accepted."},
    {"2602", "Faulty header. Format is missing 'S'. Profile not accepted."},
    {"2603", "Illegal Sxx content identifier. Profile not accepted."},
    {"2604", "Illegal no of samples (legal 1-1000). Profile not accepted."},
    {"2605", "Illegal acquisition time (legal 000000-235959) Profile not accepted."},
    {"2606", "Illegal day (legal 1-31).  Profile not accepted."},
    {"2607", "Illegal month (legal 1-12). Profile not accepted."},
    {"2608", "Illegal year (legal 0000-9999). Profile not accepted."},
    {"2609", "Number of expected and found samples differs or comma faults. Profile not accepted."},
    {"2610", "End of datagram not found. Profile not accepted."},
    {"2615", "No samples. Profile not accepted."},
    {"2616", "Illegal sound speed value. Sample no. %d:  %.2fm  %.2fm/s. Profile not accepted."},
    {"2617", "Illegal depth value. Sample no. %d:  %.2fm  %.2fm/s. Profile not accepted."},
    {"2618", "Decreasing depth value. Sample no. %d:  %.2fm  %.2fm/s. Profile not accepted."},
    {"2619",
     "Multiple similar depth values. Sample no. %d:  %.2fm  %.2fm/s. Profile not accepted."},
    {"2620", "No 12000m extention. Sample no. %d:  %.2fm  %.2fm/s. Profile not accepted."},
    {"2621", "Depths less than 1cm apart. Sample no. %d:  %.2fm  %.2fm/s. Profile not accepted."},
    {"2622", "Unknown error. Profile not accepted."},
    {"2625", "No samples. Profile not used."},
    {"2626", "Unknown format in converted .asvp file. Profile not accepted."},
    {"2627", "Missing or illegal time of acquisition. Profile not accepted."},
    {"2628", "Number of expected and found samples differs. Profile not accepted."},
    {"2629", "Samples with incorrect format found. Profile not accepted."},
    {"2630", "Unknown problem in converted .asvp file. Profile not accepted."},
    {"2631", "Not able to open converted .asvp file for reading. Old files used."},
};

} // namespace

void fillDefaults(CDataFile& store)
{
    store.CreateSection(ini::versionSection,
                        "This version number is incremented every time ini file is changed. "
                        "Do not alter this number!");
    store.PutInt(ini::versionKey, currentVersion, {}, ini::versionSection);

    const ProfileLimits limits;
    store.CreateSection(ini::profileSection, "Profile parameters");
    store.PutBool("bAutoExtend", true, {}, ini::profileSection);
    store.PutInt("iMaxElementDiff", 3, {}, ini::profileSection);
    store.PutInt("iMaxSVPSampleCntLegacy", 470, {}, ini::profileSection);
    store.PutInt("iMaxSVPSampleCntNew", 1000, {}, ini::profileSection);
    store.PutFloat(ini::minSoundSpeed, double(limits.minSoundSpeed), {}, ini::profileSection);
    store.PutFloat(ini::maxSoundSpeed, double(limits.maxSoundSpeed), {}, ini::profileSection);
    store.PutFloat(ini::minTemperature, double(limits.minTemperature), {}, ini::profileSection);
    store.PutFloat(ini::maxTemperature, double(limits.maxTemperature), {}, ini::profileSection);

    constexpr char absorptionSection[] = "absParam";
    store.CreateSection(absorptionSection, "Abs. coeff. parameters");
    store.PutFloat("dSalMin", 0.0, {}, absorptionSection);
    store.PutFloat("dSalMax", 40.0, {}, absorptionSection);

    store.CreateSection(ini::messageSection, "Messages for reporting");
    for (const ReportMessage& message : reportMessages)
        store.PutValue(message.key, message.text, {}, ini::messageSection);
}

bool isOutdated(const std::string& path)
{
    CDataFile file;
    file.Load(path);
    return file.FetchInt(ini::versionKey, ini::versionSection) < currentVersion;
}

ProfileLimits readProfileLimits(const CDataFile& store)
{
    const auto limit = [&store](const char* key, float whereMissing) {
        const float value = store.FetchFloat(key, ini::profileSection);
        return value == CDataFile::noFloat ? whereMissing : value;
    };
    const ProfileLimits defaults;
    return {limit(ini::minSoundSpeed, defaults.minSoundSpeed),
            limit(ini::maxSoundSpeed, defaults.maxSoundSpeed),
            limit(ini::minTemperature, defaults.minTemperature),
            limit(ini::maxTemperature, defaults.maxTemperature)};
}

} // namespace settings
