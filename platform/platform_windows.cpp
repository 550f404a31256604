#include "platform/platform.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <qt_windows.h>

#include <algorithm>
#include <io.h>
#include <string>
#include <utility>

namespace platform {

namespace {

DebugSink debugSink = nullptr;

std::wstring wide(const QString& text)
{
    return text.toStdWString();
}

/// The path in the form that takes more than 260 characters and gives no name a meaning as a
/// device.
std::wstring plainPath(const QString& path)
{
    const QString absolute =
        QDir::toNativeSeparators(QDir::cleanPath(QFileInfo(path).absoluteFilePath()));
    if (absolute.startsWith(QLatin1String("\\\\")))
        return L"\\\\?\\UNC\\" + wide(absolute.mid(2));
    return L"\\\\?\\" + wide(absolute);
}

/// Whether a file is there and nobody keeps it from being replaced; otherwise the system's last
/// error says why.
bool canBeReplaced(const QString& path)
{
    HANDLE file = CreateFileW(plainPath(path).c_str(), DELETE,
                              FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                              OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    CloseHandle(file);
    return true;
}

} // namespace

QString nativePath(const QString& path)
{
    return path;
}

QString environmentValue(const char* name)
{
    // From the system, not from the C library: a host may be built with another one, which does
    // not tell ours what it has set.
    const std::wstring wideName = wide(QString::fromLatin1(name));
    std::wstring value;
    for (DWORD size = 256; size > value.size();) {
        value.resize(size);
        size = GetEnvironmentVariableW(wideName.c_str(), &value[0], size);
        if (size < value.size()) { // without the end, once it fits
            value.resize(size);
            break;
        }
    }
    return QString::fromStdWString(value);
}

QString defaultProfileFolder(const QString& windowsDefault)
{
    return windowsDefault;
}

Qt::CaseSensitivity pathCase()
{
    return Qt::CaseInsensitive;
}

bool isFileName(const QString& name)
{
    const auto isPlain = [](QChar character) {
        return character >= QLatin1Char(' ') && !QStringLiteral("<>:\"|?*\\").contains(character);
    };
    const QStringList parts = name.split(QLatin1Char('/'));
    return std::all_of(parts.begin(), parts.end(), [&](const QString& part) {
        return std::all_of(part.begin(), part.end(), isPlain) && !part.endsWith(QLatin1Char('.')) &&
               !part.endsWith(QLatin1Char(' ')) && !isDeviceName(part);
    });
}

bool isFile(const QString& path)
{
    // "\\.\" and "\\?\" lead to pipes, drives and devices.
    const QString slashes = QDir::fromNativeSeparators(path);
    if (slashes.startsWith(QLatin1String("//.")) || slashes.startsWith(QLatin1String("//?")) ||
        isDeviceName(slashes.mid(slashes.lastIndexOf(QLatin1Char('/')) + 1)))
        return false;
    return QFileInfo(path).isFile();
}

QByteArray textFileBytes(const QByteArray& text)
{
    QByteArray bytes;
    bytes.reserve(text.size() + text.count('\n'));
    for (int i = 0; i < text.size(); ++i) {
        if (text[i] == '\n' && (i == 0 || text[i - 1] != '\r'))
            bytes += '\r';
        bytes += text[i];
    }
    return bytes;
}

QString systemFile(const QString& windowsPath, const QString& belowDataRoot)
{
    Q_UNUSED(belowDataRoot)
    return windowsPath;
}

std::FILE* openStream(const QString& path, const char* mode)
{
    if (path.isEmpty() || path.contains(QChar(0)) || (QFileInfo::exists(path) && !isFile(path)))
        return nullptr;
    std::FILE* const stream =
        _wfopen(plainPath(path).c_str(), wide(QString::fromLatin1(mode)).c_str());
    if (stream == nullptr)
        return nullptr;
    // A folder that another system lends may hold devices of that system, such as an endless one.
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
    if (GetFileType(handle) == FILE_TYPE_DISK)
        return stream;
    std::fclose(stream);
    return nullptr;
}

bool keepAs(const QString& path, const QString& backup)
{
    // A file that another program holds cannot be replaced, and a further name of it could not be
    // taken back then.
    if (!canBeReplaced(path))
        return false;
    if (CreateHardLinkW(plainPath(backup).c_str(), plainPath(path).c_str(), nullptr))
        return true;
    return QFile::copy(path, backup); // refuses a name that is taken
}

void awaitReplaceable(const QString& path)
{
    for (int i = 0; i < 40; ++i) {
        if (canBeReplaced(path) || GetLastError() != ERROR_SHARING_VIOLATION)
            return;
        Sleep(25);
    }
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

DebugSink setDebugSink(DebugSink sink)
{
    return std::exchange(debugSink, sink);
}

} // namespace platform
