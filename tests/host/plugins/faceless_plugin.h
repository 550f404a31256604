#pragma once

#include <QObject>
#include <QtPlugin>

/// A plug-in with the right identifier that does not offer the interface.
class FacelessPlugin : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.ardentide.svpwebinterfacelib")
};
