#include "host/hub.h"

#include <limits>

namespace host {

void Connection::send(const Frame&) {}

void Connection::answer(const QByteArray&) {}

int Hub::newNumber()
{
    do {
        lastNumber_ = lastNumber_ == std::numeric_limits<int>::max() ? 1 : lastNumber_ + 1;
    } while (entries_.count(lastNumber_) > 0);
    return lastNumber_;
}

void Hub::enter(int number, const std::shared_ptr<Connection>& connection)
{
    entries_[number] = {connection, connection.get()};
}

void Hub::leave(int number, const Connection* connection)
{
    const auto entry = entries_.find(number);
    if (entry != entries_.end() && entry->second.address == connection)
        entries_.erase(entry);
}

std::vector<std::shared_ptr<Connection>> Hub::all() const
{
    std::vector<std::shared_ptr<Connection>> connections;
    connections.reserve(entries_.size());
    for (const auto& entry : entries_) {
        if (auto connection = entry.second.connection.lock())
            connections.push_back(std::move(connection));
    }
    return connections;
}

void Hub::broadcast(const Frame& frame)
{
    for (const auto& connection : all())
        connection->send(frame);
}

void Hub::answer(int number, const QByteArray& response)
{
    const auto entry = entries_.find(number);
    if (entry == entries_.end())
        return;
    if (const auto connection = entry->second.connection.lock())
        connection->answer(response);
}

void Hub::finishAll()
{
    for (const auto& connection : all())
        connection->finish();
}

void Hub::dropAll()
{
    for (const auto& connection : all())
        connection->drop();
}

} // namespace host
