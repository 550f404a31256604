#include "profile/filehelpers.h"
#include "tests/support/datafolder.h"

#include <QDir>
#include <gtest/gtest.h>

#include <stdexcept>

using namespace profile;

TEST(FileHelpers, OneSeparatorStandsAtTheSeam)
{
    struct
    {
        const char* directory;
        const char* name;
        const char* path;
    } const cases[] = {
        {"C:\\data", "x.asvp", "C:\\data\\x.asvp"},
        {"C:\\data\\", "x.asvp", "C:\\data\\x.asvp"},
        {"/data/", "x.asvp", "/data/x.asvp"},
        {"C:\\data", "\\x.asvp", "C:\\data\\x.asvp"},
        {"/data/", "\\x.asvp", "/data/x.asvp"},
        {"", "x.asvp", "x.asvp"},
        {"C:\\d\\\\", "x", "C:\\d\\x"},
        {"d/", "//x", "d/x"},
        {"a", "", "a\\"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(fnFileNameConstr(c.directory, c.name), c.path);
}

TEST(FileHelpers, ADirectoryOf500CharactersIsOutOfRange)
{
    EXPECT_EQ(fnFileNameConstr(std::string(499, 'd').c_str(), "x").size(), 501U);
    EXPECT_THROW(fnFileNameConstr(std::string(500, 'd').c_str(), "x"), std::out_of_range);
    char path[pathBufferSize] = "";
    EXPECT_EQ(fnFileOpenRead(std::string(500, 'd').c_str(), "x"), nullptr);
    EXPECT_EQ(fnFileOpenWrite(std::string(500, 'd').c_str(), "x", path), nullptr);
    EXPECT_EQ(fnFileOpenWrite(std::string(400, 'd').c_str(), std::string(199, 'x').c_str(), path),
              nullptr);
    EXPECT_EQ(std::string(path), "");
}

TEST(FileHelpers, FilesAreWrittenAndRead)
{
    const DataFolder data;
    const std::string directory = data.path(QStringLiteral("neu/ü")).toStdString();
    char path[pathBufferSize] = "";
    std::FILE* stream = fnFileOpenWrite(directory.c_str(), "x.txt", path);
    ASSERT_NE(stream, nullptr);
    std::fputs("a\n", stream);
    std::fclose(stream);
    EXPECT_EQ(std::string(path), directory + "\\x.txt");
    EXPECT_EQ(data.read(QStringLiteral("neu/ü/x.txt")), "a\n");

    stream = fnFileOpenWrite(directory.c_str(), "x.txt", path);
    ASSERT_NE(stream, nullptr);
    std::fputs("ab", stream);
    std::fclose(stream);
    EXPECT_EQ(data.read(QStringLiteral("neu/ü/x.txt")), "ab") << "an older file is emptied first";

    stream = fnFileOpenRead(directory.c_str(), "x.txt");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(std::fgetc(stream), 'a');
    std::fclose(stream);
    stream = fnFileOpenRead(path);
    ASSERT_NE(stream, nullptr);
    std::fclose(stream);
    EXPECT_EQ(fnFileOpenRead(directory.c_str(), "none"), nullptr);
    EXPECT_EQ(fnFileOpenRead(directory.c_str()), nullptr);
    EXPECT_EQ(fnFileOpenRead(nullptr, "x"), nullptr);
    EXPECT_EQ(fnFileOpenRead(nullptr), nullptr);
    EXPECT_EQ(fnFileOpenWrite(directory.c_str(), "x", nullptr), nullptr);
}
