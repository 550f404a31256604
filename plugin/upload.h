#pragma once

#include <QByteArray>
#include <QString>

/// The part of `haystack` behind the first `start`, up to the next `end` behind that. Empty when
/// `start` is absent; runs to the end when `end` is empty or absent. An empty `start` stands at
/// the beginning.
QByteArray textBetween(const QByteArray& haystack, const QByteArray& start, const QByteArray& end);

/// The file in a whole HTTP POST with a multipart body: the bytes of its first part, unchanged,
/// and the name in `fileName`, empty if the body names none. Empty, with `fileName` as it was and
/// a line in the log, when the body has not the length that the headers declare.
QByteArray extractUpload(const QByteArray& request, QString& fileName);

/// What stands behind the last "/" or backslash of a name: some browsers send whole paths.
QString lastElement(const QString& name);
