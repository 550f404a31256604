#include "settings/defaultsettings.h"
#include "tests/support/datafolder.h"

#include <gtest/gtest.h>

namespace {

// The whole file as another reader of it expects it, written down independently of the store.
const char defaultFile[] =
    "\n"
    "; This version number is incremented every time ini file is changed. Do not alter this "
    "number!\n"
    "[iniVer]\n"
    "SVPEditorVersion=8\n"
    "\n"
    "; Profile parameters\n"
    "[profileHandl]\n"
    "bAutoExtend=True\n"
    "iMaxElementDiff=3\n"
    "iMaxSVPSampleCntLegacy=470\n"
    "iMaxSVPSampleCntNew=1000\n"
    "dSVMin=1400.000000\n"
    "dSVMax=1700.000000\n"
    "dTMin=-5.000000\n"
    "dTMax=45.000000\n"
    "\n"
    "; Abs. coeff. parameters\n"
    "[absParam]\n"
    "dSalMin=0.000000\n"
    "dSalMax=40.000000\n"
    "\n"
    "; Messages for reporting\n"
    "[absReportMsg]\n"
    "2600=No samples. Profile not accepted.\n"
    "2601=Faulty header start format. Profile not accepted.\n"
    "2602=Faulty header. Format is missing 'S'. Profile not accepted.\n"
    "2603=Illegal Sxx content identifier. Profile not accepted.\n"
    "2604=Illegal no of samples (legal 1-1000). Profile not accepted.\n"
    "2605=Illegal acquisition time (legal 000000-235959) Profile not accepted.\n"
    "2606=Illegal day (legal 1-31).  Profile not accepted.\n"
    "2607=Illegal month (legal 1-12). Profile not accepted.\n"
    "2608=Illegal year (legal 0000-9999). Profile not accepted.\n"
    "2609=Number of expected and found samples differs or comma faults. Profile not accepted.\n"
    "2610=End of datagram not found. Profile not accepted.\n"
    "2615=No samples. Profile not accepted.\n"
    "2616=Illegal sound speed value. Sample no. %d:  %.2fm  %.2fm/s. Profile not accepted.\n"
    "2617=Illegal depth value. Sample no. %d:  %.2fm  %.2fm/s. Profile not accepted.\n"
    "2618=Decreasing depth value. Sample no. %d:  %.2fm  %.2fm/s. Profile not accepted.\n"
    "2619=Multiple similar depth values. Sample no. %d:  %.2fm  %.2fm/s. Profile not accepted.\n"
    "2620=No 12000m extention. Sample no. %d:  %.2fm  %.2fm/s. Profile not accepted.\n"
    "2621=Depths less than 1cm apart. Sample no. %d:  %.2fm  %.2fm/s. Profile not accepted.\n"
    "2622=Unknown error. Profile not accepted.\n"
    "2625=No samples. Profile not used.\n"
    "2626=Unknown format in converted .asvp file. Profile not accepted.\n"
    "2627=Missing or illegal time of acquisition. Profile not accepted.\n"
    "2628=Number of expected and found samples differs. Profile not accepted.\n"
    "2629=Samples with incorrect format found. Profile not accepted.\n"
    "2630=Unknown problem in converted .asvp file. Profile not accepted.\n"
    "2631=Not able to open converted .asvp file for reading. Old files used.\n";

CDataFile storeOf(const char* text)
{
    CDataFile store;
    store.LoadText(text);
    return store;
}

} // namespace

TEST(DefaultSettings, TheFileIsWrittenByteForByte)
{
    CDataFile store;
    settings::fillDefaults(store);
    EXPECT_EQ(store.SaveText(), defaultFile);
}

TEST(DefaultSettings, AFileBelowTheVersionIsOutdated)
{
    const DataFolder folder;
    struct
    {
        const char* text;
        bool outdated;
    } const cases[] = {
        {"[iniVer]\nSVPEditorVersion=7\n", true},
        {"[iniVer]\nSVPEditorVersion=8\n", false},
        {"[iniVer]\nSVPEditorVersion=9\n", false},
        {"[INIVER]\nsvpeditorversion: 8\n", false},
        {"[iniVer]\nSVPEditorVersion=\n", true},
        {"[iniVer]\nSVPEditorVersion=eight\n", true},
        {"[other]\nSVPEditorVersion=8\n", true},
        {"\xEF\xBB\xBF[iniVer]\r\nSVPEditorVersion=8\r\n", false},
        {"", true},
    };
    for (const auto& c : cases) {
        folder.write(QStringLiteral("test.ini"), c.text);
        EXPECT_EQ(settings::isOutdated(folder.path(QStringLiteral("test.ini")).toStdString()),
                  c.outdated)
            << c.text;
    }
    EXPECT_TRUE(settings::isOutdated(folder.path(QStringLiteral("missing.ini")).toStdString()));
}

TEST(DefaultSettings, LimitsComeFromTheFileWhereItHasThem)
{
    struct
    {
        const char* text;
        float minSoundSpeed;
    } const cases[] = {
        {"[profileHandl]\ndSVMin=1390.5\n", 1390.5F},
        {"[profilehandl]\nDSVMIN=1390.5\n", 1390.5F},
        {"[profileHandl]\ndSVMin=\n", 1400.0F},
        {"[profileHandl]\n", 1400.0F},
        {"", 1400.0F},
        {"[profileHandl]\ndSVMin=abc\n", 0.0F},
    };
    for (const auto& c : cases)
        EXPECT_EQ(settings::readProfileLimits(storeOf(c.text)).minSoundSpeed, c.minSoundSpeed)
            << c.text;
    const settings::ProfileLimits limits = settings::readProfileLimits(
        storeOf("[profileHandl]\ndSVMax=1650\ndTMin=-2.5\ndTMax: 40\n"));
    EXPECT_EQ(limits.maxSoundSpeed, 1650.0F);
    EXPECT_EQ(limits.minTemperature, -2.5F);
    EXPECT_EQ(limits.maxTemperature, 40.0F);
    const settings::ProfileLimits defaults = settings::readProfileLimits(CDataFile());
    EXPECT_EQ(defaults.maxSoundSpeed, 1700.0F);
    EXPECT_EQ(defaults.minTemperature, -5.0F);
    EXPECT_EQ(defaults.maxTemperature, 45.0F);
}
