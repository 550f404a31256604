#pragma once

#include <chrono>
#include <cstddef>

namespace host {

constexpr std::size_t kKiB = 1024;
constexpr std::size_t kMiB = 1024 * kKiB;

/// Every bound that keeps one client from taking the host away from the others. The defaults
/// suit one laptop with a handful of pages; docs/host.md lists them for the reader.
struct Limits
{
    using Time = std::chrono::milliseconds;

    /// Connections open at once, pages included. One more is answered 503 and closed.
    std::size_t connections = 512;

    /// Connections that are being told 503 at once. Beyond these the socket is closed unheard,
    /// so that turning clients away costs a bounded number of sockets as well.
    std::size_t turnedAway = 64;

    /// Request line and header fields together, in bytes. More is answered 431.
    std::size_t headerBytes = 8 * kKiB;

    /// Body of a POST, in bytes, after the transfer coding is undone. More is answered 413.
    std::size_t bodyBytes = 32 * kMiB;

    /// One file of the atlas, in bytes. More is answered 413.
    std::size_t atlasFileBytes = 512 * kMiB;

    /// The atlas settings as a page sends them, in bytes. More is answered 413.
    std::size_t settingsBytes = 64 * kKiB;

    /// Files of the atlas that are being received at once. One more is answered 503.
    std::size_t uploads = 4;

    /// One web-socket message, in bytes. More closes the page with code 1009.
    std::size_t messageBytes = 16 * kMiB;

    /// Bytes that wait to be sent to one page. A page that lets more pile up is not reading and
    /// is dropped; a single packet of any size always passes.
    std::size_t pageQueueBytes = 64 * kMiB;

    /// Requests of one page that wait for the plug-in, by number and by bytes. At either bound
    /// the page is no longer read from until the plug-in has caught up; nothing is lost.
    std::size_t waitingRequests = 32;
    std::size_t waitingRequestBytes = 32 * kMiB;

    /// From the first byte that may come to the end of the header.
    Time headerTimeout = std::chrono::seconds(10);

    /// From the end of the header to the end of the body.
    Time bodyTimeout = std::chrono::seconds(60);

    /// For a file of the atlas to arrive as a whole; its pieces have the time of a body each.
    Time uploadTimeout = std::chrono::minutes(30);

    /// Between two requests on one connection.
    Time idleTimeout = std::chrono::seconds(30);

    /// For one HTTP response to be taken by the client.
    Time writeTimeout = std::chrono::seconds(60);

    /// For the web-socket handshake, opening and closing.
    Time handshakeTimeout = std::chrono::seconds(10);

    /// Pages are pinged this often …
    Time pingInterval = std::chrono::seconds(30);

    /// … and dropped when nothing at all was heard of them for this long. A single message has
    /// to arrive within this time as well.
    Time silenceTimeout = std::chrono::seconds(90);

    /// For the plug-in to answer a POST. After that the client is told 504.
    Time pluginTimeout = std::chrono::seconds(120);

    /// For which a client's unread bytes are still taken and thrown away after the last
    /// response: closing at once would reset the connection and lose that response.
    Time lingerTimeout = std::chrono::seconds(5);

    /// For open pages to take their leave when the host stops.
    Time farewellTimeout = std::chrono::seconds(1);

    /// For a running call of the plug-in to come to its end when the host stops. It may be
    /// writing a file, so it is not cut short lightly.
    Time stopTimeout = std::chrono::seconds(10);
};

} // namespace host
