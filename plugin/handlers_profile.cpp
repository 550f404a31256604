#include "datagram/sspfile.h"
#include "plugin/csvp_webinterface.h"
#include "plugin/reply.h"
#include "plugin/upload.h"
#include "processing/check.h"
#include "profile/openprofile.h"
#include "profile/protocol.h"
#include "profile/requestblock.h"
#include "profile/textfile.h"

#include <QJsonArray>

using namespace protocol;

namespace {

QJsonArray numberArray(const QVector<double>& numbers)
{
    QJsonArray array;
    for (const double number : numbers)
        array.append(number);
    return array;
}

} // namespace

void CSVP_WebInterface::handleOpenRequest(const QString& body)
{
    handleOpenSVP(body, QByteArray());
}

bool CSVP_WebInterface::handleOpenSVP(const QString& body, const QByteArray& content)
{
    const profile::ProfileFolder folder = profile::openedProfileFolder();
    const auto openSsp = [this](const QByteArray& bytes, const QString& file) {
        return openDatagramFile(bytes, file);
    };
    const bool isUpload = !content.isEmpty();
    const QString name = isUpload ? lastElement(body) : profile::requestedFileName(body);
    const profile::OpenedProfile opened =
        isUpload && !storeUpload(folder, name, content)
            ? profile::OpenedProfile{{}, QStringLiteral("Error saving file."), {}}
            : profile::openProfile(folder, name, svpFilters + getSvpFilters(FilterFaults::Silent),
                                   openSsp);
    postErrorText = opened.reason;
    const bool isOpen = opened.reason.isEmpty();
    if (isOpen) {
        decimals.raise(opened.decimals);
        send(Reply(action::open).with(opened.reply).success());
    } else {
        send(Reply(action::open).failure(opened.reason));
    }
    handleAlert(pendingAlert);
    return isOpen;
}

// An upload stays in the profile folder even when it cannot be decoded: the surveyor may have
// handed in the only copy. A name that is none is left to the open to refuse.
bool CSVP_WebInterface::storeUpload(const profile::ProfileFolder& folder, const QString& name,
                                    const QByteArray& content)
{
    const QString path = folder.pathOf(name);
    folder.makeFolderOf(path);
    return path.isEmpty() || handleSaveOtherFiles(path, content, true);
}

profile::OpenedProfile CSVP_WebInterface::openDatagramFile(const QByteArray& content,
                                                           const QString& name)
{
    const QByteArray text = profile::normalisedText(content);
    const QString refusal = datagram::sspRefusal(text);
    if (!refusal.isEmpty())
        return {{}, refusal, {}};
    return datagram::openedSsp(convert(datagram::firstDatagram(text)), name);
}

datagram::Conversion CSVP_WebInterface::convert(const QByteArray& text)
{
    datagram::Conversion conversion = datagram::calcS00(
        text, datagram::convertedFolder(), profileLimits, QDateTime::currentDateTime());
    const datagram::Report& report = conversion.report;
    if (report.number != 0)
        addPendingAlert(reportMessage(std::to_string(report.number).c_str(), report.arguments));
    else
        convertedProfile = conversion.profile;
    return conversion;
}

datagram::ConvertedProfile CSVP_WebInterface::calcS00(const QByteArray& text)
{
    return convert(text).profile;
}

double CSVP_WebInterface::getFromS00(int index, int vector) const
{
    return datagram::getFromS00(convertedProfile, index, vector);
}

void CSVP_WebInterface::handleCheckProfile(const QString& body)
{
    const auto answer = [this](const QJsonObject& reply) {
        send(reply);
        handleAlert(pendingAlert);
    };
    const QString block = profile::withoutBrackets(body);
    const QVector<QStringRef> pieces = profile::splitPieces(block, Qt::SkipEmptyParts);
    if (pieces.size() != profile::checkPieces)
        return answer(
            Reply(action::check).failure(QStringLiteral("Wrong number of input parameters.")));

    const profile::ProfileForm form = profile::parseProfileForm(pieces);
    const profile::ValueLists lists = profile::parseValueLists(
        form.valueLists, profile::Lists::SpeedAndDepth, Qt::SkipEmptyParts);
    const QString refusal = processing::checkRefusal(lists);
    if (!refusal.isEmpty())
        return answer(Reply(action::check).failure(refusal));

    const processing::CheckResult result = processing::checkSamples(raytrace::makeLayers(
        lists.depth.constData(), lists.speed.constData(), std::size_t(lists.depth.size())));
    answer(Reply(action::check)
               .with(reply::speeds, numberArray(result.invalidSpeeds))
               .with(reply::depths, numberArray(result.invalidDepths))
               .with(reply::toFix, result.verdict)
               .success());
}

bool CSVP_WebInterface::QuickCheck(QString& message, const QString& body)
{
    const processing::SendCheck check = processing::quickCheck(body);
    if (!check.message.isEmpty())
        message = check.message;
    return check.passes;
}
