#include "plugin/csvp_webinterface.h"
#include "plugin/reply.h"
#include "processing/check.h"
#include "profile/openprofile.h"
#include "profile/protocol.h"
#include "profile/requestblock.h"

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
    Q_UNUSED(content)
    const QString name = profile::requestedFileName(body);
    const profile::OpenedProfile opened =
        profile::openProfile(profile::openedProfileFolder(), name, svpFilters);
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
               .with(reply::invalidSpeeds, numberArray(result.invalidSpeeds))
               .with(reply::invalidDepths, numberArray(result.invalidDepths))
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
