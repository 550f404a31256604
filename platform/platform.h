#pragma once

#include <QByteArray>
#include <QString>

#include <cstdio>
#include <string>

/// What differs between Windows and the other systems, behind one small interface. Everything
/// else in the engine is written once.
namespace platform {

/// The path as this system writes it. Paths are put together with backslashes, since the survey
/// system's folders are Windows folders; where the separator is "/", every backslash becomes one.
/// On Windows the path stays as it is.
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

/// Whether Windows takes `name`, of a file without its folder, for a device ("NUL", "com1.txt"). To
/// be asked on every system about a name that is to lead to a file on all.
bool isDeviceName(const QString& name);

/// Whether paths that differ in upper and lower case alone lead to the same file.
Qt::CaseSensitivity pathCase();

/// Whether a file below some folder may have this name, which may hold sub-folders, separated by
/// "/". Windows keeps some names for devices ("NUL", "com1.txt"), takes a colon for a stream inside
/// a file and drops blanks and dots at the end: such a name would lead to something else than the
/// file that it says. Elsewhere every name is one.
bool isFileName(const QString& name);

/// Whether a file is there, a regular one: not a folder, a device or a pipe. Links are followed.
bool isFile(const QString& path);

/// A text as a text file of this system holds it: its lines, ended by "\n" in `text`, end in CR LF
/// on Windows. Lines that end so already stay.
QByteArray textFileBytes(const QByteArray& text);

/// A file of the survey system that has a fixed place on Windows, `windowsPath`. Elsewhere it is
/// `belowDataRoot` (e.g. "temp/token.lck") below the data root, empty without a data root.
QString systemFile(const QString& windowsPath, const QString& belowDataRoot);

/// Opens `path` as `std::fopen` does, with names outside of the narrow character set too. Null
/// when it cannot be opened or is there but no file. The caller closes the stream.
std::FILE* openStream(const QString& path, const char* mode);

/// Writes one diagnostic text, as it stands, to the system's debug output: the debugger's
/// output on Windows, the error stream elsewhere.
void debugOutput(const std::string& text);

/// Receives what would go to the debug output; an empty function restores the system's own.
using DebugSink = void (*)(const std::string& text);

/// Sends the debug output to `sink` instead (for tests); null restores the system's own. Returns
/// where it went before.
DebugSink setDebugSink(DebugSink sink);

/// Replaces the file `path` by one that holds `content`, or makes it. The content goes into a
/// temporary file in the same folder, is flushed and then renamed, so that a full disk or a
/// crash leaves the old file as it was. Returns false and puts the system's own text into
/// `error` (when given) if that fails; a folder of that name is a failure.
bool replaceFile(const QString& path, const QByteArray& content, QString* error = nullptr);

/// Outcome of `replaceFileKeeping`.
enum class Replaced
{
    Whole,      ///< the file holds the content
    NotOpened,  ///< no file could be made there
    NotWritten, ///< the content could not be written as a whole, e.g. on a full disk
};

/// Gives the file `path` (of a symbolic link, what it leads to) the further name `backup`, so that
/// its content stays when `path` is replaced; where the file system knows no second names, copies
/// it. False, and nothing changed, when that fails or `backup` is taken.
bool keepAs(const QString& path, const QString& backup);

/// Waits, a second at most, while another program keeps the file `path` from being replaced: on
/// Windows those that look for viruses or index files open each new one for a moment.
void awaitReplaceable(const QString& path);

/// Brings what was written through an open file to the disk. False when the system reports that
/// it could not.
bool syncToDisk(int handle);

/// As `replaceFile`, but an older file of that name is kept as `backup`, a name that must not be
/// taken (empty: it is not kept). The new content is on the disk before the older file is touched,
/// and there is a whole file under the name at every moment. An older file that cannot be kept is
/// replaced all the same.
Replaced replaceFileKeeping(const QString& path, const QString& backup, const QByteArray& content,
                            QString* error = nullptr);

/// Makes `folder` with all missing folders above it. True when it is there afterwards.
bool makeFolder(const QString& folder);

/// Largest file that `readFile` takes. A cast of a million levels fits; what is beyond is no
/// cast, and its reply would take gigabytes of the host's memory.
constexpr qint64 maxFileSize = 32LL * 1024 * 1024;

/// Reads a regular file whole into `content`. False (and `content` empty) when there is no such
/// file, it cannot be read, it is larger than `maxFileSize`, or it is something else than a file:
/// a folder, a device, a pipe.
bool readFile(const QString& path, QByteArray& content);

} // namespace platform
