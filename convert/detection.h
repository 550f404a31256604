#pragma once

#include <QByteArray>
#include <QString>

namespace convert {

/// What a file was taken for.
struct Detection
{
    int format = -1; ///< a format number of `datagram::CReceiveData`; -1 when refused
    QString refusal; ///< why it is refused, for a surveyor
};

/// Recognises a probe file by its content. The words that only one kind of file carries come
/// first, tables without any such word last; those must have sound speeds in their second
/// column. The suffix (without its point) decides between kinds of tables alone, and whether a file
/// that the editor opens itself needs another one there.
Detection detectFormat(const QByteArray& text, const QString& suffix);

/// Whether the format is a table: nothing but rows, so that no time and no position is looked for.
bool isTable(int format);

/// The kind of file, e.g. "Sea-Bird converted file".
QString formatName(int format);

/// The same as one short word for a header, e.g. "SeaBird".
QString formatWord(int format);

} // namespace convert
