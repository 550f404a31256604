#include "datagram/convertedcheck.h"

#include "datagram/receivefile.h"
#include "datagram/svpprocessing.h"
#include "settings/numbers.h"

#include <cmath>

namespace datagram {

namespace {

constexpr int asvpFormat = 4;

// Message for a result of the reader that gives no samples.
int readerMessage(int result)
{
    switch (result) {
    case 0:
        return 2625;
    case -1:
        return 2626;
    case -3:
        return 2627;
    case -4:
        return 2628;
    case -5:
        return 2629;
    default:
        return 2630;
    }
}

// Message for a rule that a sample breaks.
int sampleMessage(int code)
{
    constexpr int lastCode = 7;
    return code >= 1 && code <= lastCode ? 2614 + code : 2622;
}

int depthFault(double depth, double previous)
{
    constexpr double deepest = 12000.01;
    constexpr double closest = 0.00998; // one centimetre in the file's decimals
    if (depth < 0.0 || depth > deepest)
        return 3;
    if (!(depth > previous))
        return depth == previous ? 5 : 4;
    return depth - previous < closest ? 7 : 0;
}

} // namespace

SampleFault checkConvertedSamples(const std::vector<ProbeSample>& samples,
                                  const settings::ProfileLimits& limits)
{
    constexpr double fullDepth = 12000.0;
    constexpr double shortBy = 100.0;
    if (samples.empty())
        return {1, 0, 0.0, 9999.0};
    double previous = -9999.0;
    int number = 0;
    for (const ProbeSample& sample : samples) {
        ++number;
        int code = depthFault(sample.depth, previous);
        // The limits are 32-bit floats: a speed equal to one as it is written must be equal here.
        const float speed = settings::toFloat32(sample.speed);
        const bool isInLimits = speed >= limits.minSoundSpeed && speed <= limits.maxSoundSpeed;
        if (code == 0 && !isInLimits)
            code = 2;
        if (code != 0)
            return {code, number, sample.depth, sample.speed};
        previous = sample.depth;
    }
    if (std::abs(fullDepth - previous) > shortBy)
        return {6, number, previous, samples.back().speed};
    return {};
}

bool fnCreateAndCheckS00(const QString& fileName, const settings::ProfileLimits& limits,
                         QByteArray& text, int& count, Report& report)
{
    CReceiveFile file;
    if (!file.open(fileName)) {
        report = {2631, {}};
        return false;
    }
    CReceiveData data;
    const int found = data.parse(asvpFormat, file.text());
    if (found <= 0) {
        report = {readerMessage(found), {}};
        return false;
    }
    const SampleFault fault = checkConvertedSamples(data.samples(), limits);
    if (fault.code != 0) {
        count = -1;
        report = {sampleMessage(fault.code), {fault.number, fault.depth, fault.speed}};
        return false;
    }
    const CSVPProcessing processing(data);
    text = processing.datagram();
    count = processing.samples();
    return true;
}

} // namespace datagram
