#include <QCoreApplication>
#include <gtest/gtest.h>

#ifdef Q_OS_WIN
#include <qt_windows.h>
#endif

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
#ifdef Q_OS_WIN
    // Ctrl+Break reaches the host only on a console that it shares with us.
    if (GetConsoleCP() == 0)
        AllocConsole();
#endif
    return RUN_ALL_TESTS();
}
