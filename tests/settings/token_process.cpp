// Another process that shares the token mirror, for the tests.
//
//   token_process hold LOCK                        takes the lock, says "ready", keeps it until
//                                                  its input ends
//   token_process add MIRROR LOCK PREFIX COUNT     says "ready", waits for a line, then adds the
//                                                  tokens PREFIX0, PREFIX1, … with the values
//                                                  0, 1, …

#include "platform/filelock.h"
#include "settings/tokenstore.h"

#include <QCoreApplication>
#include <QThread>

#include <cstdio>

namespace {

void sayReady()
{
    std::puts("ready");
    std::fflush(stdout);
}

int hold(const QString& path)
{
    platform::FileLock lock;
    if (!lock.open(path) || !lock.tryLock())
        return 1;
    sayReady();
    while (std::getchar() != EOF) {
    }
    return 0;
}

int add(const QString& mirror, const QString& lock, const QString& prefix, int count)
{
    settings::TokenPaths paths;
    paths.mirror = mirror;
    paths.lock = lock;
    settings::TokenStore store(paths, [](int) { QThread::msleep(1); });
    sayReady();
    std::getchar();
    for (int i = 0; i < count; ++i) {
        // The lock favours whoever has just given it back; giving up in between is no loss.
        constexpr int patience = 200;
        int rounds = 0;
        while (!store.addInteger(prefix + QString::number(i), QString(), i)) {
            if (++rounds == patience)
                return 1;
        }
    }
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    if (words.size() == 3 && words.at(1) == QLatin1String("hold"))
        return hold(words.at(2));
    if (words.size() == 6 && words.at(1) == QLatin1String("add"))
        return add(words.at(2), words.at(3), words.at(4), words.at(5).toInt());
    return 2;
}
