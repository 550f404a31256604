#include "platform/filelock.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {

bool FileLock::open(const QString& path)
{
    close();
    if (path.isEmpty() || path.contains(QChar(0)))
        return false;
    // Whoever may write into the folder may take the lock, hence the mode. The file is not
    // emptied: should the name lead to a file of somebody's, its content stays.
    const QByteArray name = QFile::encodeName(path);
    int descriptor = -1;
    do {
        descriptor =
            ::open(name.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0666);
    } while (descriptor < 0 && errno == EINTR);
    if (descriptor < 0)
        return false;
    m_handle = descriptor;
    struct stat file = {};
    if (::fstat(descriptor, &file) == 0 && S_ISREG(file.st_mode))
        return true;
    close();
    return false;
}

bool FileLock::tryLock()
{
    if (m_handle < 0)
        return false;
    // A lock of the open file, not of the process: the older kind would let two objects of one
    // process hold it at once, and lose it as soon as either closes the file.
    struct flock range = {};
    range.l_type = F_WRLCK;
    range.l_whence = SEEK_SET;
    range.l_start = 0;
    range.l_len = lockedBytes;
    return ::fcntl(static_cast<int>(m_handle), F_OFD_SETLK, &range) == 0;
}

void FileLock::close()
{
    if (m_handle >= 0)
        ::close(static_cast<int>(m_handle));
    m_handle = -1;
}

} // namespace platform
