#include "datagram/filewriter.h"
#include "datagram/receiver.h"
#include "datagram/saverequest.h"
#include "datagram/sendrequest.h"
#include "datagram/sspdatagram.h"
#include "plugin/csvp_webinterface.h"
#include "plugin/reply.h"
#include "processing/check.h"
#include "profile/asvpfile.h"
#include "profile/profilefolder.h"
#include "profile/protocol.h"
#include "profile/requestblock.h"

#include <QDebug>
#include <QHostAddress>
#include <QUdpSocket>

#include <new>

// Actions by which a profile leaves the editor: to the survey system, to a file, to the receiver.

using namespace protocol;

namespace {

constexpr int leastSamplesToSend = 2;
constexpr int leastSamplesToSave = 3;

datagram::DatagramParts partsOf(const profile::ProfileForm& form, const profile::ValueLists& lists)
{
    datagram::DatagramParts parts;
    parts.identifier = form.kind;
    parts.samples = form.statedSamples;
    parts.time = form.time;
    parts.latitude = form.latitude;
    parts.longitude = form.longitude;
    parts.comment = form.comment;
    parts.columns = datagram::columnsOf(lists);
    return parts;
}

} // namespace

void CSVP_WebInterface::handleSendSVPtoQRV(const QString& body)
{
    const auto answer = [this](const QJsonObject& reply) {
        send(reply);
        handleAlert(pendingAlert);
    };
    const auto refuse = [&answer](const QString& reason) {
        answer(Reply(action::send).failure(reason));
    };
    const QString block = profile::withoutBrackets(body);
    const QVector<QStringRef> pieces = profile::splitPieces(block, Qt::KeepEmptyParts);
    const bool isShort = pieces.first() == soundVelocity;
    if (pieces.size() != (isShort ? profile::shortSendPieces : profile::fullSendPieces))
        return refuse(QStringLiteral("Invalid parameters."));

    const processing::SendCheck check = processing::quickCheck(body, pieces.size());
    if (!check.passes)
        return refuse(QStringLiteral("Profile contains errors and will not be sent to QRV."));

    if (isShort) {
        const datagram::ShortSend request = datagram::parseShortSend(pieces, !check.listsSwapped);
        if (request.depths.size() != request.speeds.size())
            return refuse(QStringLiteral("Invalid svp."));
        QByteArray bytes;
        try {
            // The survey system reads this form as a C string: its end mark is sent too.
            bytes = datagram::shortDatagram(request) + QByteArray(1, '\0');
        } catch (const std::bad_alloc&) {
            return refuse(QStringLiteral("Memory allocation error."));
        }
        sendToSurveySystem(bytes);
        return answer(Reply(action::send)
                          .with(reply::file, request.fileName)
                          .with(reply::svpType, QStringLiteral("S00"))
                          .success());
    }

    const profile::SendForm form = profile::parseSendForm(pieces);
    if (!datagram::legalIdentifier(form.profileIdentifier).isLegal)
        return handleAlert(pendingAlert);
    const profile::ValueLists lists = profile::parseValueLists(form.profile.valueLists);
    const QString refusal =
        datagram::listsRefusal(lists, form.profile.statedSamples, leastSamplesToSend);
    if (!refusal.isEmpty())
        return refuse(refusal);
    const datagram::BuiltDatagram built =
        datagram::buildDatagram(partsOf(form.profile, lists), decimals);
    if (!built.reason.isEmpty())
        return refuse(built.reason);
    sendToSurveySystem(built.bytes);
    answer(Reply(action::send)
               .with(reply::file, form.profile.fileName)
               .with(reply::svpType, QLatin1Char('S') + form.profile.kind)
               .success());
}

void CSVP_WebInterface::sendToSurveySystem(const QByteArray& datagram)
{
    auto* const socket = new QUdpSocket(this);
    if (socket->writeDatagram(datagram, QHostAddress(QHostAddress::LocalHost),
                              datagram::surveySystemPort) != datagram.size()) {
        qDebug().noquote() << "SVP Editor - WARNING - datagram of" << datagram.size()
                           << "bytes not sent:" << socket->errorString();
    }
    // The object stays with the engine; the system's socket would run out over a long watch.
    socket->close();
}

void CSVP_WebInterface::handleSave(const QString& body)
{
    const QString block = profile::withoutBrackets(body);
    const QVector<QStringRef> pieces = profile::splitPieces(block, Qt::KeepEmptyParts);
    if (pieces.size() != profile::checkPieces)
        return refuseSave(QStringLiteral("Wrong number of input parameters."));
    const profile::ProfileForm form = profile::parseProfileForm(pieces);
    if (form.kind.contains(soundVelocity))
        return saveAsvp(pieces);

    if (!datagram::legalIdentifier(form.kind).isLegal)
        return handleAlert(pendingAlert);
    const profile::ValueLists lists = profile::parseValueLists(form.valueLists);
    const QString refusal = datagram::listsRefusal(lists, form.statedSamples, leastSamplesToSave);
    if (!refusal.isEmpty())
        return refuseSave(refusal);
    const datagram::BuiltDatagram built = datagram::buildDatagram(partsOf(form, lists), decimals);
    if (!built.reason.isEmpty())
        return refuseSave(built.reason);
    const profile::ProfileFolder folder = profile::savedProfileFolder();
    const QString path = folder.pathOf(datagram::datagramFileName(form.fileName));
    folder.makeFolderOf(path);
    if (path.isEmpty()) {
        postErrorText = tr("The file name leads out of the folder");
        return refuseSave(QStringLiteral("Error saving file."));
    }
    if (!handleSaveOtherFiles(path, built.bytes, true))
        return refuseSave(QStringLiteral("Error saving file."));
    answerSaved(path);
}

void CSVP_WebInterface::handleSaveAs(const QString& body)
{
    const QString block = profile::withoutBrackets(body);
    const QVector<QStringRef> pieces = profile::splitPieces(block, Qt::KeepEmptyParts);
    if (pieces.size() != profile::checkPieces)
        return refuseSave(QStringLiteral("Wrong number of input parameters."));
    saveAsvp(pieces);
}

void CSVP_WebInterface::saveAsvp(const QVector<QStringRef>& pieces)
{
    const profile::AsvpSaveForm form = profile::parseAsvpSaveForm(pieces);
    datagram::DepthSpeedPairs pairs;
    if (!datagram::parseDepthSpeedPairs(form.depthSpeedList, pairs))
        return refuseSave(QStringLiteral("Wrong svp input."));
    QString path;
    const int status = profile::writeSVPfile(
        pairs.depths, pairs.speeds, form.fileName,
        {form.kind, form.version, form.identifier, form.time, form.latitude, form.longitude,
         form.radius, form.validFrom, form.validTo, form.source, form.history},
        path);
    if (status != profile::WriteOk)
        return refuseSave(QStringLiteral("Error writing file."));
    answerSaved(path);
}

void CSVP_WebInterface::refuseSave(const QString& reason)
{
    send(Reply(action::save).failure(reason));
    handleAlert(pendingAlert);
}

void CSVP_WebInterface::answerSaved(const QString& path)
{
    send(Reply(action::save).with(reply::fullName, path).success());
    handleAlert(pendingAlert);
}

bool CSVP_WebInterface::handleSaveOtherFiles(const QString& path, const QByteArray& content,
                                             bool keepBackup)
{
    postErrorText.clear();
    const platform::Replaced outcome =
        datagram::saveOtherFile(path, content, keepBackup, postErrorText);
    if (outcome == platform::Replaced::NotWritten)
        postErrorText = tr("File data written does not match file data in memory");
    return outcome == platform::Replaced::Whole;
}

void CSVP_WebInterface::handleRVT300(const QString& body)
{
    answerPairList(action::receiver, body, QStringLiteral("SVP sent to RVT300."));
}

void CSVP_WebInterface::handleDistribute(const QString& body)
{
    answerPairList(action::distribute, body, QStringLiteral("SVP distributed."));
}

void CSVP_WebInterface::answerPairList(QLatin1String whoami, const QString& body,
                                       const QString& done)
{
    if (!datagram::isPairList(body))
        return send(Reply(whoami).failure(QStringLiteral("Invalid svp.")));
    // Front ends show the reason in either case, so the good news goes there too.
    send(Reply(whoami).with(reply::reason, done).success());
}
