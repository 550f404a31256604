#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>
#include <vector>

/// What a program of ours needs to know of the system that it runs on: what `platform.h` is for
/// the engine's code, for `main` and for a server.
namespace platform {

/// Call first in main(), before QCoreApplication is made: makes file names and arguments UTF-8
/// where the environment's locale would lose other letters than English ones, and lets a console
/// show what this program writes, which is UTF-8, until it ends.
void useUtf8();

/// Call early in a program whose output others read: its bytes are the same on every system, an
/// error is out at once, and a reader that has gone away does not end the program.
void useBareOutput();

/// Sets an environment variable of this process, in whatever letters.
void setEnvironment(const char* name, const QString& value);

/// The arguments that name files, with "*" and "?" in the last part of a path replaced by the
/// names of the files that are there, sorted, where the system's shell leaves that to the program.
/// Any other letter, "[" too, stands for itself. A pattern that nothing matches stays as it is.
QStringList expandedPatterns(const QStringList& arguments);

/// The file name of a loadable module: "x.dll", "libx.so".
QString moduleFileName(const QString& module);

/// Call before a program ends because it cannot start: a console window that was opened for this
/// program alone, by a double click, would close before anyone could read why. Waits for a key
/// there, and nowhere else.
void holdConsole();

/// The signals by which a user or the system asks a program to stop.
std::vector<int> stopSignals();

/// Call once the signals are listened to: Ctrl+Break comes as one whatever the C library; a window
/// that is closed, a user who leaves and a system that goes down ask to stop as well, and are held
/// up until the program has ended or the system waits no longer (some five seconds). Elsewhere than
/// on Windows they come as signals.
void stopWithTheWindow();

/// Call for a socket that is to listen, before it is bound: a port that another program listens on
/// is refused, and one that a program before us has left is free at once.
void claimPort(std::intptr_t socket);

} // namespace platform
