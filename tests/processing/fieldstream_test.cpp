#include "processing/fieldstream.h"
#include "tests/support/textstream.h"

#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#ifdef Q_OS_WIN
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#endif

using processing::FieldStream;
using End = FieldStream::End;

namespace {

// All fields, "," behind each that ends with a comma and "|" behind each that ends a line.
std::string fieldsOf(const std::string& text, std::size_t skippedLines = 0)
{
    const TextStream stream(text);
    FieldStream fields(stream.get());
    for (std::size_t i = 0; i < skippedLines; ++i)
        fields.skipLine();
    std::string all;
    while (!fields.isAtEnd()) {
        End end = End::Comma;
        all += fields.take(end);
        all += end == End::Comma ? ',' : '|';
    }
    EXPECT_FALSE(fields.hasFailed());
    return all;
}

double numberOf(const std::string& text)
{
    const TextStream stream(text + ",next");
    FieldStream fields(stream.get());
    End end = End::Line;
    const double value = fields.takeNumber(end);
    EXPECT_EQ(end, End::Comma) << text;
    EXPECT_EQ(fields.take(end), "next") << text;
    EXPECT_EQ(end, End::Line) << text;
    return value;
}

} // namespace

TEST(FieldStream, TakesFieldsAndLines)
{
    EXPECT_EQ(fieldsOf(""), "");
    EXPECT_EQ(fieldsOf("a"), "a|");
    EXPECT_EQ(fieldsOf("a,b\nc,,d\n"), "a,b|c,,d|");
    EXPECT_EQ(fieldsOf(",\n"), ",|");
    EXPECT_EQ(fieldsOf("a,"), "a,");
    EXPECT_EQ(fieldsOf("\n\n"), "||");
    EXPECT_EQ(fieldsOf(" a , b "), " a , b |");
    EXPECT_EQ(fieldsOf(std::string("a\0b,c", 5)), std::string("a\0b,c|", 6));
}

TEST(FieldStream, KnowsTheEndsOfLines)
{
    EXPECT_EQ(fieldsOf("a\nb\r\nc\r\r\nd\re"), "a|b|c|d|e|");
    EXPECT_EQ(fieldsOf("a\r\rb"), "a||b|");
    EXPECT_EQ(fieldsOf("a\n\rb"), "a||b|");
    EXPECT_EQ(fieldsOf("a\r\n\r\nb"), "a||b|");
    EXPECT_EQ(fieldsOf("a\r"), "a|");
    EXPECT_EQ(fieldsOf("a\r\r"), "a||");
    EXPECT_EQ(fieldsOf("a\r\r\n"), "a|");
    EXPECT_EQ(fieldsOf("a\nb\r\nc\r\r\nd\re", 3), "d|e|");
    EXPECT_EQ(fieldsOf("a", 3), "");
}

TEST(FieldStream, NumbersAreReadWholeOrNotAtAll)
{
    EXPECT_EQ(numberOf("12.25"), 12.25);
    EXPECT_EQ(numberOf("-0.5"), -0.5);
    EXPECT_EQ(numberOf("+0.5"), 0.5);
    EXPECT_EQ(numberOf(" 35.5\t"), 35.5);
    EXPECT_EQ(numberOf("1e2"), 100.0);
    EXPECT_EQ(numberOf("007"), 7.0);
    EXPECT_EQ(numberOf("5."), 5.0);
    EXPECT_EQ(numberOf(".5"), 0.5);
    EXPECT_EQ(numberOf("1" + std::string(400, '0') + "e-400"), 1.0);
    for (const char* const odd :
         {"", " ", "x", "12x", "1 2", "1;2", "nan", "-nan", "inf", "+inf", "1e999", "-1e999",
          "1e-999", "--1", "+-1", "++1", "+", "-", "0x10"})
        EXPECT_TRUE(std::isnan(numberOf(odd))) << odd;
    // Longer than any number, within a block and beyond one.
    EXPECT_EQ(numberOf(std::string(999, '0') + "1"), 1.0);
    EXPECT_TRUE(std::isnan(numberOf(std::string(1000, '0') + "1")));
    EXPECT_TRUE(std::isnan(numberOf(std::string(600000, '1'))));
}

// The quick way for plain numbers gives what the standard library does, digit for digit.
TEST(FieldStream, NumbersAreThoseOfTheStandardLibrary)
{
    std::vector<std::string> texts = {"0",     "-0",   "-0.0", "0.1",  "-.5",  "9007199254740993",
                                      "35.10", "1e-3", "00.7", "-12.", "1.5E2"};
    std::uint64_t random = 1;
    for (int i = 0; i < 20000; ++i) {
        random = random * 6364136223846793005U + 1442695040888963407U;
        const std::string digits = std::to_string(random >> 11U);
        const std::size_t size = 1 + (random >> 3U) % digits.size();
        std::string text = digits.substr(0, size);
        text.insert((random >> 7U) % (size + 1), ".");
        texts.push_back((i % 2 == 0 ? "-" : "") + text);
    }
    std::string all;
    for (const std::string& text : texts)
        all += text + ',';
    const TextStream stream(all + '0');
    FieldStream fields(stream.get());
    for (const std::string& text : texts) {
        double expected = 7.0;
        std::from_chars(text.data(), text.data() + text.size(), expected);
        End end = End::Line;
        const double value = fields.takeNumber(end);
        EXPECT_EQ(value, expected) << text;
        EXPECT_EQ(std::signbit(value), std::signbit(expected)) << text;
        EXPECT_EQ(end, End::Comma) << text;
    }
}

// Blocks of 256 KiB end at each place of the text once.
TEST(FieldStream, BlocksMayEndAnywhere)
{
    const std::string text = "12.345,-6\r\n1, 2\r\r\n3\r4,,5\n\r\r6";
    for (std::size_t shift = 0; shift <= text.size() + 2; ++shift) {
        std::string titled(256 * 1024 - 1 - shift, 't');
        titled.append("\n").append(text);
        EXPECT_EQ(fieldsOf(titled, 1), "12.345,-6|1, 2|3|4,,5||"
                                       "|6|")
            << shift;

        const TextStream stream(titled);
        FieldStream fields(stream.get());
        fields.skipLine();
        End end = End::Line;
        EXPECT_EQ(fields.takeNumber(end), 12.345) << shift;
        EXPECT_EQ(end, End::Comma);
        EXPECT_EQ(fields.takeNumber(end), -6.0) << shift;
        EXPECT_EQ(end, End::Line);
        EXPECT_EQ(fields.takeNumber(end), 1.0) << shift;
        EXPECT_EQ(fields.takeNumber(end), 2.0) << shift;
        EXPECT_EQ(fields.takeNumber(end), 3.0) << shift;
    }
}

TEST(FieldStream, ATakenFieldStaysValidUntilTheNextOne)
{
    const std::string title(256 * 1024 - 5, 't');
    const TextStream stream(title + "\nabc\r\r\nd" + std::string(300000, 'x') + "\n");
    FieldStream fields(stream.get());
    fields.skipLine();
    End end = End::Comma;
    const std::string_view field = fields.take(end);
    EXPECT_EQ(end, End::Line);
    EXPECT_EQ(field, "abc");
    // Too long a field is empty, not cut short.
    EXPECT_EQ(fields.take(end), "");
    EXPECT_TRUE(fields.isAtEnd());
}

TEST(FieldStream, SkipsBehindAMarkOfTheLine)
{
    const TextStream stream("ab:c:d\nno\r\n" + std::string(600000, 'x') + ":e\n:\nlast");
    FieldStream fields(stream.get());
    End end = End::Comma;
    EXPECT_TRUE(fields.skipBehind(':'));
    EXPECT_EQ(fields.take(end), "c:d");
    EXPECT_FALSE(fields.skipBehind(':'));
    EXPECT_TRUE(fields.skipBehind(':'));
    EXPECT_EQ(fields.take(end), "e");
    EXPECT_TRUE(fields.skipBehind(':'));
    EXPECT_EQ(fields.take(end), "");
    EXPECT_FALSE(fields.skipBehind(':'));
    EXPECT_TRUE(fields.isAtEnd());
}

TEST(FieldStream, TellsOfAStreamThatFails)
{
    // It may be written and is to be read.
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("text"));
#ifdef Q_OS_WIN
    const int file =
        _wopen(path.toStdWString().c_str(), _O_WRONLY | _O_CREAT | _O_BINARY, _S_IWRITE);
    std::FILE* const stream = _fdopen(file, "rb");
#else
    std::FILE* const stream = platform::openStream(path, "wb");
#endif
    ASSERT_NE(stream, nullptr);
    FieldStream fields(stream);
    EXPECT_TRUE(fields.isAtEnd());
    EXPECT_TRUE(fields.hasFailed());
    std::fclose(stream);
}
