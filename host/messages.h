#pragma once

#include <QByteArray>
#include <QUrlQuery>
#include <boost/beast/http.hpp>

#include <string>
#include <string_view>

/// The HTTP messages that the host makes: its own responses, and requests as plug-ins read them.
namespace host {

using Request = boost::beast::http::request<boost::beast::http::string_body>;
using Response = boost::beast::http::response<boost::beast::http::string_body>;

/// What a client that holds its body back, in case that it is refused, waits for.
constexpr std::string_view kContinue = "HTTP/1.1 100 Continue\r\n\r\n";

/// A response with the header fields that every one of them carries: what the page may load, no
/// guessing of types, no referrer, no use of a stale copy.
Response makeResponse(boost::beast::http::status status, std::string_view contentType,
                      std::string body);

/// A response whose body is one sentence for a person to read.
Response sentence(boost::beast::http::status status, std::string_view text);

/// The response to a method that the path does not know. `allowed` is e.g. "GET, HEAD".
Response methodNotAllowed(std::string_view allowed);

/// A whole POST request for a plug-in: request line, header fields, blank line, body.
///
/// Names of known fields are written the usual way ("Content-Length") however the client wrote
/// them. Content-Length is always there and is the length of the body as it stands. Fields about
/// the connection itself are left out. Content-Length and Content-Type come first, since readers
/// that search the text for them shall not find something else before.
QByteArray requestText(const Request& request);

/// What follows the "?" of a request's target.
QUrlQuery queryOf(std::string_view target);

} // namespace host
