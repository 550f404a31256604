// What a connection does with requests about the atlas: its settings, and files for it.
#include "host/http_connection.h"
#include "host/site.h"
#include "host/upload.h"

#include <QMetaObject>
#include <boost/asio/post.hpp>

#include <memory>
#include <utility>

namespace net = boost::asio;
namespace http = boost::beast::http;

namespace host {

void HttpConnection::routeAtlas()
{
    if (isFileMethod())
        return askAtlas([](const AtlasSettings& atlas) { return atlas.read(); });
    if (parser_->get().method() == http::verb::put)
        return askForBody();
    respond(methodNotAllowed("GET, HEAD, PUT"));
}

void HttpConnection::askAtlas(std::function<AtlasAnswer(const AtlasSettings&)> question)
{
    awaitAnswer("The host did not get to it in time.");
    const std::weak_ptr<HttpConnection> weak = shared_from_this();
    Site& site = site_;
    QMetaObject::invokeMethod(
        &site.qtThread,
        [weak, &site, question = std::move(question)] {
            net::post(site.io, [weak, answer = question(site.atlas)] {
                if (const auto connection = weak.lock())
                    connection->onAtlasAnswer(answer);
            });
        },
        Qt::QueuedConnection);
}

void HttpConnection::onAtlasAnswer(const AtlasAnswer& answer)
{
    if (!takeAnswer())
        return;
    const auto status = http::int_to_status(answer.status);
    respond(status == http::status::ok
                ? makeResponse(status, "application/json", answer.text.toStdString())
                : sentence(status, answer.text.toStdString()));
}

void HttpConnection::receiveUpload()
{
    const QString name = queryOf({parser_->get().target().data(), parser_->get().target().size()})
                             .queryItemValue(QStringLiteral("name"), QUrl::FullyDecoded);
    if (!isAtlasFileName(name))
        return respondAndClose(sentence(http::status::bad_request,
                                        "The file cannot be stored under this name. Rename it."));
    if (site_.uploads >= site_.limits.uploads)
        return respondAndClose(
            sentence(http::status::service_unavailable,
                     "Other files are being received. Try again when they are there."));
    const auto upload =
        std::make_shared<Upload>(stream_, buffer_, std::move(*parser_), site_,
                                 site_.data.atlasFolder() + QLatin1Char('/') + name);
    parser_.reset();
    upload->receive([self = shared_from_this()](std::optional<Response> response) {
        if (response)
            self->respondAndClose(std::move(*response));
        else
            self->drop();
    });
}

} // namespace host
