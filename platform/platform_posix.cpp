#include "platform/platform.h"

#include <QFile>
#include <QFileInfo>

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
    Q_UNUSED(windowsDefault)
    const QString root = dataRoot();
    return root.isEmpty() ? QString() : root + QStringLiteral("qrvdata/svp_abscoeff");
}

std::FILE* openStream(const QString& path, const char* mode)
{
    if (path.contains(QChar(0)) || QFileInfo(path).isDir())
        return nullptr;
    return std::fopen(QFile::encodeName(path).constData(), mode);
}

void debugOutput(const std::string& text)
{
    if (debugSink != nullptr)
        debugSink(text);
    else
        std::fputs(text.c_str(), stderr);
}

void setDebugSink(DebugSink sink)
{
    debugSink = sink;
}

} // namespace platform
