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
    const QString block = bareBody(body);
    const QVector<QStringRef> pieces = profile::splitPieces(block, Qt::SkipEmptyParts);
    ExtendRequest request;
    if (pieces.size() != tempSalPieces)
        return request;
    request.hasForm = true;
    request.samples = {filledNumbers(pieces[1]), filledNumbers(pieces[0])};
    request.temperature = profile::listNumber(pieces[2]);
    request.salinity = profile::listNumber(pieces[3]);
    request.latitude = profile::listNumber(pieces[4]);
    return request;
}

ExtendRequest parseExtendWithFile(const QString& body)
{
    const QString block = bareBody(body);
    const QVector<QStringRef> pieces = profile::splitPieces(block, Qt::SkipEmptyParts);
    ExtendRequest request;
    if (pieces.size() != withFilePieces)
        return request;
    request.hasForm = true;
    request.samples = {filledNumbers(pieces[1]), filledNumbers(pieces[0])};
    request.file = pieces[2].toString();
    return request;
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
