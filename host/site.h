#pragma once

#include "host/access_rules.h"
#include "host/atlas_settings.h"
#include "host/data_folder.h"
#include "host/hub.h"
#include "host/limits.h"
#include "host/plugin_gateway.h"
#include "host/static_files.h"

#include <QObject>
#include <boost/asio/io_context.hpp>
#include <boost/asio/thread_pool.hpp>

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
    const AtlasSettings atlas;
    PluginGateway& plugin;
    std::vector<std::string> postPaths{}; ///< "/SVP_WebInterface"

    /// What is asked of it is done on the Qt thread, as long as the site is there.
    QObject qtThread{};

    Hub hub{};
    std::size_t uploads = 0; ///< being received
    bool stopping = false;

    /// After the hub: what is left in its queues on destruction leaves the hub.
    boost::asio::io_context io{1};

    /// Writes what may take the disk long. After the I/O, to which it hands back what it has done.
    boost::asio::thread_pool disk{1};
};

} // namespace host
