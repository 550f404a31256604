#pragma once

#include <QByteArray>
#include <QString>

#include <string_view>

namespace profile {

/// The bytes of a text file in one encoding: a byte order mark is dropped, UTF-16 behind one
/// becomes UTF-8, everything else stays as it is.
QByteArray normalisedText(const QByteArray& raw);

/// A line or value as text: UTF-8, or Latin-1 where the bytes are no valid UTF-8.
QString decodedText(std::string_view bytes);

/// The text without white space (blank, tab, CR, LF, vertical tab, form feed) at its ends.
std::string_view trimmedText(std::string_view text);

/// Walks through the lines of a text. LF, CR LF, CR CR LF and a lone CR each end a line; an end
/// at the very end of the text opens no further line.
class LineReader
{
  public:
    explicit LineReader(std::string_view text) : m_rest(text) {}

    /// Takes the next line, without its end, into `line`. False when there is none.
    bool next(std::string_view& line);

    /// Number of the line taken last; the first line is 1.
    qint64 number() const { return m_number; }

  private:
    static const char* find(char character, std::string_view text);

    std::string_view m_rest;
    const char* m_lineFeed = nullptr; // the next one, or the end of the text
    qint64 m_number = 0;
};

} // namespace profile
