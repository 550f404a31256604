#pragma once

#include <QString>

#include <vector>

/// The little in which the host differs between Windows and the rest.
namespace host {

/// Call first in main(): makes file names and arguments UTF-8 where the environment's locale
/// would lose other letters than English ones, and keeps a reader of our output that has gone
/// away from ending the process.
void prepareProcess();

/// Call once QCoreApplication is made, which adopts the user's locale: numbers keep their point.
void keepNumbersPlain();

/// Sets an environment variable of this process, in whatever letters.
void setEnvironment(const char* name, const QString& value);

/// Call before the program ends because it cannot start: a console window that was opened for this
/// program alone, by a double click, would close before anyone could read why. Waits for a key
/// there, and nowhere else.
void holdConsole();

/// The signals by which a user or the system asks the host to stop.
std::vector<int> stopSignals();

/// Whether a listening socket should ask for its address to be reused. On Windows that would
/// let a second process take a port that is in use.
bool reusesAddress();

} // namespace host
