#include "datagram/filewriter.h"

#include <QDebug>
#include <QFileInfo>

namespace datagram {

QString backupPath(const QString& path, const QDateTime& now)
{
    const QFileInfo file(path);
    const QString start = file.path() + QLatin1Char('/') + file.completeBaseName() +
                          QStringLiteral("_bck_") + now.toString(QStringLiteral("yyyyMMdd_HHmmss"));
    const QString end = QLatin1Char('.') + file.suffix();
    QString name = start + end;
    for (int number = 2; QFileInfo::exists(name) || QFileInfo(name).isSymLink(); ++number)
        name = start + QLatin1Char('_') + QString::number(number) + end;
    return name;
}

platform::Replaced saveOtherFile(const QString& path, const QByteArray& content, bool keepBackup,
                                 QString& error)
{
    const bool isKept = keepBackup && QFileInfo(path).isFile();
    const QString backup = isKept ? backupPath(path, QDateTime::currentDateTime()) : QString();
    const platform::Replaced outcome = platform::replaceFileKeeping(path, backup, content, &error);
    if (outcome != platform::Replaced::Whole)
        qDebug().noquote() << "CSVP_WebInterface::writeSVPfile - WARNING -" << error;
    return outcome;
}

} // namespace datagram
