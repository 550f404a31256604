#include "datagram/thinrequest.h"
#include "plugin/csvp_webinterface.h"
#include "plugin/reply.h"
#include "processing/thin.h"
#include "profile/asvpfile.h"
#include "profile/profilefolder.h"
#include "profile/protocol.h"
#include "profile/requestblock.h"

#include <QFileInfo>

// Thinning: a profile in, a file with fewer samples out.

using namespace protocol;

void CSVP_WebInterface::handleThin(const QString& body)
{
    const auto refuse = [this](const QString& reason) {
        blankSVP();
        send(Reply(action::thin).failure(reason));
        handleAlert(pendingAlert);
    };
    const QString block = profile::withoutBrackets(body);
    const QVector<QStringRef> pieces = profile::splitPieces(block, Qt::SkipEmptyParts);
    if (pieces.size() != profile::thinPieces)
        return refuse(QStringLiteral("Wrong number of input parameters."));
    const datagram::ThinRequest request = datagram::parseThinRequest(pieces);
    for (const QString& reason : {datagram::kindRefusal(request), datagram::thinRefusal(request)}) {
        if (!reason.isEmpty())
            return refuse(reason);
    }
    const auto tolerance = double(profile::listNumber(QStringRef(&request.form.tolerance)));
    if (!processing::isThinTolerance(tolerance, processing::thinning::maxAskedTolerance))
        return refuse(QStringLiteral("Input parameter error"));

    blankSVP();
    const profile::ValueLists& lists = request.lists;
    model.samples = raytrace::makeLayers(lists.depth.constData(), lists.speed.constData(),
                                         std::size_t(lists.depth.size()));
    model.thinProfile(tolerance);
    if (model.kept.empty())
        return refuse(QStringLiteral("Thinning error"));
    const profile::ValueLists thinned = profile::valuesAt(lists, model.kept);
    if (!datagram::haveEqualLengths(thinned, request))
        return refuse(QStringLiteral("Thinning error: element sizes are different"));

    QString path;
    const QString reason = writeProfile(request, thinned, QStringLiteral("_thinned"), path);
    if (!reason.isEmpty())
        return refuse(reason);
    blankSVP();
    send(Reply(action::thin)
             .with(reply::file, QFileInfo(path).fileName())
             .with(reply::fullName, path)
             .success());
}

QString CSVP_WebInterface::writeProfile(const datagram::ThinRequest& request,
                                        const profile::ValueLists& lists, const QString& ending,
                                        QString& path)
{
    const profile::ProfileForm& form = request.form;
    if (request.isAsvp) {
        const QString name = datagram::derivedName(form.fileName, ending + QStringLiteral(".asvp"));
        const int status = profile::writeSVPfile(lists.depth, lists.speed, name,
                                                 datagram::asvpHeaderOf(form), path);
        if (status == profile::WriteOk)
            return {};
        if (path.isEmpty()) // what could not be written had no place
            path = name;
        return QStringLiteral("Error writing file.");
    }
    const datagram::BuiltDatagram built =
        datagram::buildDatagram(datagram::datagramPartsOf(form, lists), decimals);
    if (!built.reason.isEmpty())
        return built.reason;
    const profile::ProfileFolder folder = profile::dataProfileFolder();
    path = folder.pathOf(datagram::derivedName(form.fileName, ending + QStringLiteral(".ssp")));
    folder.makeFolderOf(path);
    if (path.isEmpty())
        postErrorText = tr("The file name leads out of the folder");
    return !path.isEmpty() && handleSaveOtherFiles(path, built.bytes, true)
               ? QString()
               : QStringLiteral("Error saving file.");
}
