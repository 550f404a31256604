#include "processing/extendrequest.h"

#include "processing/check.h"
#include "profile/requestblock.h"

namespace processing {

namespace {

constexpr int tempSalPieces = 5;
constexpr int withFilePieces = 3;

QString bareBody(const QString& body)
{
    return profile::withoutBrackets(body.trimmed());
}

QVector<float> filledNumbers(const QStringRef& list)
{
    QVector<float> numbers;
    const QVector<QStringRef> items = list.split(QLatin1Char(','), Qt::SkipEmptyParts);
    numbers.reserve(items.size());
    for (const QStringRef& item : items)
        numbers.append(profile::listNumber(item));
    return numbers;
}

// A request of "speeds*depths" and further pieces, `count` in all; `take` gets them.
template <typename Take> ExtendRequest parsePieces(const QString& body, int count, const Take& take)
{
    const QString block = bareBody(body);
    const QVector<QStringRef> pieces = profile::splitPieces(block, Qt::SkipEmptyParts);
    ExtendRequest request;
    if (pieces.size() != count)
        return request;
    request.hasForm = true;
    request.samples = {filledNumbers(pieces[1]), filledNumbers(pieces[0])};
    take(pieces, request);
    return request;
}

} // namespace

ExtendRequest parseExtendDefault(const QString& body)
{
    const QString block = bareBody(body);
    const QVector<QStringRef> lists = block.splitRef(QLatin1Char(';'), Qt::SkipEmptyParts);
    ExtendRequest request;
    request.hasForm = true;
    if (!lists.isEmpty())
        request.samples.speeds = profile::parseNumbers(lists[0]);
    if (lists.size() > 1)
        request.samples.depths = profile::parseNumbers(lists[1]);
    return request;
}

ExtendRequest parseExtendTempSal(const QString& body)
{
    return parsePieces(body, tempSalPieces, [](const auto& pieces, ExtendRequest& request) {
        request.temperature = profile::listNumber(pieces[2]);
        request.salinity = profile::listNumber(pieces[3]);
        request.latitude = profile::listNumber(pieces[4]);
    });
}

ExtendRequest parseExtendWithFile(const QString& body)
{
    return parsePieces(body, withFilePieces, [](const auto& pieces, ExtendRequest& request) {
        request.file = pieces[2].toString();
    });
}

QString takeSamples(const RequestSamples& from, SurfaceRule rule, raytrace::Layers& samples)
{
    const ProfileReport report = profileReport(from.depths, from.speeds, false);
    if (!report.passes())
        return report.text;
    samples = report.used;
    const double surface = limits::surface;
    if (!samples.empty() && (rule == SurfaceRule::UnlessAtSurface ? samples.front().d != surface
                                                                  : samples.front().d > surface)) {
        samples.insert(samples.begin(), {0.0, surface, samples.front().c});
        raytrace::computeGradients(samples);
    }
    return {};
}

bool isWaterMass(const ExtendRequest& request)
{
    return request.temperature >= 0.0F && request.temperature <= 50.0F &&
           request.salinity >= 0.0F && request.salinity <= 500.0F && request.latitude >= -90.0F &&
           request.latitude <= 90.0F;
}

} // namespace processing
