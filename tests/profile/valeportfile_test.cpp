#include "profile/importfilter.h"
#include "profile/valeportfile.h"
#include "tests/support/commalocale.h"
#include "tests/support/printers.h"

#include <QDateTime>
#include <QJsonArray>
#include <gtest/gtest.h>

using namespace profile;

namespace {

const QByteArray header = "Now: 20/06/2026 13:20:45\n"
                          "Battery Level: 1.5V\n"
                          "ExampleSVP: S/N 10003\n"
                          "Site info: 10 20 30\n"
                          "Calibrated: 11/02/2026\n"
                          "Latitude: 61.25\n"
                          "Mode: P 2.000\n"
                          "Tare: 10.1300\n"
                          "Pressure units: m\n";
const QByteArray rows = "00.200\t21.250\t0000.000\n"
                        "01.500\t20.500\t1480.250\n"
                        "-0.100\t20.250\t1480.500\n";
const QVector<float> threeLevels = {0,       0.2F,  0.2F,  0,        0, 0, 0,
                                    1480.25, 1.5F,  1.5F,  1480.25F, 0, 0, 0,
                                    1480.5F, -0.1F, -0.1F, 1480.5F,  0, 0, 0};

tagDecodeFmt valeportFormat()
{
    FilterRow row;
    findFilter(builtInFilters(), QStringLiteral("x.valeport"), row);
    return row.format;
}

ValeportFile valeport(const QByteArray& text)
{
    return readValeport(text, valeportFormat());
}

ValeportFile withLine(const char* from, const char* to)
{
    EXPECT_TRUE(header.contains(from));
    return valeport(QByteArray(header).replace(from, to) + rows);
}

QJsonObject reply(const QByteArray& text)
{
    return openValeportFile(text, valeportFormat(), QStringLiteral("sub/x.valeport")).reply;
}

} // namespace

TEST(ValeportFile, ReadsHeaderAndRows)
{
    const ValeportFile file = valeport(header + rows);
    EXPECT_EQ(file.record, threeLevels);
    EXPECT_EQ(file.time, QLatin1String("20260620132045"));
    EXPECT_EQ(file.latitude, QLatin1String("61.25"));
    EXPECT_EQ(file.longitude, QString()) << "the latitude often stands alone";
    EXPECT_EQ(file.decimals.depth, 3);
    EXPECT_EQ(file.decimals.speed, 3);
    EXPECT_EQ(file.decimals.temperature, 0) << "not read";
}

TEST(ValeportFile, TheHeaderMayHaveAnyNumberOfLines)
{
    EXPECT_EQ(withLine("Mode", "Longitude: 5.5\nMode").record, threeLevels) << "ten";
    EXPECT_EQ(withLine("Mode", "Longitude: 5.5\n\nA: 1\n\nMode").record, threeLevels);
    EXPECT_EQ(valeport("Now: 20/06/2026 13:20:45\n" + rows).record, threeLevels) << "one";
    EXPECT_EQ(valeport(rows).record, threeLevels);
    EXPECT_EQ(valeport(header + "\n\n" + rows).record, threeLevels);
}

TEST(ValeportFile, NoHeaderLineIsALevel)
{
    // Lines that would be levels if their separator were taken for that of the rows.
    for (const char* line : {"10 casts 2016", "5\tx\t1500", "Site: 1\t2\t3", "Tare: 1 2 3"}) {
        const ValeportFile file = valeport(header + line + "\n" + rows);
        EXPECT_EQ(file.record, threeLevels) << line;
    }
}

TEST(ValeportFile, NumbersInFrontOfAHeaderLineAreNoLevels)
{
    // Tables of an instrument's settings, in the lines to skip and behind them, with the separator
    // of the rows and with others.
    const QByteArray tail = header.mid(header.indexOf("Site"));
    const QByteArray head = header.left(header.size() - tail.size());
    for (const char* table :
         {"15;0.0;0.0;1.0\n15;0.0;0.0;1.0\n", "1 2 3\n", "1,2,3\n1,2,3\n", "1\t2\t3\n",
          "15\t0.0\t0.0\n15\t0.0\t0.0\n", "1 2 3\n\n1;2;3\n4\t5\t6\n"}) {
        EXPECT_EQ(valeport(head + table + tail + rows).record, threeLevels) << table;
        EXPECT_EQ(valeport(header + table + "Mode: trip\n" + rows).record, threeLevels) << table;
        EXPECT_EQ(valeport(header + table + "Density :\t1025\n" + rows).record, threeLevels)
            << table;
        EXPECT_EQ(valeport(head + table + tail + QByteArray(rows).replace("\t", ";")).record,
                  threeLevels)
            << table;
        // Without rows there are no levels at all.
        EXPECT_EQ(valeport(head + table + tail).record, QVector<float>()) << table;
    }
}

TEST(ValeportFile, AmongTheLinesToSkipOnlyTheDataThemselvesAreLevels)
{
    // A line of words ends a header there, without a colon as well.
    EXPECT_EQ(valeport("Now: x\n1\t2\t3\nnames\tand\tunits\n" + rows).record, threeLevels);
    EXPECT_EQ(valeport("1 2 3\n\n" + rows).record, threeLevels);
    // A row with a gap is none of words.
    const QByteArray gap = "00.100\t---\n\t21.0\t1480.0\n";
    EXPECT_EQ(valeport(rows + gap).record, threeLevels);
    EXPECT_EQ(valeport(rows + gap + rows).record, threeLevels + threeLevels);
    // Another separator has to show behind them: lines 9 and 10.
    const QByteArray semicolons = QByteArray(rows).replace("\t", ";");
    const QByteArray eight = header.left(header.indexOf("Pressure"));
    const QByteArray six = header.left(header.indexOf("Mode"));
    EXPECT_EQ(valeport(six + semicolons).record, QVector<float>());
    EXPECT_EQ(valeport(eight + semicolons).record, threeLevels);
    EXPECT_EQ(valeport(six + "A: 1\n" + semicolons).record, threeLevels);
}

TEST(ValeportFile, TwentyRowsAreMoreThanAHeaderHolds)
{
    const auto levels = [](int count) {
        QByteArray text = header;
        for (int i = 0; i < count; ++i)
            text += QByteArray::number(i) + "\t8.5\t1500.5\n";
        return valeport(text + "Remark: second cast\n" + rows).record.size() / recordSlots;
    };
    EXPECT_EQ(levels(19), 3);
    EXPECT_EQ(levels(20), 23);
    EXPECT_EQ(levels(21), 24);
}

TEST(ValeportFile, AColumnFileOfAnotherKindIsRefused)
{
    // Its rows begin with a date, and the numbers of its header are none.
    QByteArray text = "File :\t7\nModel Name :\tX\nSite :\tY\nSerial No. :\t1\nModules :\t3\n"
                      "Addresses :\t1;2;3;\nParameters :\t1;2;1;\nCalibrations :\nMode :\tZ\n";
    text += QByteArray("7;0.0e+00;0.0e+00;1.0e+00\n").repeated(4);
    text += "Gain :\t1000;0;0\nDate / Time\tSOUND VELOCITY;M/SEC\tPRESSURE;DBAR\n";
    text += QByteArray("20/06/2026 13:20:45\t1480.5\t1.25\n").repeated(5);
    EXPECT_EQ(valeport(text).record, QVector<float>());
}

TEST(ValeportFile, TheUsualSeparatorGoesFirst)
{
    // The first row behind the header reads with blanks, the rows with tabs.
    EXPECT_EQ(valeport(header + "1 2 3\n" + rows).record, threeLevels);
    EXPECT_EQ(valeport(header + "1;2;3\n" + rows).record, threeLevels);
}

TEST(ValeportFile, TheSeparatorIsThatOfTheRows)
{
    for (const char* separator : {"\t", " ", "  ", ";", ",", " , ", "; "}) {
        EXPECT_EQ(valeport(header + QByteArray(rows).replace("\t", separator)).record, threeLevels)
            << separator;
    }
}

TEST(ValeportFile, TheTimeIsThatOfItsLine)
{
    struct
    {
        const char* line;
        const char* time;
    } const cases[] = {
        {"Now: 20/06/2026 13:20:45", "20260620132045"},
        {"Now:20/06/2026  13:20:45 ", "20260620132045"},
        {"  Now: 1/6/2026 3:02:05", "20260601030205"},
        {"Now: 06/20/2026 13:20:45", ""},
        {"Now: 20/06/26 13:20:45", ""},
        {"Now: 20-06-2026 13:20:45", ""},
        {"Now: 20/06/2026 25:20:45", ""},
        {"Now: 20/06/2026 13:20", ""},
        {"Now: 20/06/2026", ""},
        {"Now: 31/02/2026 13:20:45", ""},
        {"Now: 2026/06/20 13:20:45", ""},
        {"Now: 020/06/2026 13:20:45", ""},
        {"Now: -1/06/2026 13:20:45", ""},
        {"Now:", ""},
        {"now: 20/06/2026 13:20:45", ""},
        {"Known: 20/06/2026 13:20:45", ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(withLine("Now: 20/06/2026 13:20:45", c.line).time, QLatin1String(c.time))
            << c.line;
}

TEST(ValeportFile, ThePositionStandsOnOneLineOrTwo)
{
    struct
    {
        const char* lines;
        const char* latitude;
        const char* longitude;
    } const cases[] = {
        {"Latitude: 61.25\nLongitude: -5.5", "61.25", "-5.5"},
        {"Latitude: 61.25 Longitude: -5.5", "61.25", "-5.5"},
        {"Latitude: 61.25N, Longitude: 5.5W", "61.25", "-5.5"},
        {"Latitude: 61.25 N ; Longitude: 5.5 W;", "61.25", "-5.5"},
        {"Latitude: 61.25,Longitude: -5.5", "61.25", "-5.5"},
        {"Longitude: -5.5, Latitude: 61.25", "61.25", "-5.5"},
        {"Latitude: 61.25,N, Longitude: 5.5,W", "61.25", "-5.5"},
        {"Latitude: 61-15-00 N\nLongitude: 5-30-00 W", "61.25", "-5.5"},
        {"Latitude: 61.25,, Longitude: 5.5", "", "5.5"},
        {"Latitude: 61,25, Longitude: 5.5", "", "5.5"},
        {"Latitude: 61 15 0 N\tLongitude: 5 30 0 W", "61.25", "-5.5"},
        {"Latitude: -12 30 36 S\nLongitude: 130 30 36 E", "-12.51", "130.51"},
        {"Latitude: 12 30 36 S", "-12.51", ""},
        {"Latitude: -0 30 0", "-0.5", ""},
        {"Longitude: 5.5", "", "5.5"},
        {"Latitude: 999\nLongitude: 999", "", ""},
        {"Latitude:\nLongitude:", "", ""},
        {"Latitude: ?", "", ""},
        {"Site Latitude: 5", "", ""},
    };
    for (const auto& c : cases) {
        const ValeportFile file = withLine("Latitude: 61.25", c.lines);
        EXPECT_EQ(file.latitude, QLatin1String(c.latitude)) << c.lines;
        EXPECT_EQ(file.longitude, QLatin1String(c.longitude)) << c.lines;
        EXPECT_EQ(file.record, threeLevels) << c.lines;
    }
}

TEST(ValeportFile, TheReplyHoldsTheTimeAsANumber)
{
    const QJsonObject object = reply(header + rows);
    const double moment = 1781961645000.0; // date -u -d "2026-06-20 13:20:45" +%s
    EXPECT_EQ(object.value(QLatin1String("hsvp_filetime")), QJsonValue(moment));
    EXPECT_EQ(object.value(QLatin1String("hsvp_filevalidfrom")), QJsonValue(moment - 86400000));
    EXPECT_EQ(object.value(QLatin1String("hsvp_filevalidto")), QJsonValue(moment + 86400000));
    EXPECT_EQ(object.value(QLatin1String("hsvp_filetype")),
              QJsonValue(QLatin1String("SoundVelocity")));
    EXPECT_EQ(object.value(QLatin1String("hsvp_fileversion")), QJsonValue(1.0));
    EXPECT_EQ(object.value(QLatin1String("hsvp_fileid")), QJsonValue(0));
    EXPECT_EQ(object.value(QLatin1String("hsvp_fileradii")), QJsonValue(0));
    EXPECT_EQ(object.value(QLatin1String("hsvp_filesource")),
              QJsonValue(QLatin1String("x.valeport")));
    EXPECT_EQ(object.value(QLatin1String("hsvp_filehistory")), QJsonValue(QLatin1String("NA")));
    EXPECT_EQ(object.value(QLatin1String("hsvp_filesamp")), QJsonValue(3));
    EXPECT_EQ(object.value(QLatin1String("hsvp_filelat")), QJsonValue(QLatin1String("61.25")));
    EXPECT_FALSE(object.contains(QLatin1String("hsvp_filelon")));
    EXPECT_FALSE(object.contains(QLatin1String("hsvp_filecomment")));
}

TEST(ValeportFile, WithoutATimeTheCurrentOneIsATextOfDigits)
{
    const QString form = QStringLiteral("yyyyMMddHHmmss");
    const QString before = QDateTime::currentDateTimeUtc().toString(form);
    const QString time = reply(rows).value(QLatin1String("hsvp_filetime")).toString();
    EXPECT_EQ(time.size(), 14);
    EXPECT_GE(time, before);
    EXPECT_LE(time, QDateTime::currentDateTimeUtc().toString(form));
}

TEST(ValeportFile, ATimeThatIsNotUnderstoodIsTold)
{
    const auto comment = [](const char* line, const char* units) {
        const QByteArray text =
            QByteArray(header).replace("Now: 20/06/2026 13:20:45", line).replace("units: m", units);
        return reply(text + rows).value(QLatin1String("hsvp_filecomment")).toString();
    };
    const QString sentence =
        QStringLiteral("The time in the file is not understood: it is the current one.");
    EXPECT_EQ(comment("Now: 2026-06-20 13:20:45", "units: m"), sentence);
    EXPECT_EQ(comment("Now: 2026-06-20 13:20:45", "units: dBar"),
              QLatin1String("Depths are pressures in dBar as in the file. ") + sentence);
    EXPECT_EQ(comment("Now: never\nNow:", "units: m"), sentence);
    for (const char* line :
         {"Now:", "Mode: x", "Now: 20/06/2026 13:20:45", "Now: never\nNow: 20/06/2026 13:20:45"})
        EXPECT_EQ(comment(line, "units: m"), QString()) << line;
}

TEST(ValeportFile, PressuresInTheFirstColumnAreTold)
{
    const auto comment = [](const char* units) {
        return reply(QByteArray(header).replace("units: m", units) + rows)
            .value(QLatin1String("hsvp_filecomment"))
            .toString();
    };
    EXPECT_EQ(comment("units: dBar"),
              QLatin1String("Depths are pressures in dBar as in the file."));
    EXPECT_EQ(comment("units: M"), QString());
    EXPECT_EQ(comment("units:"), QString());
}

TEST(ValeportFile, TooFewLevelsAreRefused)
{
    const auto reason = [](const QByteArray& text) {
        return openValeportFile(text, valeportFormat(), QStringLiteral("x.valeport")).reason;
    };
    EXPECT_EQ(reason(header + "1\t2\t1500\n"), QLatin1String("Too few points in file."));
    EXPECT_EQ(reason(header + "1\t2\t1500\n2\t2\t1500\n"), QString());
    EXPECT_EQ(reason(header + "1\t2\n2\t2\n3\t2\n"), QLatin1String("Too few points in file."));
    EXPECT_EQ(reason(""), QLatin1String("Too few points in file."));
    EXPECT_EQ(reason(QByteArray(1000, '\0')), QLatin1String("Too few points in file."));
}

TEST(ValeportFile, EncodingsLineEndsAndLocalesChangeNothing)
{
    const CommaLocale comma;
    const QByteArray text = header + rows;
    const QString wide = QChar(QChar::ByteOrderMark) + QString::fromLatin1(text);
    for (const QByteArray& variant :
         {QByteArray(text).replace("\n", "\r\n"), QByteArray(text).replace("\n", "\r\r\n"),
          QByteArray(text).replace("\n", "\r"), "\xEF\xBB\xBF" + text,
          QByteArray(text).replace("info:", "info: M\xE5l"),
          QByteArray(reinterpret_cast<const char*>(wide.utf16()), wide.size() * 2)})
        EXPECT_EQ(reply(variant), reply(text)) << variant.toStdString();
}

TEST(ValeportFile, SurvivesBeingCutAtEachByte)
{
    const QByteArray text = header + rows;
    for (int size = 0; size <= text.size(); ++size)
        EXPECT_LE(valeport(text.left(size)).record.size(), 3 * recordSlots);
}

TEST(ValeportFile, FiftyThousandLevelsComeIn)
{
    QByteArray text = header;
    for (int i = 0; i < 50000; ++i)
        text += QByteArray::number(i * 0.1, 'f', 1) + "\t8.5\t1500.5\n";
    EXPECT_EQ(valeport(text).record.size(), 50000 * recordSlots);
}
