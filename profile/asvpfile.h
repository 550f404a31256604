#pragma once

#include "profile/columndecoder.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

#include <array>

/// The `.asvp` format: a header line of twelve words in parentheses, then one "depth speed" pair
/// per line (m, m/s), lines ended by CR LF.
namespace profile {

/// Words of the header line. Eleven come from the caller, the last one is the sample count.
constexpr int asvpHeaderWords = 12;

/// Header words 1 to 11: kind, version, identifier, time, latitude, longitude, radius, valid
/// from, valid to, source, history.
using AsvpHeader = std::array<QString, asvpHeaderWords - 1>;

/// The words of a header line. The line is trimmed and its first and last character, the
/// parentheses, are dropped; a time of twelve characters, the fourth word, gets "00" as seconds.
/// An empty list when there are not exactly twelve words.
QStringList parseAsvpHeader(const QString& line);

/// What an `.asvp` file holds.
struct AsvpFile
{
    QStringList header;     ///< twelve words; empty when line 1 is no header
    QVector<float> record;  ///< profile record, see `decodeColumns`
    DecimalCounts decimals; ///< as the text shows them
};

/// Reads a whole file. `format` says where the columns are.
AsvpFile readAsvp(const QByteArray& raw, const tagDecodeFmt& format);

/// The text of a file: header, then the samples with two decimals. White space inside a header
/// value becomes "_"; an empty value becomes "0", or "NA" for kind, source and history, so that
/// twelve words always read back.
QByteArray asvpText(const QVector<float>& depths, const QVector<float>& speeds,
                    const AsvpHeader& header);

/// Outcome of `writeSVPfile`.
enum WriteStatus
{
    WriteOk = 0,
    ProfileRefused = -1, ///< fewer than 3 samples, or lists of unequal length; nothing written
    FileNotOpened = -2,  ///< the file could not be written; an older one is as it was
};

/// Writes a profile as an `.asvp` file into the folder that the survey system's configuration
/// names, replacing an older one whole. ".asvp" is appended to `fileName` unless it stands
/// somewhere in it. `path` receives the path written. A name that leads out of the folder cannot
/// be written. Returns a `WriteStatus`.
int writeSVPfile(const QVector<float>& depths, const QVector<float>& speeds,
                 const QString& fileName, const AsvpHeader& header, QString& path);

} // namespace profile
