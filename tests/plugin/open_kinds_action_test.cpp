#include "tests/places.h"
#include "tests/support/commalocale.h"
#include "tests/support/enginefixture.h"

#include <QDir>
#include <QJsonArray>
#include <gtest/gtest.h>

namespace {

struct Example
{
    const char* name;
    int levels;
    const char* kind;
    double time; ///< ms since 1970
    bool isTimeNumber;
    const char* latitude;
    const char* longitude;
    const char* comment; ///< empty: none
    // The seven slots of a level; what is in the file from its text, the rest computed apart.
    int level;
    QJsonArray values;
};

const Example examples[] = {
    {"shelf-slope.vp2",
     31,
     "01",
     1781768530000.0,
     false,
     "60.4125",
     "4.3070",
     "Valeport EXAMPLE SVP vp2 format.",
     1,
     {1499.810, 4.770, 4.770, 1499.810, 13.469, 33.302, 0}},
    {"shelf-slope.vp2",
     31,
     "01",
     1781768530000.0,
     false,
     "60.4125",
     "4.3070",
     "Valeport EXAMPLE SVP vp2 format.",
     30,
     {1481.309, 121.350, 121.350, 1481.309, 7.200, 34.900, 0}},
    {"harbour-pressure.aml",
     31,
     "01",
     1781867130000.0,
     false,
     "60.39420",
     "5.26180",
     "AML Example-3 E10002 aml format.",
     0,
     {0, -0.059444, -0.0006, 0, 14.3, 0, 0}},
    {"harbour-pressure.aml",
     31,
     "01",
     1781867130000.0,
     false,
     "60.39420",
     "5.26180",
     "AML Example-3 E10002 aml format.",
     1,
     {1484.318, 0.396292, 0.004, 1484.318, 11.139, 27.067378, 0}},
    {"fjord-winch.valeport",
     26,
     "SoundVelocity",
     1781961645000.0,
     true,
     "61.095",
     "5.30666667",
     "",
     0,
     {1489.271, 0.2, 0.2, 1489.271, 0, 0, 0}},
    {"fjord-winch.valeport",
     26,
     "SoundVelocity",
     1781961645000.0,
     true,
     "61.095",
     "5.30666667",
     "",
     25,
     {1480.729, 77.7, 77.7, 1480.729, 0, 0, 0}},
};

QByteArray contentOf(const char* name)
{
    return bytesOf(QDir(QStringLiteral(SVP_EXAMPLES_DIR)).filePath(QLatin1String(name)));
}

QJsonObject openFile(Engine& engine, const QString& name, const QByteArray& content)
{
    engine.folder.writeProfile(name, content);
    const QString kind = name.mid(name.lastIndexOf(QLatin1Char('.')) + 1);
    return engine.request(QStringLiteral("SVP_OpenSVP"), QStringLiteral("[") + name +
                                                             QLatin1Char(',') + kind +
                                                             QStringLiteral("]"));
}

void expectExample(const QJsonObject& reply, const Example& example)
{
    ASSERT_EQ(outcome(reply), QLatin1String("SUCCESS"));
    const auto value = [&reply](const char* key) { return reply.value(QLatin1String(key)); };
    EXPECT_EQ(value("hsvp_filetype").toString(), QLatin1String(example.kind));
    EXPECT_EQ(value("hsvp_filesamp").toInt(), example.levels);
    EXPECT_EQ(value("hsvp_filetime").isDouble(), example.isTimeNumber);
    EXPECT_EQ(value("hsvp_filevalidfrom").toDouble(), example.time - 86400000.0);
    EXPECT_EQ(value("hsvp_filevalidto").toDouble(), example.time + 86400000.0);
    EXPECT_EQ(value("hsvp_filelat").toString(), QLatin1String(example.latitude));
    EXPECT_EQ(value("hsvp_filelon").toString(), QLatin1String(example.longitude));
    EXPECT_EQ(value("hsvp_filecomment").toString(), QLatin1String(example.comment));
    int slot = 0;
    for (const char* key : {"svp_Speed", "svp_Depth", "svp_Depth_CTD", "svp_Speed_CTD", "svp_Temp",
                            "svp_Sal", "svp_AbsCoef"}) {
        const QJsonArray array = value(key).toArray();
        ASSERT_EQ(array.size(), example.levels) << key;
        // A float has seven digits.
        EXPECT_NEAR(array.at(example.level).toDouble(), example.values.at(slot).toDouble(), 1e-4)
            << key;
        ++slot;
    }
}

} // namespace

TEST(OpenKinds, EveryExampleOpensWithEveryLineEnd)
{
    const CommaLocale comma;
    Engine engine;
    for (const Example& example : examples) {
        const QByteArray content = contentOf(example.name);
        ASSERT_FALSE(content.isEmpty()) << example.name;
        for (const char* end : {"\r\n", "\n", "\r\r\n"}) {
            SCOPED_TRACE(example.name);
            expectExample(openFile(engine, QLatin1String(example.name),
                                   QByteArray(content).replace("\r\n", end)),
                          example);
        }
    }
}

TEST(OpenKinds, AnUpperCaseSuffixAndAnyEncodingReadAlike)
{
    Engine engine;
    for (const Example& example : examples) {
        SCOPED_TRACE(example.name);
        const QString upper = QString(QLatin1String(example.name)).toUpper();
        const QByteArray content = contentOf(example.name);
        const QString wide = QChar(QChar::ByteOrderMark) + QString::fromUtf8(content);
        expectExample(openFile(engine, upper, content), example);
        expectExample(openFile(engine, upper, "\xEF\xBB\xBF" + content), example);
        expectExample(
            openFile(engine, upper,
                     QByteArray(reinterpret_cast<const char*>(wide.utf16()), wide.size() * 2)),
            example);
    }
}

TEST(OpenKinds, RefusalsCarryTheirReason)
{
    Engine engine;
    struct
    {
        const char* name;
        QByteArray content;
        const char* outcome;
    } const cases[] = {
        {"empty.vp2", "", "Valeport vp2 decode problem."},
        {"junk.vp2", QByteArray(5000, '\xA5'), "Valeport vp2 decode problem."},
        {"other.vp2", contentOf("harbour-pressure.aml"), "Valeport vp2 decode problem."},
        {"empty.aml", "", "AML aml format decode problem."},
        {"other.aml", contentOf("shelf-slope.vp2"), "AML aml format decode problem."},
        {"other.amlx", contentOf("shelf-slope.vp2"), "AML aml format decode problem."},
        {"empty.valeport", "", "Too few points in file."},
        {"rows.vp2", "[COLUMNS]\nDepth\nSound Velocity\n[DATA]\n1\t1500\n",
         "Too few points in file."},
        {"col.xyz", contentOf("buoy-logger.col"), "Filter not found."},
    };
    for (const auto& c : cases) {
        const QJsonObject reply = openFile(engine, QLatin1String(c.name), c.content);
        EXPECT_EQ(outcome(reply), QLatin1String(c.outcome)) << c.name;
        EXPECT_EQ(reply.size(), 3) << "a refusal carries no profile";
        EXPECT_EQ(engine.packets().size(), 1);
    }
    EXPECT_EQ(
        outcome(engine.request(QStringLiteral("SVP_OpenSVP"), QStringLiteral("[no.vp2,vp2]"))),
        QLatin1String("File does not exist or cannot be opened for reading"));
}
