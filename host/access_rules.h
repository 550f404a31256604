#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host {

/// The address at which a connection came in, as text: "127.0.0.1", "::1".
struct LocalEnd
{
    std::string address;
    unsigned short port = 0;
};

/// Decides whether a request comes from the host's own page.
///
/// Any web site that the user visits can make the browser send requests to the loopback
/// address. Two header fields give them away, and neither can be forged by a page:
/// - Origin names the site whose page sent the request;
/// - Host names the address that the browser believes to be calling, which is the foreign
///   site's own name when that name was made to resolve to the loopback address.
class AccessRules
{
  public:
    /// @param hostNames  names without port, besides localhost, 127.0.0.1, [::1] and the address
    ///                   of the connection itself
    explicit AccessRules(std::vector<std::string> hostNames = {});

    /// Whether a Host header may stand in a request that came in at `local`. Without a port it
    /// means port 80.
    bool allowsHost(std::string_view hostHeader, const LocalEnd& local) const;

    /// Whether an Origin header belongs to the page that was loaded from `hostHeader`.
    static bool allowsOrigin(std::string_view origin, std::string_view hostHeader);

  private:
    std::vector<std::string> names_;
};

} // namespace host
