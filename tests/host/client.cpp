#include "tests/host/client.h"

#include "tests/host/host_process.h"

#include <QJsonDocument>
#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/buffers_to_string.hpp>
#include <gtest/gtest.h>

#include <chrono>

namespace net = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
namespace websocket = beast::websocket;

namespace hosttest {

namespace {

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

std::string hostField(unsigned short port)
{
    return "Host: 127.0.0.1:" + std::to_string(port) + "\r\n";
}

} // namespace

RawClient::RawClient(unsigned short port, const char* address) : stream_(io_)
{
    lastError_ = await(io_, stream_, [&](auto done) {
        stream_.async_connect(at(address, port), std::move(done));
    });
    connected_ = !lastError_;
}

bool RawClient::send(std::string_view bytes)
{
    lastError_ = await(io_, stream_, [&](auto done) {
        net::async_write(stream_, net::buffer(bytes.data(), bytes.size()), std::move(done));
    });
    return !lastError_;
}

Reply RawClient::receive(bool toHead)
{
    http::response_parser<http::string_body> parser;
    parser.body_limit(boost::none);
    parser.skip(toHead);
    lastError_ = await(io_, stream_, [&](auto done) {
        http::async_read(stream_, buffer_, parser, std::move(done));
    });
    if (lastError_) {
        Reply none;
        none.result(0);
        return none;
    }
    return parser.release();
}

std::string RawClient::receiveRest()
{
    std::string rest = beast::buffers_to_string(buffer_.data());
    buffer_.consume(buffer_.size());
    lastError_ = await(io_, stream_, [&](auto done) {
        net::async_read(stream_, net::dynamic_buffer(rest), std::move(done));
    });
    EXPECT_NE(lastError_, Error(beast::error::timeout)) << "the host did not close";
    return rest;
}

bool RawClient::isClosedWithin(int milliseconds)
{
    std::string rest;
    lastError_ = await(
        io_, stream_,
        [&](auto done) { net::async_read(stream_, net::dynamic_buffer(rest), std::move(done)); },
        std::chrono::milliseconds(milliseconds));
    return lastError_ != Error(beast::error::timeout);
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

PageClient::PageClient() : socket_(io_)
{
    socket_.read_message_max(0);
    socket_.auto_fragment(false);
}

PageClient::PageClient(unsigned short port) : PageClient()
{
    EXPECT_EQ(open(port), 101);
}

int PageClient::open(unsigned short port, const std::string& hostName, const std::string& origin,
                     const std::string& path)
{
    lastError_ = await(io_, stream(), [&](auto done) {
        stream().async_connect(at("127.0.0.1", port), std::move(done));
    });
    if (lastError_)
        return 0;
    socket_.set_option(websocket::stream_base::decorator([=](websocket::request_type& upgrade) {
        if (!origin.empty())
            upgrade.set(http::field::origin, origin);
    }));
    websocket::response_type response;
    response.result(0);
    const std::string host = hostName.empty() ? "127.0.0.1:" + std::to_string(port) : hostName;
    lastError_ = await(io_, stream(), [&](auto done) {
        socket_.async_handshake(response, host, path, std::move(done));
    });
    return static_cast<int>(response.result_int());
}

bool PageClient::write(std::string_view bytes, bool isText)
{
    socket_.text(isText);
    lastError_ = await(io_, stream(), [&](auto done) {
        socket_.async_write(net::buffer(bytes.data(), bytes.size()), std::move(done));
    });
    return !lastError_;
}

bool PageClient::sendText(std::string_view text)
{
    return write(text, true);
}

bool PageClient::sendBinary(std::string_view bytes)
{
    return write(bytes, false);
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
    lastError_ =
        await(io_, stream(), [&](auto done) { socket_.async_read(buffer, std::move(done)); });
    return lastError_ ? std::string() : beast::buffers_to_string(buffer.data());
}

QJsonObject PageClient::receive()
{
    const std::string text = receiveText();
    EXPECT_FALSE(text.empty()) << lastError_.message();
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
    lastError_ = {}; // a broken write does not say how the host closed
    while (!lastError_)
        receiveText();
    EXPECT_NE(lastError_, Error(beast::error::timeout)) << "the host did not close";
    return lastError_ == websocket::error::closed ? socket_.reason().code : 0;
}

void PageClient::hangUp()
{
    stream().close();
}

} // namespace hosttest
