#include "host/http_connection.h"

#include "host/page_connection.h"
#include "host/site.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/websocket/rfc6455.hpp>

#include <algorithm>
#include <string>

namespace net = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;

namespace host {

namespace {

/// Bytes that are read ahead at most, a whole header included.
constexpr std::size_t kReadAhead = 64 * kKiB;

/// Kinds of files that a user may have described; more is no list of them.
constexpr int kMostEndings = 200;

constexpr std::string_view kPagePath = "/ws";
constexpr std::string_view kCastsPath = "/api/casts";
constexpr std::string_view kAtlasPath = "/api/atlas";

/// Where files of the atlas are handed in.
bool isUploadPath(std::string_view path)
{
    return path == "/api/atlas/salinity" || path == "/api/atlas/temperature";
}

std::string_view view(beast::string_view text)
{
    return {text.data(), text.size()};
}

std::string_view pathOf(std::string_view target)
{
    return target.substr(0, target.find_first_of("?#"));
}

/// The values of "also" in the query of a target.
QStringList furtherEndings(std::string_view target)
{
    return queryOf(target)
        .allQueryItemValues(QStringLiteral("also"), QUrl::FullyDecoded)
        .mid(0, kMostEndings);
}

std::string sizeText(std::size_t bytes)
{
    return bytes < kMiB ? std::to_string(bytes / kKiB) + " KiB"
                        : std::to_string(bytes / kMiB) + " MiB";
}

} // namespace

HttpConnection::HttpConnection(net::ip::tcp::socket socket, Site& site, int number,
                               Hub::Place place)
    : site_(site), number_(number), place_(std::move(place)), stream_(std::move(socket)),
      buffer_(kReadAhead), answerTimer_(site.io)
{
}

HttpConnection::~HttpConnection()
{
    site_.hub.leave(number_, this);
}

void HttpConnection::serve()
{
    site_.hub.enter(number_, shared_from_this());
    readHeader();
}

void HttpConnection::turnAway()
{
    site_.hub.enter(number_, shared_from_this());
    Response response = sentence(http::status::service_unavailable,
                                 "Too many connections are open; close some pages first.");
    response.set(http::field::retry_after, "5");
    respondAndClose(std::move(response));
}

void HttpConnection::finish()
{
    if (busy_)
        closeAfterwards_ = true;
    else
        drop();
}

void HttpConnection::drop()
{
    answerTimer_.cancel();
    stream_.close();
}

// ---- reading ---------------------------------------------------------------------------------

void HttpConnection::awaitRequest()
{
    if (buffer_.size() > 0)
        return readHeader();
    stream_.expires_after(site_.limits.idleTimeout);
    stream_.async_read_some(buffer_.prepare(4 * kKiB),
                            [self = shared_from_this()](Error error, std::size_t count) {
                                if (error)
                                    return;
                                self->buffer_.commit(count);
                                self->readHeader();
                            });
}

void HttpConnection::readHeader()
{
    parser_.emplace();
    parser_->header_limit(static_cast<std::uint32_t>(site_.limits.headerBytes));
    // What this request may have is known by its path.
    parser_->body_limit(std::max(site_.limits.bodyBytes, site_.limits.atlasFileBytes));
    headerBytes_ = 0;
    // One deadline for the whole header: a client that sends a byte now and then does not move it.
    stream_.expires_after(site_.limits.headerTimeout);
    readHeaderPart();
}

void HttpConnection::readHeaderPart()
{
    http::async_read_some(stream_, buffer_, *parser_,
                          [self = shared_from_this()](Error error, std::size_t bytes) {
                              // The parser's own limit is for what it sees at once, which is less
                              // than the header when that comes in many short lines.
                              self->headerBytes_ += bytes;
                              if (!error && self->headerBytes_ > self->site_.limits.headerBytes)
                                  error = http::error::header_limit;
                              if (error || self->parser_->is_header_done())
                                  return self->onHeader(error);
                              self->readHeaderPart();
                          });
}

void HttpConnection::onHeader(Error error)
{
    busy_ = true;
    if (error)
        return refuseMalformed(error);
    const auto length = parser_->content_length();
    if (length && *length > bodyLimit())
        return refuseLongBody();
    parser_->body_limit(bodyLimit());
    route();
}

std::string_view HttpConnection::path() const
{
    return pathOf(view(parser_->get().target()));
}

std::size_t HttpConnection::bodyLimit() const
{
    if (isUploadPath(path()))
        return site_.limits.atlasFileBytes;
    return path() == kAtlasPath ? site_.limits.settingsBytes : site_.limits.bodyBytes;
}

void HttpConnection::refuseLongBody()
{
    respondAndClose(
        sentence(http::status::payload_too_large, "The body of the request is too long; at most " +
                                                      sizeText(bodyLimit()) + " are taken."));
}

void HttpConnection::refuseMalformed(Error error)
{
    if (error == http::error::header_limit || error == http::error::buffer_overflow)
        return respondAndClose(sentence(http::status::request_header_fields_too_large,
                                        "The header of the request is too long."));
    if (error == http::error::body_limit)
        return refuseLongBody();
    // Everything else of this category is a broken request, but for the two ends of a connection.
    if (error.category() == http::make_error_code(http::error::bad_method).category() &&
        error != http::error::end_of_stream && error != http::error::partial_message)
        return respondAndClose(
            sentence(http::status::bad_request, "The request is malformed: " + error.message()));
    drop();
}

// ---- routing ---------------------------------------------------------------------------------

bool HttpConnection::isFileMethod() const
{
    const http::verb method = parser_->get().method();
    return method == http::verb::get || method == http::verb::head;
}

std::optional<Response> HttpConnection::refusal() const
{
    const Request& request = parser_->get();
    if (request.count(http::field::host) > 1 ||
        (request.version() >= 11 && request.count(http::field::host) == 0))
        return sentence(http::status::bad_request, "The request needs one Host field.");
    if (request.target().empty() || request.target().front() != '/')
        return sentence(http::status::bad_request, "The request names no path.");

    Error error;
    const auto local = stream_.socket().local_endpoint(error);
    if (error)
        return sentence(http::status::bad_request, "The connection is gone.");
    const std::string_view hostName = view(request[http::field::host]);
    if (!site_.access.allowsHost(hostName, {local.address().to_string(), local.port()}))
        return sentence(http::status::forbidden,
                        "This host is not known under the name that the request gives it.");
    const auto origins = request.equal_range(http::field::origin);
    const bool foreign = std::any_of(origins.first, origins.second, [&](const auto& field) {
        return !AccessRules::allowsOrigin(view(field.value()), hostName);
    });
    if (foreign)
        return sentence(http::status::forbidden, "Pages of other sites are not served.");
    return {};
}

void HttpConnection::route()
{
    if (std::optional<Response> refused = refusal())
        return respondAndClose(std::move(*refused));

    const Request& request = parser_->get();
    const std::string_view path = this->path();
    const bool isPost = request.method() == http::verb::post;
    const auto& posts = site_.postPaths;
    if (std::find(posts.begin(), posts.end(), path) != posts.end())
        return isPost ? askForBody() : respond(methodNotAllowed("POST"));
    if (path == kAtlasPath)
        return routeAtlas();
    if (isUploadPath(path))
        return request.method() == http::verb::put ? receiveUpload()
                                                   : respond(methodNotAllowed("PUT"));
    if (!isFileMethod())
        return respond(methodNotAllowed("GET, HEAD"));
    if (path == kPagePath)
        return upgrade();
    if (path == kCastsPath)
        return respond(makeResponse(
            http::status::ok, "application/json",
            site_.data.listCasts(furtherEndings(view(request.target()))).toStdString()));
    routeStatic(path);
}

void HttpConnection::routeStatic(std::string_view path)
{
    StaticFiles::Result file = site_.files.read(path);
    switch (file.outcome) {
    case StaticFiles::Outcome::Found:
        return respond(
            makeResponse(http::status::ok, file.contentType, file.content.toStdString()));
    case StaticFiles::Outcome::Malformed:
        return respond(sentence(http::status::bad_request, "The path is malformed."));
    case StaticFiles::Outcome::Missing:
        return respond(sentence(http::status::not_found, "There is no such file."));
    }
}

void HttpConnection::upgrade()
{
    if (!beast::websocket::is_upgrade(parser_->get())) {
        Response response =
            sentence(http::status::upgrade_required, "This address speaks web socket only.");
        response.set(http::field::upgrade, "websocket");
        return respond(std::move(response));
    }
    // The client has to wait for our handshake, so nothing may have followed its own.
    if (buffer_.size() > 0 || !parser_->is_done())
        return respondAndClose(
            sentence(http::status::bad_request, "Data came before the handshake was done."));
    stream_.expires_never();
    std::make_shared<PageConnection>(std::move(stream_), site_, number_, std::move(place_))
        ->accept(parser_->release());
}

// ---- bodies, POST ----------------------------------------------------------------------------

void HttpConnection::askForBody()
{
    const Request& request = parser_->get();
    stream_.expires_after(site_.limits.bodyTimeout);
    if (!beast::iequals(request[http::field::expect], "100-continue"))
        return readBody();
    // Such a client holds its body back, in case that we refuse. We have not.
    net::async_write(stream_, net::buffer(kContinue.data(), kContinue.size()),
                     [self = shared_from_this()](Error error, std::size_t) {
                         if (!error)
                             self->readBody();
                     });
}

void HttpConnection::readBody()
{
    // No read takes more than there is room for, and it begins with that for a header.
    buffer_.reserve(kReadAhead);
    http::async_read(
        stream_, buffer_, *parser_,
        [self = shared_from_this()](Error error, std::size_t) { self->onBody(error); });
}

void HttpConnection::onBody(Error error)
{
    if (error)
        return refuseMalformed(error);
    if (path() != kAtlasPath)
        return forwardPost();
    const std::string& body = parser_->get().body();
    askAtlas([json = QByteArray::fromStdString(body)](const AtlasSettings& atlas) {
        return atlas.write(json);
    });
}

/// The answer comes from another thread; the connection stays for it until that is late.
void HttpConnection::awaitAnswer(std::string_view reasonIfLate)
{
    awaitsAnswer_ = true;
    stream_.expires_never();
    answerTimer_.expires_after(site_.limits.pluginTimeout);
    answerTimer_.async_wait([self = shared_from_this(), reasonIfLate](Error error) {
        if (!error)
            self->onAnswerMissing(reasonIfLate, http::status::gateway_timeout);
    });
}

/// False when no answer is awaited any more.
bool HttpConnection::takeAnswer()
{
    if (!awaitsAnswer_)
        return false;
    awaitsAnswer_ = false;
    answerTimer_.cancel();
    return true;
}

void HttpConnection::forwardPost()
{
    awaitAnswer("The plug-in did not answer in time.");
    // Weak, since the call may still be queued when the I/O thread has gone.
    const std::weak_ptr<HttpConnection> weak = shared_from_this();
    net::io_context& io = site_.io;
    site_.plugin.forwardPost(
        number_, requestText(parser_->get()), [weak, &io](const QString& failure) {
            if (failure.isEmpty())
                return;
            net::post(io, [weak, text = failure.toStdString()] {
                if (const auto connection = weak.lock())
                    connection->onAnswerMissing(text, http::status::internal_server_error);
            });
        });
    parser_.reset(); // the body is the plug-in's now
}

void HttpConnection::onAnswerMissing(std::string_view reason, http::status status)
{
    if (!takeAnswer())
        return;
    respondAndClose(sentence(status, reason));
}

void HttpConnection::answer(const QByteArray& response)
{
    if (!takeAnswer())
        return;
    answer_ = response;
    closeAfterwards_ = true;
    stream_.expires_after(site_.limits.writeTimeout);
    net::async_write(
        stream_, net::buffer(answer_.constData(), static_cast<std::size_t>(answer_.size())),
        [self = shared_from_this()](Error error, std::size_t) { self->onWritten(error); });
}

// ---- responding ------------------------------------------------------------------------------

void HttpConnection::respond(Response response)
{
    // A body that nobody asked for would be taken for the next request.
    if (!parser_->is_done() || !parser_->get().keep_alive())
        closeAfterwards_ = true;
    write(std::move(response));
}

void HttpConnection::respondAndClose(Response response)
{
    closeAfterwards_ = true;
    write(std::move(response));
}

void HttpConnection::write(Response response)
{
    busy_ = true;
    closeAfterwards_ = closeAfterwards_ || site_.stopping;
    response.prepare_payload();
    response.keep_alive(!closeAfterwards_);
    // The length of what GET would give stays.
    if (parser_ && parser_->is_header_done() && parser_->get().method() == http::verb::head)
        response.body().clear();
    response_ = std::move(response);
    stream_.expires_after(site_.limits.writeTimeout);
    http::async_write(stream_, *response_, [self = shared_from_this()](Error error, std::size_t) {
        self->onWritten(error);
    });
}

void HttpConnection::onWritten(Error error)
{
    response_.reset();
    answer_.clear();
    if (error)
        return drop();
    if (closeAfterwards_)
        return linger();
    busy_ = false;
    awaitRequest();
}

void HttpConnection::linger()
{
    busy_ = false;
    Error ignored;
    stream_.socket().shutdown(net::ip::tcp::socket::shutdown_send, ignored);
    if (site_.stopping)
        return drop();
    stream_.expires_after(site_.limits.lingerTimeout);
    discard();
}

void HttpConnection::discard()
{
    stream_.async_read_some(net::buffer(discarded_),
                            [self = shared_from_this()](Error error, std::size_t) {
                                if (error)
                                    return self->drop();
                                self->discard();
                            });
}

} // namespace host
