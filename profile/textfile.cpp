#include "profile/textfile.h"

#include <QTextCodec>
#include <QTextStream>

#include <cstring>

namespace profile {

QByteArray normalisedText(const QByteArray& raw)
{
    if (raw.startsWith("\xEF\xBB\xBF"))
        return raw.mid(3);
    if (raw.startsWith("\xFF\xFE") || raw.startsWith("\xFE\xFF")) {
        QTextStream stream(raw);
        stream.setAutoDetectUnicode(true);
        return stream.readAll().toUtf8();
    }
    return raw;
}

QString decodedText(std::string_view bytes)
{
    const int size = int(bytes.size());
    QTextCodec::ConverterState state;
    // 106 is the registered number of UTF-8.
    QString text = QTextCodec::codecForMib(106)->toUnicode(bytes.data(), size, &state);
    if (state.invalidChars == 0 && state.remainingChars == 0)
        return text;
    return QString::fromLatin1(bytes.data(), size);
}

std::string_view trimmedText(std::string_view text)
{
    constexpr std::string_view whiteSpace = " \t\r\n\v\f";
    const std::size_t first = text.find_first_not_of(whiteSpace);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(whiteSpace) - first + 1);
}

bool LineReader::next(std::string_view& line)
{
    if (m_rest.empty())
        return false;
    ++m_number;
    // The next LF is kept until it is passed: a text whose lines end in CR alone is not searched
    // to its end for each line.
    if (m_lineFeed < m_rest.data())
        m_lineFeed = find('\n', m_rest);
    const std::string_view first(m_rest.data(), std::size_t(m_lineFeed - m_rest.data()));
    const char* const lineEnd = find('\r', first);
    line = std::string_view(m_rest.data(), std::size_t(lineEnd - m_rest.data()));
    // CR LF and CR CR LF are one end. Any other CR ends a line by itself.
    std::size_t end = line.size();
    if (m_rest.compare(end, 2, "\r\n") == 0)
        end += 2;
    else if (m_rest.compare(end, 3, "\r\r\n") == 0)
        end += 3;
    else if (end < m_rest.size())
        end += 1;
    m_rest.remove_prefix(end);
    return true;
}

// Where the character stands; the end of the text if it does not.
const char* LineReader::find(char character, std::string_view text)
{
    const void* const found =
        text.empty() ? nullptr : std::memchr(text.data(), character, text.size());
    return found != nullptr ? static_cast<const char*>(found) : text.data() + text.size();
}

} // namespace profile
