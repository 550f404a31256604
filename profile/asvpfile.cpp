#include "profile/asvpfile.h"

#include "platform/platform.h"
#include "profile/profilefolder.h"
#include "profile/textfile.h"

#include <QDebug>
#include <QDir>

#include <algorithm>

namespace profile {

namespace {

constexpr int timeWord = 3;
constexpr int minSamples = 3;

QString headerWord(const QString& value, int index)
{
    // Kind, source and history are texts; the others are numbers.
    const bool isText = index == 0 || index >= 9;
    QString word = value.trimmed();
    if (word.isEmpty())
        return isText ? QStringLiteral("NA") : QStringLiteral("0");
    for (QChar& character : word) {
        if (character.isSpace() || character.isNull())
            character = QLatin1Char('_');
    }
    return word;
}

} // namespace

QStringList parseAsvpHeader(const QString& line)
{
    const QStringRef trimmed = QStringRef(&line).trimmed();
    const QStringRef inner = trimmed.mid(1, std::max(trimmed.size() - 2, 0));
    // One word too many is enough to know: a line may be millions of them.
    QStringList words;
    int at = 0;
    while (at < inner.size() && words.size() <= asvpHeaderWords) {
        const int start = at;
        while (at < inner.size() && !inner.at(at).isSpace())
            ++at;
        if (at > start)
            words << inner.mid(start, at - start).toString();
        ++at;
    }
    if (words.size() != asvpHeaderWords)
        return {};
    if (words[timeWord].size() == 12)
        words[timeWord] += QLatin1String("00");
    return words;
}

AsvpFile readAsvp(const QByteArray& raw, const tagDecodeFmt& format)
{
    const QByteArray text = normalisedText(raw);
    const std::string_view bytes(text.constData(), std::size_t(text.size()));
    AsvpFile file;
    std::string_view firstLine;
    LineReader lines(bytes);
    lines.next(firstLine);
    file.header = parseAsvpHeader(decodedText(firstLine));
    if (!file.header.isEmpty())
        file.record = decodeColumns(bytes, format, &file.decimals);
    return file;
}

QByteArray asvpText(const QVector<float>& depths, const QVector<float>& speeds,
                    const AsvpHeader& header)
{
    // Joined, not filled into a pattern: a value may hold "%1" itself.
    QByteArray text = "( ";
    for (int i = 0; i < int(header.size()); ++i)
        text += headerWord(header[std::size_t(i)], i).toUtf8() + ' ';
    text += QByteArray::number(depths.size()) + " )\r\n";

    constexpr int bytesPerSample = 20;
    text.reserve(text.size() + depths.size() * bytesPerSample);
    for (int i = 0; i < depths.size(); ++i) {
        text += QByteArray::number(double(depths[i]), 'f', 2);
        text += ' ';
        text += QByteArray::number(double(speeds[i]), 'f', 2);
        text += "\r\n";
    }
    return text;
}

int writeSVPfile(const QVector<float>& depths, const QVector<float>& speeds,
                 const QString& fileName, const AsvpHeader& header, QString& path)
{
    if (depths.size() < minSamples || depths.size() != speeds.size())
        return ProfileRefused;

    const QByteArray text = asvpText(depths, speeds, header);
    const QString suffix = QStringLiteral(".asvp");
    const QString name = fileName.contains(suffix) ? fileName : fileName + suffix;
    const ProfileFolder folder = savedProfileFolder();
    // The name must be one by itself: the suffix would make a file of an empty one.
    path = folder.pathOf(fileName).isEmpty() ? QString() : folder.pathOf(name);
    QString error = QStringLiteral("The file name leads out of the folder");
    if (!path.isEmpty()) {
        folder.makeFolderOf(path);
        if (platform::replaceFile(path, text, &error))
            return WriteOk;
    }
    qDebug().noquote() << "CSVP_WebInterface::writeSVPfile - WARNING -" << error;
    return FileNotOpened;
}

} // namespace profile
