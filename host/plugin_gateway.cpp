#include "host/plugin_gateway.h"

#include "plugin/webinterface.h"

#include <QFileInfo>
#include <QJsonObject>
#include <QMetaObject>
#include <QPluginLoader>
#include <QtDebug>

#include <exception>

namespace host {

namespace {

/// The identifier in a plug-in's metadata. It can be read without running any of its code.
constexpr const char kPluginIid[] = "com.ardentide.svpwebinterfacelib";

/// Runs a piece of the plug-in's code. Empty, or what it threw.
template <class Work> QString guarded(Work work)
{
    try {
        work();
        return {};
    } catch (const std::exception& error) {
        return QStringLiteral("The plug-in failed: %1.").arg(QString::fromUtf8(error.what()));
    } catch (...) {
        return QStringLiteral("The plug-in failed for an unknown reason.");
    }
}

} // namespace

PluginGateway::PluginGateway() = default;

PluginGateway::~PluginGateway()
{
    if (plugin_ == nullptr)
        return;
    plugin_->disconnect(this);
    // Destroys the plug-in's object, which closes its sockets and files in good order.
    const QString failure = guarded([this] { loader_->unload(); });
    if (!failure.isEmpty())
        qWarning().noquote() << failure;
}

QString PluginGateway::load(const QString& file)
{
    QString problem;
    const QString failure = guarded([&] { problem = loadUnguarded(file); });
    return failure.isEmpty() ? problem : failure;
}

QString PluginGateway::loadUnguarded(const QString& file)
{
    if (!QFileInfo(file).isFile())
        return QStringLiteral("There is no file %1.").arg(file);
    loader_ = std::make_unique<QPluginLoader>(file);
    const QString iid = loader_->metaData().value(QStringLiteral("IID")).toString();
    if (iid.isEmpty())
        return QStringLiteral("%1 is no plug-in: %2").arg(file, loader_->errorString());
    if (iid != QLatin1String(kPluginIid))
        return QStringLiteral("%1 is a plug-in of another kind (%2).").arg(file, iid);
    QObject* instance = loader_->instance();
    if (instance == nullptr)
        return QStringLiteral("%1 does not load: %2").arg(file, loader_->errorString());
    plugin_ = qobject_cast<WebInterface*>(instance);
    if (plugin_ == nullptr)
        return QStringLiteral("%1 does not offer the interface %2.")
            .arg(file, QStringLiteral(WebInterface_iid));

    // By name: the interface class declares no signals, only the plug-in's own class does.
    if (!connect(plugin_, SIGNAL(sendWSPacket(QString,QByteArray)), this,
                                 SLOT(relayPacket(QString,QByteArray))))
        return QStringLiteral("%1 has no signal sendWSPacket(QString, QByteArray).").arg(file);
    if (!connect(plugin_, SIGNAL(sendPostResponse(int,QByteArray)), this,
                                 SLOT(relayPostResponse(int,QByteArray))))
        return QStringLiteral("%1 has no signal sendPostResponse(int, QByteArray).").arg(file);
    webSocketNames_ = plugin_->getRegisterWebSocket();
    postNames_ = plugin_->getRegisterPost();
    return {};
}

bool PluginGateway::servesMessagesFor(const QString& name) const
{
    return webSocketNames_.contains(name, Qt::CaseInsensitive);
}

void PluginGateway::call(const std::function<bool()>& work, const Outcome& done)
{
    if (stopped_)
        return;
    bool understood = false;
    QString failure = guarded([&] { understood = work(); });
    if (failure.isEmpty() && !understood)
        failure = QStringLiteral("The plug-in does not take requests of this kind.");
    if (!failure.isEmpty())
        qCritical().noquote() << failure;
    done(failure);
}

void PluginGateway::forwardMessage(int connection, const QString& name, const QString& data,
                                   Outcome done)
{
    const auto work = [this, connection, name, data] {
        plugin_->requestWebSocket(connection, name, data);
        return true;
    };
    QMetaObject::invokeMethod(
        this, [this, work, done = std::move(done)] { call(work, done); }, Qt::QueuedConnection);
}

void PluginGateway::forwardPost(int connection, const QByteArray& request, Outcome done)
{
    const auto work = [this, connection, request] {
        return QMetaObject::invokeMethod(plugin_, "requestPost", Qt::DirectConnection,
                                         Q_ARG(int, connection), Q_ARG(QByteArray, request));
    };
    QMetaObject::invokeMethod(
        this, [this, work, done = std::move(done)] { call(work, done); }, Qt::QueuedConnection);
}

void PluginGateway::relayPacket(const QString& target, const QByteArray& json)
{
    if (onPacket)
        onPacket(target, json);
}

void PluginGateway::relayPostResponse(int connection, const QByteArray& response)
{
    if (onPostResponse)
        onPostResponse(connection, response);
}

} // namespace host
