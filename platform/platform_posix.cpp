#include "platform/platform.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace platform {

namespace {
DebugSink debugSink = nullptr;
}

QString nativePath(const QString& path)
{
    QString native = path;
    native.replace(QLatin1Char('\\'), QLatin1Char('/'));
    return native;
}

QString environmentValue(const char* name)
{
    // The variable holds a path: read it as file names are read, so that it leads back to the
    // same bytes.
    return QFile::decodeName(qgetenv(name));
}

QString defaultProfileFolder(const QString& windowsDefault)
{
    return systemFile(windowsDefault, QStringLiteral("qrvdata/svp_abscoeff"));
}

QString systemFile(const QString& windowsPath, const QString& belowDataRoot)
{
    Q_UNUSED(windowsPath)
    const QString root = dataRoot();
    return root.isEmpty() ? QString() : root + belowDataRoot;
}

Qt::CaseSensitivity pathCase()
{
    return Qt::CaseSensitive;
}

bool isFileName(const QString& name)
{
    Q_UNUSED(name)
    return true;
}

bool isFile(const QString& path)
{
    return QFileInfo(path).isFile();
}

QByteArray textFileBytes(const QByteArray& text)
{
    return text;
}

std::FILE* openStream(const QString& path, const char* mode)
{
    const QFileInfo file(path);
    // Opening a pipe could wait for ever.
    if (path.contains(QChar(0)) || (file.exists() && !file.isFile()))
        return nullptr;
    return std::fopen(QFile::encodeName(path).constData(), mode);
}

bool keepAs(const QString& path, const QString& backup)
{
    // A symbolic link is followed, as replacing the file follows it.
    if (::linkat(AT_FDCWD, QFile::encodeName(path).constData(), AT_FDCWD,
                 QFile::encodeName(backup).constData(), AT_SYMLINK_FOLLOW) == 0)
        return true;
    return errno != EEXIST && QFile::copy(path, backup);
}

void awaitReplaceable(const QString& path)
{
    Q_UNUSED(path)
}

bool syncToDisk(int handle)
{
    return ::fdatasync(handle) == 0 || errno == EINVAL || errno == ENOSYS;
}

void debugOutput(const std::string& text)
{
    if (debugSink != nullptr)
        debugSink(text);
    else
        std::fputs(text.c_str(), stderr);
}

DebugSink setDebugSink(DebugSink sink)
{
    return std::exchange(debugSink, sink);
}

} // namespace platform
