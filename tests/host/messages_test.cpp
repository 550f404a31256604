#include "host/messages.h"

#include <boost/beast/http.hpp>
#include <gtest/gtest.h>

using namespace std::string_literals;

namespace {

TEST(RequestText, HasUsualNamesAndTheRealLength)
{
    namespace http = boost::beast::http;
    host::Request request(http::verb::post, "/Name?x", 11);
    request.insert("HOST", "here");
    request.insert("content-TYPE", "multipart/form-data; boundary=b");
    request.insert("Transfer-Encoding", "chunked");
    request.insert("Connection", "keep-alive");
    request.insert("x-own", "y");
    request.body() = "a\0b"s;
    EXPECT_EQ(host::requestText(request).toStdString(),
              "POST /Name?x HTTP/1.1\r\nContent-Length: 3\r\n"
              "Content-Type: multipart/form-data; boundary=b\r\nHost: here\r\nx-own: y\r\n\r\n"
              "a\0b"s);
}

} // namespace
