#pragma once

#include "plugin/webinterface.h"

/// A plug-in for another kind of host: right in everything but its identifier.
class StrangerPlugin : public WebInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.ardentide.someotherlib")
    Q_INTERFACES(WebInterface)
};
