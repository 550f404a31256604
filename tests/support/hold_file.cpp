// Another program that has a file open: hold_file PATH. Says "held" once it has, or "failed", and
// lets go when its input ends.

#include <QCoreApplication>
#include <QDir>
#include <qt_windows.h>

#include <cstdio>

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QString path = QDir::toNativeSeparators(application.arguments().value(1));
    const HANDLE file = CreateFileW(path.toStdWString().c_str(), GENERIC_READ, FILE_SHARE_READ,
                                    nullptr, OPEN_EXISTING, 0, nullptr);
    std::puts(file != INVALID_HANDLE_VALUE ? "held" : "failed");
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    return 0;
}
