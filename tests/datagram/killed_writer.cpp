// Replaces a file and is killed at the n-th linking or renaming, as by a power cut: killed_writer
// PATH N. The C library's calls are taken over here; the program's own symbols come before the
// library's.

#include "datagram/filewriter.h"

#include <QCoreApplication>

#include <cstdlib>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

int stepsToGo = 0;

void dieWhenDue()
{
    if (--stepsToGo == 0)
        _exit(9);
}

} // namespace

// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)
extern "C" {
__attribute__((visibility("default"))) int rename(const char* from, const char* to) noexcept
{
    dieWhenDue();
    return int(syscall(SYS_rename, from, to));
}

__attribute__((visibility("default"))) int linkat(int fromFolder, const char* from, int toFolder,
                                                  const char* to, int flags) noexcept
{
    dieWhenDue();
    return int(syscall(SYS_linkat, fromFolder, from, toFolder, to, flags));
}

__attribute__((visibility("default"))) int link(const char* from, const char* to) noexcept
{
    dieWhenDue();
    return int(syscall(SYS_link, from, to));
}

__attribute__((visibility("default"))) int renameat2(int fromFolder, const char* from, int toFolder,
                                                     const char* to, unsigned flags) noexcept
{
    dieWhenDue();
    return int(syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags));
}
}
// NOLINTEND(readability-inconsistent-declaration-parameter-name)

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    stepsToGo = int(std::strtol(argv[2], nullptr, 10));
    QString error;
    datagram::saveOtherFile(QString::fromLocal8Bit(argv[1]), "new", true, error);
    return 0;
}
