#include "processing/check.h"

#include "processing/extensionrows.h"

#include <algorithm>
#include <limits>

namespace processing {

namespace {

QString profileIsFine()
{
    return QStringLiteral("Profile seems ok!");
}

bool hasValidSpeed(const raytrace::LayerRecord& sample)
{
    return sample.c >= limits::minSoundSpeed && sample.c <= limits::maxSoundSpeed;
}

bool endsShallow(const raytrace::Layers& samples)
{
    return !samples.empty() && samples.back().d < limits::fullOceanDepth;
}

raytrace::Layers pairs(const QVector<float>& depths, const QVector<float>& speeds)
{
    return raytrace::makeLayers(depths.constData(), speeds.constData(),
                                std::size_t(std::min(depths.size(), speeds.size())));
}

} // namespace

std::vector<std::int32_t> validSampleMarks(const raytrace::Layers& samples)
{
    std::vector<std::int32_t> marks(samples.size(), 1);
    double lastDepth = -std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const raytrace::LayerRecord& sample = samples[i];
        if (sample.d < limits::surface || !hasValidSpeed(sample) ||
            lastDepth > sample.d - limits::minDepthStep)
            marks[i] = 0;
        else
            lastDepth = sample.d;
    }
    return marks;
}

QVector<int> findUnsortedDepths(const raytrace::Layers& samples)
{
    QVector<int> unsorted;
    for (std::size_t i = 1; i < samples.size(); ++i) {
        if (samples[i - 1].d >= samples[i].d - limits::sortedDepthStep)
            unsorted.append(int(i));
    }
    return unsorted;
}

bool isReadyToSend(const raytrace::Layers& samples)
{
    return !endsShallow(samples) && isSoundToSurface(samples);
}

bool isSoundToSurface(const raytrace::Layers& samples)
{
    const std::vector<std::int32_t> marks = validSampleMarks(samples);
    const bool allValid =
        std::all_of(marks.begin(), marks.end(), [](int mark) { return mark != 0; });
    return allValid && std::any_of(samples.begin(), samples.end(),
                                   [](const auto& sample) { return sample.d == limits::surface; });
}

QString checkRefusal(const profile::ValueLists& lists)
{
    if (lists.speed.size() < 2)
        return QStringLiteral("Too few samples in profile.");
    if (lists.speed.size() != lists.depth.size())
        return QStringLiteral("No of depths and speed samples don't match.");
    return {};
}

CheckResult checkSamples(const raytrace::Layers& samples)
{
    CheckResult result;
    QString missing;
    if (endsShallow(samples))
        missing += QStringLiteral("SVP must be extended to full ocean depth (12000.00m).\n");

    bool reachesSurface = false;
    const std::vector<std::int32_t> marks = validSampleMarks(samples);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        if (marks[i] == 0) {
            result.invalidSpeeds.append(samples[i].c);
            result.invalidDepths.append(samples[i].d);
        } else if (samples[i].d == limits::surface) {
            reachesSurface = true;
        }
    }
    if (!reachesSurface)
        missing += QStringLiteral("SVP must be extended upwards to 0.00m\n");

    result.verdict = result.invalidDepths.isEmpty()
                         ? QStringLiteral("Existing profile depths and sound speeds are valid.")
                         : QStringLiteral("Invalid entries are marked.");
    if (!missing.isEmpty())
        result.verdict += QLatin1Char('\n') + missing;
    return result;
}

ProfileReport profileReport(const QVector<float>& depths, const QVector<float>& speeds, bool clean)
{
    ProfileReport report;
    report.used = pairs(depths, speeds);
    report.problems = findUnsortedDepths(report.used);

    if (!clean) {
        if (!report.problems.isEmpty())
            report.text += QStringLiteral("Depths are not sorted.\n");
        if (std::any_of(report.used.begin(), report.used.end(),
                        [](const auto& sample) { return sample.d < limits::surface; }))
            report.text += QStringLiteral("Negative depths found.\n");
        if (endsShallow(report.used))
            report.text += QStringLiteral("SVP must be extended to full ocean depth.\n");
        if (report.text.isEmpty())
            report.text = profileIsFine();
        return report;
    }

    const std::vector<std::int32_t> marks = validSampleMarks(report.used);
    raytrace::Layers valid;
    for (std::size_t i = 0; i < marks.size(); ++i) {
        if (marks[i] != 0)
            valid.push_back(report.used[i]);
    }
    if (endsShallow(valid)) {
        const double lastDepth = valid.back().d;
        const ExtensionRows& rows = defaultExtensionRows();
        for (int i = 0; i < rows.depths.size(); ++i) {
            if (double(rows.depths[i]) > lastDepth)
                valid.push_back({0.0, double(rows.depths[i]), double(rows.speeds[i])});
        }
    }
    raytrace::computeGradients(valid);
    report.used = std::move(valid);
    report.text = profileIsFine();
    return report;
}

// Lists of unequal length are the caller's to refuse; here a depth without a speed counts for the
// reach of the profile alone.
static bool passesAsPairs(const QVector<float>& depths, const QVector<float>& speeds)
{
    const raytrace::Layers samples = pairs(depths, speeds);
    const bool reachesDown = !depths.isEmpty() && double(depths.last()) >= limits::fullOceanDepth;
    return speeds.size() >= 2 && isSoundToSurface(samples) &&
           (reachesDown || !endsShallow(samples));
}

SendCheck quickCheck(const QString& request, int expected)
{
    SendCheck check;
    const QString block = profile::withoutBrackets(request);
    const QVector<QStringRef> pieces = profile::splitPieces(block, Qt::SkipEmptyParts);
    profile::ValueLists lists;
    if (expected != 0 && pieces.size() != expected) {
        check.message = QStringLiteral("Wrong number of input parameters.");
        return check;
    }
    if (pieces.size() == profile::fullSendPieces) {
        lists = profile::parseValueLists(pieces[2]);
    } else if (pieces.size() == profile::shortSendPieces) {
        lists.speed = profile::parseNumbers(pieces[2]);
        lists.depth = profile::parseNumbers(pieces[3]);
    } else {
        check.message = QStringLiteral("Wrong number of input parameters.");
        return check;
    }

    check.passes = passesAsPairs(lists.depth, lists.speed);
    if (!check.passes && pieces.size() == profile::shortSendPieces) {
        // Senders of the short form put the two lists in either order; only one of them can
        // make a valid profile.
        check.passes = passesAsPairs(lists.speed, lists.depth);
        check.listsSwapped = check.passes;
    }
    return check;
}

} // namespace processing
