#pragma once

#include <QString>

#include <cstdint>

namespace platform {

/// A lock that processes of one machine hold one at a time: the first 256 bytes of a lock file.
/// The file stays; its content means nothing. Two objects exclude each other in one process too.
/// The lock goes with the object, and with the process, however that ends.
class FileLock
{
  public:
    /// Number of bytes that are locked, from the first one on.
    static constexpr int lockedBytes = 256;

    FileLock() = default;
    ~FileLock() { close(); }
    Q_DISABLE_COPY(FileLock)

    /// Opens the lock file for reading and writing, shared with others for both, and makes it
    /// where it is missing; its folder must be there. Locks nothing yet. False when it cannot be
    /// opened or is something else than a file.
    bool open(const QString& path);

    /// Tries once, without waiting, to get the lock. False when another holds it, or without an
    /// open lock file.
    bool tryLock();

    /// Gives the lock back, if it is held, and closes the file.
    void close();

  private:
    /// A file descriptor, or a handle of Windows; "none" and "invalid" are -1 for both.
    std::intptr_t m_handle = -1;
    /// Windows refuses a lock to whoever holds it already.
    [[maybe_unused]] bool m_isLocked = false;
};

} // namespace platform
