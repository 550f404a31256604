#include "processing/check.h"
#include "processing/svpmodel.h"

#include <gtest/gtest.h>

using namespace processing;

namespace {

raytrace::Layers layersOf(const QVector<float>& depths, const QVector<float>& speeds)
{
    return raytrace::makeLayers(depths.constData(), speeds.constData(), std::size_t(depths.size()));
}

raytrace::Layers atDepths(const QVector<float>& depths)
{
    return layersOf(depths, QVector<float>(depths.size(), 1500.0F));
}

std::vector<std::int32_t> marksAtDepths(const QVector<float>& depths)
{
    return validSampleMarks(atDepths(depths));
}

using Marks = std::vector<std::int32_t>;

} // namespace

TEST(ValidSampleMarks, DepthsMustIncreaseByACentimetre)
{
    EXPECT_EQ(marksAtDepths({0, 10, 10.005F, 5, 20}), (Marks{1, 1, 0, 0, 1}));
    EXPECT_EQ(marksAtDepths({0, 10, 10.01F}), (Marks{1, 1, 1}));
    EXPECT_EQ(marksAtDepths({0, 0, 0, 1}), (Marks{1, 0, 0, 1}));
    // A run of shallower samples behind a deep one falls as a whole.
    EXPECT_EQ(marksAtDepths({0, 100, 10, 20, 30, 101}), (Marks{1, 1, 0, 0, 0, 1}));
    EXPECT_EQ(marksAtDepths({100, 10, 20}), (Marks{1, 0, 0}));
    EXPECT_EQ(marksAtDepths({5}), (Marks{1}));
    EXPECT_EQ(marksAtDepths({}), Marks{});
}

TEST(ValidSampleMarks, NegativeDepthsAreSkippedByTheOrder)
{
    EXPECT_EQ(marksAtDepths({-1, 0, 10}), (Marks{0, 1, 1}));
    EXPECT_EQ(marksAtDepths({0, 10, -5, 10.005F, 11}), (Marks{1, 1, 0, 0, 1}));
    EXPECT_EQ(marksAtDepths({-0.0F, 1}), (Marks{1, 1}));
}

TEST(ValidSampleMarks, SpeedBoundsAreValidThemselves)
{
    EXPECT_EQ(
        validSampleMarks(layersOf({0, 1, 2, 3, 4, 5}, {1400, 1700, 1399.99F, 1700.01F, 0, 1500})),
        (Marks{1, 1, 0, 0, 0, 1}));
    // An invalid speed does not move the depth that the next sample is compared with.
    EXPECT_EQ(validSampleMarks(layersOf({0, 50, 10, 20}, {1500, 0, 1500, 1500})),
              (Marks{1, 0, 1, 1}));
}

TEST(ValidSampleMarks, TheModelKeepsThem)
{
    CSVPModel model;
    EXPECT_EQ(model.markValidSamples(), -1);
    EXPECT_TRUE(model.marks.empty());
    model.samples = atDepths({0, 10, 5});
    EXPECT_EQ(model.markValidSamples(), 0);
    EXPECT_EQ(model.marks, (Marks{1, 1, 0}));
    model.blank();
    EXPECT_TRUE(model.samples.empty());
    EXPECT_TRUE(model.marks.empty());
}

TEST(FindUnsortedDepths, ComparesNeighbours)
{
    EXPECT_EQ(findUnsortedDepths(atDepths({0, 10, 10.004F})), (QVector<int>{2}));
    EXPECT_EQ(findUnsortedDepths(atDepths({0, 10, 10.006F})), QVector<int>{});
    EXPECT_EQ(findUnsortedDepths(atDepths({0, 100, 10, 20, 101})), (QVector<int>{2}));
    EXPECT_EQ(findUnsortedDepths(atDepths({3, 2, 1})), (QVector<int>{1, 2}));
    EXPECT_EQ(findUnsortedDepths(atDepths({3})), QVector<int>{});
    EXPECT_EQ(findUnsortedDepths(atDepths({})), QVector<int>{});
}

TEST(CheckSamples, TellsWhatIsMissing)
{
    const QString valid = QStringLiteral("Existing profile depths and sound speeds are valid.");
    const QString marked = QStringLiteral("Invalid entries are marked.");
    const QString deeper =
        QStringLiteral("SVP must be extended to full ocean depth (12000.00m).\n");
    const QString upwards = QStringLiteral("SVP must be extended upwards to 0.00m\n");
    const QString feed = QStringLiteral("\n");
    struct
    {
        QVector<float> depths;
        QVector<float> speeds;
        QString verdict;
        QVector<double> invalidDepths;
    } const cases[] = {
        {{0, 12000}, {1500, 1550}, valid, {}},
        {{0, 11999}, {1500, 1550}, valid, {}},
        {{0, 11998.9F}, {1500, 1550}, valid + feed + deeper, {}},
        {{0.5F, 12000}, {1500, 1550}, valid + feed + upwards, {}},
        {{0.5F, 100}, {1500, 1550}, valid + feed + deeper + upwards, {}},
        {{0, 12000}, {1399.9F, 1550}, marked + feed + upwards, {0}},
        {{0, 12000}, {1500, 1399.9F}, marked, {12000}},
        {{0, 0, 12000}, {0, 1500, 1500}, marked, {0}},
        {{0, 100, 50}, {1500, 1500, 1500}, marked + feed + deeper, {50}},
        {{-1, 100}, {1500, 1800}, marked + feed + deeper + upwards, {-1, 100}},
        {{12000, 0}, {1500, 1500}, marked + feed + deeper + upwards, {0}},
        {{}, {}, valid + feed + upwards, {}},
    };
    for (const auto& c : cases) {
        const CheckResult result = checkSamples(layersOf(c.depths, c.speeds));
        EXPECT_EQ(result.verdict, c.verdict) << qPrintable(c.verdict);
        EXPECT_EQ(result.invalidDepths, c.invalidDepths);
        EXPECT_EQ(result.invalidSpeeds.size(), c.invalidDepths.size());
    }
}

TEST(CheckRefusal, TooFewComesBeforeUnequal)
{
    profile::ValueLists lists;
    const QString tooFew = QStringLiteral("Too few samples in profile.");
    EXPECT_EQ(checkRefusal(lists), tooFew);
    lists.speed = {1500};
    lists.depth = {0, 1, 2};
    EXPECT_EQ(checkRefusal(lists), tooFew);
    lists.speed = {1500, 1500};
    EXPECT_EQ(checkRefusal(lists), QLatin1String("No of depths and speed samples don't match."));
    lists.depth = {0, 1};
    EXPECT_EQ(checkRefusal(lists), QString());
}

TEST(ProfileReport, NamesTheFaultsInTheirOrder)
{
    const QString unsorted = QStringLiteral("Depths are not sorted.\n");
    const QString negative = QStringLiteral("Negative depths found.\n");
    const QString deeper = QStringLiteral("SVP must be extended to full ocean depth.\n");
    const QString fine = QStringLiteral("Profile seems ok!");
    struct
    {
        QVector<float> depths;
        QString text;
        QVector<int> problems;
    } const cases[] = {
        {{0, 12000}, fine, {}},
        {{0, 11999}, fine, {}},
        {{0, 11998.9F}, deeper, {}},
        {{-1, 12000}, negative, {}},
        {{0, 10, 5, 12000}, unsorted, {2}},
        {{0, -10, -5}, unsorted + negative + deeper, {1}},
        {{}, fine, {}},
    };
    for (const auto& c : cases) {
        const ProfileReport report =
            profileReport(c.depths, QVector<float>(c.depths.size(), 1500.0F), false);
        EXPECT_EQ(report.text, c.text) << qPrintable(c.text);
        EXPECT_EQ(report.problems, c.problems);
        EXPECT_EQ(report.passes(), c.problems.isEmpty());
    }
}

TEST(ProfileReport, ACleanOneUsesTheValidSamplesAndContinuesThem)
{
    const ProfileReport report =
        profileReport({-1, 0, 10, 5, 700}, {1500, 1500, 1501, 1500, 1490}, true);
    EXPECT_EQ(report.text, QLatin1String("Profile seems ok!"));
    EXPECT_EQ(report.problems, (QVector<int>{3}));
    EXPECT_FALSE(report.passes());
    QVector<double> depths;
    for (const raytrace::LayerRecord& layer : report.used)
        depths.append(layer.d);
    EXPECT_EQ(depths, (QVector<double>{0, 10, 700, 1000, 1500, 4000, 6000, 8500, 12000}));
    EXPECT_DOUBLE_EQ(report.used[2].gradient, (1490.0 - 1483.0) / (700.0 - 1000.0));
    EXPECT_EQ(report.used.back().gradient, 0.0);

    EXPECT_EQ(profileReport({0, 11999}, {1500, 1550}, true).used.size(), 2U);
    EXPECT_TRUE(profileReport({}, {}, true).used.empty());
    EXPECT_TRUE(profileReport({-1}, {1500}, true).used.empty());
}

TEST(QuickCheck, TakesBothForms)
{
    const QString full = QStringLiteral("[0*f* %1 *00*4*5*6*7*8*9*10*11*12*13*14*15]");
    const QString brief = QStringLiteral("[SoundVelocity*f*%1*%2*59.5*10.25*20261115123456]");
    struct
    {
        const char* speeds;
        const char* depths;
        bool passes;
    } const cases[] = {
        {"1500,1550", "0,12000", true},    {"1500,1550", "0,11999", true},
        {"1500,1550", "0,11998.9", false}, {"1400,1700", "0,12000", true},
        {"1399.9,1550", "0,12000", false}, {"1500,1500,1550", "0,0.005,12000", false},
        {"1500,1550", "0.5,12000", false}, {"1500", "0", false},
        {"1500,1550", "-0,12000", true},   {"1500,x", "0,12000", false},
    };
    for (const auto& c : cases) {
        const QString speeds = QLatin1String(c.speeds);
        const QString depths = QLatin1String(c.depths);
        EXPECT_EQ(
            quickCheck(full.arg(speeds + QLatin1Char(';') + depths + QStringLiteral(";0;0;0;0;0")))
                .passes,
            c.passes)
            << c.speeds << " " << c.depths;
        EXPECT_EQ(quickCheck(brief.arg(speeds, depths)).passes, c.passes)
            << c.speeds << " " << c.depths;
        EXPECT_EQ(quickCheck(brief.arg(depths, speeds)).passes, c.passes)
            << c.speeds << " " << c.depths;
        EXPECT_EQ(quickCheck(brief.arg(speeds, depths)).message, QString());
    }
    EXPECT_FALSE(
        quickCheck(brief.arg(QStringLiteral("1500,1550"), QStringLiteral("0,12000"))).listsSwapped);
    EXPECT_TRUE(
        quickCheck(brief.arg(QStringLiteral("0,12000"), QStringLiteral("1500,1550"))).listsSwapped);
}

TEST(QuickCheck, ListsOfUnequalLengthAreJudgedByTheirPairs)
{
    const QString brief = QStringLiteral("SoundVelocity*f*%1*%2*59.5*10.25*20261115123456");
    EXPECT_TRUE(
        quickCheck(brief.arg(QStringLiteral("0,12000,12001"), QStringLiteral("1500,1550"))).passes);
    EXPECT_TRUE(
        quickCheck(brief.arg(QStringLiteral("0,1,12000"), QStringLiteral("1500,1550"))).passes);
    EXPECT_FALSE(
        quickCheck(brief.arg(QStringLiteral("0,1,100"), QStringLiteral("1500,1550"))).passes);
    EXPECT_FALSE(
        quickCheck(brief.arg(QStringLiteral("0,0,12000"), QStringLiteral("1500,1550"))).passes);
    EXPECT_TRUE(
        quickCheck(brief.arg(QStringLiteral("0,12000"), QStringLiteral("1500,1550,1560"))).passes);
}

TEST(QuickCheck, AnyOtherFormIsRefused)
{
    for (const char* body :
         {"", "a*b", "1*2*3*4*5*6", "1*2*3*4*5*6*7*8", "1*2*3*4*5*6**7*8",
          "1*2*3*4*5*6*7*8*9*10*11*12*13*14*15", "1*2*3*4*5*6*7*8*9*10*11*12*13*14*15*16*17"}) {
        const SendCheck check = quickCheck(QLatin1String(body));
        EXPECT_FALSE(check.passes) << body;
        EXPECT_EQ(check.message, QLatin1String("Wrong number of input parameters.")) << body;
    }
    // Empty pieces do not count.
    EXPECT_EQ(quickCheck(QStringLiteral("1*2*3*4**5*6*7*")).message, QString());
}
