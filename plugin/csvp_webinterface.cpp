#include "plugin/csvp_webinterface.h"

#include "platform/platform.h"
#include "plugin/reply.h"
#include "processing/check.h"
#include "profile/importfilter.h"
#include "profile/protocol.h"
#include "resources/resources.h"

#include <QCoreApplication>
#include <QDebug>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QUdpSocket>

#include <algorithm>

using namespace protocol;

namespace {

// The part of a path before its last separator.
QString folderOf(const QString& path)
{
    return QFileInfo(path).path();
}

} // namespace

CSVP_WebInterface::CSVP_WebInterface(QObject* parent)
    : WebInterface(parent), postNames(serviceName), webSocketNames(serviceName),
      replyTarget(serviceName)
{
    resources::registerAll();
    bindInputSocket();
    svpFilters = profile::builtInFilters();
    loadSettings();
    provideExtensionProfile();
}

CSVP_WebInterface::~CSVP_WebInterface() = default;

void CSVP_WebInterface::bindInputSocket()
{
    udpSocket = new QUdpSocket(this);
    if (!udpSocket->bind(inputPort)) {
        qDebug() << "SVP Editor - WARNING - failed to bind udp port -" << inputPort;
        return;
    }
    connect(udpSocket, &QUdpSocket::readyRead, this, &CSVP_WebInterface::readPendingDatagrams);
    qDebug() << "SVP Editor - INFO - listening for input on udp port" << inputPort;
}

void CSVP_WebInterface::loadSettings()
{
    const QString root = platform::dataRoot();
    if (root.isEmpty()) {
        // Without a data root there is no file to keep the settings in.
        GenerateDefaultINI({});
    } else {
        // Other programs of the survey system hand this path on with its doubled separator;
        // systems take the two for one.
        const QString path = platform::nativePath(root + QStringLiteral("tqrv\\\\SVPEditor.ini"));
        const std::string filePath = path.toStdString();
        bool isMissing = !QFileInfo::exists(path);
        if (!isMissing && fnCheckVersionINI(filePath)) {
            QFile::remove(path);
            isMissing = true;
        }
        if (isMissing) {
            platform::makeFolder(folderOf(path));
            GenerateDefaultINI(filePath);
        }
        settings.SetFileName(filePath);
        settings.Load(filePath);
    }
    profileLimits = settings::readProfileLimits(settings);
}

void CSVP_WebInterface::provideExtensionProfile()
{
    const QString root = platform::dataRoot();
    if (root.isEmpty())
        return;
    const QString path =
        platform::nativePath(root + QStringLiteral("qrvdata\\svp_abscoeff\\SVPExtension.txt"));
    if (QFileInfo::exists(path))
        return;
    qDebug() << "CSVP_WebInterface - WARNING - could not find SVPExtension.txt using default";
    platform::makeFolder(folderOf(path));
    QString error;
    if (!platform::replaceFile(path, resources::extensionProfile(), &error)) {
        qDebug().noquote() << "CSVP_WebInterface - WARNING - could not write" << path << error;
        return;
    }
    // Other programs read it, the surveyor edits it.
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup |
                                    QFile::ReadOther);
}

QStringList CSVP_WebInterface::getRegisterWebSocket()
{
    return webSocketNames;
}

QStringList CSVP_WebInterface::getRegisterPost()
{
    return postNames;
}

bool CSVP_WebInterface::GenerateDefaultINI(const std::string& path)
{
    settings::fillDefaults(settings);
    if (!path.empty()) {
        settings.SetFileName(path);
        settings.Save();
    }
    return true;
}

bool CSVP_WebInterface::fnCheckVersionINI(const std::string& path)
{
    return settings::isOutdated(path);
}

const std::vector<CSVP_WebInterface::Action>& CSVP_WebInterface::actionTable()
{
    // Searched in this order; the first match wins.
    static const std::vector<Action> table = {
        {action::open, action::open, &CSVP_WebInterface::handleOpenRequest},
        {action::save, action::save, &CSVP_WebInterface::handleSave},
        {action::saveAs, action::save, &CSVP_WebInterface::handleSaveAs},
        {action::send, action::send, &CSVP_WebInterface::handleSendSVPtoQRV},
        {action::close, action::close, &CSVP_WebInterface::handleCloseSVP},
        {action::fix, action::fix, &CSVP_WebInterface::handleFixProfile},
        {action::extendWithFile, action::extendWithFile, &CSVP_WebInterface::handleExtendWithFile},
        {action::extendDefault, action::extendDefault, &CSVP_WebInterface::handleExtendDefault},
        {action::extendTempSal, action::extendTempSal, &CSVP_WebInterface::handleExtendTempSal},
        {action::thin, action::thin, &CSVP_WebInterface::handleThin},
        {action::receiver, action::receiver, &CSVP_WebInterface::handleRVT300},
        {action::distribute, action::distribute, &CSVP_WebInterface::handleDistribute},
        {action::rayPath, action::rayPath, &CSVP_WebInterface::handleShowRaypath},
        {action::saveFilter, action::saveFilter, &CSVP_WebInterface::handleSaveFilter},
        {action::allFilters, action::allFilters, &CSVP_WebInterface::handleGetAllFilters},
        {action::deleteFilter, action::deleteFilter, &CSVP_WebInterface::handleDeleteFilter},
        {action::check, action::check, &CSVP_WebInterface::handleCheckProfile},
        {action::selectExtension, action::selectExtension,
         &CSVP_WebInterface::handleSelectExtentionFile},
        {action::ready, action::ready, &CSVP_WebInterface::handleReady},
        {action::alert, action::alert, &CSVP_WebInterface::handleDelayedAlert},
    };
    return table;
}

void CSVP_WebInterface::requestWebSocket(int connection, QString name, QString data)
{
    Q_UNUSED(connection)
    if (!webSocketNames.contains(name, Qt::CaseInsensitive))
        return;
    replyTarget = name;
    qDebug().noquote().nospace() << "CSVP_WebInterface::requestWebSocket - INPUT: " << name << ':'
                                 << data;
    try {
        dispatch(data);
    } catch (const std::exception& error) {
        qDebug() << "CSVP_WebInterface::requestWebSocket - WARNING -" << error.what();
    }
}

void CSVP_WebInterface::dispatch(const QString& data)
{
    // Cut by hand: splitting a profile of megabytes into its numbers to find two commas would
    // cost more than the action.
    const int firstComma = data.indexOf(QLatin1Char(','));
    const int secondComma = firstComma < 0 ? -1 : data.indexOf(QLatin1Char(','), firstComma + 1);
    const QStringRef field =
        firstComma < 0
            ? QStringRef()
            : data.midRef(firstComma + 1, secondComma < 0 ? -1 : secondComma - firstComma - 1);
    const QString body = secondComma < 0 ? QString() : data.mid(secondComma + 1);

    if (!field.startsWith(QLatin1String("ACTION"))) {
        qDebug().noquote().nospace() << tr("Action type not found -") << data;
        return;
    }
    const QString name = field.toString().section(QLatin1Char('='), 1, 1);
    const QString prefix = QString(serviceName) + QLatin1Char('/');
    for (const Action& action : actionTable()) {
        if (name.compare(prefix + action.name, Qt::CaseInsensitive) == 0) {
            try {
                return (this->*action.handler)(body);
            } catch (const std::bad_alloc&) {
                send(Reply(action.whoami).failure(QStringLiteral("Memory allocation error")));
            } catch (const std::exception& error) {
                send(Reply(action.whoami)
                         .failure(QStringLiteral("Internal error: ") +
                                  QString::fromLocal8Bit(error.what())));
            }
            blankSVP();
            return handleAlert(pendingAlert);
        }
    }
}

void CSVP_WebInterface::send(const QJsonObject& reply)
{
    Q_EMIT sendWSPacket(replyTarget, QJsonDocument(reply).toJson());
}

void CSVP_WebInterface::handleAlert(std::string& text)
{
    if (text.empty())
        return;
    send(Reply(action::alert)
             .with(reply::result, QString(reply::failure))
             .with(reply::alert, QString::fromStdString(text))
             .plain());
    text.clear();
}

void CSVP_WebInterface::addPendingAlert(const std::string& text)
{
    if (!pendingAlert.empty() && !text.empty())
        pendingAlert += '\n';
    pendingAlert += text;
}

std::string CSVP_WebInterface::reportMessage(const char* key,
                                             const std::vector<settings::ReportArgument>& values)
{
    const std::string format = settings.FetchValue(key, settings::ini::messageSection);
    reportText = settings::formatReport(format, values);
    std::replace(reportText.begin(), reportText.end(), '\\', '/');
    return reportText;
}

void CSVP_WebInterface::blankSVP()
{
    model.blank();
}

void CSVP_WebInterface::handleReady(const QString& body)
{
    Q_UNUSED(body)
    handleReadyConnected();
}

void CSVP_WebInterface::handleReadyConnected()
{
    send(Reply(action::ready).plain());
}

void CSVP_WebInterface::handleCloseSVP(const QString& body)
{
    Q_UNUSED(body)
    send(Reply(action::close).success());
    handleAlert(pendingAlert);
}

void CSVP_WebInterface::handleDelayedAlert(const QString& body)
{
    QString text = body.trimmed();
    text.remove(QLatin1Char('[')).remove(QLatin1Char(']'));
    const QStringList parts = text.split(QLatin1Char('*'), Qt::SkipEmptyParts);
    if (parts.size() == 1)
        send(Reply(action::alert).with(reply::alert, parts.first()).success());
    else
        send(Reply(action::alert).failure(QStringLiteral("Invalid parameters.")));
}
