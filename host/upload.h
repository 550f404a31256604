#pragma once

#include "host/hub.h"
#include "host/messages.h"

#include <QSaveFile>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http.hpp>

#include <array>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace host {

struct Site;

/// A file of the atlas on its way from a client to the disk, piece by piece: such files are larger
/// than what the host wants to have in memory. It replaces the one of its name once it is whole and
/// looks like a file of the atlas; otherwise nothing stays of it.
///
/// Lives on the I/O thread; the disk is written to on a thread of its own, since it may be slow.
class Upload : public std::enable_shared_from_this<Upload>
{
  public:
    using Header = boost::beast::http::request_parser<boost::beast::http::string_body>;

    /// What came of it; nothing when the connection is gone.
    using Done = std::function<void(std::optional<Response>)>;

    /// @param stream, buffer  the connection's; both have to outlive `done`
    /// @param header          a request of which the header alone was read
    Upload(boost::beast::tcp_stream& stream, boost::beast::flat_buffer& buffer, Header&& header,
           Site& site, const QString& path);

    /// Begins to receive. `done` is called on the I/O thread, once.
    void receive(Done done);

  private:
    using Error = boost::beast::error_code;

    void readPiece();
    void onPiece(Error error);
    void onDisk(std::function<void()> work);
    void open();
    void take(std::size_t size);
    void judge();
    void commit();
    void refuse(boost::beast::http::status status, const QString& text);
    void end(std::optional<Response> response);

    boost::beast::tcp_stream& stream_;
    boost::beast::flat_buffer& buffer_;
    Site& site_;
    Hub::Place place_;
    boost::beast::http::request_parser<boost::beast::http::buffer_body> parser_;
    const std::chrono::steady_clock::time_point latest_;
    Done done_;

    // Of the disk's thread while that has work, which is never while a piece is being read.
    QSaveFile file_;
    const QString name_;
    std::array<char, 65536> piece_{};
    QByteArray beginning_;
    std::optional<Response> outcome_;
};

} // namespace host
