#pragma once

#include "profile/decimalcounts.h"

#include <QString>
#include <QVector>

#include <string_view>
#include <utility>
#include <vector>

namespace profile {

/// How the columns of a text file are read. Column numbers count from 0; -1 is an absent one.
struct tagDecodeFmt
{
    int depthColumn = -1;
    int speedColumn = -1;
    int temperatureColumn = -1;
    int salinityColumn = -1;
    int absorptionColumn = -1;
    QString skipLines;        ///< lines that are no samples, see `LineSet`
    double depthFactor = 1.0; ///< a depth in the file times this is in m
    double speedFactor = 1.0; ///< a speed in the file times this is in m/s
    char separator = ' ';     ///< a blank stands for a run of blanks and tabs
};

/// A set of line numbers, written as numbers and ranges separated by ";": "1;3-5". Lines count
/// from 1. Anything else in the text means no line. A huge range costs no more than a small one.
class LineSet
{
  public:
    explicit LineSet(const QString& text);

    bool contains(qint64 line) const;

  private:
    std::vector<std::pair<qint64, qint64>> m_ranges; // sorted, not overlapping
};

/// Values per level in a profile record.
constexpr int recordSlots = 7;

/// The fewest values of a record that can go into a reply: two levels.
constexpr int minRecordValues = 2 * recordSlots;

/// Decodes the samples of `text` into a profile record: seven values per level, one after the
/// other: sound speed, depth, depth as measured, speed as measured, temperature, salinity,
/// absorption coefficient; 0 where a line has none. Skipped lines, lines with too few columns,
/// and lines whose depth or speed is no finite number are passed over.
///
/// `decimals`, when given, is raised to the decimals that the samples' columns show in the text.
QVector<float> decodeColumns(std::string_view text, const tagDecodeFmt& format,
                             DecimalCounts* decimals = nullptr);

} // namespace profile
