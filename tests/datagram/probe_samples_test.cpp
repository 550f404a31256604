#include "datagram/receivedata.h"
#include "datagram/receivefile.h"
#include "tests/places.h"
#include "tests/support/commalocale.h"

#include <QDir>
#include <gtest/gtest.h>

#include <cmath>

// The sample files, in every form that a file takes on its way from a ship.

using namespace datagram;

namespace {

struct Sample
{
    const char* file;
    int format;
    int levels;
    double firstDepth;
    double firstSpeed;
    double lastSpeed;
};

const Sample samples[] = {
    {"calc-harbour.calc", CalcListing, 10, 1.0, 1502.11, 1487.74},
    {"delimited.csv", DelimitedRows, 10, 1.0, 1502.11, 1487.74},
    {"delimited.csv", DelimitedRowsToo, 10, 1.0, 1502.11, 1487.74},
    {"sea-bird-shelf.cnv", SeaBirdConverted, 10, 1.0, 1502.11, 1487.74},
    {"scan-listing.txt", ScanListing, 10, 1.0, 1502.11, 1487.74},
    {"breakpoints.txt", BreakpointProfile, 10, 1.0, 1502.11, 1487.74},
    {"breakpoints.txt", BreakpointProfileToo, 10, 1.0, 1502.11, 1487.74},
    {"svplus-probe.svp", SvPlusFile, 10, 1.0, 1502.11, 1487.74},
    {"deck-unit.txt", SeaBirdDeckUnit, 10, 1.0, 1502.11, 1487.74},
    {"calibration-extension.txt", CalibrationExtension, 10, 1.0, 1502.11, 1487.74},
    {"edf-xbt.edf", EdfExport, 10, 1.0, 1502.11, 1487.74},
    {"edf-xctd.edf", EdfExport, 9, 1.0, 1502.11, 1487.74},
    {"columns.txt", PlainColumns, 10, 1.0, 1502.11, 1487.74},
    {"shelf-summer.asvp", ConvertedAsvp, 0, 0.0, 0.0, 0.0}, // taken as it counts itself
};

QByteArray bytesOf(const Sample& sample)
{
    CReceiveFile file;
    EXPECT_TRUE(file.open(
        QDir(QStringLiteral(SVP_EXAMPLES_DIR)).filePath(QString::fromLatin1(sample.file))))
        << sample.file;
    return QByteArray(file.text()).replace("\r\n", "\n");
}

void expectSame(const CReceiveData& a, const CReceiveData& b, const char* what)
{
    ASSERT_EQ(a.samples().size(), b.samples().size()) << what;
    for (std::size_t i = 0; i < a.samples().size(); ++i) {
        EXPECT_EQ(a.samples()[i].depth, b.samples()[i].depth) << what << i;
        EXPECT_EQ(a.samples()[i].speed, b.samples()[i].speed) << what << i;
        EXPECT_EQ(a.samples()[i].third, b.samples()[i].third) << what << i;
    }
    EXPECT_EQ(a.header().hasTime, b.header().hasTime) << what;
    EXPECT_EQ(a.header().year, b.header().year) << what;
    EXPECT_EQ(a.header().latitude, b.header().latitude) << what;
    EXPECT_EQ(a.header().longitudeMark, b.header().longitudeMark) << what;
}

} // namespace

TEST(ProbeSamples, AreRead)
{
    for (const Sample& sample : samples) {
        if (sample.levels == 0)
            continue;
        CReceiveData data;
        ASSERT_EQ(data.parse(sample.format, bytesOf(sample)), sample.levels) << sample.file;
        EXPECT_EQ(data.format(), sample.format);
        EXPECT_NEAR(data.samples().front().depth, sample.firstDepth, 1e-9) << sample.file;
        EXPECT_EQ(data.samples().front().speed, sample.firstSpeed) << sample.file;
        EXPECT_EQ(data.samples().back().speed, sample.lastSpeed) << sample.file;
    }
}

TEST(ProbeSamples, LineEndsMakeNoDifference)
{
    for (const Sample& sample : samples) {
        const QByteArray text = bytesOf(sample);
        CReceiveData plain;
        const int result = plain.parse(sample.format, text);
        EXPECT_GT(result, 0) << sample.file;
        for (const char* end : {"\r\n", "\r\r\n", "\r"}) {
            CReceiveData data;
            EXPECT_EQ(data.parse(sample.format, QByteArray(text).replace("\n", end)), result)
                << sample.file;
            expectSame(plain, data, sample.file);
        }
    }
}

TEST(ProbeSamples, CutOffAtEachByteTheyStayWithinTheWhole)
{
    for (const Sample& sample : samples) {
        for (const char* end : {"\n", "\r\r\n"}) {
            const QByteArray text = bytesOf(sample).replace("\n", end);
            CReceiveData whole;
            whole.parse(sample.format, text);
            for (int size = 0; size < text.size(); ++size) {
                // A copy of its own: a read beyond it is one beyond its memory.
                const QByteArray part(text.constData(), size);
                CReceiveData data;
                const int result = data.parse(sample.format, part);
                ASSERT_LE(result, int(whole.samples().size()) + whole.cast().leftOut)
                    << sample.file << size;
                ASSERT_EQ(std::max(result, 0), int(data.samples().size())) << sample.file << size;
                for (const ProbeSample& level : data.samples()) {
                    ASSERT_TRUE(std::isfinite(level.depth) && std::isfinite(level.speed) &&
                                std::isfinite(level.third))
                        << sample.file << size;
                }
            }
        }
    }
}

TEST(ProbeSamples, EveryReaderWithstandsEverySample)
{
    for (const Sample& sample : samples) {
        const QByteArray text = bytesOf(sample);
        for (int format = 0; format <= 13; ++format) {
            CReceiveData data;
            const int result = data.parse(format, text);
            EXPECT_EQ(std::max(result, 0), int(data.samples().size()));
        }
    }
}

TEST(ProbeSamples, ReadTheSameUnderACommaLocale)
{
    const CommaLocale locale;
    ASSERT_TRUE(CommaLocale::isActive());
    for (const Sample& sample : samples) {
        if (sample.levels == 0)
            continue;
        CReceiveData data;
        ASSERT_EQ(data.parse(sample.format, bytesOf(sample)), sample.levels) << sample.file;
        EXPECT_EQ(data.samples().front().speed, sample.firstSpeed) << sample.file;
        EXPECT_EQ(data.samples().back().speed, sample.lastSpeed) << sample.file;
    }
}

TEST(ProbeSamples, UnfoundedCountsAndLongLinesCostNothing)
{
    const QByteArray longLine(2 * 1024 * 1024, '1');
    const QByteArray manyFields = QByteArray("1 ").repeated(500000);
    for (int format = 0; format <= 13; ++format) {
        for (const QByteArray& text : {longLine, manyFields, QByteArray(1000000, '\n'),
                                       QByteArray(1000000, '\r'), QByteArray(1000000, '\0')}) {
            CReceiveData data;
            data.parse(format, text);
            EXPECT_LE(data.samples().size(), 1U) << format;
        }
    }
}
