#include "tests/support/datafolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

DataFolder::DataFolder(const QString& name, bool isConfigured)
    : m_programData(m_temporary.filePath(name)), m_earlier(qEnvironmentVariable("ProgramData"))
{
    QDir().mkpath(m_programData);
    setEnvironment("ProgramData", m_programData);
    if (isConfigured) {
        QDir().mkpath(path(QStringLiteral("qrvdata/svp_abscoeff")));
        write(QStringLiteral("runcf/AbsCoeff.ini"),
              "[absLoc]\nInitialDir=" + path(QStringLiteral("qrvdata/svp_abscoeff")).toUtf8() +
                  "\n");
    }
}

DataFolder::~DataFolder()
{
    setEnvironment("ProgramData", m_earlier);
}

QString DataFolder::path(const QString& relative) const
{
    return m_programData + QStringLiteral("/Ardentide/") + relative;
}

QString DataFolder::profile(const QString& name) const
{
    return path(QStringLiteral("qrvdata/svp_abscoeff/")) + name;
}

void DataFolder::write(const QString& relative, const QByteArray& content) const
{
    writeBytes(path(relative), content);
}

void DataFolder::writeProfile(const QString& name, const QByteArray& content) const
{
    writeBytes(profile(name), content);
}

QByteArray DataFolder::read(const QString& relative) const
{
    return bytesOf(path(relative));
}

void setEnvironment(const char* name, const QString& value)
{
#ifdef Q_OS_WIN
    // A narrow value would lose the letters outside of the system's code page.
    _wputenv_s(QString::fromLatin1(name).toStdWString().c_str(), value.toStdWString().c_str());
#else
    qputenv(name, QFile::encodeName(value));
#endif
}

QByteArray bytesOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeBytes(const QString& path, const QByteArray& content)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qWarning("cannot write %s", qPrintable(path));
}

QByteArray asvp(const QList<QByteArray>& sampleLines)
{
    QByteArray text = "( SoundVelocity 1.0 0 20261115123456 59.5 10.25 0 0 0 sample NA " +
                      QByteArray::number(sampleLines.size()) + " )\r\n";
    for (const QByteArray& line : sampleLines)
        text += line + "\r\n";
    return text;
}
