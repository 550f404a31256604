#pragma once

#include <cstdio>
#include <string_view>
#include <vector>

namespace processing {

/// Takes a comma-separated text from a stream, field by field. The text passes through a buffer of
/// fixed size, however long it or one of its lines is. LF, CR LF, CR CR LF and a lone CR each end
/// a line; an end at the very end of the text opens no further line.
class FieldStream
{
  public:
    /// What stands behind a field.
    enum class End
    {
        Comma,
        Line, ///< or the end of the text
    };

    /// The stream is read from where it stands; it must outlive the object.
    explicit FieldStream(std::FILE* stream);

    /// Whether all of the text has been taken.
    bool isAtEnd();

    /// Takes a field. It is valid until the next call; one longer than 1000 bytes, which is no
    /// number, is empty.
    std::string_view take(End& end);

    /// Takes a field as a number: a decimal number with blanks or tabs around it, a point, a sign
    /// and an exponent. NaN for all else: an empty field, another text, "nan", "inf", a number
    /// beyond the range of a double.
    double takeNumber(End& end);

    /// Skips the rest of the line with its end.
    void skipLine() { skipBehind('\n'); }

    /// Skips to behind the next `mark` of the line. If there is none, skips the line with its end
    /// and returns false.
    bool skipBehind(char mark);

    /// Whether the stream reported an error.
    bool hasFailed() const { return m_hasFailed; }

  private:
    bool refill();
    End takeDelimiter();
    void finishLineEnd();

    std::FILE* m_stream;
    std::vector<char> m_buffer;
    const char* m_at;  // what has not been taken yet
    const char* m_end; // of what has been read
    bool m_isBehindReturn = false;
    bool m_hasFailed = false;
};

} // namespace processing
