#pragma once

#include <QString>
#include <QStringList>

/// The pieces of requests, to be changed one by one: `join` makes the body.
namespace requests {

/// "[" + pieces joined by "*" + "]".
QString join(const QStringList& pieces);

/// The pieces with the one at `place` replaced.
QStringList changed(QStringList pieces, int place, const QString& text);

/// A full send request of three good samples, content identifier 0.
QStringList fullSend();

/// A short send request of three good samples, depths first.
QStringList shortSend();

/// A datagram save request of three good samples, content identifier 0, file "cast.ssp".
QStringList datagramSave();

/// An `.asvp` save request of three good samples, file "cast".
QStringList asvpSave();

} // namespace requests
