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
