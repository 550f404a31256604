#include "convert/detection.h"

#include "convert/summary.h"
#include "datagram/probe_text.h"
#include "datagram/receivedata.h"
#include "profile/textfile.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace convert {

namespace {

using datagram::CReceiveData;
using datagram::probe::startsInAnyCase;

struct FormatText
{
    const char* name;
    const char* word;
};

// By format number.
constexpr std::array<FormatText, 14> formatTexts = {{
    {"CALC listing", "CALC"},
    {"table of columns", "Columns"},
    {"table of columns", "Columns"},
    {"profile datagram", "S50"},
    {"converted profile", "ASVP"},
    {"Sea-Bird converted file", "SeaBird"},
    {"scan listing", "Scan"},
    {"breakpoint profile", "Profile"},
    {"breakpoint profile", "Profile"},
    {"SvPlus file", "SvPlus"},
    {"Sea-Bird deck unit file", "SeaBird"},
    {"calibration extension file", "CALExtn"},
    {"EDF probe file", "EDF"},
    {"table of columns", "Columns"},
}};

// How much of a text is searched for the words that tell its kind: headers are long, tables
// longer.
constexpr std::size_t searchedBytes = 256 * 1024;

/// The text, cut down to what is searched.
class Head
{
  public:
    explicit Head(std::string_view text) : m_text(text.substr(0, searchedBytes)) {}

    bool has(std::string_view word) const { return m_text.find(word) != std::string_view::npos; }

    bool starts(std::string_view word) const { return m_text.substr(0, word.size()) == word; }

    /// Whether a line begins with the word (lower case), in any case.
    bool hasLine(std::string_view word) const
    {
        profile::LineReader lines(m_text);
        std::string_view line;
        while (lines.next(line)) {
            if (startsInAnyCase(profile::trimmedText(line), word))
                return true;
        }
        return false;
    }

    std::string_view text() const { return m_text; }

  private:
    std::string_view m_text;
};

// Texts have no control characters but white space; a few are forgiven, as terminals leave them.
bool isBinary(std::string_view text)
{
    const auto isControl = [](char c) {
        return (c >= 0 && c < ' ' && (c < '\t' || c > '\r') && c != 0x1A) || c == 0x7F;
    };
    const auto count = std::count_if(text.begin(), text.end(), isControl);
    return text.find('\0') != std::string_view::npos || std::size_t(count) * 50 > text.size();
}

// Why a file is left to the editor; empty where it is not.
QString editorRefusal(const char* kind, const char* ownSuffix, const QString& suffix,
                      const char* furtherSuffix = "")
{
    const bool isOpened = suffix.compare(QLatin1String(ownSuffix), Qt::CaseInsensitive) == 0 ||
                          (*furtherSuffix != 0 &&
                           suffix.compare(QLatin1String(furtherSuffix), Qt::CaseInsensitive) == 0);
    if (isOpened)
        return QStringLiteral("it is %1: open it in the editor").arg(QLatin1String(kind));
    return QStringLiteral("it is %1: give it the suffix .%2, then open it in the editor")
        .arg(QLatin1String(kind), QLatin1String(ownSuffix));
}

// As above, of a text; the editor tells kinds by their suffix.
QString editorRefusal(const Head& head, const QString& suffix)
{
    if (head.starts("(") &&
        head.text().substr(0, head.text().find_first_of("\r\n")).find("SoundVelocity") !=
            std::string_view::npos)
        return editorRefusal("an .asvp profile", "asvp", suffix);
    if (head.text().size() > 4 && head.text()[0] == '$' && head.text()[3] == 'S' &&
        head.text().substr(4, 2) != "50")
        return editorRefusal("a profile datagram", "ssp", suffix);
    if (head.hasLine("[measurementdata]"))
        return editorRefusal("an AML cast", "aml", suffix, "amlx");
    if (head.hasLine("[cast header]"))
        return QStringLiteral("it is an older AML export: the editor opens it with an import "
                              "filter that describes its columns");
    if (head.hasLine("[columns]") && head.hasLine("[data]"))
        return editorRefusal("a Valeport cast", "vp2", suffix);
    if (startsInAnyCase(head.text(), "now:"))
        return editorRefusal("a Valeport cast", "valeport", suffix);
    return {};
}

int formatByWords(const Head& head)
{
    if (head.hasLine("# nquan"))
        return datagram::SeaBirdConverted;
    if (head.has("SBE 11plus") && head.has("computation"))
        return datagram::SeaBirdDeckUnit;
    if (head.has("(EDF)"))
        return datagram::EdfExport;
    if (head.has("PROFILE_HEADER"))
        return datagram::BreakpointProfile;
    if (head.has("CAL Extn"))
        return datagram::CalibrationExtension;
    if (head.has("SvPlus"))
        return datagram::SvPlusFile;
    if (head.has("CALC") && head.has("(M/S)"))
        return datagram::CalcListing;
    if (head.starts("$") && head.text().find("S50") == 3)
        return datagram::PressureDatagram;
    return -1;
}

// Tables carry no word of their own. One is taken where its numbers are a profile's.
Detection detectTable(const QByteArray& text, const Head& head, const QString& suffix)
{
    Detection found;
    found.refusal = QStringLiteral("no kind of probe file that is known, nor a table of depth and "
                                   "sound speed; an import filter of the editor may describe its "
                                   "columns");
    const auto levels = [&text, &found](int format) -> std::size_t {
        CReceiveData data;
        if (data.parse(format, text) < 2)
            return 0;
        if (hasPlausibleSpeeds(data.samples()))
            return data.samples().size();
        found.refusal = QStringLiteral("a table, but what stands for sound speeds is none of water "
                                       "(%1); an import filter of the editor may describe its "
                                       "columns")
                            .arg(speedsText(data.samples()));
        return 0;
    };
    if (head.hasLine("scan") && levels(datagram::ScanListing) > 0)
        return {datagram::ScanListing, {}};
    const std::size_t plain = levels(datagram::PlainColumns);
    const std::size_t delimited = levels(datagram::DelimitedRows);
    if (plain == 0 && delimited == 0)
        return found;
    const bool prefersDelimited =
        plain == delimited && suffix.compare(QLatin1String("csv"), Qt::CaseInsensitive) == 0;
    found.format =
        plain < delimited || prefersDelimited ? datagram::DelimitedRows : datagram::PlainColumns;
    found.refusal.clear();
    return found;
}

} // namespace

Detection detectFormat(const QByteArray& raw, const QString& suffix)
{
    const QByteArray text = profile::normalisedText(raw);
    std::string_view bytes(text.constData(), std::size_t(text.size()));
    bytes = bytes.substr(0, bytes.find_last_not_of(std::string_view("\x1A\0", 2)) + 1);
    const Head head(profile::trimmedText(bytes));
    if (head.text().empty())
        return {-1, QStringLiteral("it is empty")};
    if (isBinary(head.text()))
        return {-1, QStringLiteral("it is no text: a binary file of an instrument must be "
                                   "exported as text first")};
    if (const QString refusal = editorRefusal(head, suffix); !refusal.isEmpty())
        return {-1, refusal};
    const int format = formatByWords(head);
    return format >= 0 ? Detection{format, {}} : detectTable(text, head, suffix);
}

bool isTable(int format)
{
    return format == datagram::DelimitedRows || format == datagram::DelimitedRowsToo ||
           format == datagram::ScanListing || format == datagram::PlainColumns;
}

QString formatName(int format)
{
    return QLatin1String(formatTexts.at(std::size_t(format)).name);
}

QString formatWord(int format)
{
    return QLatin1String(formatTexts.at(std::size_t(format)).word);
}

} // namespace convert
