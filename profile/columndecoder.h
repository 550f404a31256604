#pragma once

#include "profile/decimalcounts.h"

#include <QString>
#include <QVector>

#include <array>
#include <cmath>
#include <limits>
#include <string_view>
#include <utility>
#include <vector>

namespace profile {

/// What the salinity column of a column file holds.
enum class SalinityWord
{
    Undefined,
    Salinity,
    Conductivity
};

struct tagDecodeFmt;

/// A column whose quantity stands once more behind it. It is read where the later one has no
/// number.
struct EarlierColumn
{
    int tagDecodeFmt::*quantity = nullptr; ///< the field that names the later column
    int column = -1;
    double factor = 1.0; ///< as the factor of the later column
};

/// How the columns of a text file are read, and what a decoder found about the file. Column
/// numbers count from 0; -1 is an absent one.
struct tagDecodeFmt
{
    int depthColumn = -1;
    int speedColumn = -1;
    int temperatureColumn = -1;
    int salinityColumn = -1;
    int absorptionColumn = -1;
    int pressureColumn = -1;
    int conductivityColumn = -1;
    int largestColumn = -1;   ///< the greater of the depth and the speed column of a filter row
    QString skipLines;        ///< lines that are no samples, see `LineSet`
    double depthFactor = 1.0; ///< a depth in the file times this is in m
    double speedFactor = 1.0; ///< a speed in the file times this is in m/s
    double conductivityFactor = 1.0; ///< a conductivity in the file times this is in mS/cm
    double pressureFactor = 1.0;     ///< a pressure in the file times this is in dbar
    char separator = ' ';            ///< a blank stands for a run of blanks and tabs
    SalinityWord salinityWord = SalinityWord::Undefined;

    // Found by the decoder of an instrument file; empty (0 rows) where the file does not say.
    std::vector<EarlierColumn> earlierColumns; ///< one for a quantity at most
    int rowCount = 0;                          ///< sample rows that the file announces
    QString time;                              ///< yyyyMMddHHmmss
    bool isTimeUnread = false; ///< the file tells a time, but it could not be understood
    QString latitude;          ///< as the file gives it
    QString longitude;         ///< as the file gives it
    QString description;       ///< e.g. "Valeport SWiFT vp2 format."
};

/// A set of line numbers, written as numbers and ranges separated by ";": "1;3-5". Lines count
/// from 1. Anything else in the text means no line. A huge range costs no more than a small one.
class LineSet
{
  public:
    explicit LineSet(const QString& text);

    bool contains(qint64 line) const { return line <= m_last && isInRange(line); }

  private:
    bool isInRange(qint64 line) const;

    std::vector<std::pair<qint64, qint64>> m_ranges; // sorted, not overlapping
    qint64 m_last = std::numeric_limits<qint64>::min();
};

/// Values per level in a profile record.
constexpr int recordSlots = 7;

/// The fewest values of a record that can go into a reply: two levels.
constexpr int minRecordValues = 2 * recordSlots;

/// Whether a 32-bit float can hold the value. False for not a number.
inline bool fitsFloat(double value)
{
    return std::abs(value) <= double(std::numeric_limits<float>::max());
}

/// Gathers the levels of a profile record.
class RecordBuilder
{
  public:
    void append(const std::array<float, recordSlots>& level);

    /// The record, after which the builder is empty again.
    QVector<float> take();

  private:
    static constexpr int firstLevels = 1024;

    QVector<float> m_record; // longer than what is used, so that few levels move the others
    int m_used = 0;
};

/// Decodes the samples of `text` into a profile record: seven values per level, one after the
/// other: sound speed, depth, depth as measured, speed as measured, temperature, salinity,
/// absorption coefficient; 0 where a line has none. Skipped lines, lines with too few columns,
/// and lines whose depth or speed is no finite number are passed over.
///
/// `decimals`, when given, is raised to the decimals that the samples' columns show in the text.
QVector<float> decodeColumns(std::string_view text, const tagDecodeFmt& format,
                             DecimalCounts* decimals = nullptr);

} // namespace profile
