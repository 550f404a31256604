#pragma once

#include "datagram/receivedata.h"
#include "seawater/level.h"

#include <array>
#include <string_view>
#include <vector>

/// From the columns of a file to levels.
namespace datagram::probe {

/// What the columns of probe files hold, as far as a profile needs it.
enum class Quantity
{
    Depth,
    Pressure,
    Speed,
    Temperature,
    Salinity,
    Conductivity,
};

constexpr std::size_t quantityCount = 6;

/// Where a level keeps each quantity.
constexpr std::array<double seawater::Level::*, quantityCount> levelMembers = {
    &seawater::Level::depth,       &seawater::Level::pressure, &seawater::Level::speed,
    &seawater::Level::temperature, &seawater::Level::salinity, &seawater::Level::conductivity,
};

/// Where a quantity stands, and how it gets into the unit of `seawater::Level`:
/// (number - offset) · factor.
struct Column
{
    int index = -1; ///< from 0; -1 for none
    double factor = 1.0;
    double offset = 0.0;
};

/// Which column holds which quantity.
class ColumnMap
{
  public:
    /// The first column of a quantity counts; later ones are passed over.
    void take(Quantity quantity, const Column& column);

    /// Takes a column by the name that a heading gives it, unit included, e.g.
    /// `Sound Velocity [Chen-Millero, m/s]`, `Conductivity (mS/cm)`, `PRESSURE;DBAR`, `veloc.`.
    /// The name must begin with the quantity: an average, a potential temperature or a difference
    /// of two sensors is none of these. False when it is another quantity.
    bool takeNamed(std::string_view name, int index);

    bool has(Quantity quantity) const { return at(quantity).index >= 0; }
    const Column& at(Quantity quantity) const { return m_columns[std::size_t(quantity)]; }

    /// Whether depth and sound speed are there or can be computed.
    bool isEnough() const;

    /// Why it is not enough, for a surveyor; empty when it is.
    QString lack() const;

  private:
    std::array<Column, quantityCount> m_columns;
};

/// The factor and offset of a quantity whose unit is named somewhere in `text`; the unit of
/// `seawater::Level` where none is.
Column unitOf(Quantity quantity, std::string_view text);

/// What stands between the fields of a row.
enum class Delimiter
{
    Blanks, ///< a run of blanks and tabs
    Tab,    ///< one tab
    Comma,  ///< one comma
};

/// As many fields of a line as are looked at: far more than any file has columns, and a line of
/// nothing but commas takes no gigabytes.
constexpr std::size_t mostFields = 10000;

/// Cuts a line into fields; the list is cleared first. Fields beyond `most` are passed over.
void splitFields(std::string_view line, Delimiter delimiter, std::vector<std::string_view>& fields,
                 std::size_t most = mostFields);

/// The level in a row's fields; what they lack or what is no number stays unknown.
seawater::Level levelOf(const std::vector<std::string_view>& fields, const ColumnMap& columns);

/// Takes a level into the cast, after completing it. The third value becomes the temperature, 0
/// where it is not known. A level whose depth or sound speed cannot be had, or whose sound speed
/// is negative (-99 marks a missing one), is counted as left out.
void addLevel(ProbeCast& cast, seawater::Level level, double latitude);

/// Ends a reader: gives the reason where there are no samples, and their number.
int finished(ProbeCast& cast, const ColumnMap& columns);
int finished(ProbeCast& cast);

} // namespace datagram::probe
