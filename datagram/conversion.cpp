#include "datagram/conversion.h"

#include "datagram/convertedcheck.h"
#include "datagram/convertedfile.h"
#include "datagram/filewriter.h"
#include "platform/platform.h"
#include "profile/filtertable.h"
#include "seawater/pressure.h"
#include "seawater/salinity.h"
#include "seawater/soundspeed.h"
#include "settings/numbers.h"

#include <QFileInfo>

#include <algorithm>

namespace datagram {

namespace {

constexpr int messageBase = 2600; // verification codes are added to it
constexpr int illegalTime = 2627;
constexpr int notOpened = 2631;
constexpr std::size_t fewestFields = 15;

// Time of acquisition as the file's header takes it, and the base name of the file.
struct Stamp
{
    QString time;
    QString baseName;
    QString utc; // with seconds
};

bool isDigits(const QByteArray& text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// The stamp of a datagram without a time has no seconds; readers take both lengths. Returns the
// message that a time raises which is none: it becomes a file name, and fields of another length
// would be read as another time once they are joined. 0 for none.
int stampOf(const SspDatagram& source, const QDateTime& now, Stamp& stamp)
{
    if (source.time.isEmpty() || source.day.isEmpty() || source.month.isEmpty() ||
        source.year.isEmpty()) {
        stamp = {now.toString(QStringLiteral("yyyyMMddHHmm")),
                 now.toString(QStringLiteral("yyyyMMdd_HHmmss")),
                 now.toUTC().toString(QStringLiteral("yyyyMMddHHmmss"))};
        return 0;
    }
    const QByteArray date = source.year + source.month + source.day;
    if (!isDigits(date) || !isDigits(source.time))
        return notOpened;
    if (source.year.size() != 4 || source.month.size() != 2 || source.day.size() != 2 ||
        source.time.size() != 6)
        return illegalTime;
    const QString time = QString::fromLatin1(date + source.time);
    stamp = {time, QString::fromLatin1(date + '_' + source.time), time};
    return 0;
}

ProbeSample converted(const SspDatagram& source, int sample, double latitude)
{
    constexpr double decibarPerMegapascal = 100.0;
    constexpr double perSiemensPerMetre = 10.0; // mS/cm
    const double first = source.value(sample, 0);
    const double temperature = source.value(sample, 2);
    const double fourth = source.value(sample, 3);
    const double pressure = first * decibarPerMegapascal;
    const ContentIdentifier& rule = source.identifier;

    ProbeSample level;
    level.depth = rule.firstIsPressure ? seawater::depthFromPressure(pressure, latitude) : first;
    const double salinity =
        rule.salinityFromConductivity
            ? seawater::practicalSalinity(fourth * perSiemensPerMetre, temperature, pressure)
            : fourth;
    level.speed = rule.computesSpeed
                      ? seawater::chenMilleroSoundSpeed(salinity, temperature, pressure)
                      : source.value(sample, 1);
    return level;
}

ConvertedProfile profileOf(const SspDatagram& source, const std::vector<ProbeSample>& levels)
{
    constexpr int columns = 5;
    constexpr std::size_t firstColumn = ConvertedFirstColumn;
    ConvertedProfile profile(firstColumn + columns);
    for (std::size_t i = 0; i < levels.size(); ++i) {
        profile[ConvertedSpeed].append(settings::toFloat32(levels[i].speed));
        profile[ConvertedDepth].append(settings::toFloat32(levels[i].depth));
        for (int column = 0; column < columns; ++column)
            profile[firstColumn + std::size_t(column)].append(
                settings::toFloat32(source.value(int(i), column)));
    }
    return profile;
}

// A header field holds no white space.
QString headerWord(const QByteArray& field)
{
    return QString::fromLatin1(field).simplified().replace(QLatin1Char(' '), QLatin1Char('_'));
}

QString textOrZero(const QString& degrees)
{
    return degrees.isEmpty() ? QStringLiteral("0") : degrees;
}

// A profile of that name that holds something else is a surveyor's, and is kept as a backup.
bool writeConverted(const QString& path, const QByteArray& content)
{
    QString kept;
    QString error;
    return platform::makeFolder(QFileInfo(path).path()) &&
           saveKeepingOther(path, content, kept, error) == platform::Replaced::Whole;
}

} // namespace

QString convertedFolder()
{
    return profile::filterFolder();
}

Conversion calcS00(const QByteArray& text, const QString& folder,
                   const settings::ProfileLimits& limits, const QDateTime& now)
{
    const auto refused = [](int number) { return Conversion{{}, {}, {}, {number, {}}}; };
    const DatagramFields fields(text);
    if (fields.size() < fewestFields)
        return refused(messageBase);
    const int broken = fnVerifySXX(text, fields);
    if (broken != 0)
        return refused(messageBase + broken);

    Conversion result;
    result.source = readFields(fields);
    const SspDatagram& source = result.source;
    if (!source.identifier.isConvertible) {
        platform::debugOutput(
            "Unknown sentence format : " + std::to_string(source.identifier.number) + '\n');
    }
    Stamp stamp;
    const int faultyStamp = stampOf(source, now, stamp);
    if (folder.isEmpty() || faultyStamp != 0)
        return refused(folder.isEmpty() ? notOpened : faultyStamp);

    result.time = stamp.utc;
    std::vector<ProbeSample> levels;
    levels.reserve(std::size_t(source.samples));
    const double latitude = source.latitude.toDouble();
    for (int sample = 0; sample < source.samples; ++sample)
        levels.push_back(converted(source, sample, latitude));

    const QString path = folder + QLatin1Char('/') + stamp.baseName + QLatin1String(".asvp");
    const QString words = headerWord(source.tag) + QLatin1Char('_') + headerWord(source.number);
    if (!writeConverted(path, convertedFileText(stamp.time, textOrZero(source.latitude),
                                                textOrZero(source.longitude), words, levels)))
        return refused(notOpened);

    QByteArray built;
    int count = 0;
    if (!fnCreateAndCheckS00(path, limits, built, count, result.report))
        return result;
    if (DatagramFields(built).size() < fewestFields)
        result.report.number = messageBase;
    else
        result.profile = profileOf(source, levels);
    return result;
}

} // namespace datagram
