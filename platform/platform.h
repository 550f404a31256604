#pragma once

#include <QByteArray>
#include <QString>

#include <cstdio>
#include <string>

/// What differs between Windows and the other systems, behind one small interface. Everything
/// else in the engine is written once.
namespace platform {

/// The path as this system writes it. Paths are put together with backslashes, as the data
/// folders of the survey system are documented; where the separator is "/", every backslash
/// becomes one. On Windows the path stays as it is.
QString nativePath(const QString& path);

/// Value of the environment variable `name`; empty when it is unset.
QString environmentValue(const char* name);

/// The data root, `%ProgramData%\Ardentide\`, in this system's form and with a separator at the
/// end. Empty when the environment variable "ProgramData" is unset or empty: then the engine
/// has no data folders and writes nothing. Read from the environment at each call.
QString dataRoot();

/// The folder for profiles that is used when the survey system's configuration names none. On
/// Windows `windowsDefault`; elsewhere `qrvdata/svp_abscoeff` below the data root, empty without
/// a data root.
QString defaultProfileFolder(const QString& windowsDefault);

/// Opens `path` as `std::fopen` does, with names outside of the narrow character set too. Null
/// when it cannot be opened or is a folder. The caller closes the stream.
std::FILE* openStream(const QString& path, const char* mode);

/// Writes one diagnostic text, as it stands, to the system's debug output: the debugger's
/// output on Windows, the error stream elsewhere.
void debugOutput(const std::string& text);

/// Receives what would go to the debug output; an empty function restores the system's own.
using DebugSink = void (*)(const std::string& text);

/// Sends the debug output to `sink` instead (for tests); null restores the system's own.
void setDebugSink(DebugSink sink);

/// Replaces the file `path` by one that holds `content`, or makes it. The content goes into a
/// temporary file in the same folder, is flushed and then renamed, so that a full disk or a
/// crash leaves the old file as it was. Returns false and puts the system's own text into
/// `error` (when given) if that fails; a folder of that name is a failure.
bool replaceFile(const QString& path, const QByteArray& content, QString* error = nullptr);

/// Makes `folder` with all missing folders above it. True when it is there afterwards.
bool makeFolder(const QString& folder);

/// Largest file that `readFile` takes. The largest cast known has a hundredth of it; what is
/// beyond is no cast, and must not take the host's memory.
constexpr qint64 maxFileSize = 256LL * 1024 * 1024;

/// Reads a regular file whole into `content`. False (and `content` empty) when there is no such
/// file, it cannot be read, it is larger than `maxFileSize`, or it is something else than a file:
/// a folder, a device, a pipe.
bool readFile(const QString& path, QByteArray& content);

} // namespace platform
