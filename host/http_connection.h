#pragma once

#include "host/atlas_settings.h"
#include "host/hub.h"
#include "host/messages.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

namespace host {

struct Site;

/// One client's connection as long as it speaks plain HTTP: files, the list of casts, the atlas,
/// POSTs for the plug-in. An upgrade hands the socket on to a PageConnection.
class HttpConnection final : public Connection, public std::enable_shared_from_this<HttpConnection>
{
  public:
    HttpConnection(boost::asio::ip::tcp::socket socket, Site& site, int number, Hub::Place place);
    ~HttpConnection() override;

    /// Begins to read requests.
    void serve();

    /// Answers 503 without reading anything, and closes.
    void turnAway();

    void finish() override;
    void drop() override;
    void answer(const QByteArray& response) override;

  private:
    using Error = boost::beast::error_code;

    void awaitRequest();
    void readHeader();
    void readHeaderPart();
    void onHeader(Error error);
    void route();
    std::optional<Response> refusal() const;
    void routeStatic(std::string_view path);
    void upgrade();

    void routeAtlas();
    void askAtlas(std::function<AtlasAnswer(const AtlasSettings&)> question);
    void onAtlasAnswer(const AtlasAnswer& answer);
    void receiveUpload();

    void askForBody();
    void readBody();
    void onBody(Error error);
    void forwardPost();
    void awaitAnswer(std::string_view reasonIfLate);
    bool takeAnswer();
    void onAnswerMissing(std::string_view reason, boost::beast::http::status status);

    bool isFileMethod() const;
    std::string_view path() const;
    std::size_t bodyLimit() const;
    void refuseMalformed(Error error);
    void refuseLongBody();
    void respond(Response response);
    void respondAndClose(Response response);
    void write(Response response);
    void onWritten(Error error);
    void linger();
    void discard();

    Site& site_;
    const int number_;
    Hub::Place place_;
    boost::beast::tcp_stream stream_;
    boost::beast::flat_buffer buffer_;
    std::optional<boost::beast::http::request_parser<boost::beast::http::string_body>> parser_;
    std::size_t headerBytes_ = 0; ///< of the current request, taken so far
    std::optional<Response> response_;
    QByteArray answer_; ///< the plug-in's bytes while they are written
    boost::asio::steady_timer answerTimer_;
    bool awaitsAnswer_ = false;
    bool busy_ = false; ///< between a whole request header and the end of its response
    bool closeAfterwards_ = false;
    std::array<char, 16384> discarded_{};
};

} // namespace host
