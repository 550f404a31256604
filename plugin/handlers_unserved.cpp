#include "plugin/csvp_webinterface.h"
#include "plugin/reply.h"
#include "profile/protocol.h"

// Actions that are part of the protocol but not served by this version. Each says so, so that a
// front end never waits for an answer that does not come.

using namespace protocol;

namespace {

QJsonObject unserved(QLatin1String whoami, const char* deed)
{
    return Reply(whoami).failure(QString::fromLatin1(deed) +
                                 QLatin1String(" is not available in this version of the engine."));
}

} // namespace

void CSVP_WebInterface::handleFixProfile(const QString& body)
{
    Q_UNUSED(body)
    send(unserved(action::fix, "Fixing a profile"));
}

void CSVP_WebInterface::handleExtendWithFile(const QString& body)
{
    Q_UNUSED(body)
    send(unserved(action::extendWithFile, "Extending a profile with a file"));
    handleAlert(pendingAlert);
}

void CSVP_WebInterface::handleExtendDefault(const QString& body)
{
    Q_UNUSED(body)
    send(unserved(action::extendDefault, "Extending a profile with the default rows"));
}

void CSVP_WebInterface::handleExtendTempSal(const QString& body)
{
    Q_UNUSED(body)
    send(unserved(action::extendTempSal, "Extending a profile by temperature and salinity"));
}

void CSVP_WebInterface::handleThin(const QString& body)
{
    Q_UNUSED(body)
    send(unserved(action::thin, "Thinning a profile"));
    handleAlert(pendingAlert);
}

void CSVP_WebInterface::handleShowRaypath(const QString& body)
{
    Q_UNUSED(body)
    send(unserved(action::rayPath, "Tracing a ray path"));
}

void CSVP_WebInterface::handleSelectExtentionFile(const QString& body)
{
    Q_UNUSED(body)
    send(unserved(action::selectExtension, "Selecting an extension file"));
}
