#include "platform/platform.h"
#include "plugin/csvp_webinterface.h"
#include "plugin/reply.h"
#include "processing/extendrequest.h"
#include "profile/profilefolder.h"
#include "profile/protocol.h"

#include <QDir>
#include <QJsonArray>

// Actions that continue a profile to full ocean depth. They work on the samples of the request
// and leave nothing behind.

using namespace protocol;
using processing::SurfaceRule;

namespace {

constexpr int leastSamplesForDefault = 3;
constexpr int leastSamplesForTempSal = 4;
constexpr int leastExtendedSamples = 3;

QString invalidSvp()
{
    return QStringLiteral("Invalid svp.");
}

QString errorExtending()
{
    return QStringLiteral("Error extending.");
}

// Where the extension file of a request lies: an absolute path is used as it is, any other is a
// file among the profiles, where uploads are stored. Empty when it leads elsewhere.
QString extensionFilePath(const QString& name)
{
    return QDir::isAbsolutePath(name) ? name : profile::openedProfileFolder().pathOf(name);
}

} // namespace

void CSVP_WebInterface::handleExtendDefault(const QString& body)
{
    const auto refuse = [this](const QString& reason) {
        blankSVP();
        send(Reply(action::extendDefault).failure(reason));
    };
    blankSVP();
    const processing::ExtendRequest request = processing::parseExtendDefault(body);
    const processing::RequestSamples& lists = request.samples;
    if (lists.depths.size() < leastSamplesForDefault || lists.speeds.size() < lists.depths.size())
        return refuse(invalidSvp());
    const QString unsorted =
        processing::takeSamples(lists, SurfaceRule::UnlessAtSurface, model.samples);
    if (!unsorted.isEmpty())
        return refuse(unsorted);
    model.extension = processing::fallbackExtensionRows();
    if (model.extend() == 0)
        return refuse(errorExtending());
    answerExtended(action::extendDefault);
}

void CSVP_WebInterface::handleExtendTempSal(const QString& body)
{
    const auto refuse = [this](const QString& reason) {
        blankSVP();
        send(Reply(action::extendTempSal).failure(reason));
    };
    blankSVP();
    const processing::ExtendRequest request = processing::parseExtendTempSal(body);
    // Front ends tell this case by its reason, not by its result.
    if (!request.hasForm)
        return send(Reply(action::extendTempSal)
                        .with(reply::reason, QStringLiteral("Invalid input parameters."))
                        .success());
    const processing::RequestSamples& lists = request.samples;
    if (lists.speeds.size() < leastSamplesForTempSal || lists.depths.size() < lists.speeds.size())
        return refuse(invalidSvp());
    const QString unsorted =
        processing::takeSamples(lists, SurfaceRule::BelowSurface, model.samples);
    if (!unsorted.isEmpty())
        return refuse(unsorted);
    if (!processing::isWaterMass(request))
        return refuse(invalidSvp());
    model.extendIFREMER(double(request.temperature), double(request.salinity),
                        double(request.latitude));
    if (model.samples.size() < leastExtendedSamples)
        return refuse(QStringLiteral("Failed to extend svp."));
    answerExtended(action::extendTempSal);
}

void CSVP_WebInterface::handleExtendWithFile(const QString& body)
{
    const auto refuse = [this](const QString& reason) {
        blankSVP();
        send(Reply(action::extendWithFile).failure(reason));
        handleAlert(pendingAlert);
    };
    blankSVP();
    const processing::ExtendRequest request = processing::parseExtendWithFile(body);
    if (!request.hasForm)
        return refuse(QStringLiteral("Invalid input parameters."));
    const processing::RequestSamples& lists = request.samples;
    if (lists.speeds.size() != lists.depths.size())
        return refuse(invalidSvp());
    const QString unsorted =
        processing::takeSamples(lists, SurfaceRule::UnlessAtSurface, model.samples);
    if (!unsorted.isEmpty())
        return refuse(unsorted);
    QByteArray text;
    if (!platform::readFile(extensionFilePath(request.file), text))
        return refuse(QStringLiteral("Cannot open extention svp."));
    model.extension = processing::parseExtensionRows(text, processing::RowRule::All);
    if (!processing::isUsableExtension(model.extension))
        return refuse(QStringLiteral("Error in file."));
    // Without a sample there is nothing to continue.
    if (model.extend() == 0 || model.samples.empty())
        return refuse(errorExtending());
    answerExtended(action::extendWithFile);
}

void CSVP_WebInterface::answerExtended(QLatin1String whoami)
{
    QJsonArray speeds;
    QJsonArray depths;
    for (const raytrace::LayerRecord& sample : model.samples) {
        speeds.append(double(float(sample.c)));
        depths.append(double(float(sample.d)));
    }
    blankSVP();
    send(Reply(whoami).with(reply::speeds, speeds).with(reply::depths, depths).success());
}

void CSVP_WebInterface::handleSelectExtentionFile(const QString& body)
{
    Q_UNUSED(body)
    send(Reply(action::selectExtension)
             .with(reply::extensionFile, QStringLiteral("extentionfile.asvp"))
             .success());
}
