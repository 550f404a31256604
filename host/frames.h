#pragma once

#include <memory>
#include <string>
#include <string_view>

/// The text of web-socket messages between the page and the host.
///
///     page to host: {"name": "SVP_WebInterface", "data": "page,ACTION=…"}
///     host to page: {"target": "SVP_WebInterface", "packet": {…}}
namespace host {

/// One message to pages. Packets are megabytes and go to every page, so all share one text.
using Frame = std::shared_ptr<const std::string>;

/// A message of a page, taken apart.
struct PageRequest
{
    std::string problem; ///< empty, or a sentence that says why the message is none
    std::string name;    ///< UTF-8
    std::string data;    ///< UTF-8
};

/// Takes a page's message apart. Other keys are left alone; of a key that comes twice the last
/// one counts.
PageRequest parsePageRequest(std::string_view text);

/// The message that carries a packet of the plug-in, or null if the packet is not one JSON object
/// in UTF-8: a browser would close the socket over it. The packet's own text is kept.
///
/// @param target  UTF-8
Frame packetFrame(std::string_view target, std::string_view packet);

/// The message by which the host itself says that something failed.
Frame hostFailure(std::string_view reason);

} // namespace host
