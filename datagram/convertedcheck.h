#pragma once

#include "datagram/receivedata.h"
#include "datagram/report.h"
#include "settings/defaultsettings.h"

#include <QByteArray>
#include <QString>

#include <vector>

/// Reading a converted `.asvp` file back, and the rules that its samples must keep.
namespace datagram {

/// The first rule that a sample breaks.
struct SampleFault
{
    int code = 0;       ///< 0 none; 1 to 7, in the order of the report messages 2615 to 2621
    int number = 0;     ///< of the sample, from 1; 0 without samples
    double depth = 0.0; ///< m
    double speed = 0.0; ///< m/s
};

/// Tests samples in their order: depth 0 to 12 000.01 m (code 3), above the one before (5 when
/// equal, 4 when smaller or no number), by at least 0.00998 m (7), sound speed within the limits
/// (2; also when it is no number); then that the last depth lies within 100 m of 12 000 m (6). No
/// samples at all give code 1 with a speed of 9999.
SampleFault checkConvertedSamples(const std::vector<ProbeSample>& samples,
                                  const settings::ProfileLimits& limits);

/// Reads the converted file `fileName`, checks its samples and builds the datagram of content
/// identifier 0 from it. On success `text` is that datagram and `count` its number of samples. On
/// failure the result is false and `report` the one message; `count` is -1 after samples that do
/// not keep the rules.
bool fnCreateAndCheckS00(const QString& fileName, const settings::ProfileLimits& limits,
                         QByteArray& text, int& count, Report& report);

} // namespace datagram
