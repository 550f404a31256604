#pragma once

#include "profile/columndecoder.h"
#include "profile/openedprofile.h"

#include <QByteArray>
#include <QString>

namespace profile {

/// Finds the layout of an instrument file: `fnDecodeValeportVP2` or `fnDecodeAML_AML`.
using InstrumentDecoder = bool (*)(const QByteArray& text, tagDecodeFmt& format);

/// The levels of an instrument file.
struct InstrumentRecord
{
    QVector<float> record;  ///< profile record, see `decodeColumns`
    DecimalCounts decimals; ///< as the columns that were read show them
    bool hasWater = false;  ///< every level has a temperature and a salinity
};

/// Reads the rows of an instrument file by what a decoder has found. What a row lacks is computed:
/// depth from pressure (at the file's latitude, 0 when unknown), salinity from conductivity, sound
/// speed from salinity, temperature and pressure; what it carries is never replaced. A row without
/// depth or sound speed and the means to compute them is passed over.
///
/// Slots: sound speed and depth; the depth again, or the pressure in MPa where the file has no
/// column of depth; the sound speed again; temperature; salinity; 0. A temperature or salinity that
/// is not known is 0.
InstrumentRecord decodeInstrumentRows(std::string_view text, const tagDecodeFmt& format);

/// Reads an instrument file. The kind is the content identifier "01" when temperature and salinity
/// are known throughout, else "00". `problem` is the reason when the decoder cannot read it.
OpenedProfile openInstrumentFile(const QByteArray& content, const QString& name,
                                 InstrumentDecoder decoder, const QString& problem);

} // namespace profile
