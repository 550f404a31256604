#pragma once

#include "host/options.h"
#include "host/site.h"

#include <QString>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>

#include <functional>
#include <thread>

namespace host {

/// The I/O thread: accepts connections, carries the plug-in's packets to the pages, hears the
/// signals that ask the host to stop.
///
/// Made, started and finished on the Qt thread; everything in between happens on its own.
class Server
{
  public:
    /// Takes the gateway's handlers over. `onStop` is called on the I/O thread when the host is
    /// asked to stop.
    Server(const Options& options, PluginGateway& plugin, std::function<void()> onStop);
    ~Server();

    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    /// Takes the port. Clients that connect from now on wait until start().
    ///
    /// @return empty, or a sentence that says why the port cannot be had
    QString listen();

    /// The page's address, e.g. "http://127.0.0.1:8080". For a host that listens everywhere, the
    /// one that works on this machine. Ask between listen() and start().
    QString url() const;

    /// Begins to serve. The plug-in has to be loaded.
    void start();

    /// Ends the thread, after the open pages have been told. Returns once it is over.
    void finish();

  private:
    using Error = boost::system::error_code;

    void run();
    void accept();
    void onAccepted(Error error, boost::asio::ip::tcp::socket socket);
    void awaitSignal();
    void onSignal();
    void beginStop();
    void broadcast(const std::string& target, const QByteArray& packet);

    Site site_;
    const std::string address_;
    const unsigned short port_;
    std::function<void()> onStop_;
    boost::asio::ip::tcp::acceptor acceptor_;
    boost::asio::steady_timer acceptTimer_;
    boost::asio::signal_set signals_;
    boost::asio::steady_timer farewellTimer_;
    boost::asio::steady_timer stopTimer_;
    boost::asio::executor_work_guard<boost::asio::io_context::executor_type> keepRunning_;
    std::thread thread_;
};

} // namespace host
