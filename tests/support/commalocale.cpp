#include "tests/support/commalocale.h"

#include <QFile>
#include <QLocale>
#include <QProcess>
#include <QTemporaryDir>

#include <clocale>

namespace {

#ifdef Q_OS_WIN

constexpr const char* germanLocale = "German";

void provideLocale() {} // Windows has them all

#else

constexpr const char* germanLocale = "de_DE.UTF-8";

// Compiled once per process; the C library finds it through LOCPATH.
void provideLocale()
{
    static const QTemporaryDir folder;
    static const int outcome = QProcess::execute(QStringLiteral("localedef"),
                                                 {QStringLiteral("-i"), QStringLiteral("de_DE"),
                                                  QStringLiteral("-f"), QStringLiteral("UTF-8"),
                                                  folder.filePath(QStringLiteral("de_DE.UTF-8"))});
    Q_UNUSED(outcome)
    qputenv("LOCPATH", QFile::encodeName(folder.path()));
}

#endif

} // namespace

CommaLocale::CommaLocale() : m_earlier(std::setlocale(LC_ALL, nullptr))
{
    provideLocale();
    std::setlocale(LC_ALL, germanLocale);
    QLocale::setDefault(QLocale(QLocale::German));
}

CommaLocale::~CommaLocale()
{
    std::setlocale(LC_ALL, m_earlier.constData());
    QLocale::setDefault(QLocale::c());
}

bool CommaLocale::isActive()
{
    return *std::localeconv()->decimal_point == ',';
}
