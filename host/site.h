#pragma once

#include "host/access_rules.h"
#include "host/data_folder.h"
#include "host/hub.h"
#include "host/limits.h"
#include "host/plugin_gateway.h"
#include "host/static_files.h"

#include <boost/asio/io_context.hpp>

#include <string>
#include <vector>

namespace host {

/// What every connection needs to know of the host. Outlives them all; used on the I/O thread.
struct Site
{
    const Limits limits;
    const AccessRules access;
    const StaticFiles files;
    const DataFolder data;
    PluginGateway& plugin;
    std::vector<std::string> postPaths{}; ///< "/SVP_WebInterface"

    Hub hub{};
    bool stopping = false;

    /// After the hub: what is left in its queues on destruction leaves the hub.
    boost::asio::io_context io{1};
};

} // namespace host
