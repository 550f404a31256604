#include "platform/platform.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSaveFile>

namespace platform {

QString dataRoot()
{
    const QString programData = environmentValue("ProgramData");
    if (programData.isEmpty())
        return {};
    return nativePath(programData + QStringLiteral("\\Ardentide\\"));
}

bool isDeviceName(const QString& name)
{
    // What stands before the first dot or colon decides.
    static const QRegularExpression device(
        QStringLiteral("^(CON|PRN|AUX|NUL|CONIN\\$|CONOUT\\$|(COM|LPT)[0-9\u00b9\u00b2\u00b3])"
                       " *([.:]|$)"),
        QRegularExpression::CaseInsensitiveOption);
    return device.match(name).hasMatch();
}

bool replaceFile(const QString& path, const QByteArray& content, QString* error)
{
    return replaceFileKeeping(path, QString(), content, error) == Replaced::Whole;
}

Replaced replaceFileKeeping(const QString& path, const QString& backup, const QByteArray& content,
                            QString* error)
{
    QSaveFile file(path);
    const auto failure = [&file, error](Replaced outcome) {
        if (error != nullptr)
            *error = file.errorString();
        return outcome;
    };
    // An empty name would be taken relative to the working folder.
    if (path.isEmpty() || !file.open(QIODevice::WriteOnly))
        return failure(Replaced::NotOpened);
    if (file.write(content) != content.size() || !file.flush() || !syncToDisk(file.handle()))
        return failure(Replaced::NotWritten);
    awaitReplaceable(path);
    const bool isKept = !backup.isEmpty() && keepAs(path, backup);
    if (file.commit())
        return Replaced::Whole;
    const Replaced outcome = failure(Replaced::NotOpened);
    if (isKept)
        QFile::remove(backup); // the older file still stands under its own name
    return outcome;
}

bool makeFolder(const QString& folder)
{
    return !folder.isEmpty() && QDir().mkpath(folder);
}

bool readFile(const QString& path, QByteArray& content)
{
    content.clear();
    // Opening a pipe or a device could wait for ever.
    if (path.contains(QChar(0)) || !isFile(path))
        return false;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > maxFileSize)
        return false;
    content = file.readAll();
    if (file.error() == QFileDevice::NoError)
        return true;
    content.clear();
    return false;
}

} // namespace platform
