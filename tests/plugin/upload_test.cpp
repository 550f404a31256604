#include "plugin/upload.h"
#include "tests/support/enginefixture.h"

#include <QDir>
#include <gtest/gtest.h>

namespace {

const QByteArray okResponse =
    "HTTP/1.0 200 Ok\r\nContent-Type: text/html; charset=\"ISO-8859-1\"\r\n\r\n";
const QByteArray errorResponse = "HTTP/1.0 500 Internal Server Error\r\nContent-Type: text/html; "
                                 "charset=\"ISO-8859-1\"\r\n\r\n";

QByteArray upload(const QByteArray& fileName, const QByteArray& content, int lengthError = 0)
{
    const QByteArray body =
        "--bound\r\nContent-Disposition: form-data; name=\"file\"; filename=\"" + fileName +
        "\"\r\nContent-Type: application/octet-stream\r\n\r\n" + content + "\r\n--bound--\r\n";
    return "POST /SVP_WebInterface HTTP/1.1\r\nHost: localhost\r\nContent-Type: "
           "multipart/form-data; "
           "boundary=bound\r\nContent-Length: " +
           QByteArray::number(body.size() + lengthError) + "\r\n\r\n" + body;
}

/// What a POST is answered, with the packets that it brings.
class Poster
{
  public:
    QByteArray post(const QByteArray& request)
    {
        m_answers.clear();
        m_packets.clear();
        engine.plugin.requestPost(42, request);
        EXPECT_EQ(m_answers.size(), 1);
        EXPECT_EQ(m_packets.size(), 1);
        EXPECT_EQ(m_answers.at(0).at(0).toInt(), 42);
        return m_answers.at(0).at(1).toByteArray();
    }

    Engine engine;

  private:
    QSignalSpy m_answers{&engine.plugin, &CSVP_WebInterface::sendPostResponse};
    QSignalSpy m_packets{&engine.plugin, &CSVP_WebInterface::sendWSPacket};
};

} // namespace

TEST(Upload, TextsAreCutBetweenTheirMarks)
{
    struct
    {
        const char* start;
        const char* end;
        const char* text;
    } const cases[] = {
        {"b", "d", "c"},   {"", "c", "ab"},   {"c", "", "de"}, {"x", "d", ""},
        {"b", "x", "cde"}, {"", "", "abcde"}, {"e", "a", ""},  {"ab", "e", "cd"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(textBetween("abcde", c.start, c.end), c.text) << c.start << ' ' << c.end;
}

TEST(Upload, TheFirstPartIsTakenOut)
{
    QString name;
    EXPECT_EQ(extractUpload(upload("cast.asvp", "a\r\nb"), name), "a\r\nb");
    EXPECT_EQ(name, QLatin1String("cast.asvp"));
    const QByteArray binary = QByteArray("\0\xFF\r\n--boun\r\n\r\n", 15);
    EXPECT_EQ(extractUpload(upload("m\xC3\xA5l.asvp", binary), name), binary);
    EXPECT_EQ(name, QStringLiteral("mål.asvp"));
    EXPECT_EQ(extractUpload(upload("m\xE5l.asvp", "x"), name), "x");
    EXPECT_EQ(name, QStringLiteral("mål.asvp"));
    EXPECT_EQ(extractUpload(upload("c", "x").replace("Content-Length: ", "Content-Length:"), name),
              "x");
}

TEST(Upload, AWrongLengthGivesNothing)
{
    for (const int error : {-1, 1, 1000}) {
        QString name = QStringLiteral("before");
        EXPECT_EQ(extractUpload(upload("cast.asvp", "abcd", error), name), QByteArray());
        EXPECT_EQ(name, QLatin1String("before"));
        EXPECT_EQ(testlog::lines().last(), QLatin1String("failed on body size"));
    }
    QString name;
    for (const char* length : {"Content-Length: x", "Content-Length: 99999999999", "Length: 5"})
        EXPECT_EQ(
            extractUpload(
                upload("c", "x").replace("Content-Length: ", QByteArray(length) + "\r\nX: "), name),
            QByteArray())
            << length;
}

TEST(Upload, AnyCutIsSurvived)
{
    const QByteArray whole = upload("cast.asvp", "a\r\nb");
    for (int size = 0; size <= whole.size(); ++size) {
        QString name;
        EXPECT_EQ(extractUpload(whole.left(size), name), size == whole.size() ? "a\r\nb" : "")
            << size;
    }
    QString name;
    extractUpload("Content-Length: 0\r\n\r\n", name);
    EXPECT_TRUE(name.isEmpty());
}

TEST(Upload, AGoodCastIsStoredAndOpened)
{
    Poster poster;
    const QByteArray cast = asvp({"0 1500", "1 1500"});
    struct
    {
        const char* name;
        const char* stored;
    } const cases[] = {{"cast.asvp", "cast.asvp"},
                       {"C:\\casts\\b.asvp", "b.asvp"},
                       {"../../c.asvp", "c.asvp"},
                       {"m\xC3\xA5l \xE6\xB8\xAC.asvp", "m\xC3\xA5l \xE6\xB8\xAC.asvp"},
                       {"a[b],asvp].asvp", "a[b],asvp].asvp"}};
    for (const auto& c : cases) {
        EXPECT_EQ(poster.post(upload(c.name, cast)), okResponse) << c.name;
        EXPECT_EQ(bytesOf(poster.engine.folder.profile(QString::fromUtf8(c.stored))), cast)
            << c.name;
    }
}

TEST(Upload, WhatItReplacesIsKept)
{
    Poster poster;
    poster.engine.folder.writeProfile(QStringLiteral("cast.asvp"), "old");
    EXPECT_EQ(poster.post(upload("cast.asvp", asvp({"0 1500", "1 1500"}))), okResponse);
    const QDir folder(poster.engine.folder.profile(QString()));
    const QStringList kept = folder.entryList({QStringLiteral("cast_bck_*.asvp")}, QDir::Files);
    ASSERT_EQ(kept.size(), 1);
    EXPECT_EQ(bytesOf(folder.filePath(kept.first())), "old");
}

TEST(Upload, ARefusalCarriesTheReasonOfThisOpen)
{
    Poster poster;
    const QByteArray noFile = "File does not exist or cannot be opened for reading";
    EXPECT_EQ(poster.post(upload("bad.asvp", "no cast")),
              errorResponse + "Header not correct in file.");
    EXPECT_EQ(bytesOf(poster.engine.folder.profile(QStringLiteral("bad.asvp"))), "no cast")
        << "stays even when it cannot be decoded";
    EXPECT_EQ(poster.post(upload("x.txt", "x")), errorResponse + "Filter not found.");
    EXPECT_EQ(poster.post(upload("cast.asvp", "x", 1)), errorResponse + noFile);
    EXPECT_EQ(poster.post(upload("", "x")), errorResponse + noFile);
    EXPECT_EQ(poster.post(upload("..", "x")), errorResponse + noFile);
    EXPECT_EQ(poster.post(upload("none.asvp", "")), errorResponse + noFile);
    EXPECT_EQ(poster.post(""), errorResponse + noFile);
    EXPECT_EQ(poster.post("junk"), errorResponse + noFile);
    QDir().mkpath(poster.engine.folder.profile(QStringLiteral("folder.asvp")));
    EXPECT_EQ(poster.post(upload("folder.asvp", "x")), errorResponse + "Error saving file.");
    EXPECT_EQ(poster.post(upload("good.asvp", asvp({"0 1500", "1 1500"}))), okResponse);
    EXPECT_TRUE(poster.engine.plugin.lastErrorText().isEmpty());
}
