#include "platform/platform.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace platform {

QString dataRoot()
{
    const QString programData = environmentValue("ProgramData");
    if (programData.isEmpty())
        return {};
    return nativePath(programData + QStringLiteral("\\Ardentide\\"));
}

bool replaceFile(const QString& path, const QByteArray& content, QString* error)
{
    // An empty name would be taken relative to the working folder.
    QSaveFile file(path);
    const bool written = !path.isEmpty() && file.open(QIODevice::WriteOnly) &&
                         file.write(content) == content.size() && file.commit();
    if (!written && error != nullptr)
        *error = file.errorString();
    return written;
}

bool makeFolder(const QString& folder)
{
    return !folder.isEmpty() && QDir().mkpath(folder);
}

bool readFile(const QString& path, QByteArray& content)
{
    content.clear();
    // Opening a pipe or a device could wait for ever.
    if (!QFileInfo(path).isFile())
        return false;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > maxFileSize)
        return false;
    content = file.readAll();
    if (file.error() == QFileDevice::NoError)
        return true;
    content.clear();
    return false;
}

} // namespace platform
