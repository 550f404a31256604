#include "platform/platform.h"
#include "settings/cdatafile.h"
#include "tests/support/datafolder.h"
#include "tests/support/log.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

#include <limits>

namespace {

CDataFile loaded(const std::string& text)
{
    CDataFile store;
    store.LoadText(text);
    return store;
}

} // namespace

TEST(CDataFile, StartsWithTheUnnamedSection)
{
    const CDataFile store;
    ASSERT_EQ(store.allSections().size(), 1U);
    EXPECT_EQ(store.allSections().front().name, "");
    EXPECT_FALSE(store.isDirty());
}

TEST(CDataFile, NamesCompareWithoutRegardToCase)
{
    const CDataFile store = loaded("[ProfileHandl]\ndSVMin=1\n");
    EXPECT_EQ(store.FetchValue("DSVMIN", "profilehandl"), "1");
    EXPECT_EQ(store.FetchValue("dSVMin", "profile"), "");
    EXPECT_EQ(store.FetchValue("dSVMi", "profilehandl"), "");
}

TEST(CDataFile, ReadsKeysAndValues)
{
    struct
    {
        const char* line;
        const char* key;
        const char* value;
    } const cases[] = {
        {"dTMax: 40", "dTMax", "40"},
        {"a=b", "a", "b"},
        {"  a  =  b c  ", "a", "b c"},
        {"a=b=c", "a", "b=c"},
        {"a:b=c", "a", "b=c"},
        {"a=b:c", "a", "b:c"},
        {"a=b\r", "a", "b"},
        {"a=b ; no comment", "a", "b ; no comment"},
        {"a", "a", ""},
        {"a=", "a", ""},
        {"a b = c", "a b", "c"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(loaded(c.line).FetchValue(c.key, ""), c.value) << c.line;
    EXPECT_TRUE(loaded("=b").allSections().front().keys().empty());
}

TEST(CDataFile, ReadsSections)
{
    struct
    {
        const char* line;
        const char* name;
    } const cases[] = {
        {"[a]", "a"},     {"  [a]  ", "a"}, {"[a", "a"},
        {"[a]b]", "a]b"}, {"[a] b", "a b"}, {"[[a]]", "[a]"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(loaded(c.line).allSections().back().name, c.name) << c.line;
}

TEST(CDataFile, ASecondSectionOfANameContinuesTheFirst)
{
    const CDataFile store = loaded("[a]\nx=1\n[b]\ny=2\n[A]\nz=3\n");
    EXPECT_EQ(store.allSections().size(), 3U);
    EXPECT_EQ(store.FetchValue("z", "a"), "3");
    EXPECT_EQ(testlog::traces(),
              QStringList{QStringLiteral(
                  "<info> [CDataFile::CreateSection] Section <A> allready exists. Aborting.\n")});
}

TEST(CDataFile, NumbersOfMissingTextsAreTold)
{
    const CDataFile store = loaded("i=12x\nf=1.5x\nn=abc\n");
    EXPECT_EQ(store.FetchInt("i", ""), 12);
    EXPECT_EQ(store.FetchInt("n", ""), 0);
    EXPECT_EQ(store.FetchInt("none", ""), std::numeric_limits<int>::min());
    EXPECT_EQ(store.FetchInt("i", "none"), std::numeric_limits<int>::min());
    EXPECT_EQ(store.FetchFloat("f", ""), 1.5F);
    EXPECT_EQ(store.FetchFloat("n", ""), 0.0F);
    EXPECT_EQ(store.FetchFloat("none", ""), 1.1754944e-38F);
}

TEST(CDataFile, PutValueCreatesWhatTheFlagsAllow)
{
    CDataFile store;
    EXPECT_FALSE(store.PutValue("k", "", "", "s"));
    EXPECT_TRUE(store.PutValue("k", "v", "", "s"));
    EXPECT_TRUE(store.isDirty());
    EXPECT_TRUE(store.PutValue("K", "w", "c", "S"));
    EXPECT_EQ(store.FetchValue("k", "s"), "w");
    EXPECT_EQ(store.allSections().back().keys().front().comment, "c");
    EXPECT_EQ(store.allSections().back().keys().size(), 1U);

    EXPECT_TRUE(store.PutValue("k", "", "", "s"));
    EXPECT_EQ(store.FetchValue("k", "s"), "");

    store.SetCreateFlags(0);
    EXPECT_FALSE(store.PutValue("new", "v", "", "s"));
    EXPECT_FALSE(store.PutValue("k", "v", "", "other"));
    store.SetCreateFlags(CDataFile::CREATE_SECTIONS);
    EXPECT_FALSE(store.PutValue("k", "v", "", "other"));
    EXPECT_EQ(store.allSections().back().name, "other");
}

TEST(CDataFile, LoadingCreatesWhateverTheFlagsSay)
{
    CDataFile store;
    store.SetCreateFlags(0);
    store.LoadText("[s]\nk=v\n");
    EXPECT_EQ(store.FetchValue("k", "s"), "v");
    EXPECT_FALSE(store.PutValue("new", "v", "", "s"));
}

TEST(CDataFile, TypedValuesHaveOneForm)
{
    CDataFile store;
    store.PutInt("i", -3, "", "s");
    store.PutFloat("f", 1400.0, "", "s");
    store.PutBool("t", true, "", "s");
    store.PutBool("n", false, "", "s");
    EXPECT_EQ(store.SaveText(), "\n[s]\ni=-3\nf=1400.000000\nt=True\nn=False\n");
}

TEST(CDataFile, CommentsStayWithTheirKeyAndSection)
{
    const std::string text = "\n; about s\n; more\n[s]\na=1\n\n; about b\n# and more\nb=2\n";
    const CDataFile store = loaded(text);
    EXPECT_EQ(store.SaveText(), "\n; about s\n; more\n[s]\na=1\n\n; about b\n# and more\nb=2\n");
    EXPECT_EQ(loaded(store.SaveText()).SaveText(), store.SaveText());
}

TEST(CDataFile, ACommentWaitsForTheNextKeyThatHasAValue)
{
    const CDataFile store = loaded("; c\nempty=\nk=v\n");
    EXPECT_EQ(store.SaveText(), "\n; c\nk=v\n");
}

TEST(CDataFile, WrittenCommentsGetAnIndicator)
{
    CDataFile store;
    store.CreateSection("s", "  plain  ");
    store.PutValue("k", "v", "note", "s");
    EXPECT_EQ(store.SaveText(), "\n; plain\n[s]\n\n; note\nk=v\n");
}

TEST(CDataFile, LinesAreCutAtTheirBuffers)
{
    CDataFile store;
    store.CreateSection("s", std::string(600, 'c'));
    store.PutValue("k", std::string(70000, 'v'), "", "s");
    const std::string text = store.SaveText();
    EXPECT_EQ(text.find("[s]"), 512U);
    EXPECT_EQ(text.size(), 512U + 4U + 65535U);
    CDataFile longName;
    longName.CreateSection(std::string(600, 'n'), "");
    EXPECT_EQ(longName.SaveText(), "\n[" + std::string(509, 'n') + "\n");

    EXPECT_EQ(loaded("k=" + std::string(70000, 'v') + "\nn=1").FetchValue("k", "").size(), 65533U);
    EXPECT_EQ(loaded("k=" + std::string(70000, 'v') + "\nn=1").FetchValue("n", ""), "1");
}

TEST(CDataFile, SavesAndLoads)
{
    const DataFolder folder;
    const std::string path = folder.path(QStringLiteral("größe 測.ini")).toStdString();
    CDataFile store;
    store.SetFileName(path);
    store.PutValue("k", "v", "", "s");
    EXPECT_TRUE(store.Save());
    EXPECT_FALSE(store.isDirty());
    EXPECT_EQ(folder.read(QStringLiteral("größe 測.ini")), platform::textFileBytes("\n[s]\nk=v\n"));

    CDataFile other;
    EXPECT_TRUE(other.Load(path));
    EXPECT_EQ(other.FetchValue("k", "s"), "v");
}

TEST(CDataFile, WhatCannotBeSavedIsTold)
{
    const DataFolder folder;
    folder.write(QStringLiteral("kept.ini"), "kept");
    CDataFile store;
    store.SetFileName(folder.path(QStringLiteral("kept.ini")).toStdString());
    EXPECT_FALSE(store.Save());
    EXPECT_EQ(folder.read(QStringLiteral("kept.ini")), "kept");

    CDataFile unnamed;
    unnamed.PutValue("k", "v", "", "s");
    EXPECT_FALSE(unnamed.Save());
    unnamed.SetFileName(folder.path(QStringLiteral("none/x.ini")).toStdString());
    EXPECT_FALSE(unnamed.Save());
    QDir().mkpath(folder.path(QStringLiteral("folder.ini")));
    unnamed.SetFileName(folder.path(QStringLiteral("folder.ini")).toStdString());
    EXPECT_FALSE(unnamed.Save());
    EXPECT_TRUE(unnamed.isDirty());

    EXPECT_EQ(testlog::traces().value(0),
              QStringLiteral("<info> [CDataFile::Save] Nothing to save.\n"));
    EXPECT_EQ(testlog::traces().value(1),
              QStringLiteral("<error> [CDataFile::Save] No filename has been set.\n"));
    EXPECT_EQ(testlog::traces().value(2),
              QStringLiteral("<error> [CDataFile::Save] Unable to save file.\n"));
    EXPECT_EQ(testlog::traces().last(),
              QStringLiteral("<error> [CDataFile::Save] Unable to save file.\n"));
}

TEST(CDataFile, ASectionAloneIsWorthSaving)
{
    const DataFolder folder;
    CDataFile store;
    store.CreateSection("s", "");
    store.SetFileName(folder.path(QStringLiteral("s.ini")).toStdString());
    EXPECT_TRUE(store.Save());
    EXPECT_EQ(folder.read(QStringLiteral("s.ini")), platform::textFileBytes("\n[s]\n"));
}

TEST(CDataFile, AMissingFileIsToldAndNotMade)
{
    const DataFolder folder;
    CDataFile store;
    EXPECT_FALSE(store.Load(folder.path(QStringLiteral("none.ini")).toStdString()));
    EXPECT_FALSE(store.Load(folder.programData().toStdString()));
    EXPECT_FALSE(QFile::exists(folder.path(QStringLiteral("none.ini"))));
    EXPECT_EQ(testlog::traces().value(0),
              QStringLiteral("<info> [CDataFile::Load] Unable to open file. Does it exist?\n"));
}

TEST(CDataFile, ANewFileNameIsTold)
{
    CDataFile store;
    store.SetFileName("a.ini");
    store.SetFileName("A.INI");
    EXPECT_TRUE(testlog::traces().isEmpty());
    EXPECT_FALSE(store.isDirty());
    store.SetFileName("b.ini");
    EXPECT_TRUE(store.isDirty());
    EXPECT_EQ(testlog::traces(), QStringList{QStringLiteral("<warn> [CDataFile::SetFileName] The "
                                                            "filename has changed from <A.INI> to "
                                                            "<b.ini>.\n")});
}

TEST(CDataFile, DiagnosticsCarryTheirLevel)
{
    CDataFile::Trace(CDataFile::Debug, "a %d", 1);
    CDataFile::Trace(CDataFile::Fatal, "b\n");
    CDataFile::Trace(CDataFile::Critical, "c\r");
    CDataFile::Trace(99, "%s", std::string(600, 'x').c_str());
    EXPECT_EQ(testlog::traces().value(0), QStringLiteral("<debug> a 1\n"));
    EXPECT_EQ(testlog::traces().value(1), QStringLiteral("<fatal> b\n"));
    EXPECT_EQ(testlog::traces().value(2), QStringLiteral("<critical> c\r"));
    EXPECT_EQ(testlog::traces().value(3).size(), 11 + 511 + 1);
}

TEST(CDataFile, HostileTextsAreRead)
{
    const std::string zero(1, '\0');
    loaded(zero + zero + '[' + zero + ']' + zero + '=' + zero + '\n');
    loaded("[\n]\n=\n:\n;\n#");
    loaded(std::string(1000000, '['));
    std::string many;
    for (int i = 0; i < 100000; ++i)
        many += "key" + std::to_string(i) + "=v\n";
    EXPECT_EQ(loaded(many).FetchValue("KEY99999", ""), "v");
}
