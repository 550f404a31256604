#include "host/server.h"

#include "host/http_connection.h"
#include "platform/process.h"

#include <QtDebug>
#include <boost/asio/ip/address.hpp>
#include <boost/asio/post.hpp>

#include <cstdio>
#include <cstdlib>
#include <exception>

namespace net = boost::asio;
using net::ip::tcp;

namespace host {

namespace {

/// The exit code of a host that was asked to stop and did not get there.
constexpr int kExitStopFailed = 4;

/// How long to wait before accepting again when the system is out of sockets.
constexpr std::chrono::milliseconds kAcceptPause{100};

std::vector<std::string> hostNames(const Options& options)
{
    std::vector<std::string> names;
    for (const QString& name : options.hostNames)
        names.push_back(name.toStdString());
    const bool isIPv6 = options.listenAddress.contains(QLatin1Char(':'));
    const std::string address = options.listenAddress.toStdString();
    names.push_back(isIPv6 ? '[' + address + ']' : address);
    return names;
}

} // namespace

Server::Server(const Options& options, PluginGateway& plugin, std::function<void()> onStop)
    : site_{options.limits,
            AccessRules(hostNames(options)),
            StaticFiles(options.webFolder),
            DataFolder(options.dataFolder),
            AtlasSettings(DataFolder(options.dataFolder).atlasFolder()),
            plugin},
      address_(options.listenAddress.toStdString()), port_(options.listenPort),
      onStop_(std::move(onStop)), acceptor_(site_.io), acceptTimer_(site_.io), signals_(site_.io),
      farewellTimer_(site_.io), stopTimer_(site_.io), keepRunning_(site_.io.get_executor())
{
    plugin.onPacket = [this](const QString& target, const QByteArray& json) {
        net::post(site_.io,
                  [this, target = target.toStdString(), json] { broadcast(target, json); });
    };
    plugin.onPostResponse = [this](int connection, const QByteArray& response) {
        net::post(site_.io,
                  [this, connection, response] { site_.hub.answer(connection, response); });
    };
}

Server::~Server()
{
    finish();
}

QString Server::listen()
{
    const tcp::endpoint endpoint(net::ip::make_address(address_), port_);
    Error error;
    acceptor_.open(endpoint.protocol(), error);
    if (!error) {
        platform::claimPort(std::intptr_t(acceptor_.native_handle()));
        acceptor_.bind(endpoint, error);
    }
    if (!error)
        acceptor_.listen(net::socket_base::max_listen_connections, error);
    if (!error)
        return {};
    return QStringLiteral("Cannot listen on %1 port %2: %3.")
        .arg(QString::fromStdString(address_))
        .arg(port_)
        .arg(QString::fromStdString(error.message()));
}

QString Server::url() const
{
    Error error;
    const tcp::endpoint local = acceptor_.local_endpoint(error);
    net::ip::address address = local.address();
    if (address.is_unspecified())
        address = address.is_v6() ? net::ip::address(net::ip::address_v6::loopback())
                                  : net::ip::address(net::ip::address_v4::loopback());
    const QString text = QString::fromStdString(address.to_string());
    return QStringLiteral("http://%1:%2")
        .arg(address.is_v6() ? QStringLiteral("[%1]").arg(text) : text)
        .arg(local.port());
}

void Server::start()
{
    for (const QString& name : site_.plugin.postNames())
        site_.postPaths.push_back('/' + name.toStdString());
    Error error;
    for (const int number : platform::stopSignals())
        signals_.add(number, error);
    if (error)
        qWarning("Signals that ask the host to stop may go unheard: %s", error.message().c_str());
    platform::stopWithTheWindow();
    awaitSignal();
    accept();
    thread_ = std::thread([this] { run(); });
}

void Server::finish()
{
    if (!thread_.joinable())
        return;
    net::post(site_.io, [this] {
        beginStop();
        signals_.cancel();
        stopTimer_.cancel();
        keepRunning_.reset();
    });
    thread_.join();
}

void Server::run()
{
    // A handler that fails, for want of memory say, costs its own connection only.
    for (;;) {
        try {
            site_.io.run();
            return;
        } catch (const std::exception& error) {
            qCritical("A connection failed: %s", error.what());
        }
    }
}

// ---- connections -----------------------------------------------------------------------------

void Server::accept()
{
    acceptor_.async_accept(
        [this](Error error, tcp::socket socket) { onAccepted(error, std::move(socket)); });
}

void Server::onAccepted(Error error, tcp::socket socket)
{
    if (site_.stopping)
        return;
    if (error) {
        acceptTimer_.expires_after(kAcceptPause);
        acceptTimer_.async_wait([this](Error cancelled) {
            if (!cancelled && !site_.stopping)
                accept();
        });
        return;
    }
    Hub& hub = site_.hub;
    if (hub.open() < site_.limits.connections)
        std::make_shared<HttpConnection>(std::move(socket), site_, hub.newNumber(), hub.takePlace())
            ->serve();
    else if (hub.turnedAway() < site_.limits.turnedAway)
        std::make_shared<HttpConnection>(std::move(socket), site_, hub.newNumber(),
                                         hub.takeWaitingPlace())
            ->turnAway();
    accept();
}

void Server::broadcast(const std::string& target, const QByteArray& packet)
{
    const Frame frame =
        packetFrame(target, {packet.constData(), static_cast<std::size_t>(packet.size())});
    if (frame)
        return site_.hub.broadcast(frame);
    qWarning("The plug-in sent a packet that is not a JSON object; it is not passed on.");
    site_.hub.broadcast(hostFailure("The plug-in sent a packet that is not a JSON object."));
}

// ---- stopping --------------------------------------------------------------------------------

void Server::awaitSignal()
{
    signals_.async_wait([this](Error error, int) {
        if (!error)
            onSignal();
    });
}

void Server::onSignal()
{
    if (site_.stopping) {
        // Whoever asks twice does not want to wait for the plug-in.
        std::fputs("svp-host: stopped before the plug-in came to an end\n", stderr);
        std::_Exit(kExitStopFailed);
    }
    beginStop();
    stopTimer_.expires_after(site_.limits.stopTimeout);
    stopTimer_.async_wait([](Error error) {
        if (error)
            return;
        std::fputs("svp-host: the plug-in did not come to an end in time\n", stderr);
        std::_Exit(kExitStopFailed);
    });
    onStop_();
    awaitSignal();
}

void Server::beginStop()
{
    if (site_.stopping)
        return;
    site_.stopping = true;
    site_.plugin.stopForwarding();
    Error ignored;
    acceptor_.close(ignored);
    acceptTimer_.cancel();
    site_.hub.finishAll();
    farewellTimer_.expires_after(site_.limits.farewellTimeout);
    farewellTimer_.async_wait([this](Error error) {
        if (!error)
            site_.hub.dropAll();
    });
}

} // namespace host
