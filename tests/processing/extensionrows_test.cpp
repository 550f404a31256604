#include "processing/extensionrows.h"
#include "resources/resources.h"
#include "tests/support/datafolder.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using processing::ExtensionRows;
using processing::genExtensionData;

namespace {

const QVector<float> fallbackDepths = {500, 700, 1000, 1500, 4000, 6000, 8500, 12000};
const QVector<float> fallbackSpeeds = {1498.0F, 1486.2F, 1483.0F, 1487.2F, 1500.0F,
                                       1524.1F, 1558.2F, 1602.8F, 1669.0F};

raytrace::Layers endingAt(float depth)
{
    const float depths[] = {0, depth};
    const float speeds[] = {1500, 1490};
    return raytrace::makeLayers(depths, speeds, 2);
}

QVector<float> depthsOf(const raytrace::Layers& samples)
{
    QVector<float> depths;
    for (const raytrace::LayerRecord& sample : samples)
        depths.append(float(sample.d));
    return depths;
}

/// Files of extension rows.
class ExtensionFile
{
  public:
    QString holding(const QByteArray& text) const
    {
        QString path = m_folder.filePath(QStringLiteral("rows.txt"));
        writeBytes(path, text);
        return path;
    }
    ExtensionRows rows(const QByteArray& text) const
    {
        return genExtensionData(holding(text), endingAt(200));
    }

  private:
    QTemporaryDir m_folder;
};

} // namespace

TEST(ExtensionRows, TheCompiledInProfileIsByteForByte)
{
    EXPECT_EQ(
        resources::extensionProfile(),
        QByteArray("// Compulsory 1st line. Extension profile format: 'depth soundspeed CRLF'. "
                   "Last line must always be '12000 soundspeed CRLF'.\r\n"
                   "500.0 1498.0\r\n700.0 1486\r\n1000.0 1483\r\n1500.0 1487\r\n4000.0 1500\r\n"
                   "6000.0 1524\r\n8500.0 1558\r\n12000.0 1602\r\n\r\n\r\n"));
}

TEST(ExtensionRows, TheDefaultReachesFullOceanDepth)
{
    const processing::ExtensionRows& rows = processing::defaultExtensionRows();
    EXPECT_EQ(rows.depths, (QVector<float>{500, 700, 1000, 1500, 4000, 6000, 8500, 12000}));
    EXPECT_EQ(rows.speeds, (QVector<float>{1498, 1486, 1483, 1487, 1500, 1524, 1558, 1602}));
}

TEST(ExtensionRows, OnlyDeeperPairsAreTaken)
{
    const processing::ExtensionRows rows = processing::parseExtensionRows(
        "1 1\n 10\t1500 \r\n10 1501\n5 1502\n20\n20 1503 x\nword 1\n30 1504");
    EXPECT_EQ(rows.depths, (QVector<float>{10, 30}));
    EXPECT_EQ(rows.speeds, (QVector<float>{1500, 1504}));
    EXPECT_TRUE(processing::parseExtensionRows("").depths.isEmpty());
    EXPECT_TRUE(processing::parseExtensionRows("10 1500").depths.isEmpty());
    EXPECT_TRUE(processing::parseExtensionRows("//\n").depths.isEmpty());
    // A no-break space is white space too.
    EXPECT_EQ(processing::parseExtensionRows("//\n10\xa0"
                                             "1500")
                  .depths,
              (QVector<float>{10}));
}

TEST(ExtensionRows, AllRowsAreTakenWhereTheRuleIsSo)
{
    const ExtensionRows rows = processing::parseExtensionRows(
        "500 1\n500 1500\r\n3000 1501\n2000\t1502\nx 1\n1 2 3\n", processing::RowRule::All);
    EXPECT_EQ(rows.depths, (QVector<float>{500, 3000, 2000, 0}));
    EXPECT_EQ(rows.speeds, (QVector<float>{1500, 1501, 1502, 1}));
}

TEST(GenExtensionData, AProfileAtFullDepthNeedsNone)
{
    EXPECT_TRUE(genExtensionData({}, endingAt(11999.0F)).depths.isEmpty());
    EXPECT_TRUE(genExtensionData({}, endingAt(11999.0F)).speeds.isEmpty());
    EXPECT_EQ(genExtensionData({}, endingAt(11998.9F)).depths, fallbackDepths);
    EXPECT_EQ(genExtensionData({}, {}).depths, fallbackDepths);
}

TEST(GenExtensionData, WithoutAFileTheFallbackRowsAreTaken)
{
    const QTemporaryDir folder;
    for (const QString& path : {QString(), folder.filePath(QStringLiteral("none.txt")),
                                folder.path(), QStringLiteral("/dev/zero")}) {
        const ExtensionRows rows = genExtensionData(path, endingAt(200));
        EXPECT_EQ(rows.depths, fallbackDepths) << path.toStdString();
        EXPECT_EQ(rows.speeds, fallbackSpeeds);
    }
    const ExtensionFile file;
    EXPECT_EQ(file.rows("").depths, fallbackDepths);
    EXPECT_EQ(file.rows("only a comment").depths, fallbackDepths);
}

TEST(GenExtensionData, AFileThatGoesDeepEnoughIsTaken)
{
    const ExtensionRows rows =
        ExtensionFile().rows("// comment\r\n300.5 1490\r\n300.5 9\r\n11990.01 1600\r\n\r\n");
    EXPECT_EQ(rows.depths, (QVector<float>{300.5F, 11990.01F}));
    EXPECT_EQ(rows.speeds, (QVector<float>{1490, 1600}));
}

TEST(GenExtensionData, AFileThatEndsTooShallowIsFollowedByTheFallback)
{
    const ExtensionRows rows = ExtensionFile().rows("//\n300 1490\n11990.0 1600\n");
    EXPECT_EQ(rows.depths, (QVector<float>{300, 11990} + fallbackDepths));
    EXPECT_EQ(rows.speeds, (QVector<float>{1490, 1600} + fallbackSpeeds));
}

TEST(Extend, JoinsTheRowsBelowTheLastSample)
{
    raytrace::Layers samples = endingAt(800);
    EXPECT_EQ(processing::extend(samples, processing::defaultExtensionRows()), 1);
    EXPECT_EQ(depthsOf(samples), (QVector<float>{0, 800, 1000, 1500, 4000, 6000, 8500, 12000}));
    EXPECT_EQ(samples[2].c, 1483.0);
    EXPECT_EQ(samples.back().c, 1602.0);
    // Gradients reach over the joint: (1490 - 1483) / (800 - 1000).
    EXPECT_DOUBLE_EQ(samples[1].gradient, -0.035);
    EXPECT_EQ(samples.back().gradient, 0.0);
}

TEST(Extend, ARowAtTheLastDepthIsSkipped)
{
    raytrace::Layers samples = endingAt(1000);
    EXPECT_EQ(processing::extend(samples, processing::fallbackExtensionRows()), 1);
    EXPECT_EQ(depthsOf(samples), (QVector<float>{0, 1000, 1500, 4000, 6000, 8500, 12000}));
    EXPECT_EQ(float(samples.back().c), 1602.8F);
    // As 32-bit floats the two are the same depth.
    samples = endingAt(1000);
    samples.back().d = 999.99999;
    processing::extend(samples, processing::fallbackExtensionRows());
    EXPECT_EQ(samples[2].d, 1500.0);
}

TEST(Extend, WithNothingDeeperTheSamplesStay)
{
    raytrace::Layers samples = endingAt(12000);
    samples[0].gradient = 99.0;
    EXPECT_EQ(processing::extend(samples, processing::fallbackExtensionRows()), 1);
    EXPECT_EQ(depthsOf(samples), (QVector<float>{0, 12000}));
    EXPECT_DOUBLE_EQ(samples[0].gradient, -10.0 / 12000.0);
    samples = endingAt(100);
    EXPECT_EQ(processing::extend(samples, {}), 1);
    EXPECT_EQ(depthsOf(samples), (QVector<float>{0, 100}));
    samples.clear();
    EXPECT_EQ(processing::extend(samples, processing::fallbackExtensionRows()), 1);
    EXPECT_TRUE(samples.empty());
}

TEST(Extend, RowsAreTakenByPositionFromTheFirstDeeperOne)
{
    raytrace::Layers samples = endingAt(2500);
    processing::extend(samples, {{500, 3000, 2000, 12000}, {1, 2, 3, 4}});
    EXPECT_EQ(depthsOf(samples), (QVector<float>{0, 2500, 3000, 2000, 12000}));
    EXPECT_EQ(samples[3].c, 3.0);
}

TEST(IsUsableExtension, EachRowIsComparedWithTheFirstAlone)
{
    const auto usable = [](const QVector<float>& depths) {
        return processing::isUsableExtension({depths, depths});
    };
    EXPECT_TRUE(usable({500, 3000, 2000, 12000}));
    EXPECT_TRUE(usable({500, 500.1F}));
    EXPECT_FALSE(usable({500, 400}));
    EXPECT_FALSE(usable({500, 500}));
    EXPECT_FALSE(usable({500, 3000, 500}));
    EXPECT_FALSE(usable({500}));
    EXPECT_FALSE(usable({}));
}
