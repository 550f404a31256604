#pragma once

#include "profile/columndecoder.h"

#include <QByteArray>

/// Instrument files that tell their own column layout in a header: the decoders find where the
/// columns are and what the file says about the cast. Sections, keys and column names compare as
/// whole words without regard to case, white space around them does not count; of a key that stands
/// twice in its section the first one with a value is taken. A quantity with two columns is read
/// from the later one.
namespace profile {

/// Reads the header of a Valeport `.vp2` file into `format`: columns, units, separator, lines
/// before the data, number of rows, time, position, description. False, with `format` partly
/// filled, when the text is no such file or has not the columns that depth and sound speed can be
/// had from.
bool fnDecodeValeportVP2(const QByteArray& text, tagDecodeFmt& format);

/// The same for an AML `.aml` or `.amlx` file.
bool fnDecodeAML_AML(const QByteArray& text, tagDecodeFmt& format);

/// The content identifier that the columns of `format` allow: 0 to 5 or 7, -1 for none.
int fnDetermineSSPType(const tagDecodeFmt& format);

} // namespace profile
