#include "convert/convertprobe.h"

#include "convert/detection.h"
#include "convert/summary.h"
#include "datagram/convertedfile.h"
#include "datagram/filewriter.h"
#include "datagram/probe_header.h"
#include "datagram/receivedata.h"
#include "datagram/receivefile.h"
#include "platform/platform.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

namespace convert {

namespace {

using datagram::CReceiveData;
using datagram::ProbeHeader;

Outcome refused(const QString& input, const QString& reason)
{
    return {false, QStringLiteral("%1: not converted: %2").arg(input, reason).simplified()};
}

// Why a file cannot be read at all; empty when it can.
QString obstacle(const QFileInfo& file)
{
    if (!file.exists())
        return QStringLiteral("there is no such file");
    if (file.isDir())
        return QStringLiteral("it is a folder");
    if (file.size() > platform::maxFileSize)
        return QStringLiteral("it is larger than %1 MiB, too large for a cast")
            .arg(platform::maxFileSize >> 20);
    return {};
}

// Whether the word can go into a header as it stands.
bool isSimple(const QString& word)
{
    constexpr int longest = 24;
    for (const QChar character : word) {
        if (!character.isLetterOrNumber() && character != QLatin1Char('-') &&
            character != QLatin1Char('.'))
            return false;
    }
    return !word.isEmpty() && word.size() <= longest;
}

QString sourceWords(int format, const QString& instrument)
{
    QString word = instrument.simplified();
    word.remove(QLatin1Char(' '));
    if (!isSimple(word))
        word = format == datagram::SeaBirdConverted ? QStringLiteral("cnv") : QStringLiteral("NA");
    return formatWord(format) + QLatin1Char('_') + word;
}

QByteArray profileText(int format, const CReceiveData& data, const QString& stamp)
{
    const ProbeHeader& header = data.header();
    QString latitude = QStringLiteral("0");
    QString longitude = QStringLiteral("0");
    // Half a position would read as one on the equator or on the prime meridian.
    if (header.latitudeMark != 'I' && header.longitudeMark != 'I') {
        latitude = QString::number(datagram::probe::latitudeDegrees(header), 'f', 8);
        longitude = QString::number(datagram::probe::longitudeDegrees(header), 'f', 8);
    }
    return datagram::convertedFileText(stamp, latitude, longitude,
                                       sourceWords(format, data.cast().instrument), data.samples());
}

// What a surveyor should know beside the numbers.
QStringList remarksOn(const CReceiveData& data)
{
    QStringList remarks;
    if (!data.cast().remark.isEmpty())
        remarks.append(data.cast().remark);
    if (data.cast().leftOut > 0)
        remarks.append(QStringLiteral("%1 left out as unusable").arg(data.cast().leftOut));
    if (const int count = impossibleSpeeds(data.samples()); count > 0) {
        remarks.append(
            QStringLiteral("%1 %2 outside %3 to %4 m/s")
                .arg(count)
                .arg(count == 1 ? QLatin1String("sound speed") : QLatin1String("sound speeds"))
                .arg(lowestSpeed)
                .arg(highestSpeed));
    }
    if (!areDepthsIncreasing(data.samples()))
        remarks.append(QStringLiteral("depths do not increase throughout"));
    return remarks;
}

// When and where the cast was made.
QStringList originOf(int format, const ProbeHeader& header, bool hasTime)
{
    if (isTable(format))
        return {QStringLiteral("time and position are not read from a table (the current time, "
                               "UTC, stands in)")};
    return {hasTime ? timeText(header)
                    : QStringLiteral("no time (the current one, UTC, stands in)"),
            positionText(header)};
}

/// Equal for paths that lead to the same file.
QString canonicalPath(const QString& path)
{
    const QFileInfo file(path);
    QString known = file.canonicalFilePath();
    if (known.isEmpty()) {
        // Not there yet: its folder may be reached in several ways all the same.
        const QString folder = QFileInfo(file.absolutePath()).canonicalFilePath();
        known =
            (folder.isEmpty() ? file.absolutePath() : folder) + QLatin1Char('/') + file.fileName();
    }
    return platform::pathCase() == Qt::CaseInsensitive ? known.toCaseFolded() : known;
}

} // namespace

Converter::Converter(const QStringList& inputs, const QString& folder) : m_folder(folder)
{
    for (const QString& input : inputs)
        m_inputs.append(canonicalPath(input));
}

QString Converter::targetOf(const QString& input) const
{
    const QFileInfo file(input);
    const QString folder = m_folder.isEmpty() ? file.path() : m_folder;
    return QDir(folder).filePath(file.completeBaseName() + QStringLiteral(".asvp"));
}

Outcome Converter::convert(const QString& input)
{
    const QFileInfo file(input);
    if (const QString reason = obstacle(file); !reason.isEmpty())
        return refused(input, reason);
    datagram::CReceiveFile received;
    if (!received.open(input))
        return refused(input, QStringLiteral("it cannot be read"));
    const Detection detection = detectFormat(received.text(), file.suffix());
    if (detection.format < 0)
        return refused(input, detection.refusal);

    CReceiveData data;
    data.parse(detection.format, received.text());
    const QString kind = formatName(detection.format);
    if (data.samples().empty())
        return refused(input, QStringLiteral("%1: %2").arg(kind, data.cast().reason));
    if (!hasPlausibleSpeeds(data.samples()))
        return refused(input, QStringLiteral("%1: its sound speeds are none of water (%2)")
                                  .arg(kind, speedsText(data.samples())));

    const QString target = targetOf(input);
    const QString place = canonicalPath(target);
    if (m_inputs.contains(place))
        return refused(input, QStringLiteral("%1 is an input itself").arg(target));
    if (const int earlier = m_written.indexOf(place); earlier >= 0)
        return refused(input, QStringLiteral("%1 holds the profile of %2 already")
                                  .arg(target, m_writtenFrom[earlier]));

    // The deck unit's files have no time; their reader takes the current one.
    const bool hasTime = data.header().hasTime && detection.format != datagram::SeaBirdDeckUnit;
    const QString stamp =
        hasTime ? stampText(data.header())
                : QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyyMMddHHmmss"));
    QString error;
    if (!platform::makeFolder(QFileInfo(target).path()))
        return refused(
            input, QStringLiteral("the folder %1 cannot be made").arg(QFileInfo(target).path()));
    QString kept;
    if (datagram::saveKeepingOther(target, profileText(detection.format, data, stamp), kept,
                                   error) != platform::Replaced::Whole)
        return refused(input, QStringLiteral("%1 cannot be written: %2").arg(target, error));
    m_written.append(canonicalPath(target));
    m_writtenFrom.append(input);

    QStringList parts = {kind, levelsText(data.samples())};
    parts += originOf(detection.format, data.header(), hasTime);
    parts += remarksOn(data);
    QString written = target;
    if (!kept.isEmpty())
        written += QStringLiteral("; the earlier one is kept as %1").arg(kept);
    return {true, QStringLiteral("%1: %2 -> %3")
                      .arg(input, parts.join(QLatin1String("; ")), written)
                      .simplified()};
}

} // namespace convert
