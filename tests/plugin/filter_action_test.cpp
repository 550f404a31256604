#include "profile/filtertable.h"
#include "tests/support/enginefixture.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <gtest/gtest.h>

#ifndef Q_OS_WIN
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#endif

namespace {

const QString save = QStringLiteral("SaveFilter");
const QString list = QStringLiteral("GetAllFilters");
const QString erase = QStringLiteral("DeleteFilter");
const QString openFile = QStringLiteral("SVP_OpenSVP");
const QString tableName = QStringLiteral("svp_filters_v2.txt");
const QString success = QStringLiteral("SUCCESS");
const QString notOpened = QStringLiteral("File not opened.");

const char goodRow[] = "ctd,.ctd,3,4,-1,-1,-1,1;2,1.000,2.000,tab,salinity";

QJsonObject answer(const QString& action, const QString& reason = QString())
{
    QJsonObject object{{QStringLiteral("whoami"), action}, {QStringLiteral("result"), success}};
    if (!reason.isEmpty()) {
        object[QStringLiteral("result")] = QStringLiteral("FAILURE");
        object[QStringLiteral("reason")] = reason;
    }
    return object;
}

QJsonObject listed(const QString& rows)
{
    QJsonObject object = answer(list);
    object[QStringLiteral("filters")] = rows;
    return object;
}

QByteArray table(const Engine& engine)
{
    return bytesOf(engine.folder.profile(tableName));
}

#ifndef Q_OS_WIN

// Files of this process cannot grow while this lives, as on a full disk.
class FullDisk
{
  public:
    FullDisk()
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_earlier);
        const rlimit none = {0, m_earlier.rlim_max};
        setrlimit(RLIMIT_FSIZE, &none);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &m_earlier); }
    Q_DISABLE_COPY(FullDisk)

  private:
    rlimit m_earlier{};
};

#endif

} // namespace

TEST(FilterAction, ASavedFilterIsListed)
{
    Engine engine;
    EXPECT_EQ(engine.request(save, QStringLiteral("[3,4,1;2,2,1,ctd,.ctd,tab,-1,-1,-1,salinity]")),
              answer(save));
    EXPECT_EQ(engine.packets().size(), 1);
    EXPECT_EQ(table(engine), QByteArray(goodRow) + "\r\n");
    EXPECT_EQ(engine.request(list), listed(QLatin1String(goodRow)));
    EXPECT_EQ(engine.packets().size(), 1);
    EXPECT_EQ(engine.request(save, QStringLiteral("[0,1,1,1,1,two,.two,comma,2,3,4,undef]")),
              answer(save));
    EXPECT_EQ(engine.request(list, QStringLiteral("[whatever]")),
              listed(QLatin1String(goodRow) +
                     QStringLiteral("|two,.two,0,1,2,3,4,1,1.000,1.000,comma,undef")));
    EXPECT_EQ(engine.request(save, QStringLiteral("[0,1,1,1,1,CTD,.TWO,space,2,3,4,undef]")),
              answer(save));
    EXPECT_EQ(engine.request(list),
              listed(QStringLiteral("CTD,.TWO,0,1,2,3,4,1,1.000,1.000,space,undef")));
}

TEST(FilterAction, ARefusedFilterLeavesTheTableAsItWas)
{
    Engine engine;
    const QString good = QStringLiteral("0,1,1,1,1,n,.p,tab,-1,-1,-1,undef");
    for (const QByteArray& before : {QByteArray(), QByteArray("n,.p,as it was\n# remark")}) {
        if (!before.isEmpty())
            engine.folder.writeProfile(tableName, before);
        EXPECT_EQ(engine.request(save, good + QStringLiteral(",1")),
                  answer(save, QStringLiteral("Wrong input parameters.")));
        EXPECT_EQ(engine.request(save, QStringLiteral("[0,1,1,1,1, A S V P ,.p,tab,,,,undef]")),
                  answer(save, QStringLiteral("Name asvp is reserved.")));
        EXPECT_EQ(engine.packets().size(), 1);
        EXPECT_EQ(table(engine), before);
        EXPECT_EQ(QFile::exists(engine.folder.profile(tableName)), !before.isEmpty());
    }
}

TEST(FilterAction, TheValuesAreCheckedBeforeTheFile)
{
    Engine engine;
    QDir().mkpath(engine.folder.profile(tableName));
    EXPECT_EQ(engine.request(save, QStringLiteral("[-1,1,1,1,1,n,.p,tab,,,,undef]")),
              answer(save, QStringLiteral("Depthcolumn cannot be negative.")));
    EXPECT_EQ(engine.request(save, QStringLiteral("[0,1,1,1,1,n,.p,tab,,,,undef]")),
              answer(save, notOpened));
}

TEST(FilterAction, EachBadRowIsToldAndTheGoodOnesCome)
{
    Engine engine;
    engine.folder.writeProfile(tableName,
                               "asvp,.x,0,1,-1,-1,-1,1,1,1,tab,undef\r\n" + QByteArray(goodRow) +
                                   "\r\nshort,row\r\nbad,.b,0,0,-1,-1,-1,1,1,1,tab,undef\r\n"
                                   "two, .two ,0,1,2,3,4,1,1,1,comma,undef\r\n");
    engine.request(list);
    EXPECT_EQ(engine.packets(),
              (QVector<QJsonObject>{
                  answer(list, QStringLiteral("asvp is a reserved filtername.")),
                  answer(list, QStringLiteral("Speedcolumn cannot be the same as Depthcolumn.")),
                  listed(QLatin1String(goodRow) +
                         QStringLiteral("|two,.two,0,1,2,3,4,1,1.000,1.000,comma,undef"))}));
    engine.folder.writeProfile(tableName, "");
    engine.request(list);
    EXPECT_EQ(engine.packets(), QVector<QJsonObject>{listed(QString())});
}

TEST(FilterAction, DeletingEmptiesATableOfToday)
{
    Engine engine;
    engine.folder.writeProfile(tableName, QByteArray(goodRow) +
                                              "\nold,.o,0,1,1,1,1,tab\nolder,.p,0,1,1,1,1,tab\n");
    EXPECT_EQ(engine.request(erase, QStringLiteral("[ O l d ]")), answer(erase));
    EXPECT_EQ(engine.packets().size(), 1);
    EXPECT_EQ(table(engine), "older,.p,0,1,1,1,1,tab\r\n");
    engine.folder.writeProfile(tableName, QByteArray(goodRow) + "\n");
    EXPECT_EQ(engine.request(erase, QStringLiteral("none of these")), answer(erase));
    EXPECT_TRUE(QFile::exists(engine.folder.profile(tableName)));
    EXPECT_EQ(table(engine), "");
    EXPECT_EQ(engine.request(list), listed(QString()));
}

TEST(FilterAction, WithoutAFileOnlySavingGoesOn)
{
    Engine engine;
    EXPECT_EQ(engine.request(list), answer(list, notOpened));
    EXPECT_EQ(engine.packets().size(), 1);
    EXPECT_EQ(engine.request(erase, QStringLiteral("[n]")), answer(erase, notOpened));
    EXPECT_FALSE(QFile::exists(engine.folder.profile(tableName)));
    EXPECT_EQ(engine.request(save, QStringLiteral("[0,1,1,1,1,n,.p,tab,,,,undef]")), answer(save));
}

TEST(FilterAction, WithoutItsFolderThereIsNoTable)
{
    Engine engine;
    const QString folder = engine.folder.path(QStringLiteral("qrvdata"));
    const QString body = QStringLiteral("[0,1,1,1,1,n,.p,tab,,,,undef]");
    QDir(folder).removeRecursively();
    for (const bool hasRoot : {true, false}) {
        if (!hasRoot)
            qunsetenv("ProgramData");
        EXPECT_EQ(engine.request(list), answer(list, QStringLiteral("ProgramData not found.")));
        EXPECT_EQ(engine.packets().size(), 1);
        EXPECT_EQ(engine.request(erase), answer(erase, notOpened));
        EXPECT_EQ(engine.request(save, body), answer(save, notOpened));
        EXPECT_FALSE(QFile::exists(folder));
    }
}

TEST(FilterAction, AFileInThePlaceOfTheFolderIsNone)
{
    Engine engine;
    const QString folder = engine.folder.path(QStringLiteral("qrvdata/svp_abscoeff"));
    QDir(folder).removeRecursively();
    writeBytes(folder, "a file");
    EXPECT_EQ(engine.request(list), answer(list, QStringLiteral("ProgramData not found.")));
    EXPECT_EQ(engine.request(save, QStringLiteral("[0,1,1,1,1,n,.p,tab,,,,undef]")),
              answer(save, notOpened));
    EXPECT_EQ(bytesOf(folder), "a file");
}

TEST(FilterAction, AFullDiskLeavesTheTableAsItWas)
{
#ifdef Q_OS_WIN
    GTEST_SKIP() << "Windows bounds no file sizes of a process";
#else
    Engine engine;
    const QByteArray before = QByteArray(goodRow) + "\n" + "old,.o,0,1,1,1,1,tab\n";
    engine.folder.writeProfile(tableName, before);
    const QString notWritten = QStringLiteral("Cannot write to file.");
    {
        const FullDisk disk;
        EXPECT_EQ(engine.request(save, QStringLiteral("[0,1,1,1,1,n,.p,tab,,,,undef]")),
                  answer(save, notWritten));
        EXPECT_EQ(engine.packets().size(), 1);
        EXPECT_EQ(engine.request(erase, QStringLiteral("[n]")), answer(erase, notWritten));
        EXPECT_EQ(engine.packets().size(), 1);
    }
    EXPECT_EQ(table(engine), before);
    EXPECT_EQ(QDir(engine.folder.profile(QString()))
                  .entryList({tableName + QLatin1Char('*')}, QDir::Files),
              QStringList{tableName});
#endif
}

TEST(FilterAction, AFilterThatOutgrowsTheTableIsRefused)
{
    Engine engine;
    engine.folder.writeProfile(tableName, QByteArray(goodRow) + "\r\n");
    EXPECT_EQ(engine.request(save, QStringLiteral("[0,1,1,1,1,") +
                                       QString(profile::maxFilterTable, QLatin1Char('n')) +
                                       QStringLiteral(",.p,tab,,,,undef]")),
              answer(save, QStringLiteral("Cannot write to file.")));
    EXPECT_EQ(table(engine), QByteArray(goodRow) + "\r\n");
}

TEST(FilterAction, TenMegabytesOfAnything)
{
    Engine engine;
    engine.folder.writeProfile(tableName, QByteArray(goodRow) + "\r\n");
    for (const QChar filler : {QChar(','), QChar('['), QChar(' '), QChar('9'), QChar(0)}) {
        const QString body(10 * 1024 * 1024, filler);
        EXPECT_EQ(engine.request(save, body),
                  answer(save, QStringLiteral("Wrong input parameters.")));
        EXPECT_EQ(engine.request(list, body), listed(QLatin1String(goodRow)));
    }
    EXPECT_EQ(engine.request(erase, QString(10 * 1024 * 1024, QLatin1Char(','))), answer(erase));
    engine.folder.writeProfile(tableName, QByteArray(profile::maxFilterTable, ','));
    EXPECT_EQ(engine.request(list), listed(QString()));
    engine.folder.writeProfile(tableName, QByteArray(profile::maxFilterTable, '\n'));
    EXPECT_EQ(engine.request(list), listed(QString()));
}

TEST(FilterAction, NoAlertIsHandedOver)
{
    Engine engine;
    engine.plugin.addPendingAlert("look");
    engine.request(save, QStringLiteral("[0,1,1,1,1,n,.p,tab,,,,undef]"));
    EXPECT_EQ(engine.packets().size(), 1);
    engine.request(list);
    EXPECT_EQ(engine.packets().size(), 1);
    engine.request(erase);
    EXPECT_EQ(engine.packets().size(), 1);
    engine.request(QStringLiteral("CloseSVP"));
    EXPECT_EQ(engine.packets().size(), 2) << "it waits for an action that does";
}

TEST(FilterAction, RowsForCallersComeWithOrWithoutTheirFaults)
{
    Engine engine;
    using Faults = CSVP_WebInterface::FilterFaults;
    engine.message(QString());
    EXPECT_EQ(engine.plugin.getSvpFilters(Faults::Silent), QStringList());
    EXPECT_TRUE(engine.packets().isEmpty());
    EXPECT_EQ(engine.plugin.getSvpFilters(), QStringList());
    EXPECT_EQ(engine.packets(), QVector<QJsonObject>{answer(list, notOpened)});

    engine.message(QString());
    engine.folder.writeProfile(tableName, QByteArray(goodRow) +
                                              "\nbad,.b,-1,1,-1,-1,-1,1,1,1,tab,undef\n"
                                              "two,.two,0,1,2,3,4,1,0.5,1,comma,undef\n");
    const QStringList rows = {QLatin1String(goodRow),
                              QStringLiteral("two,.two,0,1,2,3,4,1,0.500,1.000,comma,undef")};
    EXPECT_EQ(engine.plugin.getSvpFilters(Faults::Silent), rows);
    EXPECT_TRUE(engine.packets().isEmpty());
    EXPECT_EQ(engine.plugin.getSvpFilters(), rows);
    EXPECT_EQ(engine.packets(), QVector<QJsonObject>{answer(
                                    list, QStringLiteral("Depthcolumn cannot be negative."))});
}

TEST(FilterAction, OpeningFindsTheUsersRowsAsTheyAreNow)
{
    Engine engine;
    const QString notFound = QStringLiteral("Filter not found.");
    const QByteArray good = "0 1500\n10 1501\n";
    engine.folder.writeProfile(QStringLiteral("X.Mine"), good);
    const auto opened = [&engine] {
        QString result = outcome(engine.request(openFile, QStringLiteral("[X.Mine,Mine]")));
        EXPECT_EQ(engine.packets().size(), 1) << "one reply, whatever is wrong with the table";
        return result;
    };
    EXPECT_EQ(opened(), notFound);
    engine.folder.writeProfile(tableName, "bad,.mine,-1,1,-1,-1,-1,1,1,1,tab,undef\n"
                                          "worse,.b,0,1,-1,-1,-1,1,-1,1,tab,undef\n");
    EXPECT_EQ(opened(), notFound) << "a faulty row selects nothing";
    engine.request(save, QStringLiteral("[0,1,,1,1,mine,.MINE,space,,,,undef]"));
    EXPECT_EQ(opened(), success);
    engine.request(erase);
    EXPECT_EQ(opened(), notFound);
}

TEST(FilterAction, BuiltInRowsComeFirst)
{
    Engine engine;
    engine.folder.writeProfile(QStringLiteral("x.asvp"), asvp({"0 1500", "10 1501"}));
    // Its columns stand the other way round; it fits the name as well.
    ASSERT_EQ(outcome(engine.request(save, QStringLiteral("[1,0,1,1,1,mine,p,space,,,,undef]"))),
              success);
    const QJsonObject reply = engine.request(openFile, QStringLiteral("[x.asvp,asvp]"));
    EXPECT_EQ(outcome(reply), success);
    EXPECT_EQ(reply.value(QLatin1String("svp_Speed")).toArray(), (QJsonArray{1500, 1501}));
}
