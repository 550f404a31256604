#include "host/messages.h"

#include <algorithm>
#include <iterator>

namespace http = boost::beast::http;

namespace host {

namespace {

// The page is one script and one style sheet of this host and talks to this host alone; nothing is
// inline, made from text, embedded or framed. Forms of dialogs are not sent anywhere.
constexpr const char kContentSecurityPolicy[] =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; connect-src 'self'; "
    "base-uri 'none'; form-action 'none'; frame-ancestors 'none'";

/// Fields that describe the way between client and host, and the two that are written first.
constexpr http::field kNotPassedOn[] = {
    http::field::connection,        http::field::keep_alive, http::field::proxy_connection,
    http::field::transfer_encoding, http::field::te,         http::field::trailer,
    http::field::upgrade,           http::field::expect,     http::field::content_length,
    http::field::content_type,
};

void append(QByteArray& text, boost::beast::string_view part)
{
    text.append(part.data(), static_cast<int>(part.size()));
}

void appendField(QByteArray& text, boost::beast::string_view name, boost::beast::string_view value)
{
    append(text, name);
    text += ": ";
    append(text, value);
    text += "\r\n";
}

} // namespace

Response makeResponse(http::status status, std::string_view contentType, std::string body)
{
    Response response(status, 11, std::move(body));
    response.set(http::field::server, "svp-host");
    response.set(http::field::content_type,
                 boost::beast::string_view(contentType.data(), contentType.size()));
    response.set("X-Content-Type-Options", "nosniff");
    response.set("Content-Security-Policy", kContentSecurityPolicy);
    response.set("Referrer-Policy", "no-referrer");
    response.set(http::field::cache_control, "no-cache");
    return response;
}

Response sentence(http::status status, std::string_view text)
{
    return makeResponse(status, "text/plain; charset=utf-8", std::string(text) + "\n");
}

Response methodNotAllowed(std::string_view allowed)
{
    Response response = sentence(http::status::method_not_allowed,
                                 "This address knows only " + std::string(allowed) + ".");
    response.set(http::field::allow, boost::beast::string_view(allowed.data(), allowed.size()));
    return response;
}

QByteArray requestText(const Request& request)
{
    QByteArray text;
    text.reserve(static_cast<int>(request.body().size()) + 1024);
    append(text, request.method_string());
    text += ' ';
    append(text, request.target());
    text += request.version() == 10 ? " HTTP/1.0\r\n" : " HTTP/1.1\r\n";
    appendField(text, "Content-Length", std::to_string(request.body().size()));
    if (request.count(http::field::content_type) > 0)
        appendField(text, "Content-Type", request[http::field::content_type]);
    for (const auto& field : request) {
        if (std::find(std::begin(kNotPassedOn), std::end(kNotPassedOn), field.name()) !=
            std::end(kNotPassedOn))
            continue;
        const bool known = field.name() != http::field::unknown;
        appendField(text, known ? http::to_string(field.name()) : field.name_string(),
                    field.value());
    }
    text += "\r\n";
    append(text, request.body());
    return text;
}

QUrlQuery queryOf(std::string_view target)
{
    const std::size_t start = std::min(target.find('?'), target.size());
    const QString query = QString::fromUtf8(target.data() + start, int(target.size() - start));
    return QUrlQuery(query.mid(1));
}

} // namespace host
