#include "datagram/thinrequest.h"

#include "datagram/contentidentifier.h"
#include "datagram/saverequest.h"
#include "processing/check.h"
#include "profile/protocol.h"
#include "seawater/pressure.h"

#include <algorithm>

namespace datagram {

namespace {

constexpr int leastSamples = 3;
constexpr int leastAsvpSpeeds = 6;
constexpr float surface = 0.0F;       // m
constexpr float fullDepth = 12000.0F; // m

} // namespace

ThinRequest parseThinRequest(const QVector<QStringRef>& pieces)
{
    ThinRequest request;
    request.form = profile::parseProfileForm(pieces);
    request.lists = profile::parseValueLists(request.form.valueLists);
    request.isAsvp = request.form.kind.contains(protocol::soundVelocity);
    profile::dropListsWithoutText(request.form.valueLists, request.lists);
    return request;
}

QString kindRefusal(const ThinRequest& request)
{
    if (request.isAsvp || legalIdentifier(request.form.kind).isLegal)
        return {};
    bool isNumber = false;
    const int number = request.form.kind.toInt(&isNumber);
    return QStringLiteral("Unsupported SSP type S%1")
        .arg(isNumber ? QString::number(number) : request.form.kind);
}

QString thinRefusal(const ThinRequest& request)
{
    const QVector<float>& depths = request.lists.depth;
    const QVector<float>& speeds = request.lists.speed;
    if ((request.isAsvp && speeds.size() < leastAsvpSpeeds) || speeds.size() != depths.size() ||
        depths.size() < leastSamples)
        return QStringLiteral("Wrong svp input.");
    if (!processing::profileReport(depths, speeds, false).passes())
        return QStringLiteral("Depths not sorted.");
    if (request.isAsvp && (depths.constFirst() != surface || depths.constLast() != fullDepth))
        return QStringLiteral("Profile not extended.");
    return {};
}

QString fixRefusal(const ThinRequest& request)
{
    const int count = request.lists.depth.size();
    const int speeds = request.lists.speed.size();
    if (request.isAsvp)
        return speeds < leastAsvpSpeeds || speeds != count ? QStringLiteral("Invalid svp.")
                                                           : QString();
    bool isNumber = false;
    if (request.form.statedSamples.toInt(&isNumber) != count || !isNumber)
        return QStringLiteral("Stated sample count mismatch.");
    if (count < leastSamples || !haveEqualLengths(request.lists, request))
        return QStringLiteral("Sample count mismatch or too small.");
    return {};
}

bool hasPressureColumn(const ThinRequest& request)
{
    return !request.isAsvp && legalIdentifier(request.form.kind).firstIsPressure;
}

void continueLists(profile::ValueLists& lists, const raytrace::Layers& samples,
                   std::optional<double> pressureLatitude)
{
    constexpr double megapascals = 0.01; // of a decibar
    const auto repeatLast = [](QVector<float>& values) {
        if (!values.isEmpty())
            values.append(values.constLast());
    };
    const bool hasProbeDepth = !lists.probeDepth.isEmpty();
    const bool hasProbeSpeed = !lists.probeSpeed.isEmpty();
    for (auto row = std::size_t(lists.depth.size()); row < samples.size(); ++row) {
        const raytrace::LayerRecord& sample = samples[row];
        lists.depth.append(float(sample.d));
        lists.speed.append(float(sample.c));
        if (hasProbeDepth)
            lists.probeDepth.append(
                float(pressureLatitude
                          ? seawater::depthToPressure(*pressureLatitude, sample.d) * megapascals
                          : sample.d));
        if (hasProbeSpeed)
            lists.probeSpeed.append(float(sample.c));
        repeatLast(lists.temperature);
        repeatLast(lists.salinity);
        repeatLast(lists.absorption);
    }
}

bool haveEqualLengths(const profile::ValueLists& lists, const ThinRequest& request)
{
    const ContentIdentifier kind =
        request.isAsvp ? ContentIdentifier() : legalIdentifier(request.form.kind);
    const auto isWhole = [count = lists.depth.size()](const QVector<float>& list, bool isWritten) {
        return list.size() == count || (list.isEmpty() && !isWritten);
    };
    return isWhole(lists.speed, true) &&
           isWhole(lists.probeDepth, kind.first == FirstColumn::Alternative) &&
           isWhole(lists.probeSpeed, false) && isWhole(lists.temperature, kind.hasTemperature) &&
           isWhole(lists.salinity, kind.hasSalinity) &&
           isWhole(lists.absorption, kind.hasAbsorption);
}

DatagramParts datagramPartsOf(const profile::ProfileForm& form, const profile::ValueLists& lists)
{
    DatagramParts parts;
    parts.identifier = QStringLiteral("%1").arg(form.kind.toInt(), 2, 10, QLatin1Char('0'));
    parts.samples = QString::number(lists.depth.size());
    parts.time = form.time;
    parts.latitude = form.latitude;
    parts.longitude = form.longitude;
    parts.comment = form.comment;
    parts.columns = columnsOf(lists);
    return parts;
}

profile::AsvpHeader asvpHeaderOf(const profile::ProfileForm& form)
{
    return {form.kind,     form.version,   form.identifier, form.time,
            form.latitude, form.longitude, form.radius,     form.validFrom,
            form.validTo,  form.source,    form.history};
}

QString derivedName(const QString& name, const QString& ending)
{
    const int start =
        std::max(name.lastIndexOf(QLatin1Char('/')), name.lastIndexOf(QLatin1Char('\\'))) + 1;
    const int point = name.lastIndexOf(QLatin1Char('.'));
    return (point < start ? name : name.left(point)) + ending;
}

} // namespace datagram
