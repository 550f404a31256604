#pragma once

#include <QByteArray>
#include <QString>

namespace datagram {

/// A probe or profile file in memory.
class CReceiveFile
{
  public:
    /// Reads the file whole. False, and no text, when it cannot be read or is larger than
    /// `platform::maxFileSize`.
    bool open(const QString& fileName);

    /// The bytes of the file as they stand.
    const QByteArray& text() const { return m_text; }

  private:
    QByteArray m_text;
};

} // namespace datagram
