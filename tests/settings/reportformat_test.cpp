#include "settings/reportformat.h"

#include <gtest/gtest.h>

using settings::formatReport;

TEST(ReportFormat, FillsTheConversionsOfTheDefaultTexts)
{
    EXPECT_EQ(formatReport("Sample no. %d:  %.2fm  %.2fm/s.", {3, 10.005, 1500.0}),
              "Sample no. 3:  10.01m  1500.00m/s.");
    EXPECT_EQ(formatReport("%.2f", {-0.25}), "-0.25");
    // Halves go to the even neighbour, as in the C library.
    EXPECT_EQ(formatReport("%.2f %.2f", {10.125, 1500.625}), "10.12 1500.62");
}

TEST(ReportFormat, ATextEditedByHandCannotReachBeyondItsArguments)
{
    struct
    {
        const char* format;
        const char* text;
    } const cases[] = {
        {"%s", "%s"},
        {"%n", "%n"},
        {"%d %d %d", "3 %d %d"},
        {"%.2f %.2f %.2f", "1.50 2.50 %.2f"},
        {"%.2f before %d", "1.50 before 3"},
        {"%5d", "%5d"},
        {"%", "%"},
        {"100%", "100%"},
        {"100%% sure", "100% sure"},
        {"%.3f", "%.3f"},
        {"%%d", "%d"},
        {"%%%d", "%3"},
        {"", ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(formatReport(c.format, {3, 1.5, 2.5}), c.text) << c.format;
}

TEST(ReportFormat, TheResultFitsTheBuffer)
{
    EXPECT_EQ(formatReport(std::string(1499, 'x'), {}).size(), 1499U);
    EXPECT_EQ(formatReport(std::string(1500, 'x'), {}).size(), 1499U);
    EXPECT_EQ(formatReport(std::string(1498, 'x') + "%d", {1234}).size(), 1499U);
    EXPECT_EQ(formatReport("%.2f", {1e308}).size(), 312U);
}
