#pragma once

#include "platform/platform.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

namespace datagram {

/// Name for the backup of `path`, in the same folder: base name, "_bck_", local date and time
/// (yyyyMMdd_HHmmss), "." and the suffix. Where that is taken, a number is added behind the time. A
/// base name that leaves no room for the rest is cut.
QString backupPath(const QString& path, const QDateTime& now);

/// Writes a finished file body to `path`, replacing an older file whole. With `keepBackup` the
/// older file stays under a backup name. When the content cannot be written the older file is as
/// it was; the system's own text is put into `error` and logged.
platform::Replaced saveOtherFile(const QString& path, const QByteArray& content, bool keepBackup,
                                 QString& error);

/// As `saveOtherFile`, but the older file stays under a backup name where it holds something else,
/// and nothing is logged. `kept` becomes the path of the backup; empty where there was nothing to
/// keep, or it could not be kept.
platform::Replaced saveKeepingOther(const QString& path, const QByteArray& content, QString& kept,
                                    QString& error);

} // namespace datagram
