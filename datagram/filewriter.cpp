#include "datagram/filewriter.h"

#include <QDebug>
#include <QFileInfo>

namespace datagram {

QString backupPath(const QString& path, const QDateTime& now)
{
    const QFileInfo file(path);
    const QString time = QStringLiteral("_bck_") + now.toString(QStringLiteral("yyyyMMdd_HHmmss"));
    const QString suffix = file.suffix().isEmpty() ? QString() : QLatin1Char('.') + file.suffix();
    // A long name gives way to the time: what is kept must fit into a file name. Systems count
    // bytes or UTF-16 units; there are never more units than bytes of UTF-8.
    QString base = file.completeBaseName();
    constexpr int longestName = 255;
    constexpr int roomForNumber = 7;
    while (!base.isEmpty() && (base + time + suffix).toUtf8().size() > longestName - roomForNumber)
        base.chop(base.size() > 1 && base.at(base.size() - 1).isLowSurrogate() ? 2 : 1);

    const QString start = file.path() + QLatin1Char('/') + base + time;
    QString name = start + suffix;
    for (int number = 2; QFileInfo::exists(name) || QFileInfo(name).isSymLink(); ++number)
        name = start + QLatin1Char('_') + QString::number(number) + suffix;
    return name;
}

namespace {

// Empty where there is no file to keep.
QString backupOf(const QString& path)
{
    return QFileInfo(path).isFile() ? backupPath(path, QDateTime::currentDateTime()) : QString();
}

} // namespace

platform::Replaced saveOtherFile(const QString& path, const QByteArray& content, bool keepBackup,
                                 QString& error)
{
    const QString backup = keepBackup ? backupOf(path) : QString();
    const platform::Replaced outcome = platform::replaceFileKeeping(path, backup, content, &error);
    if (outcome != platform::Replaced::Whole)
        qDebug().noquote() << "CSVP_WebInterface::writeSVPfile - WARNING -" << error;
    return outcome;
}

platform::Replaced saveKeepingOther(const QString& path, const QByteArray& content, QString& kept,
                                    QString& error)
{
    QByteArray older;
    const bool isSame = platform::readFile(path, older) && older == content;
    kept = isSame ? QString() : backupOf(path);
    const platform::Replaced outcome = platform::replaceFileKeeping(path, kept, content, &error);
    if (outcome != platform::Replaced::Whole || !QFileInfo::exists(kept))
        kept.clear();
    return outcome;
}

} // namespace datagram
