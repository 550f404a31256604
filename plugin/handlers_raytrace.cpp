#include "plugin/csvp_webinterface.h"
#include "plugin/reply.h"
#include "processing/check.h"
#include "profile/protocol.h"
#include "profile/requestblock.h"
#include "raytrace/comparison.h"
#include "raytrace/rayengine.h"

#include <QJsonArray>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <new>
#include <vector>

using namespace protocol;

namespace {

constexpr int minRaySamples = 6;

// A lone sample as second profile stands for a constant speed down to full ocean depth.
void completeReference(profile::SampleLists& samples)
{
    for (const float depth : {1000.0F, 3000.0F, 5000.0F, 8000.0F, 12000.0F}) {
        samples.speed.append(1500.0F);
        samples.depth.append(depth);
    }
}

QJsonArray coordinates(const std::vector<raytrace::RayPoint>& path,
                       double raytrace::RayPoint::*coordinate)
{
    QJsonArray array;
    for (const raytrace::RayPoint& point : path)
        array.append(point.*coordinate);
    return array;
}

// The valid samples as layers. The check takes every number for one that can be compared, so what
// is none is left out before.
raytrace::Layers validLayers(const QVector<float>& depths, const QVector<float>& speeds)
{
    raytrace::Layers samples;
    const int count = std::min(depths.size(), speeds.size());
    samples.reserve(std::size_t(count));
    for (int i = 0; i < count; ++i) {
        if (std::isfinite(depths[i]) && std::isfinite(speeds[i]))
            samples.push_back({0.0, double(depths[i]), double(speeds[i])});
    }
    const std::vector<std::int32_t> marks = processing::validSampleMarks(samples);
    std::size_t valid = 0;
    for (std::size_t i = 0; i < marks.size(); ++i) {
        if (marks[i] != 0)
            samples[valid++] = samples[i];
    }
    samples.resize(valid);
    raytrace::computeGradients(samples);
    return samples;
}

QString depthText(double depth)
{
    char text[64]; // a 32-bit float has 39 digits before the point at most
    const auto written =
        std::to_chars(text, text + sizeof text, depth, std::chars_format::fixed, 2);
    return std::isnan(depth) ? QStringLiteral("nan")
                             : QString::fromLatin1(text, int(written.ptr - text));
}

QJsonObject comparisonFailure(const QString& reason)
{
    return {{reply::result, QString(reply::failure)}, {reply::reason, reason}};
}

QJsonObject comparisonReply(const raytrace::Comparison& comparison)
{
    QJsonObject object;
    for (std::size_t i = 0; i < comparison.size(); ++i) {
        QJsonArray pairs;
        for (const raytrace::DepthPair& pair : comparison[i])
            pairs.append(QJsonArray{depthText(pair.first), depthText(pair.second)});
        object.insert(reply::differencesAt + QString::number(int(raytrace::ranges[i])), pairs);
    }
    object.insert(reply::result, QString(reply::success));
    return object;
}

} // namespace

void CSVP_WebInterface::handleShowRaypath(const QString& body)
{
    const auto refuse = [this](const QString& reason) {
        send(Reply(action::rayPath).failure(reason));
    };
    const QString block = profile::withoutBrackets(body);
    const QVector<QStringRef> pieces = profile::splitPieces(block, Qt::SkipEmptyParts);
    if (pieces.size() != profile::rayPieces)
        return refuse(QStringLiteral("Input parameter error"));

    profile::RayForm form = profile::parseRayForm(pieces);
    if (!(form.angle >= 0.0F && form.angle <= 90.0F))
        return refuse(QStringLiteral("Beam pointing angle out of range."));
    if (form.first.depth.size() < minRaySamples)
        return refuse(QStringLiteral("Too few points in svp."));
    if (form.second.depth.size() == 1)
        completeReference(form.second);
    if (form.second.depth.size() < minRaySamples)
        return refuse(QStringLiteral("Memory allocation error or too few points in svp2."));

    const processing::ProfileReport first =
        processing::profileReport(form.first.depth, form.first.speed, true);
    const processing::ProfileReport second =
        processing::profileReport(form.second.depth, form.second.speed, true);
    if (!first.passes() || !second.passes() || first.used.size() < 2 || second.used.size() < 2)
        return refuse(QStringLiteral("Profiles not accepted. Please run fix."));

    const double depression = raytrace::radians(double(form.angle));
    raytrace::RayEngine engine(first.used);
    const std::vector<raytrace::RayPoint> firstPath = engine.path(depression);
    engine.setLayers(second.used);
    const std::vector<raytrace::RayPoint> secondPath = engine.path(depression);
    send(Reply(action::rayPath)
             .with(reply::firstPathX, coordinates(firstPath, &raytrace::RayPoint::x))
             .with(reply::firstPathY, coordinates(firstPath, &raytrace::RayPoint::z))
             .with(reply::secondPathX, coordinates(secondPath, &raytrace::RayPoint::x))
             .with(reply::secondPathY, coordinates(secondPath, &raytrace::RayPoint::z))
             .success());
}

QJsonObject CSVP_WebInterface::makeJsonCompareSVP(const QVector<float>& depth1,
                                                  const QVector<float>& speed1,
                                                  const QVector<float>& depth2,
                                                  const QVector<float>& speed2)
{
    // The answer of a fix goes out before its comparison, so running out of memory here must not
    // reach the dispatcher, which would answer once more.
    try {
        const raytrace::Layers first = validLayers(depth1, speed1);
        const raytrace::Layers second = validLayers(depth2, speed2);
        blankSVP(); // not before: the lists may be some of its buffers
        const auto comparison = raytrace::compareProfiles(first, second);
        return comparison ? comparisonReply(*comparison)
                          : comparisonFailure(QStringLiteral("Cannot calculate differences."));
    } catch (const std::bad_alloc&) {
        return comparisonFailure(QStringLiteral("Memory allocation error"));
    }
}
