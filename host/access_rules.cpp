#include "host/access_rules.h"

#include "settings/characters.h"

#include <algorithm>

namespace host {

namespace {

/// ASCII only on purpose: header fields know no other letters.
std::string lowerCase(std::string_view text)
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), settings::lower);
    return result;
}

std::string bracketed(const std::string& address)
{
    return address.find(':') == std::string::npos ? address : '[' + address + ']';
}

} // namespace

AccessRules::AccessRules(std::vector<std::string> hostNames) : names_(std::move(hostNames))
{
    for (std::string& name : names_)
        name = lowerCase(name);
    names_.insert(names_.end(), {"localhost", "127.0.0.1", "[::1]"});
}

bool AccessRules::allowsHost(std::string_view hostHeader, const LocalEnd& local) const
{
    const std::string host = lowerCase(hostHeader);
    const std::size_t nameEnd = host.rfind(']') == std::string::npos ? 0 : host.rfind(']');
    const std::size_t colon = host.find(':', nameEnd);
    const std::string name = host.substr(0, colon);
    const std::string port = colon == std::string::npos ? "80" : host.substr(colon + 1);
    if (port != std::to_string(local.port))
        return false;
    // The address itself is never a rebound name, so it is right whatever the host listens on.
    return name == bracketed(local.address) ||
           std::find(names_.begin(), names_.end(), name) != names_.end();
}

bool AccessRules::allowsOrigin(std::string_view origin, std::string_view hostHeader)
{
    const std::string host = lowerCase(hostHeader);
    const std::string from = lowerCase(origin);
    return from == "http://" + host || from == "https://" + host;
}

} // namespace host
