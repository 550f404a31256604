#include "profile/textfile.h"

#include <QStringList>
#include <QTextCodec>
#include <gtest/gtest.h>

using namespace profile;

namespace {

QStringList linesOf(std::string_view text)
{
    QStringList lines;
    LineReader reader(text);
    std::string_view line;
    while (reader.next(line)) {
        lines.append(decodedText(line));
        EXPECT_EQ(reader.number(), lines.size());
    }
    return lines;
}

} // namespace

TEST(TextFile, EveryLineEndCountsOnce)
{
    const QStringList three = {QStringLiteral("a"), QString(QLatin1String("")),
                               QStringLiteral("b")};
    EXPECT_EQ(linesOf("a\n\nb\n"), three);
    EXPECT_EQ(linesOf("a\r\n\r\nb\r\n"), three);
    EXPECT_EQ(linesOf("a\r\r\n\r\r\nb\r\r\n"), three);
    EXPECT_EQ(linesOf("a\r\rb\r"), three);
    EXPECT_EQ(linesOf("a\r\r\nb"), (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
    EXPECT_EQ(linesOf(""), QStringList());
    EXPECT_EQ(linesOf("\n"), QStringList{QString(QLatin1String(""))});
    EXPECT_EQ(linesOf("a\rb\nc\r\rd\re"),
              (QStringList{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c"),
                           QString(QLatin1String("")), QStringLiteral("d"), QStringLiteral("e")}));
    EXPECT_EQ(linesOf("a\r\r\r\nb\r\r"),
              (QStringList{QStringLiteral("a"), QString(QLatin1String("")), QStringLiteral("b"),
                           QString(QLatin1String(""))}));
}

TEST(TextFile, ManyLinesOfOneKindTakeTheirTimeOnce)
{
    // Searching each of these lines to the end of the text for another line end would not finish.
    for (const char* end : {"\r", "\n"}) {
        const std::string text = std::string(QByteArray(end).repeated(2000000).toStdString()) + "x";
        LineReader reader(text);
        std::string_view line;
        while (reader.next(line)) {
        }
        EXPECT_EQ(reader.number(), 2000001);
        EXPECT_EQ(line, "x");
    }
}

TEST(TextFile, EncodingsComeOutAsUtf8)
{
    const QString text = QStringLiteral("Ærø 1500\n");
    EXPECT_EQ(normalisedText(text.toUtf8()), text.toUtf8());
    EXPECT_EQ(normalisedText("\xEF\xBB\xBF" + text.toUtf8()), text.toUtf8());
    for (const char* name : {"UTF-16LE", "UTF-16BE"}) {
        QTextCodec* const codec = QTextCodec::codecForName(name);
        QTextEncoder* const encoder = codec->makeEncoder(QTextCodec::IgnoreHeader);
        const QByteArray mark = name[6] == 'L' ? QByteArray("\xFF\xFE") : QByteArray("\xFE\xFF");
        EXPECT_EQ(normalisedText(mark + encoder->fromUnicode(text)), text.toUtf8()) << name;
        delete encoder;
    }
    EXPECT_EQ(normalisedText("\xFF\xFE"), QByteArray());
    EXPECT_EQ(decodedText("\xC6r\xF8"), QStringLiteral("Ærø"));
    EXPECT_EQ(decodedText("\xC3\x86"), QStringLiteral("Æ"));
    EXPECT_EQ(decodedText("\xC3"), QString(QChar(0xC3)));
}

TEST(TextFile, TextIsTrimmed)
{
    EXPECT_EQ(trimmedText(" \t a b \r\n"), "a b");
    EXPECT_EQ(trimmedText(" \t "), "");
    EXPECT_EQ(trimmedText(""), "");
}
