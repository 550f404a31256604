#pragma once

#include "profile/columndecoder.h"
#include "profile/openedprofile.h"

#include <QByteArray>
#include <QString>

namespace profile {

/// What an older Valeport text file (".valeport") holds.
struct ValeportFile
{
    QVector<float> record;     ///< profile record, see `decodeColumns`
    DecimalCounts decimals;    ///< as the text shows them
    QString time;              ///< yyyyMMddHHmmss of the line "Now:"; empty without a valid one
    bool isTimeUnread = false; ///< the line "Now:" tells something else
    QString latitude;          ///< decimal degrees; empty when unknown
    QString longitude;         ///< decimal degrees; empty when unknown
    QString pressureUnits; ///< of the line "Pressure units:": what the first column is measured in
};

/// Reads a whole file: header lines of the form "Name: value", then the rows. `format` says where
/// the columns are. The header ends where the rows begin, whatever number of lines it has; its
/// lines never become levels, not even one of numbers: fewer than 20 rows in front of such a line
/// belong to the header, and so do those in front of a line of words among the lines to skip. Where
/// no row is separated as `format` says, the separator is found in the first row behind the lines
/// to skip.
ValeportFile readValeport(const QByteArray& raw, const tagDecodeFmt& format);

/// Reads a file and fills the reply. The time goes out as milliseconds since 1970.
OpenedProfile openValeportFile(const QByteArray& content, const tagDecodeFmt& format,
                               const QString& name);

} // namespace profile
