#pragma once

#include <string_view>

/// Scanning the lines of probe files. Everything works on views into the text: casts of 50 000
/// levels are common, and a copy per field costs more than the number in it.
namespace datagram::probe {

/// Takes words and numbers off the front of a line, as the scanning functions of the C library do,
/// but with a decimal point under any locale.
class Scanner
{
  public:
    explicit Scanner(std::string_view line) : m_at(line.data()), m_end(line.data() + line.size()) {}

    /// Skips white space and takes a number, as far as it goes; it may have a "+". False, and the
    /// place unchanged but for the white space, where there is none or it is not finite.
    bool number(double& value);

    /// As `number`, but "nan" and "inf" are numbers too, as they are to the C library.
    bool anyNumber(double& value);

    /// Skips white space and takes a word up to the next. False at the end.
    bool word(std::string_view& text);

    /// Skips white space, then `mark` if it stands there. False if it does not.
    bool mark(char mark);

    /// What has not been taken yet.
    std::string_view rest() const { return {m_at, std::size_t(m_end - m_at)}; }

  private:
    void skipBlanks()
    {
        while (m_at != m_end && (*m_at == ' ' || (*m_at >= '\t' && *m_at <= '\r')))
            ++m_at;
    }

    const char* m_at;
    const char* m_end;
};

/// The number that makes up a whole field, white space around it aside. Not a number where the
/// field is something else or not finite.
double wholeNumber(std::string_view field);

/// As `wholeNumber`, for digits alone. False with a sign, a point, or beyond 32 bits.
bool wholeDigits(std::string_view field, int& value);

/// Whether nothing but white space is in a line.
bool isBlank(std::string_view line);

/// Comparing in any case, of the letters of ASCII.
bool equalsInAnyCase(std::string_view text, std::string_view lowerCase);
bool startsInAnyCase(std::string_view text, std::string_view lowerCase);
bool containsInAnyCase(std::string_view text, std::string_view lowerCase);

} // namespace datagram::probe
