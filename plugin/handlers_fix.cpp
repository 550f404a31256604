#include "datagram/thinrequest.h"
#include "platform/platform.h"
#include "plugin/csvp_webinterface.h"
#include "plugin/reply.h"
#include "processing/check.h"
#include "processing/thin.h"
#include "profile/profilefolder.h"
#include "profile/protocol.h"
#include "profile/requestblock.h"
#include "settings/tokenstore.h"

#include <QFileInfo>

#include <cmath>
#include <optional>

// The repair in one step: cleaned, continued to full ocean depth, thinned, written, compared.

using namespace protocol;

namespace {

constexpr std::size_t leastSamples = 2;

// What the survey system's tokens say of the World Ocean Atlas.
struct AtlasSettings
{
    bool isUsed = false;
    QString salinityFile;
    QString temperatureFile;
};

// A token that is missing is added with its default. Where the tokens cannot be read, each lookup
// could wait for their lock again: the first one that fails is the last.
AtlasSettings atlasSettings()
{
    using Status = settings::TokenStatus;
    const auto kept = settings::TokenStore::Existing::Kept;
    const QString extendName = QStringLiteral("SVP_WOA_EXTEND");
    AtlasSettings result;
    settings::TokenStore tokens;
    bool isReadable = tokens.initialise();
    if (!isReadable)
        return result;

    qint64 isUsed = 0;
    const Status status = tokens.integerValue(extendName, isUsed);
    settings::Token other; // a number with a fraction says yes as well
    result.isUsed =
        isUsed != 0 || (status == Status::WrongKind && tokens.tokenValue(extendName, other) == 0 &&
                        other.value.toDouble() != 0.0);
    isReadable = status != Status::Unreadable;
    if (status == Status::Absent)
        isReadable =
            tokens.addInteger(extendName, QStringLiteral("Use WOA for svp extentions"), 0, kept);
    const auto text = [&](const QString& name, const QString& description, QString& value) {
        if (!isReadable)
            return;
        const Status found = tokens.textValue(name, value);
        isReadable = found != Status::Unreadable;
        if (found == Status::Absent)
            isReadable = tokens.addText(name, description, QString(), kept);
    };
    text(QStringLiteral("SVP_WOA_FILE_S"), QStringLiteral("WOA database Salinity file"),
         result.salinityFile);
    text(QStringLiteral("SVP_WOA_FILE_T"), QStringLiteral("WOA database Temperature file"),
         result.temperatureFile);
    return result;
}

// A coordinate in decimal degrees; none where the text is no finite number.
std::optional<double> coordinate(const QString& text)
{
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    return isNumber && std::isfinite(value) ? std::optional<double>(value) : std::nullopt;
}

} // namespace

void CSVP_WebInterface::handleFixProfile(const QString& body)
{
    const auto refuse = [this](const QString& reason) {
        blankSVP();
        send(Reply(action::fix).failure(reason));
        handleAlert(pendingAlert);
    };
    const QString block = profile::withoutBrackets(body);
    const QVector<QStringRef> pieces = profile::splitPieces(block, Qt::SkipEmptyParts);
    if (pieces.size() != profile::thinPieces)
        return refuse(QStringLiteral("Invalid parameters."));
    const QStringRef& factor = pieces.constLast();
    const auto tolerance = double(profile::listNumber(factor));
    if (!processing::isThinTolerance(tolerance, processing::thinning::maxAskedTolerance))
        return refuse(QStringLiteral("Invalid thin factor: ") + factor);

    const AtlasSettings atlasUse = atlasSettings();
    const datagram::ThinRequest request = datagram::parseThinRequest(pieces);
    for (const QString& reason : {datagram::kindRefusal(request), datagram::fixRefusal(request)}) {
        if (!reason.isEmpty())
            return refuse(reason);
    }

    blankSVP();
    const profile::ValueLists& received = request.lists;
    model.samples = raytrace::makeLayers(received.depth.constData(), received.speed.constData(),
                                         std::size_t(received.depth.size()));
    profile::ValueLists lists = profile::valuesAt(received, model.keepValid());
    if (model.samples.size() < leastSamples)
        return refuse(request.isAsvp ? QStringLiteral("Error cleaning profile.")
                                     : QStringLiteral("Error cleaning. Too few samples left."));

    if (model.samples.back().d < processing::limits::fullOceanDepth) {
        const QString reason =
            extendForFix(request, atlasUse.isUsed, atlasUse.salinityFile, atlasUse.temperatureFile);
        if (!reason.isEmpty())
            return refuse(reason);
        std::optional<double> pressureLatitude;
        if (datagram::hasPressureColumn(request))
            pressureLatitude = coordinate(request.form.latitude).value_or(0.0);
        datagram::continueLists(lists, model.samples, pressureLatitude);
    }

    model.thinProfile(tolerance);
    if (model.kept.size() < leastSamples)
        return refuse(QStringLiteral("Error thinning profile."));
    const profile::ValueLists fixed = profile::valuesAt(lists, model.kept);
    if (!datagram::haveEqualLengths(fixed, request))
        return refuse(QStringLiteral("Thinning error: element sizes are different"));

    QString path;
    const QString reason = writeProfile(request, fixed, QStringLiteral("_fixed"), path);
    if (!reason.isEmpty())
        return refuse(request.isAsvp ? QStringLiteral("Error writing file: %1")
                                           .arg(path.isEmpty() ? request.form.fileName : path)
                                     : reason);
    send(Reply(action::fix)
             .with(reply::file, QFileInfo(path).fileName())
             .with(reply::fullName, path)
             .success());
    QJsonObject comparison =
        makeJsonCompareSVP(received.depth, received.speed, fixed.depth, fixed.speed);
    comparison.insert(reply::file, QString());
    comparison.insert(reply::whoami, QString(action::thin));
    send(comparison);
    blankSVP();
}

QString CSVP_WebInterface::extendForFix(const datagram::ThinRequest& request, bool fromAtlas,
                                        const QString& salinityFile, const QString& temperatureFile)
{
    const profile::ProfileFolder folder = profile::dataProfileFolder();
    const QString defaultFile = folder.pathOf(QStringLiteral("SVPExtension.txt"));
    QString file = defaultFile;
    if (fromAtlas) {
        const std::optional<double> latitude = coordinate(request.form.latitude);
        const std::optional<double> longitude = coordinate(request.form.longitude);
        // Without a position there is no cell: that of 0 N 0 E would be a wrong ocean.
        file = latitude && longitude
                   ? processing::fnGeneratWOAExtFile(
                         atlas, *latitude, *longitude, salinityFile, temperatureFile,
                         [&](double) {
                             return processing::genExtensionData(defaultFile, model.samples);
                         },
                         folder.path())
                   : QString();
        if (file.isEmpty())
            return QStringLiteral("Error generating WOA extension file.");
    }
    model.genExtensionData(file);
    if (model.extend() != 0)
        return {};
    model.extension = processing::fallbackExtensionRows();
    if (model.extend() != 0)
        return {};
    return request.isAsvp ? QStringLiteral("Error writing file.")
                          : QStringLiteral("Error extending file downwards during profile fix.");
}
