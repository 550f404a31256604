#pragma once

#include "profile/columndecoder.h"
#include "profile/textfile.h"

#include <string_view>
#include <vector>

/// What the decoders of instrument files share.
namespace profile {

/// Whether two ASCII texts are equal but for the case of their letters.
bool equalIgnoringCase(std::string_view a, std::string_view b);

/// A line "key=value", both without white space around them. A line without "=" is a key without
/// a value.
struct KeyValue
{
    std::string_view key;
    std::string_view value;
};
KeyValue splitKeyValue(std::string_view line);

/// The most columns that are looked at: no instrument has as many, and a text of separators alone
/// would take fifty times its size.
constexpr std::size_t maxColumns = 10000;

/// The parts of a text between a separator, without white space around them. What stands behind
/// `maxParts` of them is dropped.
std::vector<std::string_view> splitTrimmed(std::string_view text, char separator,
                                           std::size_t maxParts = maxColumns);

/// Walks through the lines of a header that is divided in sections, "[NAME]" on a line of its own,
/// up to the section that holds the data.
class SectionReader
{
  public:
    SectionReader(std::string_view text, std::string_view dataSection)
        : m_lines(text), m_dataSection(dataSection)
    {
    }

    /// Takes the next line that is neither blank nor the name of a section, trimmed. False at the
    /// data section and at the end of the text.
    bool next(std::string_view& line);

    /// Whether the line taken last stands in this section.
    bool isIn(std::string_view section) const { return equalIgnoringCase(m_section, section); }

    /// Number of the line that names the data section, from 1; 0 while it has not been found.
    qint64 dataLine() const { return m_dataLine; }

    /// The lines behind that one.
    LineReader dataLines() const { return m_lines; }

  private:
    LineReader m_lines;
    std::string_view m_dataSection;
    std::string_view m_section;
    qint64 m_dataLine = 0;
};

/// A key of a header and the text that receives its value.
struct TextKey
{
    std::string_view key;
    std::string_view* value;
};

/// Gives the value of a line to its key's text, unless that has one already.
template <std::size_t Count> void takeValue(const KeyValue& line, const TextKey (&keys)[Count])
{
    for (const TextKey& key : keys) {
        if (key.value->empty() && equalIgnoringCase(line.key, key.key))
            *key.value = line.value;
    }
}

/// A column of an instrument file: the name, and the field of the record that its number goes to.
struct ColumnName
{
    std::string_view name;
    int tagDecodeFmt::*column;
};

/// Makes all columns absent and all that a decoder finds unknown, all factors 1.
void clearFormat(tagDecodeFmt& format);

/// A column as a header gives it.
struct HeaderColumn
{
    std::string_view name; ///< may end in a unit in brackets: "Conductivity (S/m)"
    std::string_view unit; ///< where it stands by itself; else empty
};

/// What ends in brackets, apart: "Conductivity (S/m)" is the name "Conductivity" with the unit
/// "S/m". Any other text is a name without a unit.
HeaderColumn withUnitApart(std::string_view name);

/// Whether a column is the known one: its name is that of `known`, or becomes so without a bracket
/// that holds a unit of this quantity. "Sound Velocity (Calculated)" is another column than "Sound
/// Velocity". A unit in brackets becomes that of the column, unless it has one.
bool isColumn(const ColumnName& known, HeaderColumn& column);

/// Makes a column the one of its quantity and sets the factor by its unit. One that had this place
/// becomes the earlier one, see `EarlierColumn`.
void takeColumn(int tagDecodeFmt::*quantity, int number, std::string_view unit,
                tagDecodeFmt& format);

/// Gives the column numbers by the names, the number of each being its place in `columns`, and the
/// factors of depth, speed, pressure and conductivity by the units. A unit that is not known, or
/// missing, means m, m/s, dbar and mS/cm. The later of two columns for one quantity wins.
template <std::size_t Count>
void takeColumns(const std::vector<HeaderColumn>& columns, const ColumnName (&known)[Count],
                 tagDecodeFmt& format)
{
    for (std::size_t i = 0; i < columns.size(); ++i) {
        HeaderColumn column = columns[i];
        for (const ColumnName& name : known) {
            if (name.column != nullptr && isColumn(name, column)) {
                takeColumn(name.column, int(i), column.unit, format);
                break;
            }
        }
    }
}

/// The last step of a decoder: the lines before the data, the largest column, the salinity word.
/// False when the header has no data section or not the columns that depth and sound speed can be
/// had from.
bool finishFormat(qint64 dataLine, tagDecodeFmt& format);

} // namespace profile
