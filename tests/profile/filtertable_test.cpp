#include "profile/filtertable.h"
#include "tests/support/commalocale.h"
#include "tests/support/datafolder.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

#ifndef Q_OS_WIN
#include <sys/stat.h>
#endif

using namespace profile;

namespace {

const QString tableFile = QStringLiteral("qrvdata/svp_abscoeff/svp_filters_v2.txt");

// A request to save that is in order, with one value changed.
QString saveBody(int place = -1, const QString& value = QString())
{
    QStringList values = {
        QStringLiteral("3"),    QStringLiteral("4"),   QStringLiteral("1;2"),
        QStringLiteral("2"),    QStringLiteral("0.5"), QStringLiteral("ctd"),
        QStringLiteral(".ctd"), QStringLiteral("tab"), QStringLiteral("5"),
        QStringLiteral("6"),    QStringLiteral("7"),   QStringLiteral("salinity")};
    if (place >= 0)
        values[place] = value;
    return QLatin1Char('[') + values.join(QLatin1Char(',')) + QLatin1Char(']');
}

QString refusal(const QString& body)
{
    FilterRow row;
    return readSaveFilter(body, row);
}

FilterRow parsed(const QString& line)
{
    FilterRow row;
    EXPECT_TRUE(parseFilterRow(line, row)) << qPrintable(line);
    return row;
}

// A row of the table that is in order, with one field changed.
QString rowWith(int field, const QString& text)
{
    QStringList fields =
        QStringLiteral("n,.p,0,1,-1,-1,-1,1,1,1,tab,undef").split(QLatin1Char(','));
    fields[field] = text;
    return fields.join(QLatin1Char(','));
}

} // namespace

TEST(FilterTable, ARequestBecomesARow)
{
    FilterRow row;
    EXPECT_EQ(readSaveFilter(saveBody(), row), QString());
    EXPECT_EQ(formatFilterRow(row),
              QLatin1String("ctd,.ctd,3,4,5,6,7,1;2,0.500,2.000,tab,salinity"));
    EXPECT_EQ(readSaveFilter(QStringLiteral(" 3 ,4,[1 ; 2],2, 0.5, c t d, .ctd,t ab ,5,6,7,\r\n") +
                                 QStringLiteral("salinity"),
                             row),
              QString());
    EXPECT_EQ(formatFilterRow(row),
              QLatin1String("ctd,.ctd,3,4,5,6,7,1;2,0.500,2.000,tab,salinity"));
}

TEST(FilterTable, ARequestHasTwelveValues)
{
    const QString wrong = QStringLiteral("Wrong input parameters.");
    for (const char* body : {"", "[]", "3,4,1,2,0.5,ctd,.ctd,tab,5,6,7",
                             "3,4,1,2,0.5,ctd,.ctd,tab,5,6,7,undef,x", "-1,-1"})
        EXPECT_EQ(refusal(QLatin1String(body)), wrong) << body;
    EXPECT_EQ(refusal(saveBody(3, QStringLiteral("2,0"))), wrong) << "a decimal comma";
    EXPECT_EQ(refusal(QString(10 * 1024 * 1024, QLatin1Char(','))), wrong);
}

TEST(FilterTable, EachCheckOfARequestHasItsReason)
{
    struct
    {
        int place;
        const char* value;
        const char* reason;
    } const cases[] = {
        {0, "-1", "Depthcolumn cannot be negative."},
        {0, "x", "Wrong input parameters."},
        {0, "", "Wrong input parameters."},
        {0, "2.0", "Wrong input parameters."},
        {0, "10001", "Wrong input parameters."},
        {0, "99999999999", "Wrong input parameters."},
        {0, "10000", ""},
        {0, "0", ""},
        {1, "-1", "Speedcolumn cannot be negative."},
        {1, "one", "Wrong input parameters."},
        {1, "0", ""},
        {1, "3", "Speedcolumn and Depthcolumn cannot be the same."},
        {1, "03", "Speedcolumn and Depthcolumn cannot be the same."},
        {3, "-0.001", "Speed multiplier cannot be negative."},
        {3, "nan", "Wrong input parameters."},
        {3, "inf", "Wrong input parameters."},
        {3, "fast", "Wrong input parameters."},
        {3, "", "Wrong input parameters."},
        {3, "0.0001", "Wrong input parameters."},
        {3, "0", ""},
        {4, "-1", "Depth multiplier cannot be negative."},
        {4, "1e999", "Wrong input parameters."},
        {4, "1000001", "Wrong input parameters."},
        {4, "1000000", ""},
        {4, "1m", "Wrong input parameters."},
        {4, "0", ""},
        {5, "asvp", "Name asvp is reserved."},
        {5, "\t A SvP ", "Name asvp is reserved."},
        {5, " ASVP ", "Name asvp is reserved."},
        {5, "asvp2", ""},
        {6, ".asvp", "Postfix .asvp is reserved."},
        {6, ".ASVP", "Postfix .asvp is reserved."},
        {6, "asvp", ""},
        {5, "valeport", "Name valeport is reserved."},
        {5, "[Valeport]", "Name valeport is reserved."},
        {5, "valeport2", ""},
        {6, ".valeport", "Postfix .valeport is reserved."},
        {6, " .VALEPORT", "Postfix .valeport is reserved."},
        {6, ".vp2", ""},
        {7, "pipe", ""},
        {7, "", ""},
        {7, "SPACE", ""},
        {11, "sal", ""},
        {11, "Conductivity", ""},
        {5, "", "Wrong input parameters."},
        {6, "", "Wrong input parameters."},
        {5, "a|b", "Wrong input parameters."},
        {2, "1|2", "Wrong input parameters."},
        {8, "x", "Wrong input parameters."},
        {9, "2.5", "Wrong input parameters."},
        {10, "10001", "Wrong input parameters."},
        {8, "", ""},
        {9, "-1", ""},
        {10, "0", ""},
        {2, "", ""},
        {2, "-1", ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(refusal(saveBody(c.place, QLatin1String(c.value))), QLatin1String(c.reason))
            << c.place << ' ' << c.value;
}

TEST(FilterTable, TheChecksOfARequestStandInOrder)
{
    // Each value that the checks look at is faulty; mending them one by one brings the next reason.
    QStringList values =
        QStringLiteral("-1,-1,1|,-1,-1,asvp,.asvp,pipe,x,-1,-1,none").split(QLatin1Char(','));
    struct
    {
        const char* reason;
        int place;
        const char* mended;
    } const steps[] = {
        {"Wrong input parameters.", 8, "3"}, // what is no number at all
        {"Depthcolumn cannot be negative.", 0, "1"},
        {"Speedcolumn cannot be negative.", 1, "1"},
        {"Speedcolumn and Depthcolumn cannot be the same.", 1, "2"},
        {"Speed multiplier cannot be negative.", 3, "1"},
        {"Depth multiplier cannot be negative.", 4, "1"},
        {"Name asvp is reserved.", 5, "valeport"},
        {"Postfix .asvp is reserved.", 6, ".valeport"},
        {"Name valeport is reserved.", 5, "n"},
        {"Postfix .valeport is reserved.", 6, ".p"},
        {"Wrong input parameters.", 2, "1"},
    };
    for (const auto& step : steps) {
        EXPECT_EQ(refusal(values.join(QLatin1Char(','))), QLatin1String(step.reason));
        values[step.place] = QLatin1String(step.mended);
    }
    EXPECT_EQ(refusal(values.join(QLatin1Char(','))), QString());
}

TEST(FilterTable, ARowIsWrittenWithThreeDecimals)
{
    struct
    {
        const char* row;
        const char* written;
    } const cases[] = {
        {"n,.p,0,1,-1,-1,-1,1,2,1,tab,undef", "n,.p,0,1,-1,-1,-1,1,2.000,1.000,tab,undef"},
        {"n,.p,0,1,-1,-1,-1,1,1.0,.25,tab,undef", "n,.p,0,1,-1,-1,-1,1,1.000,0.250,tab,undef"},
        {"n,.p,0,1,-1,-1,-1,1,0.0005,1.9996,tab,undef",
         "n,.p,0,1,-1,-1,-1,1,0.001,2.000,tab,undef"},
        {"n,.p,0,1,-1,-1,-1,1,-0,1e6,tab,undef", "n,.p,0,1,-1,-1,-1,1,0.000,1000000.000,tab,undef"},
        {"N,.P,+00,+7,x,,-3,0;1,1,1,TAB,Undef", "N,.P,0,7,-1,-1,-3,0;1,1.000,1.000,TAB,Undef"},
        {"%1 %2,.%3,0,1,2,3,4,%4,1,1,space,salinity",
         "%1%2,.%3,0,1,2,3,4,%4,1.000,1.000,space,salinity"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(formatFilterRow(parsed(QLatin1String(c.row))), QLatin1String(c.written)) << c.row;
    const CommaLocale comma;
    ASSERT_TRUE(CommaLocale::isActive());
    FilterRow row;
    EXPECT_EQ(readSaveFilter(saveBody(), row), QString());
    EXPECT_EQ(row.format.depthFactor, 0.5);
    EXPECT_EQ(formatFilterRow(row),
              QLatin1String("ctd,.ctd,3,4,5,6,7,1;2,0.500,2.000,tab,salinity"));
}

TEST(FilterTable, EachFaultOfARowHasItsReason)
{
    struct
    {
        int field;
        const char* text;
        const char* reason;
    } const cases[] = {
        {0, "asvp", "asvp is a reserved filtername."},
        {0, "A S V P", "asvp is a reserved filtername."},
        {0, "valeport", ""},
        {1, ".asvp", ".asvp is a reserved filter postfix."},
        {1, ".Asvp", ".asvp is a reserved filter postfix."},
        {1, ".valeport", ".valeport is a reserved filter postfix."},
        {1, ".VALEPORT", ".valeport is a reserved filter postfix."},
        {10, "pipe", "Separator must be space, tab, semicolon, colon or comma."},
        {10, "Colon", ""},
        {11, "none", "Sal/Con must be salinity, conductivity, or undef."},
        {11, "Salinity", ""},
        {2, "-1", "Depthcolumn cannot be negative."},
        {2, "x", "Depthcolumn cannot be negative."},
        {2, "10001", "Depthcolumn cannot be negative."},
        {2, "10000", ""},
        {3, "-1", "Speedcolumn cannot be negative."},
        {3, "", "Speedcolumn cannot be negative."},
        {3, "0", "Speedcolumn cannot be the same as Depthcolumn."},
        {8, "-0.1", "Depthfactor cannot be negative."},
        {8, "nan", "Depthfactor cannot be negative."},
        {8, "0.0001", "Depthfactor cannot be negative."},
        {8, "0", ""},
        {9, "-0.1", "Speedfactor cannot be negative."},
        {9, "inf", "Speedfactor cannot be negative."},
        {9, "0", ""},
        {4, "x", ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(filterFault(parsed(rowWith(c.field, QLatin1String(c.text)))),
                  QLatin1String(c.reason))
            << c.field << ' ' << c.text;
}

TEST(FilterTable, TheFaultsOfARowStandInOrder)
{
    QStringList fields =
        QStringLiteral("asvp,.asvp,-1,-1,-1,-1,-1,1,-1,-1,pipe,none").split(QLatin1Char(','));
    struct
    {
        const char* reason;
        int field;
        const char* mended;
    } const steps[] = {
        {"asvp is a reserved filtername.", 0, "n"},
        {".asvp is a reserved filter postfix.", 1, ".valeport"},
        {".valeport is a reserved filter postfix.", 1, ".p"},
        {"Separator must be space, tab, semicolon, colon or comma.", 10, "colon"},
        {"Sal/Con must be salinity, conductivity, or undef.", 11, "undef"},
        {"Depthcolumn cannot be negative.", 2, "1"},
        {"Speedcolumn cannot be negative.", 3, "1"},
        {"Speedcolumn cannot be the same as Depthcolumn.", 3, "2"},
        {"Depthfactor cannot be negative.", 8, "1"},
        {"Speedfactor cannot be negative.", 9, "1"},
    };
    for (const auto& step : steps) {
        EXPECT_EQ(filterFault(parsed(fields.join(QLatin1Char(',')))), QLatin1String(step.reason));
        fields[step.field] = QLatin1String(step.mended);
    }
    EXPECT_EQ(filterFault(parsed(fields.join(QLatin1Char(',')))), QString());
}

TEST(FilterTable, GoodRowsAreTakenAndEachBadOneHasItsFault)
{
    const QByteArray text = "\n# a remark\n"
                            "one, .o, 0, 1, -1, -1, -1, 1, 1, 1, tab, undef\n"
                            "asvp,.x,-1,1,-1,-1,-1,1,1,1,tab,undef\n"
                            "a,b,c,d,e,f,g,h\n"
                            "n,.p,0,1,-1,-1,-1,1,1,1,tab\n"
                            "n,.p,0,1,-1,-1,-1,1,1,1,tab,undef,x\n"
                            "two,.t,0,0,-1,-1,-1,1,1,1,tab,undef\n"
                            "three,.3,0,1,2,3,4,1;3-5,0.3048,1,Space,Salinity";
    const QStringList rows = {
        QStringLiteral("one,.o,0,1,-1,-1,-1,1,1.000,1.000,tab,undef"),
        QStringLiteral("three,.3,0,1,2,3,4,1;3-5,0.305,1.000,Space,Salinity")};
    const QStringList faults = {QStringLiteral("asvp is a reserved filtername."),
                                QStringLiteral("Speedcolumn cannot be the same as Depthcolumn.")};
    for (const char* end : {"\n", "\r\n", "\r\r\n", "\r"}) {
        QByteArray table = text;
        table.replace("\n", end);
        for (const QByteArray& mark : {QByteArray(), QByteArray("\xEF\xBB\xBF")}) {
            const CheckedFilters checked = checkFilters(mark + table);
            EXPECT_EQ(checked.rows, rows);
            EXPECT_EQ(checked.faults, faults);
        }
    }
    EXPECT_TRUE(checkFilters("").rows.isEmpty());
    EXPECT_TRUE(checkFilters("").faults.isEmpty());
}

TEST(FilterTable, NamesMayHoldAnyLetters)
{
    const QString row = QStringLiteral("målø測,.æ,0,1,-1,-1,-1,1,1.000,1.000,tab,undef");
    EXPECT_EQ(checkFilters(row.toUtf8()).rows, QStringList{row});
    EXPECT_EQ(checkFilters("m\xE5l,.p,0,1,-1,-1,-1,1,1,1,tab,undef").rows,
              QStringList{QStringLiteral("mål,.p,0,1,-1,-1,-1,1,1.000,1.000,tab,undef")});
    EXPECT_EQ(tableWithFilter("", parsed(row)), row.toUtf8() + "\r\n");
    EXPECT_EQ(tableWithFilter(row.toUpper().toUtf8(), parsed(row)), row.toUtf8() + "\r\n");
}

TEST(FilterTable, ATableCutAtEachByteIsRead)
{
    const QByteArray text = "one,.o,0,1,-1,-1,-1,1,1,1,tab,undef\r\n"
                            "m\xC3\xA5l,.m,2,3,-1,-1,-1,1;2,1,1,space,salinity\r\n";
    for (int size = 0; size <= text.size(); ++size) {
        const CheckedFilters checked = checkFilters(text.left(size));
        const bool hasFirst = size >= text.indexOf("undef") + 5;
        const bool hasSecond = size >= text.indexOf("salinity") + 8;
        EXPECT_EQ(checked.rows.size(), (hasFirst ? 1 : 0) + (hasSecond ? 1 : 0)) << size;
    }
}

TEST(FilterTable, SavingReplacesRowsOfTheSameNameOrPostfix)
{
    const FilterRow row = parsed(QStringLiteral("new,.n,0,1,-1,-1,-1,1,2,1,tab,undef"));
    const QByteArray written = "new,.n,0,1,-1,-1,-1,1,2.000,1.000,tab,undef\r\n";
    struct
    {
        const char* table;
        const char* kept;
    } const cases[] = {
        {"", ""},
        {"a,.a,0,1,-1,-1,-1,1,1,1,tab,undef\n", "a,.a,0,1,-1,-1,-1,1,1,1,tab,undef\r\n"},
        {"a,.a,0,1,-1,-1,-1,1,1,1,tab,undef", "a,.a,0,1,-1,-1,-1,1,1,1,tab,undef\r\n"},
        {"new,.a,0,1,-1,-1,-1,1,1,1,tab,undef\n", ""},
        {"N E W,.a,0,1,-1,-1,-1,1,1,1,tab,undef\n", ""},
        {"a,.n,0,1,-1,-1,-1,1,1,1,tab,undef\n", ""},
        {"a, .N ,0,1,-1,-1,-1,1,1,1,tab,undef\n", ""},
        {"new,.a,0,1,-1,-1,-1,1,1,1,tab,undef\nb,.b,5,1,-1,-1,-1,1,1,1,tab,undef\n"
         "c,.n,0,1,-1,-1,-1,1,1,1,tab,undef\nnewer,.nn,0,1,-1,-1,-1,1,1,1,tab,undef\n",
         "b,.b,5,1,-1,-1,-1,1,1,1,tab,undef\r\nnewer,.nn,0,1,-1,-1,-1,1,1,1,tab,undef\r\n"},
        {"faulty,.f,x,1,-1,-1,-1,1,-1,1,pipe,undef\n",
         "faulty,.f,x,1,-1,-1,-1,1,-1,1,pipe,undef\r\n"},
        {"# remark\n\na,b,c,d,e,f,g,h\n1,2,3,4,5,6,7,8,9,10,11\n1,2,3,4,5,6,7,8,9,10,11,12,13\n",
         ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(tableWithFilter(c.table, row), c.kept + written) << c.table;
}

TEST(FilterTable, DeletingKeepsRowsOfEightFieldsAlone)
{
    const QString name = QStringLiteral("name");
    struct
    {
        const char* table;
        const char* kept;
    } const cases[] = {
        {"", ""},
        {"other,.o,0,1,-1,-1,-1,1,1,1,tab,undef\nname,.n,0,1,-1,-1,-1,1,1,1,tab,undef\n", ""},
        {"other,b,c,d,e,f,g,h\n", "other,b,c,d,e,f,g,h\r\n"},
        {"o t h e r , b,c,d,e,f,g,h", "other,b,c,d,e,f,g,h\r\n"},
        {"name,b,c,d,e,f,g,h\n", ""},
        {" Na Me ,b,c,d,e,f,g,h\n", ""},
        {"names,b,c,d,e,f,g,h\nnam,b,c,d,e,f,g,h\n",
         "names,b,c,d,e,f,g,h\r\nnam,b,c,d,e,f,g,h\r\n"},
        {"other,name,c,d,e,f,g,h\n", "other,name,c,d,e,f,g,h\r\n"},
        {",,,,,,,\n", ",,,,,,,\r\n"},
        {",,,,,,\n,,,,,,,,\n", ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(tableWithoutFilter(c.table, name), QByteArray(c.kept)) << c.table;
}

TEST(FilterTable, TheFileLiesInTheDataFolder)
{
    const DataFolder folder(QStringLiteral("größe 測深"));
    EXPECT_EQ(filterFolder(), folder.path(QStringLiteral("qrvdata/svp_abscoeff")));
    QByteArray table = "something";
    EXPECT_EQ(readFilterTable(table), FilterFile::Missing);
    EXPECT_TRUE(table.isEmpty());
    ASSERT_TRUE(writeFilterTable("a\r\n"));
    EXPECT_EQ(folder.read(tableFile), "a\r\n");
    EXPECT_EQ(readFilterTable(table), FilterFile::Read);
    EXPECT_EQ(table, "a\r\n");
    EXPECT_TRUE(writeFilterTable(""));
    EXPECT_EQ(readFilterTable(table), FilterFile::Read);
    EXPECT_TRUE(table.isEmpty());
}

TEST(FilterTable, WithoutItsFolderThereIsNoFile)
{
    QByteArray table;
    const DataFolder folder(QStringLiteral("data"), false);
    EXPECT_EQ(readFilterTable(table), FilterFile::NotOpened);
    EXPECT_FALSE(writeFilterTable("a"));
    EXPECT_FALSE(QDir(folder.path(QStringLiteral("qrvdata"))).exists());
    qunsetenv("ProgramData");
    EXPECT_EQ(filterFolder(), QString());
    EXPECT_EQ(readFilterTable(table), FilterFile::NotOpened);
    EXPECT_FALSE(writeFilterTable("a"));
}

TEST(FilterTable, WhatIsNoFileIsNotOpened)
{
    const DataFolder folder;
    const QString path = folder.path(tableFile);
    QByteArray table;
    QDir().mkpath(path);
    EXPECT_EQ(readFilterTable(table), FilterFile::NotOpened);
    EXPECT_FALSE(writeFilterTable("a"));
    QDir().rmdir(path);
#ifdef Q_OS_WIN
    GTEST_SKIP() << "but for pipes and links, which Windows has not or not for everybody";
#else
    ASSERT_EQ(mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    EXPECT_EQ(readFilterTable(table), FilterFile::NotOpened);
    QFile::remove(path);
    ASSERT_TRUE(QFile::link(folder.path(QStringLiteral("nowhere")), path));
    EXPECT_EQ(readFilterTable(table), FilterFile::NotOpened);
#endif
}

TEST(FilterTable, ATableHasABound)
{
    const DataFolder folder;
    QByteArray table;
    folder.write(tableFile, QByteArray(maxFilterTable, 'x'));
    EXPECT_EQ(readFilterTable(table), FilterFile::Read);
    EXPECT_EQ(table.size(), maxFilterTable);
    folder.write(tableFile, QByteArray(maxFilterTable + 1, 'x'));
    EXPECT_EQ(readFilterTable(table), FilterFile::NotOpened);
    EXPECT_TRUE(table.isEmpty());
    EXPECT_TRUE(writeFilterTable(QByteArray(maxFilterTable, 'y')));
    EXPECT_FALSE(writeFilterTable(QByteArray(maxFilterTable + 1, 'z')));
    EXPECT_EQ(folder.read(tableFile), QByteArray(maxFilterTable, 'y'));
}
