#include "profile/requestblock.h"

#include <gtest/gtest.h>

using namespace profile;

namespace {

QVector<float> numbers(const QString& text)
{
    return parseNumbers(QStringRef(&text));
}

} // namespace

TEST(RequestBlock, BracketsCarryNoMeaning)
{
    EXPECT_EQ(withoutBrackets(QStringLiteral("[a[b]*[c]]")), QStringLiteral("ab*c"));
}

TEST(RequestBlock, ItemsReadAsFloats)
{
    struct
    {
        const char* text;
        float value;
    } const cases[] = {
        {"1500.25", 1500.25F}, {" 1500.25 ", 1500.25F}, {"-1.5", -1.5F},
        {"+1.5", 1.5F},        {"1e3", 1000.0F},        {"", 0.0F},
        {"abc", 0.0F},         {"1.5x", 0.0F},          {"nan", 0.0F},
        {"inf", 0.0F},         {"-inf", 0.0F},          {"1e400", 0.0F},
        {"1e39", 0.0F},        {"-1e39", 0.0F},         {"1,5", 0.0F},
        {"0.1", 0.1F},
    };
    for (const auto& c : cases) {
        const QString text = QString::fromLatin1(c.text);
        EXPECT_EQ(listNumber(QStringRef(&text)), c.value) << c.text;
    }
}

TEST(RequestBlock, ListsKeepTheirEmptyItems)
{
    EXPECT_EQ(numbers(QStringLiteral("1,2,3")), (QVector<float>{1, 2, 3}));
    EXPECT_EQ(numbers(QStringLiteral("1,,3,")), (QVector<float>{1, 0, 3, 0}));
    EXPECT_EQ(numbers(QString()), (QVector<float>{0}));
}

TEST(RequestBlock, SevenListsInTheirOrder)
{
    const QString text = QStringLiteral(" 1;2,2;3;4;5;6;7;8 ");
    const ValueLists lists = parseValueLists(QStringRef(&text));
    EXPECT_EQ(lists.speed, (QVector<float>{1}));
    EXPECT_EQ(lists.depth, (QVector<float>{2, 2}));
    EXPECT_EQ(lists.probeDepth, (QVector<float>{3}));
    EXPECT_EQ(lists.probeSpeed, (QVector<float>{4}));
    EXPECT_EQ(lists.temperature, (QVector<float>{5}));
    EXPECT_EQ(lists.salinity, (QVector<float>{6}));
    EXPECT_EQ(lists.absorption, (QVector<float>{7}));
    EXPECT_TRUE(parseValueLists(QStringRef(&text), Lists::SpeedAndDepth).probeDepth.isEmpty());

    const QString gap = QStringLiteral("1;;3");
    EXPECT_EQ(parseValueLists(QStringRef(&gap)).depth, (QVector<float>{0}));
    EXPECT_EQ(parseValueLists(QStringRef(&gap), Lists::All, Qt::SkipEmptyParts).depth,
              (QVector<float>{3}));
    EXPECT_TRUE(parseValueLists(QStringRef(), Lists::All, Qt::SkipEmptyParts).speed.isEmpty());
}

TEST(RequestBlock, TheProfileFormNamesItsPieces)
{
    const QString text = QStringLiteral("id*0*1*2*3*4*5*6*7*8*9*10*11*12*13*14*15");
    const ProfileForm form = parseProfileForm(splitPieces(text, Qt::KeepEmptyParts), 1);
    EXPECT_EQ(form.valueLists, QLatin1String("0"));
    EXPECT_EQ(form.fileName, QLatin1String("1"));
    EXPECT_EQ(form.kind, QLatin1String("2"));
    EXPECT_EQ(form.version, QLatin1String("3"));
    EXPECT_EQ(form.identifier, QLatin1String("4"));
    EXPECT_EQ(form.time, QLatin1String("5"));
    EXPECT_EQ(form.latitude, QLatin1String("6"));
    EXPECT_EQ(form.longitude, QLatin1String("7"));
    EXPECT_EQ(form.radius, QLatin1String("8"));
    EXPECT_EQ(form.validFrom, QLatin1String("9"));
    EXPECT_EQ(form.validTo, QLatin1String("10"));
    EXPECT_EQ(form.source, QLatin1String("11"));
    EXPECT_EQ(form.history, QLatin1String("12"));
    EXPECT_EQ(form.statedSamples, QLatin1String("13"));
    EXPECT_EQ(form.comment, QLatin1String("14"));
    EXPECT_EQ(form.tolerance, QLatin1String("15"));
    EXPECT_TRUE(parseProfileForm(splitPieces(text, Qt::KeepEmptyParts), 2).tolerance.isEmpty());
}

TEST(RequestBlock, TheSaveFormLeavesTheHemisphereLettersOut)
{
    const QString text = QStringLiteral("0*1*2*3*4*5*6*7*8*9*10*11*12*13*14");
    const AsvpSaveForm form = parseAsvpSaveForm(splitPieces(text, Qt::KeepEmptyParts));
    EXPECT_EQ(form.depthSpeedList, QLatin1String("0"));
    EXPECT_EQ(form.fileName, QLatin1String("1"));
    EXPECT_EQ(form.kind, QLatin1String("2"));
    EXPECT_EQ(form.version, QLatin1String("3"));
    EXPECT_EQ(form.identifier, QLatin1String("4"));
    EXPECT_EQ(form.time, QLatin1String("5"));
    EXPECT_EQ(form.latitude, QLatin1String("6"));
    EXPECT_EQ(form.longitude, QLatin1String("8"));
    EXPECT_EQ(form.radius, QLatin1String("10"));
    EXPECT_EQ(form.validFrom, QLatin1String("11"));
    EXPECT_EQ(form.validTo, QLatin1String("12"));
    EXPECT_EQ(form.source, QLatin1String("13"));
    EXPECT_EQ(form.history, QLatin1String("14"));
}

TEST(RayForm, PairsSpeedsAndDepthsAndPassesOverEmptyItems)
{
    const QString block = QStringLiteral("45.5*1500,,1501,1502*0,10,,*1490*5,6");
    const profile::RayForm form =
        profile::parseRayForm(profile::splitPieces(block, Qt::SkipEmptyParts));
    EXPECT_EQ(form.angle, 45.5F);
    EXPECT_EQ(form.first.speed, (QVector<float>{1500, 1501}));
    EXPECT_EQ(form.first.depth, (QVector<float>{0, 10}));
    EXPECT_EQ(form.second.speed, (QVector<float>{1490}));
    EXPECT_EQ(form.second.depth, (QVector<float>{5}));
    const profile::RayForm none = profile::parseRayForm({});
    EXPECT_TRUE(none.first.speed.isEmpty());
    EXPECT_TRUE(none.second.depth.isEmpty());
}
