#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QStringList>

#include <atomic>
#include <functional>
#include <memory>

class QPluginLoader;
class WebInterface;

namespace host {

/// The one place where the host meets the plug-in: everything on the plug-in's own thread, in
/// the order in which it was asked for.
///
/// load() and the handlers belong to the Qt thread; the forward… functions may be called from
/// any thread. Nothing that the plug-in throws leaves this class.
class PluginGateway : public QObject
{
    Q_OBJECT

  public:
    PluginGateway();
    ~PluginGateway() override;

    /// Loads the plug-in and asks for its names.
    ///
    /// @return empty, or a sentence that says why the file does not serve
    QString load(const QString& file);

    /// The names that the plug-in registered. They do not change after load().
    const QStringList& webSocketNames() const { return webSocketNames_; }
    const QStringList& postNames() const { return postNames_; }

    /// Whether web-socket messages for a name are served; case does not matter, as for plug-ins.
    bool servesMessagesFor(const QString& name) const;

    /// What became of a forwarded call: empty, or a sentence that says why it failed.
    using Outcome = std::function<void(const QString& failure)>;

    /// Queues a web-socket message for the plug-in. `done` is called on the Qt thread once the
    /// plug-in has returned.
    void forwardMessage(int connection, const QString& name, const QString& data, Outcome done);

    /// Queues a POST for the plug-in, whose answer comes through onPostResponse. `done` as above.
    void forwardPost(int connection, const QByteArray& request, Outcome done);

    /// From now on calls that have not begun are dropped, `done` included.
    void stopForwarding() { stopped_ = true; }

    /// What the plug-in sends, called on the Qt thread. Set both before load(): a plug-in may
    /// speak at once.
    std::function<void(const QString& target, const QByteArray& json)> onPacket;
    std::function<void(int connection, const QByteArray& response)> onPostResponse;

  private Q_SLOTS:
    void relayPacket(const QString& target, const QByteArray& json);
    void relayPostResponse(int connection, const QByteArray& response);

  private:
    QString loadUnguarded(const QString& file);
    void call(const std::function<bool()>& work, const Outcome& done);

    std::unique_ptr<QPluginLoader> loader_;
    WebInterface* plugin_ = nullptr; ///< the loader's
    QStringList webSocketNames_;
    QStringList postNames_;
    std::atomic<bool> stopped_{false};
};

} // namespace host
