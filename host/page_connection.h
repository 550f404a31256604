#pragma once

#include "host/hub.h"
#include "host/messages.h"

#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/websocket/stream.hpp>

#include <chrono>
#include <deque>
#include <memory>
#include <string_view>

namespace host {

struct Site;

/// One open page: its requests go to the plug-in in their order, every packet goes to it.
///
/// A page cannot hold up the others. It is not read from while the plug-in is behind with its
/// requests, and it is dropped when it stops reading or stops answering pings.
class PageConnection final : public Connection, public std::enable_shared_from_this<PageConnection>
{
  public:
    PageConnection(boost::beast::tcp_stream stream, Site& site, int number, Hub::Place place);
    ~PageConnection() override;

    /// Answers the upgrade request and begins.
    void accept(const Request& upgradeRequest);

    void send(const Frame& frame) override;
    void finish() override;
    void drop() override;

  private:
    using Error = boost::beast::error_code;
    using Clock = std::chrono::steady_clock;

    void onAccepted(Error error);
    void close(boost::beast::websocket::close_code code, const char* reason);
    void readNext();
    void readPart();
    void onRead(Error error);
    void handle(std::string_view text);
    void onForwarded(std::size_t bytes, const std::string& failure);
    bool pluginIsBehind() const;
    void writeNext();
    void onWritten(Error error);
    void awaitPing();
    void onPingTime();

    Site& site_;
    const int number_;
    Hub::Place place_;
    boost::beast::websocket::stream<boost::beast::tcp_stream> socket_;
    boost::beast::flat_buffer buffer_;
    bool open_ = false;
    bool reading_ = false;

    std::deque<Frame> queue_; ///< the first one is being written
    std::size_t queueBytes_ = 0;

    std::size_t waitingRequests_ = 0;
    std::size_t waitingRequestBytes_ = 0;

    boost::asio::steady_timer pingTimer_;
    Clock::time_point lastHeard_;
    bool pinging_ = false;
};

} // namespace host
