#include "host/upload.h"

#include "host/atlas_settings.h"
#include "host/site.h"
#include "platform/platform.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <boost/asio/buffer.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/write.hpp>

#include <algorithm>
#include <string>
#include <utility>

namespace net = boost::asio;
namespace http = boost::beast::http;
using Clock = std::chrono::steady_clock;

namespace host {

Upload::Upload(boost::beast::tcp_stream& stream, boost::beast::flat_buffer& buffer, Header&& header,
               Site& site, const QString& path)
    : stream_(stream), buffer_(buffer), site_(site), place_(site.uploads),
      parser_(std::move(header)), latest_(Clock::now() + site.limits.uploadTimeout), file_(path),
      name_(QFileInfo(path).fileName())
{
}

void Upload::receive(Done done)
{
    done_ = std::move(done);
    // No read takes more than there is room for, and it begins with that for a header.
    buffer_.reserve(std::min(piece_.size(), buffer_.max_size()));
    if (!boost::beast::iequals(parser_.get()[http::field::expect], "100-continue"))
        return onDisk([this] { open(); });
    stream_.expires_after(site_.limits.writeTimeout);
    net::async_write(stream_, net::buffer(kContinue.data(), kContinue.size()),
                     [self = shared_from_this()](Error error, std::size_t) {
                         if (error)
                             return self->end({});
                         self->onDisk([raw = self.get()] { raw->open(); });
                     });
}

// ---- on the I/O thread -----------------------------------------------------------------------

void Upload::readPiece()
{
    parser_.get().body().data = piece_.data();
    parser_.get().body().size = piece_.size();
    parser_.get().body().more = true;
    stream_.expires_at(std::min(Clock::now() + site_.limits.bodyTimeout, latest_));
    http::async_read(
        stream_, buffer_, parser_,
        [self = shared_from_this()](Error error, std::size_t) { self->onPiece(error); });
}

void Upload::onPiece(Error error)
{
    if (error == http::error::body_limit) {
        refuse(http::status::payload_too_large,
               QStringLiteral("The file is too large; at most %1 MiB are taken.")
                   .arg(site_.limits.atlasFileBytes / kMiB));
        return end(std::move(outcome_));
    }
    // The room of a piece is used up: what comes next has to wait until this one is on the disk.
    if (error && error != http::error::need_buffer)
        return end({});
    const std::size_t size = piece_.size() - parser_.get().body().size;
    onDisk([this, size] { take(size); });
}

void Upload::onDisk(std::function<void()> work)
{
    net::post(site_.disk, [self = shared_from_this(), work = std::move(work)]() mutable {
        work();
        net::io_context& io = self->site_.io;
        // Moved, since what the connection holds is to be let go on the I/O thread.
        net::post(io, [self = std::move(self)] {
            if (self->outcome_)
                self->end(std::move(self->outcome_));
            else if (self->parser_.is_done())
                self->onDisk([raw = self.get()] { raw->commit(); });
            else
                self->readPiece();
        });
    });
}

void Upload::end(std::optional<Response> response)
{
    place_ = Hub::Place();
    const Done done = std::exchange(done_, nullptr);
    done(std::move(response));
}

// ---- on the disk's thread --------------------------------------------------------------------

void Upload::open()
{
    if (!QDir().mkpath(QFileInfo(file_.fileName()).path()) || !file_.open(QIODevice::WriteOnly))
        refuse(
            http::status::internal_server_error,
            QStringLiteral("%1 cannot be written: %2.").arg(file_.fileName(), file_.errorString()));
}

void Upload::take(std::size_t size)
{
    if (file_.write(piece_.data(), qint64(size)) != qint64(size))
        return refuse(
            http::status::insufficient_storage,
            QStringLiteral("%1 cannot be written: %2.").arg(file_.fileName(), file_.errorString()));
    const int room = kAtlasBeginning - beginning_.size();
    if (room == 0)
        return;
    beginning_.append(piece_.data(), std::min(room, int(size)));
    // Told as early as can be, as the rest may be long.
    if (beginning_.size() == kAtlasBeginning)
        judge();
}

void Upload::judge()
{
    const QString fault = atlasTextFault(beginning_, name_);
    if (!fault.isEmpty())
        refuse(http::status::unprocessable_entity, fault);
}

void Upload::commit()
{
    if (beginning_.size() < kAtlasBeginning)
        judge();
    if (outcome_)
        return;
    const qint64 size = file_.size();
    platform::awaitReplaceable(file_.fileName());
    if (!file_.commit())
        return refuse(
            http::status::insufficient_storage,
            QStringLiteral("%1 cannot be written: %2.").arg(file_.fileName(), file_.errorString()));
    const QJsonObject stored{{QStringLiteral("path"), file_.fileName()},
                             {QStringLiteral("size"), size}};
    outcome_ = makeResponse(http::status::ok, "application/json",
                            QJsonDocument(stored).toJson(QJsonDocument::Compact).toStdString());
}

void Upload::refuse(http::status status, const QString& text)
{
    outcome_ = sentence(status, text.toStdString());
}

} // namespace host
