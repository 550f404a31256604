#include "host/page_connection.h"

#include "host/site.h"

#include <QtDebug>
#include <boost/asio/buffer.hpp>
#include <boost/asio/post.hpp>

#include <string>

namespace net = boost::asio;
namespace beast = boost::beast;
namespace websocket = beast::websocket;

namespace host {

namespace {

/// Bytes of a message that are taken at once.
constexpr std::size_t kReadAtOnce = 64 * kKiB;

/// Characters of an unknown name that are told back.
constexpr int kNameShown = 100;

QString toQString(std::string_view utf8)
{
    return QString::fromUtf8(utf8.data(), static_cast<int>(utf8.size()));
}

} // namespace

PageConnection::PageConnection(beast::tcp_stream stream, Site& site, int number, Hub::Place place)
    : site_(site), number_(number), place_(std::move(place)), socket_(std::move(stream)),
      pingTimer_(site.io), lastHeard_(Clock::now())
{
}

PageConnection::~PageConnection()
{
    site_.hub.leave(number_, this);
}

void PageConnection::accept(const Request& upgradeRequest)
{
    site_.hub.enter(number_, shared_from_this());
    // Beast's idle time would also run while we do not read because the plug-in is behind, so
    // silence is measured here.
    socket_.set_option(websocket::stream_base::timeout{site_.limits.handshakeTimeout,
                                                       websocket::stream_base::none(), false});
    socket_.set_option(websocket::stream_base::decorator([](websocket::response_type& response) {
        response.set(beast::http::field::server, "svp-host");
    }));
    // Beast's limit on messages closes without taking in what the page is still sending, which
    // resets the connection and loses the reason; onRead() watches the size.
    socket_.read_message_max(0);
    // Whole packets are handed to the system as they are, without a copy in pieces.
    socket_.auto_fragment(false);
    socket_.control_callback(
        [this](websocket::frame_type, beast::string_view) { lastHeard_ = Clock::now(); });
    Error ignored;
    beast::get_lowest_layer(socket_).socket().set_option(net::ip::tcp::no_delay(true), ignored);
    const auto request = std::make_shared<const Request>(upgradeRequest);
    socket_.async_accept(
        *request, [self = shared_from_this(), request](Error error) { self->onAccepted(error); });
}

void PageConnection::onAccepted(Error error)
{
    if (error)
        return drop();
    open_ = true;
    lastHeard_ = Clock::now();
    if (site_.stopping)
        return finish();
    awaitPing();
    readNext();
}

void PageConnection::finish()
{
    if (!open_)
        return drop();
    close(websocket::close_code::going_away, "The host stops.");
}

void PageConnection::close(websocket::close_code code, const char* reason)
{
    open_ = false;
    pingTimer_.cancel();
    socket_.async_close(websocket::close_reason(code, reason),
                        [self = shared_from_this()](Error) { self->drop(); });
}

void PageConnection::drop()
{
    open_ = false;
    pingTimer_.cancel();
    beast::get_lowest_layer(socket_).close();
}

// ---- from the page ---------------------------------------------------------------------------

bool PageConnection::pluginIsBehind() const
{
    return waitingRequests_ >= site_.limits.waitingRequests ||
           waitingRequestBytes_ >= site_.limits.waitingRequestBytes;
}

void PageConnection::readNext()
{
    if (!open_ || reading_ || pluginIsBehind())
        return;
    reading_ = true;
    readPart();
}

void PageConnection::readPart()
{
    socket_.async_read_some(
        buffer_, kReadAtOnce,
        [self = shared_from_this()](Error error, std::size_t) { self->onRead(error); });
}

void PageConnection::onRead(Error error)
{
    if (!error && open_ && buffer_.size() <= site_.limits.messageBytes &&
        !socket_.is_message_done())
        return readPart();
    reading_ = false;
    // Beast has sent the close frame that the error calls for, such as 1007 for broken UTF-8.
    if (error)
        return drop();
    if (!open_)
        return;
    if (buffer_.size() > site_.limits.messageBytes) {
        buffer_ = {};
        return close(websocket::close_code::too_big, "The message is too long.");
    }
    lastHeard_ = Clock::now();
    if (socket_.got_text()) {
        const auto bytes = buffer_.cdata();
        handle({static_cast<const char*>(bytes.data()), bytes.size()});
    } else {
        send(hostFailure("Messages have to be text."));
    }
    if (buffer_.capacity() > kMiB)
        buffer_ = {}; // a page that once sent a long cast does not keep the room for it
    else
        buffer_.consume(buffer_.size());
    readNext();
}

void PageConnection::handle(std::string_view text)
{
    const PageRequest request = parsePageRequest(text);
    if (!request.problem.empty())
        return send(hostFailure(request.problem));
    const QString name = toQString(request.name);
    if (!site_.plugin.servesMessagesFor(name))
        return send(hostFailure(QStringLiteral("No plug-in serves the name \"%1\".")
                                    .arg(name.left(kNameShown))
                                    .toStdString()));

    const std::size_t bytes = text.size();
    ++waitingRequests_;
    waitingRequestBytes_ += bytes;
    // Weak, since the call may still be queued when the I/O thread has gone. The request itself
    // is carried out even if the page closes first: it may be a save.
    net::io_context& io = site_.io;
    site_.plugin.forwardMessage(number_, name, toQString(request.data),
                                [weak = weak_from_this(), &io, bytes](const QString& failure) {
                                    net::post(io, [weak, bytes, failure = failure.toStdString()] {
                                        if (const auto self = weak.lock())
                                            self->onForwarded(bytes, failure);
                                    });
                                });
}

void PageConnection::onForwarded(std::size_t bytes, const std::string& failure)
{
    --waitingRequests_;
    waitingRequestBytes_ -= bytes;
    if (!failure.empty())
        send(hostFailure(failure));
    readNext();
}

// ---- to the page -----------------------------------------------------------------------------

void PageConnection::send(const Frame& frame)
{
    if (!open_)
        return;
    if (!queue_.empty() && queueBytes_ + frame->size() > site_.limits.pageQueueBytes) {
        qWarning("Page %d does not read its messages and is dropped.", number_);
        return drop();
    }
    queue_.push_back(frame);
    queueBytes_ += frame->size();
    if (queue_.size() == 1)
        writeNext();
}

void PageConnection::writeNext()
{
    socket_.text(true);
    const std::string& text = *queue_.front();
    socket_.async_write(
        net::buffer(text.data(), text.size()),
        [self = shared_from_this()](Error error, std::size_t) { self->onWritten(error); });
}

void PageConnection::onWritten(Error error)
{
    queueBytes_ -= queue_.front()->size();
    queue_.pop_front();
    if (error) {
        queue_.clear();
        queueBytes_ = 0;
        // While the page takes its leave, its end is the closing handshake's to find.
        if (open_)
            drop();
        return;
    }
    if (open_ && !queue_.empty())
        writeNext();
}

// ---- keeping in touch ------------------------------------------------------------------------

void PageConnection::awaitPing()
{
    pingTimer_.expires_after(site_.limits.pingInterval);
    pingTimer_.async_wait([self = shared_from_this()](Error error) {
        if (!error)
            self->onPingTime();
    });
}

void PageConnection::onPingTime()
{
    if (!open_)
        return;
    // What the page says is not heard while it is not read from; that is not its silence.
    if (!reading_)
        lastHeard_ = Clock::now();
    if (Clock::now() - lastHeard_ > site_.limits.silenceTimeout) {
        qInfo("Page %d has gone silent and is dropped.", number_);
        return drop();
    }
    if (!pinging_) {
        pinging_ = true;
        socket_.async_ping({}, [self = shared_from_this()](Error) { self->pinging_ = false; });
    }
    awaitPing();
}

} // namespace host
