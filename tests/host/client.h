#pragma once

#include <QJsonObject>

#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>

/// Clients that do as they are told, broken requests included. Every call comes back: what takes
/// longer than the tests' patience fails.
namespace hosttest {

/// A response of the host.
class Reply
{
  public:
    /// That there came none.
    Reply() = default;
    /// The names of header fields in small letters.
    Reply(int status, std::map<std::string, std::string> fields, std::string body);

    /// 0 if there came none.
    int status() const { return m_status; }
    /// The header field of a name in any case; empty without it.
    std::string operator[](std::string_view name) const;
    const std::string& body() const { return m_body; }

  private:
    int m_status = 0;
    std::map<std::string, std::string> m_fields;
    std::string m_body;
};

/// For the messages of tests that fail.
std::ostream& operator<<(std::ostream& out, const Reply& reply);

/// A connection on which any bytes may be sent.
class RawClient
{
  public:
    explicit RawClient(unsigned short port, const char* address = "127.0.0.1");
    ~RawClient();

    bool isConnected() const;

    /// False once the host has closed the connection.
    bool send(std::string_view bytes);

    /// One whole response.
    Reply receive(bool toHead = false);

    /// Everything until the host closes the connection.
    std::string receiveRest();

    /// Whether the host ended the connection in order, rather than by a reset.
    bool isEndedInOrder() const;

    /// Whether the host has closed the connection by the end of `milliseconds`.
    bool isClosedWithin(int milliseconds);

  private:
    struct Connection;
    std::unique_ptr<Connection> m_connection;
};

/// Whether this machine lets a program listen at an address.
bool canListenAt(const char* address);

/// Sends one request on a connection of its own.
Reply request(unsigned short port, std::string_view bytes, bool toHead = false);

/// "GET path HTTP/1.1" with the right Host, and further header lines, each ended by CR LF.
std::string getText(unsigned short port, std::string_view path, std::string_view fields = {});
Reply get(unsigned short port, std::string_view path, std::string_view fields = {});

/// A POST to the plug-in with the right Host and Content-Length.
std::string postText(unsigned short port, std::string_view path, std::string_view body,
                     std::string_view fields = {});

/// One open page.
class PageClient
{
  public:
    PageClient();
    explicit PageClient(unsigned short port);
    ~PageClient();

    /// Opens the page. 101 on success, else the status of the refusal, else 0.
    int open(unsigned short port, const std::string& hostName = {}, const std::string& origin = {},
             const std::string& path = "/ws");

    bool sendText(std::string_view text);
    bool sendBinary(std::string_view bytes);

    /// Sends a request under the name that the plug-in serves.
    bool request(const std::string& data, const std::string& name = "SVP_WebInterface");

    /// The next message. Empty object if there came none.
    QJsonObject receive();
    std::string receiveText();

    /// The packet of the next message.
    QJsonObject receivePacket();

    /// Reads until the host closes, and gives the code of its close frame; 0 if there was none.
    int awaitClose();

    /// Leaves without a word.
    void hangUp();

  private:
    struct Socket;
    std::unique_ptr<Socket> m_socket;
};

} // namespace hosttest
