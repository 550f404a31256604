#include "datagram/convertedfile.h"

#include <array>
#include <charconv>

namespace datagram {

namespace {

QByteArray headerWord(const QString& value, const char* standIn)
{
    QString word = value.trimmed();
    if (word.isEmpty())
        return standIn;
    for (QChar& character : word) {
        if (character.isSpace() || character.isNull())
            character = QLatin1Char('_');
    }
    return word.toUtf8();
}

void appendNumber(QByteArray& text, double value)
{
    // The longest double has 309 digits before the point.
    std::array<char, 320> digits{};
    const auto written = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                       std::chars_format::fixed, 3);
    text.append(digits.data(), int(written.ptr - digits.data()));
}

} // namespace

QByteArray convertedFileText(const QString& time, const QString& latitude, const QString& longitude,
                             const QString& source, const std::vector<ProbeSample>& samples)
{
    QByteArray text =
        "( SoundVelocity  1.0 0 " + headerWord(time, "0") + ' ' + headerWord(latitude, "0") + ' ' +
        headerWord(longitude, "0") + " -1 0 0 " + headerWord(source, "NA") + " P " +
        QByteArray::number(qulonglong(samples.size())).rightJustified(4, '0') + " )\r\n";
    constexpr int bytesPerSample = 20;
    text.reserve(text.size() + int(samples.size()) * bytesPerSample);
    for (const ProbeSample& sample : samples) {
        appendNumber(text, sample.depth);
        text += ' ';
        appendNumber(text, sample.speed);
        text += "\r\n";
    }
    return text;
}

} // namespace datagram
