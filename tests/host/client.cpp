#include "tests/host/client.h"

#include "settings/characters.h"
#include "tests/host/host_process.h"

#include <QJsonDocument>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/buffers_to_string.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <utility>

namespace net = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
namespace websocket = beast::websocket;

namespace hosttest {

namespace {

using Error = beast::error_code;

constexpr std::chrono::milliseconds kPatience(kPatienceMs);

/// Runs one asynchronous operation to its end, or breaks the connection off when patience ends.
template <class Start>
Error await(net::io_context& io, beast::tcp_stream& stream, Start start,
            std::chrono::milliseconds patience = kPatience)
{
    Error result = beast::error::timeout;
    bool done = false;
    start([&](Error error, auto&&...) {
        result = error;
        done = true;
    });
    io.restart();
    io.run_for(patience);
    if (!done) {
        stream.close();
        io.restart();
        io.run();
        result = beast::error::timeout;
    }
    return result;
}

net::ip::tcp::endpoint at(const char* address, unsigned short port)
{
    return {net::ip::make_address(address), port};
}

std::string lower(std::string_view text)
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), settings::lower);
    return result;
}

std::string hostField(unsigned short port)
{
    return "Host: 127.0.0.1:" + std::to_string(port) + "\r\n";
}

} // namespace

Reply::Reply(int status, std::map<std::string, std::string> fields, std::string body)
    : m_status(status), m_fields(std::move(fields)), m_body(std::move(body))
{
}

std::string Reply::operator[](std::string_view name) const
{
    const auto field = m_fields.find(lower(name));
    return field == m_fields.end() ? std::string() : field->second;
}

std::ostream& operator<<(std::ostream& out, const Reply& reply)
{
    return out << "reply " << reply.status() << ": " << reply.body();
}

struct RawClient::Connection
{
    net::io_context io;
    beast::tcp_stream stream{io};
    beast::flat_buffer buffer;
    bool isConnected = false;
    Error lastError;
};

RawClient::RawClient(unsigned short port, const char* address)
    : m_connection(std::make_unique<Connection>())
{
    m_connection->lastError = await(m_connection->io, m_connection->stream, [&](auto done) {
        m_connection->stream.async_connect(at(address, port), std::move(done));
    });
    m_connection->isConnected = !m_connection->lastError;
}

RawClient::~RawClient() = default;

bool RawClient::isConnected() const
{
    return m_connection->isConnected;
}

bool RawClient::isEndedInOrder() const
{
    return m_connection->lastError == Error(net::error::eof);
}

bool RawClient::send(std::string_view bytes)
{
    m_connection->lastError = await(m_connection->io, m_connection->stream, [&](auto done) {
        net::async_write(m_connection->stream, net::buffer(bytes.data(), bytes.size()),
                         std::move(done));
    });
    return !m_connection->lastError;
}

Reply RawClient::receive(bool toHead)
{
    http::response_parser<http::string_body> parser;
    parser.body_limit(boost::none);
    parser.skip(toHead);
    m_connection->lastError = await(m_connection->io, m_connection->stream, [&](auto done) {
        http::async_read(m_connection->stream, m_connection->buffer, parser, std::move(done));
    });
    if (m_connection->lastError)
        return {};
    const auto& response = parser.get();
    std::map<std::string, std::string> fields;
    for (const auto& field : response)
        fields.emplace(lower(field.name_string()), field.value());
    return {int(response.result_int()), std::move(fields), response.body()};
}

std::string RawClient::receiveRest()
{
    std::string rest = beast::buffers_to_string(m_connection->buffer.data());
    m_connection->buffer.consume(m_connection->buffer.size());
    m_connection->lastError = await(m_connection->io, m_connection->stream, [&](auto done) {
        net::async_read(m_connection->stream, net::dynamic_buffer(rest), std::move(done));
    });
    EXPECT_NE(m_connection->lastError, Error(beast::error::timeout)) << "the host did not close";
    return rest;
}

bool RawClient::isClosedWithin(int milliseconds)
{
    std::string rest;
    m_connection->lastError = await(
        m_connection->io, m_connection->stream,
        [&](auto done) {
            net::async_read(m_connection->stream, net::dynamic_buffer(rest), std::move(done));
        },
        std::chrono::milliseconds(milliseconds));
    return m_connection->lastError != Error(beast::error::timeout);
}

bool canListenAt(const char* address)
{
    net::io_context io;
    net::ip::tcp::acceptor acceptor(io);
    const net::ip::tcp::endpoint place = at(address, 0);
    Error error;
    acceptor.open(place.protocol(), error);
    if (!error)
        acceptor.bind(place, error);
    return !error;
}

Reply request(unsigned short port, std::string_view bytes, bool toHead)
{
    RawClient client(port);
    client.send(bytes);
    return client.receive(toHead);
}

std::string getText(unsigned short port, std::string_view path, std::string_view fields)
{
    return "GET " + std::string(path) + " HTTP/1.1\r\n" + hostField(port) + std::string(fields) +
           "\r\n";
}

Reply get(unsigned short port, std::string_view path, std::string_view fields)
{
    return request(port, getText(port, path, fields));
}

std::string postText(unsigned short port, std::string_view path, std::string_view body,
                     std::string_view fields)
{
    return "POST " + std::string(path) + " HTTP/1.1\r\n" + hostField(port) + std::string(fields) +
           "content-length: " + std::to_string(body.size()) + "\r\n\r\n" + std::string(body);
}

struct PageClient::Socket
{
    net::io_context io;
    websocket::stream<beast::tcp_stream> socket{io};
    Error lastError;

    beast::tcp_stream& stream() { return beast::get_lowest_layer(socket); }

    bool write(std::string_view bytes, bool isText)
    {
        socket.text(isText);
        lastError = await(io, stream(), [&](auto done) {
            socket.async_write(net::buffer(bytes.data(), bytes.size()), std::move(done));
        });
        return !lastError;
    }
};

PageClient::PageClient() : m_socket(std::make_unique<Socket>())
{
    m_socket->socket.read_message_max(0);
    m_socket->socket.auto_fragment(false);
}

PageClient::PageClient(unsigned short port) : PageClient()
{
    EXPECT_EQ(open(port), 101);
}

PageClient::~PageClient() = default;

int PageClient::open(unsigned short port, const std::string& hostName, const std::string& origin,
                     const std::string& path)
{
    m_socket->lastError = await(m_socket->io, m_socket->stream(), [&](auto done) {
        m_socket->stream().async_connect(at("127.0.0.1", port), std::move(done));
    });
    if (m_socket->lastError)
        return 0;
    m_socket->socket.set_option(
        websocket::stream_base::decorator([=](websocket::request_type& upgrade) {
            if (!origin.empty())
                upgrade.set(http::field::origin, origin);
        }));
    websocket::response_type response;
    response.result(0);
    const std::string host = hostName.empty() ? "127.0.0.1:" + std::to_string(port) : hostName;
    m_socket->lastError = await(m_socket->io, m_socket->stream(), [&](auto done) {
        m_socket->socket.async_handshake(response, host, path, std::move(done));
    });
    return static_cast<int>(response.result_int());
}

bool PageClient::sendText(std::string_view text)
{
    return m_socket->write(text, true);
}

bool PageClient::sendBinary(std::string_view bytes)
{
    return m_socket->write(bytes, false);
}

bool PageClient::request(const std::string& data, const std::string& name)
{
    const QJsonObject frame{{QStringLiteral("name"), QString::fromStdString(name)},
                            {QStringLiteral("data"), QString::fromStdString(data)}};
    return sendText(QJsonDocument(frame).toJson(QJsonDocument::Compact).toStdString());
}

std::string PageClient::receiveText()
{
    beast::flat_buffer buffer;
    m_socket->lastError = await(m_socket->io, m_socket->stream(), [&](auto done) {
        m_socket->socket.async_read(buffer, std::move(done));
    });
    return m_socket->lastError ? std::string() : beast::buffers_to_string(buffer.data());
}

QJsonObject PageClient::receive()
{
    const std::string text = receiveText();
    EXPECT_FALSE(text.empty()) << m_socket->lastError.message();
    QJsonObject message = QJsonDocument::fromJson(QByteArray::fromStdString(text)).object();
    EXPECT_TRUE(text.empty() || message.size() == 2) << text.substr(0, 300);
    return message;
}

QJsonObject PageClient::receivePacket()
{
    return receive().value(QStringLiteral("packet")).toObject();
}

int PageClient::awaitClose()
{
    m_socket->lastError = {}; // a broken write does not say how the host closed
    while (!m_socket->lastError)
        receiveText();
    EXPECT_NE(m_socket->lastError, Error(beast::error::timeout)) << "the host did not close";
    return m_socket->lastError == websocket::error::closed ? m_socket->socket.reason().code : 0;
}

void PageClient::hangUp()
{
    m_socket->stream().close();
}

} // namespace hosttest
