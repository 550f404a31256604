#pragma once

#include <vector>

/// The little in which the host differs between Windows and the rest.
namespace host {

/// Call first in main(): makes file names and arguments UTF-8 where the environment's locale
/// would lose other letters than English ones, and keeps a reader of our output that has gone
/// away from ending the process.
void prepareProcess();

/// Call once QCoreApplication is made, which adopts the user's locale: numbers keep their point.
void keepNumbersPlain();

/// The signals by which a user or the system asks the host to stop.
std::vector<int> stopSignals();

/// Whether a listening socket should ask for its address to be reused. On Windows that would
/// let a second process take a port that is in use.
bool reusesAddress();

} // namespace host
