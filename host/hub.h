#pragma once

#include "host/frames.h"

#include <QByteArray>

#include <cstddef>
#include <memory>
#include <unordered_map>
#include <vector>

namespace host {

/// What the host can ask of any open connection.
class Connection
{
  public:
    Connection() = default;
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    virtual ~Connection() = default;

    /// Asks for a good end: what is being sent is sent, then the connection closes.
    virtual void finish() = 0;

    /// Closes the socket now.
    virtual void drop() = 0;

    /// Takes a message for a page; other connections have no use for it.
    virtual void send(const Frame& frame);

    /// Takes the plug-in's answer to a POST that this connection forwarded.
    virtual void answer(const QByteArray& response);
};

/// Knows the open connections by number. Belongs to the I/O thread alone.
class Hub
{
  public:
    /// Counts a connection from its acceptance to its end, whatever it turns into meanwhile.
    class Place
    {
      public:
        Place() = default;
        explicit Place(std::size_t& count) : count_(&count, leave) { ++count; }

      private:
        static void leave(std::size_t* count) { --*count; }
        std::unique_ptr<std::size_t, void (*)(std::size_t*)> count_{nullptr, leave};
    };

    Place takePlace() { return Place(open_); }
    Place takeWaitingPlace() { return Place(turnedAway_); }
    std::size_t open() const { return open_; }
    std::size_t turnedAway() const { return turnedAway_; }

    /// A number for a new connection, above 0 and not in use.
    int newNumber();

    /// Enters a connection under a number, in place of one that it grew out of.
    void enter(int number, const std::shared_ptr<Connection>& connection);

    /// Forgets a number if it still belongs to the connection. For destructors.
    void leave(int number, const Connection* connection);

    /// To every page.
    void broadcast(const Frame& frame);

    /// To the connection that waits for it; without effect if that is gone.
    void answer(int number, const QByteArray& response);

    void finishAll();
    void dropAll();

  private:
    struct Entry
    {
        std::weak_ptr<Connection> connection;
        const Connection* address = nullptr;
    };

    /// A list of its own, since what is done to a connection may change the table.
    std::vector<std::shared_ptr<Connection>> all() const;

    std::unordered_map<int, Entry> entries_;
    std::size_t open_ = 0;
    std::size_t turnedAway_ = 0;
    int lastNumber_ = 0;
};

} // namespace host
