#include "processing/atlas.h"
#include "tests/support/datafolder.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <limits>

#ifdef __unix__
#include <sys/stat.h>
#endif
#ifdef Q_OS_WIN
#include "tests/support/heldfile.h"
#endif

using namespace processing;
using Read = WorldOceanAtlas::Read;

namespace {

const QByteArray comment =
    "// Compulsory 1st line. Extension profile format: 'depth soundspeed CRLF'. Last line must "
    "always be '12000 soundspeed CRLF'.";

ExtensionRows rowsOf(const QVector<float>& depths, const QVector<float>& speeds)
{
    ExtensionRows rows;
    rows.depths = depths;
    rows.speeds = speeds;
    return rows;
}

ExtensionRows deepRows(double)
{
    return rowsOf({500, 1000, 4000, 12000}, {1498, 1483, 1500.25F, 1602});
}

// Two atlas files in a folder of their own.
class AtlasFiles : public testing::Test
{
  protected:
    AtlasFiles()
    {
        write("s.csv", "title\nDEPTHS (M):0,100,1000,5500\n59.5,10.5,35,35.1,34.9,34.7\n"
                       "-0.5,-0.5,35,35.1\n0.5,0.5\n");
        write("t.csv", "title\nDEPTHS (M):0,100,1000,5500\n59.5,10.5,8,6.5,3.5,2\n"
                       "-0.5,359.5,8,6.5,3.5\n0.5,0.5,8\n");
    }

    QString path(const char* name) const { return folder.filePath(QLatin1String(name)); }
    void write(const char* name, const QByteArray& text) const { writeBytes(path(name), text); }
    Read read() { return atlas.read(path("s.csv"), path("t.csv")); }
    AtlasProfile profileAt(double latitude, double longitude)
    {
        EXPECT_EQ(read(), Read::Both);
        return atlas.woaProfile(latitude, longitude);
    }
    QVector<float> depthsAt(double latitude, double longitude)
    {
        return profileAt(latitude, longitude).depths;
    }
    QString generate(double latitude, double longitude)
    {
        return fnGeneratWOAExtFile(atlas, latitude, longitude, path("s.csv"), path("t.csv"),
                                   deepRows, path("out"));
    }

    QTemporaryDir folder;
    WorldOceanAtlas atlas;
};

} // namespace

// Speeds by another program, from the equations alone.
TEST_F(AtlasFiles, AProfileIsMadeOfBoth)
{
    const AtlasProfile profile = profileAt(59.5, 10.5);
    EXPECT_EQ(profile.depths, (QVector<float>{0, 100, 1000, 5500}));
    ASSERT_EQ(profile.speeds.size(), 4);
    EXPECT_NEAR(profile.speeds[0], 1482.468417, 2e-4);
    EXPECT_NEAR(profile.speeds[1], 1478.468740, 2e-4);
    EXPECT_NEAR(profile.speeds[2], 1480.844547, 2e-4);
    EXPECT_NEAR(profile.speeds[3], 1552.624687, 2e-4);
}

// The pressure is that of the position, not of the cell.
TEST_F(AtlasFiles, ThePressureFollowsTheLatitude)
{
    write("s.csv", "title\n:5500\n0.5,10.5,34.7\n");
    write("t.csv", "title\n:5500\n0.5,10.5,2\n");
    const AtlasProfile profile = profileAt(0.0, 10.0);
    ASSERT_EQ(profile.speeds.size(), 1);
    EXPECT_NEAR(profile.speeds[0], 1552.246294, 2e-4);
}

TEST_F(AtlasFiles, TheShorterOfTheTwoEndsIt)
{
    EXPECT_EQ(depthsAt(-0.5, -0.5), (QVector<float>{0, 100}));
    EXPECT_EQ(depthsAt(-0.5, 359.5), (QVector<float>{0, 100}));
    EXPECT_EQ(depthsAt(0.5, 0.5), QVector<float>());
    EXPECT_EQ(depthsAt(30.0, 30.0), QVector<float>());
}

TEST_F(AtlasFiles, AGapEndsIt)
{
    write("s.csv", "title\n:0,100,1000\n59.5,10.5,35,,34.9\n58.5,10.5,-9999.99,35,35\n"
                   "57.5,10.5,35,x,35\n56.5,10.5,0,0,0\n");
    write("t.csv", "title\n:0,100,1000\n59.5,10.5,8,6.5,3.5\n58.5,10.5,8,6.5,3.5\n"
                   "57.5,10.5,8,6.5,3.5\n56.5,10.5,0,0,0\n");
    EXPECT_EQ(depthsAt(59.5, 10.5), (QVector<float>{0}));
    EXPECT_EQ(depthsAt(58.5, 10.5), QVector<float>());
    EXPECT_EQ(depthsAt(57.5, 10.5), (QVector<float>{0}));
    // 0 is a value like others.
    EXPECT_EQ(depthsAt(56.5, 10.5), (QVector<float>{0, 100, 1000}));
}

TEST_F(AtlasFiles, LevelsThatDisagreeEndIt)
{
    const QByteArray cell = "\n59.5,10.5,35,35,35\n";
    const struct
    {
        const char* salinityLevels;
        const char* temperatureLevels;
        QVector<float> depths;
    } cases[] = {
        {":0,100,1000", ":0,100,1000", {0, 100, 1000}},
        {":0,100,1000", ":0,100,1500", {0, 100}},
        {":0,100,1000", ":0,100", {0, 100}},
        {":0", ":0,100,1000", {0}},
        {":5,100,1000", ":0,100,1000", {}},
        {":0,x,1000", ":0,x,1000", {0}},
        {":0,x,1000", ":0,1000", {0}},
        {"0,100,1000", ":0,100,1000", {}},
        {":0,100,1000,2000", ":0,100,1000,2000", {0, 100, 1000}},
    };
    for (const auto& c : cases) {
        WorldOceanAtlas fresh;
        write("s.csv", QByteArray("title\n") + c.salinityLevels + cell);
        write("t.csv", QByteArray("title\n") + c.temperatureLevels + cell);
        EXPECT_EQ(fresh.read(path("s.csv"), path("t.csv")), Read::Both);
        EXPECT_EQ(fresh.woaProfile(59.5, 10.5).depths, c.depths)
            << c.salinityLevels << " " << c.temperatureLevels;
    }
}

TEST_F(AtlasFiles, PositionsGoRoundAndEndAtThePoles)
{
    QByteArray salinities = "title\n:0\n";
    QByteArray temperatures = salinities;
    int number = 0;
    for (const char* const position :
         {"0.5,359.5", "0.5,179.5", "0.5,180.5", "0.5,0.5", "89.5,0.5", "-89.5,0.5"}) {
        ++number;
        salinities += QByteArray(position) + ",3" + QByteArray::number(number) + '\n';
        temperatures += QByteArray(position) + ",1" + QByteArray::number(number) + '\n';
    }
    write("s.csv", salinities);
    write("t.csv", temperatures);
    // Salinity and temperature of the cell: the speed tells which one it is.
    const struct
    {
        double latitude, longitude, sameLatitude, sameLongitude;
    } cases[] = {
        {0.0, -0.5, 0.5, 359.5},  {0.0, -360.5, 0.5, 359.5}, {0.0, 179.99, 0.5, 179.5},
        {0.0, 180.0, 0.5, 180.5}, {0.0, -180.0, 0.5, 180.5}, {0.0, 360.0, 0.5, 0.5},
        {0.0, 720.5, 0.5, 0.5},   {90.0, 0.5, 89.5, 0.5},    {91.0, 0.5, 89.5, 0.5},
        {-90.0, 0.5, -89.5, 0.5}, {-91.0, 0.5, -89.5, 0.5},
    };
    for (const auto& c : cases) {
        const AtlasProfile one = profileAt(c.latitude, c.longitude);
        const AtlasProfile other = profileAt(c.sameLatitude, c.sameLongitude);
        ASSERT_EQ(one.speeds.size(), 1) << c.latitude << " " << c.longitude;
        EXPECT_EQ(one.speeds, other.speeds) << c.latitude << " " << c.longitude;
    }
    EXPECT_NE(profileAt(0.5, 179.5).speeds, profileAt(0.5, 180.5).speeds);
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const double odd : {nan, infinity, -infinity}) {
        EXPECT_EQ(depthsAt(odd, 0.5), QVector<float>());
        EXPECT_EQ(depthsAt(0.5, odd), QVector<float>());
    }
    EXPECT_EQ(profileAt(1e300, 0.5).depths.size(), 1);
    profileAt(0.5, 1e300);
}

TEST_F(AtlasFiles, ValuesThatNoSpeedCanBeMadeOfEndIt)
{
    write("s.csv", "title\n:0,10,20\n59.5,10.5,35,1e300,35\n");
    write("t.csv", "title\n:0,10,20\n59.5,10.5,8,8,8\n");
    EXPECT_EQ(depthsAt(59.5, 10.5), (QVector<float>{0}));
    write("s.csv", "title\n:0,10,20\n59.5,10.5,35,1e30,35\n");
    EXPECT_EQ(depthsAt(59.5, 10.5), (QVector<float>{0}));
}

TEST_F(AtlasFiles, TheSameFilesAreNotReadTwice)
{
    ASSERT_EQ(depthsAt(59.5, 10.5).size(), 4);
    // Other bytes under the same size and time: what was read before is what is told.
    const QDateTime time = QFileInfo(path("s.csv")).lastModified();
    const QByteArray text = bytesOf(path("s.csv"));
    const auto writeAt = [&](const QByteArray& changed, const QDateTime& at) {
        write("s.csv", changed);
        QFile file(path("s.csv"));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(at, QFileDevice::FileModificationTime));
    };
    QByteArray elsewhere = text;
    elsewhere.replace("59.5", "49.5");
    writeAt(elsewhere, time);
    EXPECT_EQ(depthsAt(59.5, 10.5).size(), 4);
    EXPECT_EQ(depthsAt(49.5, 10.5).size(), 0);
    // Another time.
    writeAt(elsewhere, time.addSecs(1));
    EXPECT_EQ(depthsAt(59.5, 10.5).size(), 0);
    // Another size.
    writeAt(text + "58.5,10.5,35\n", time.addSecs(1));
    EXPECT_EQ(depthsAt(59.5, 10.5).size(), 4);
    // Another path, of the same size and time.
    writeAt(text, time);
    ASSERT_EQ(depthsAt(59.5, 10.5).size(), 4);
    writeBytes(path("other/s.csv"), elsewhere);
    QFile other(path("other/s.csv"));
    ASSERT_TRUE(other.open(QIODevice::ReadWrite));
    ASSERT_TRUE(other.setFileTime(time, QFileDevice::FileModificationTime));
    other.close();
    EXPECT_EQ(atlas.read(path("other/s.csv"), path("t.csv")), Read::Both);
    EXPECT_EQ(atlas.woaProfile(59.5, 10.5).depths.size(), 0);
}

TEST_F(AtlasFiles, AFileThatCannotBeReadLeavesNothingBehind)
{
    ASSERT_EQ(depthsAt(59.5, 10.5).size(), 4);
    const QByteArray good = bytesOf(path("t.csv"));
    write("t.csv", good + "short\n");
    EXPECT_EQ(read(), Read::NotRead);
    EXPECT_TRUE(atlas.woaProfile(59.5, 10.5).depths.isEmpty());
    // Nor is it served as a file that was read before.
    EXPECT_EQ(read(), Read::NotRead);
    EXPECT_TRUE(atlas.woaProfile(59.5, 10.5).depths.isEmpty());
    write("t.csv", good);
    EXPECT_EQ(depthsAt(59.5, 10.5).size(), 4);
    write("s.csv", "");
    EXPECT_EQ(read(), Read::NotRead);
    EXPECT_EQ(generate(59.5, 10.5), QString());
}

TEST_F(AtlasFiles, NamesMayHaveAnyLettersAndBeLong)
{
    QString deep = folder.filePath(QStringLiteral("Süd 測深 Ω"));
    for (int i = 0; i < 8; ++i)
        deep += QLatin1Char('/') + QString(40, QLatin1Char(char('a' + i)));
    for (const QString& place :
         {folder.filePath(QStringLiteral("Daten für Süd, 測深 & Ω")), deep}) {
        const QString salinity = place + QStringLiteral("/größe s 測.csv");
        const QString temperature = place + QStringLiteral("/größe t 測.csv");
        writeBytes(salinity, bytesOf(path("s.csv")));
        writeBytes(temperature, bytesOf(path("t.csv")));
        WorldOceanAtlas fresh;
        EXPECT_EQ(fresh.read(salinity, temperature), Read::Both) << qPrintable(place);
        EXPECT_EQ(fresh.woaProfile(59.5, 10.5).depths.size(), 4);
        const QString out = place + QStringLiteral("/ausgäng 深");
        const QString written =
            fnGeneratWOAExtFile(fresh, 59.5, 10.5, salinity, temperature, deepRows, out);
        EXPECT_EQ(written, out + QStringLiteral("/WOASVPExtension.txt"));
        EXPECT_EQ(parseExtensionRows(bytesOf(written)).depths.size(), 4) << qPrintable(place);
    }
}

#ifdef Q_OS_WIN
TEST_F(AtlasFiles, AnExtensionFileThatIsHeldStaysAsItIs)
{
    const QString written = generate(59.5, 10.5);
    const QByteArray before = bytesOf(written);
    ASSERT_FALSE(before.isEmpty());
    {
        const HeldFile held(written);
        const HeldFile heldSalinity(path("s.csv"));
        ASSERT_TRUE(held.isHeld() && heldSalinity.isHeld());
        EXPECT_EQ(generate(-0.5, -0.5), QString());
        EXPECT_EQ(bytesOf(written), before);
        EXPECT_EQ(QDir(path("out")).entryList(QDir::Files).size(), 1);
        // What others hold can be read.
        EXPECT_EQ(WorldOceanAtlas().read(path("s.csv"), path("t.csv")), Read::Both);
    }
    EXPECT_EQ(generate(-0.5, -0.5), written);
    EXPECT_NE(bytesOf(written), before);
}
#endif

TEST_F(AtlasFiles, OnlyFilesAreOpened)
{
    ASSERT_TRUE(QDir().mkpath(path("folder")));
    QStringList odd = {path("missing.csv"), path("folder"), QString(), QStringLiteral("/dev/zero"),
                       path("nul") + QChar(0) + QStringLiteral("x")};
#ifdef __unix__
    // Nobody writes into it: opening it would wait for ever.
    ASSERT_EQ(::mkfifo(QFile::encodeName(path("pipe")).constData(), 0600), 0);
    odd.append(path("pipe"));
#endif
    for (const QString& name : qAsConst(odd)) {
        EXPECT_EQ(atlas.read(name, path("t.csv")), Read::NotOpened) << qPrintable(name);
        EXPECT_EQ(atlas.read(path("s.csv"), name), Read::NotOpened) << qPrintable(name);
        EXPECT_EQ(
            fnGeneratWOAExtFile(atlas, 59.5, 10.5, name, path("t.csv"), deepRows, path("out")),
            QString());
    }
    EXPECT_FALSE(QFileInfo::exists(path("out")));
}

TEST_F(AtlasFiles, AFileBeyondAllMeasureIsRefused)
{
    QFile file(path("s.csv"));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    if (!file.resize(WorldOceanAtlas::maxFileSize + 1))
        GTEST_SKIP() << "the file system has no room for a hole of 2 GiB";
    file.close();
    EXPECT_EQ(read(), Read::NotRead);
}

TEST(ExtendWoa, JoinsWhatLiesDeeperByItsPlace)
{
    AtlasProfile empty;
    EXPECT_EQ(extendWOA(empty, deepRows(0)), 0);
    EXPECT_TRUE(empty.depths.isEmpty());

    const struct
    {
        QVector<float> depths;
        QVector<float> extended;
    } cases[] = {
        {{0, 800}, {0, 800, 1000, 4000, 12000}},
        {{0, 1000}, {0, 1000, 4000, 12000}},
        {{0, 999.5F}, {0, 999.5F, 1000, 4000, 12000}},
        {{0, 12000}, {0, 12000}},
        {{0, 13000}, {0, 13000}},
    };
    for (const auto& c : cases) {
        AtlasProfile profile{c.depths, QVector<float>(c.depths.size(), 1500)};
        EXPECT_EQ(extendWOA(profile, deepRows(0)), 1);
        EXPECT_EQ(profile.depths, c.extended);
        EXPECT_EQ(profile.speeds.size(), c.extended.size());
        if (c.extended.size() > c.depths.size()) {
            EXPECT_EQ(profile.speeds.last(), 1602.0F);
        }
    }
    // Rows behind the first deeper one follow in their order, even where they are shallower.
    AtlasProfile profile{{600}, {1500}};
    EXPECT_EQ(extendWOA(profile, rowsOf({500, 700, 500, 900}, {1, 2, 3, 4, 5})), 1);
    EXPECT_EQ(profile.depths, (QVector<float>{600, 700, 500, 900}));
    EXPECT_EQ(profile.speeds, (QVector<float>{1500, 2, 3, 4}));
    EXPECT_EQ(extendWOA(profile, ExtensionRows()), 1);
    EXPECT_EQ(profile.depths.size(), 4);
}

TEST(WoaExtensionText, TheFirstRowSharesTheCommentLine)
{
    const AtlasProfile profile{{0, 5.5F, 1000000, 5500}, {1500, 1482.46838F, 1499.9996F, 0.25F}};
    EXPECT_EQ(woaExtensionText(profile), comment + "0 1500\r\n5.5 1482.47\r\n1e+06 1500\r\n"
                                                   "5500 0.25\r\n");
}

TEST_F(AtlasFiles, TheFileIsWrittenByteForByte)
{
    const QString written = generate(59.5, 10.5);
    EXPECT_EQ(written, path("out") + QStringLiteral("/WOASVPExtension.txt"));
    EXPECT_EQ(bytesOf(written), comment + "0 1482.47\r\n100 1478.47\r\n1000 1480.84\r\n"
                                          "5500 1552.62\r\n12000 1602\r\n");
    // A later reading misses the shallowest sample.
    const ExtensionRows rows = parseExtensionRows(bytesOf(written));
    EXPECT_EQ(rows.depths, (QVector<float>{100, 1000, 5500, 12000}));
    EXPECT_EQ(rows.speeds, (QVector<float>{1478.47F, 1480.84F, 1552.62F, 1602}));
    // An older file is replaced whole.
    EXPECT_EQ(generate(-0.5, -0.5), written);
    EXPECT_TRUE(bytesOf(written).startsWith(comment + "0 14"));
    EXPECT_TRUE(bytesOf(written).contains("\r\n500 1498\r\n1000 1483\r\n4000 1500.25\r\n"));
}

TEST_F(AtlasFiles, LandGivesNoFile)
{
    EXPECT_EQ(generate(0.5, 0.5), QString());
    EXPECT_EQ(generate(30.0, 30.0), QString());
    EXPECT_EQ(generate(std::numeric_limits<double>::quiet_NaN(), 0.5), QString());
    EXPECT_FALSE(QFileInfo::exists(path("out")));
}

TEST_F(AtlasFiles, TheRowsAreAskedForOnceWithTheLastDepth)
{
    QVector<double> asked;
    const auto rows = [&asked](double lastDepth) {
        asked.append(lastDepth);
        return ExtensionRows();
    };
    const QString written =
        fnGeneratWOAExtFile(atlas, 59.5, 10.5, path("s.csv"), path("t.csv"), rows, path("out"));
    EXPECT_EQ(asked, QVector<double>{5500.0});
    EXPECT_TRUE(bytesOf(written).endsWith("5500 1552.62\r\n"));
    EXPECT_NE(
        fnGeneratWOAExtFile(atlas, 59.5, 10.5, path("s.csv"), path("t.csv"), nullptr, path("out")),
        QString());
}

TEST_F(AtlasFiles, AFolderThatCannotBeWrittenGivesNoPath)
{
    write("out", "a file");
    EXPECT_EQ(generate(59.5, 10.5), QString());
    EXPECT_EQ(bytesOf(path("out")), QByteArray("a file"));
    ASSERT_TRUE(QDir().mkpath(path("taken/WOASVPExtension.txt")));
    EXPECT_EQ(fnGeneratWOAExtFile(atlas, 59.5, 10.5, path("s.csv"), path("t.csv"), deepRows,
                                  path("taken")),
              QString());
}
