#include "platform/platform.h"

#include <QFileInfo>
#include <qt_windows.h>

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

std::FILE* openStream(const QString& path, const char* mode)
{
    if (path.contains(QChar(0)) || QFileInfo(path).isDir())
        return nullptr;
    return _wfopen(reinterpret_cast<const wchar_t*>(path.utf16()),
                   QString::fromLatin1(mode).toStdWString().c_str());
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
