#include "profile/textfile.h"

#include <QTextCodec>
#include <QTextStream>

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
    std::size_t end = 0;
    while (end < m_rest.size() && m_rest[end] != '\n' && m_rest[end] != '\r')
        ++end;
    line = m_rest.substr(0, end);
    // CR LF and CR CR LF are one end. Any other CR ends a line by itself.
    if (m_rest.substr(end, 2) == "\r\n")
        end += 2;
    else if (m_rest.substr(end, 3) == "\r\r\n")
        end += 3;
    else if (end < m_rest.size())
        end += 1;
    m_rest.remove_prefix(end);
    return true;
}

} // namespace profile
