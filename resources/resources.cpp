#include "resources/resources.h"

#include <QFile>
#include <QtGlobal>

// Q_INIT_RESOURCE must stand outside of every namespace.
static void initResource()
{
    Q_INIT_RESOURCE(svp);
}

namespace resources {

void registerAll()
{
    initResource();
}

QByteArray extensionProfile()
{
    registerAll();
    QFile file(QString::fromLatin1(extensionProfilePath));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace resources
