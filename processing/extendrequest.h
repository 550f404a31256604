#pragma once

#include "raytrace/layers.h"

#include <QString>
#include <QStringRef>
#include <QVector>

/// What the extend actions read out of a request, before anything is joined.
namespace processing {

/// Depths (m) and sound speeds (m/s) of a request, as 32-bit floats.
struct RequestSamples
{
    QVector<float> depths;
    QVector<float> speeds;
};

/// A request to extend: the samples and, for the forms that have them, the further pieces.
struct ExtendRequest
{
    bool hasForm = false; ///< as many pieces as the form asks for
    RequestSamples samples;
    float temperature = 0.0F; ///< degrees Celsius
    float salinity = 0.0F;    ///< practical salinity
    float latitude = 0.0F;    ///< decimal degrees
    QString file;             ///< path of an extension profile
};

/// The form of the default rows: "speeds;depths", empty items counted as 0. Has always its form:
/// a list that is not there is empty.
ExtendRequest parseExtendDefault(const QString& body);

/// "speeds*depths*temperature*salinity*latitude", empty items dropped.
ExtendRequest parseExtendTempSal(const QString& body);

/// "speeds*depths*file", empty items dropped.
ExtendRequest parseExtendWithFile(const QString& body);

/// Which profiles get a sample at the surface.
enum class SurfaceRule
{
    UnlessAtSurface, ///< those whose first depth is not 0, above it too
    BelowSurface     ///< those whose first depth is below the surface
};

/// Makes the samples to be extended, with one at 0 m and the first one's speed in front where
/// `rule` asks for it; one for each depth, which needs as many speeds at least. Returns the report
/// on the profile when samples are out of depth order, and makes none; else an empty text.
QString takeSamples(const RequestSamples& from, SurfaceRule rule, raytrace::Layers& samples);

/// Whether a water mass lies within 0 to 50 degrees Celsius, a salinity of 0 to 500 and a
/// latitude of -90 to 90.
bool isWaterMass(const ExtendRequest& request);

} // namespace processing
