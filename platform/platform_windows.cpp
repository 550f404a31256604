#include "platform/platform.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <qt_windows.h>

#include <io.h>

namespace platform {

namespace {
DebugSink debugSink = nullptr;
}

QString nativePath(const QString& path)
{
    return path;
}

QString environmentValue(const char* name)
{
    return qEnvironmentVariable(name);
}

QString defaultProfileFolder(const QString& windowsDefault)
{
    return windowsDefault;
}

QString systemFile(const QString& windowsPath, const QString& belowDataRoot)
{
    Q_UNUSED(belowDataRoot)
    return windowsPath;
}

std::FILE* openStream(const QString& path, const char* mode)
{
    const QFileInfo file(path);
    // Opening a pipe could wait for ever.
    if (path.contains(QChar(0)) || (file.exists() && !file.isFile()))
        return nullptr;
    return _wfopen(reinterpret_cast<const wchar_t*>(path.utf16()),
                   QString::fromLatin1(mode).toStdWString().c_str());
}

bool keepAs(const QString& path, const QString& backup)
{
    const auto wide = [](const QString& name) {
        return QDir::toNativeSeparators(name).toStdWString();
    };
    if (!QFileInfo(path).isSymLink() &&
        CreateHardLinkW(wide(backup).c_str(), wide(path).c_str(), nullptr))
        return true;
    return QFile::copy(path, backup); // refuses a name that is taken
}

bool syncToDisk(int handle)
{
    return _commit(handle) == 0;
}

void debugOutput(const std::string& text)
{
    if (debugSink != nullptr)
        debugSink(text);
    else
        OutputDebugStringA(text.c_str());
}

void setDebugSink(DebugSink sink)
{
    debugSink = sink;
}

} // namespace platform
