#pragma once

#include <QJsonObject>
#include <boost/asio/io_context.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket.hpp>

#include <string>
#include <string_view>

/// Clients that do as they are told, broken requests included. Every call comes back: what takes
/// longer than the tests' patience fails.
namespace hosttest {

using Error = boost::beast::error_code;
using Reply = boost::beast::http::response<boost::beast::http::string_body>;

/// A connection on which any bytes may be sent.
class RawClient
{
  public:
    explicit RawClient(unsigned short port, const char* address = "127.0.0.1");

    bool isConnected() const { return connected_; }

    /// False once the host has closed the connection.
    bool send(std::string_view bytes);

    /// One whole response. Status 0 if there came none.
    Reply receive(bool toHead = false);

    /// Everything until the host closes the connection, and how that went: end of stream, or a
    /// reset.
    std::string receiveRest();
    Error lastError() const { return lastError_; }

    /// Whether the host has closed the connection by the end of `milliseconds`.
    bool isClosedWithin(int milliseconds);

  private:
    boost::asio::io_context io_;
    boost::beast::tcp_stream stream_;
    boost::beast::flat_buffer buffer_;
    bool connected_ = false;
    Error lastError_;
};

/// Sends one request on a connection of its own.
Reply request(unsigned short port, std::string_view bytes, bool toHead = false);

/// "GET path HTTP/1.1" with the right Host, and further header lines, each ended by CR LF.
std::string getText(unsigned short port, std::string_view path, std::string_view fields = {});
Reply get(unsigned short port, std::string_view path, std::string_view fields = {});

/// A POST to the plug-in with the right Host and Content-Length.
std::string postText(unsigned short port, std::string_view path, std::string_view body,
                     std::string_view fields = {});

/// One open page.
class PageClient
{
  public:
    PageClient();
    explicit PageClient(unsigned short port);

    /// Opens the page. 101 on success, else the status of the refusal, else 0.
    int open(unsigned short port, const std::string& hostName = {}, const std::string& origin = {},
             const std::string& path = "/ws");

    bool sendText(std::string_view text);
    bool sendBinary(std::string_view bytes);

    /// Sends a request under the name that the plug-in serves.
    bool request(const std::string& data, const std::string& name = "SVP_WebInterface");

    /// The next message. Empty object if there came none.
    QJsonObject receive();
    std::string receiveText();

    /// The packet of the next message.
    QJsonObject receivePacket();

    /// Reads until the host closes, and gives the code of its close frame; 0 if there was none.
    int awaitClose();

    /// Leaves without a word.
    void hangUp();

    boost::beast::tcp_stream& stream() { return boost::beast::get_lowest_layer(socket_); }

  private:
    bool write(std::string_view bytes, bool isText);

    boost::asio::io_context io_;
    boost::beast::websocket::stream<boost::beast::tcp_stream> socket_;
    Error lastError_;
};

} // namespace hosttest
