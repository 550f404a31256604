#pragma once

#include "tests/support/printers.h"

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

/// A data root of its own for one test: the environment variable "ProgramData" leads to a fresh
/// folder, which goes with the object.
class DataFolder
{
  public:
    /// `name` is the folder's last element, which may hold any letters. With `isConfigured`, the
    /// configuration names the default profile folder, as on an installed system.
    explicit DataFolder(const QString& name = QStringLiteral("data"), bool isConfigured = true);
    ~DataFolder();
    Q_DISABLE_COPY(DataFolder)

    /// What "ProgramData" names.
    QString programData() const { return m_programData; }
    /// Path below the data root, e.g. "tqrv/SVPEditor.ini".
    QString path(const QString& relative) const;
    /// Path of a file in the default profile folder.
    QString profile(const QString& name) const;

    /// Writes a file below the data root, with the folders it needs.
    void write(const QString& relative, const QByteArray& content) const;
    /// Writes a file into the default profile folder.
    void writeProfile(const QString& name, const QByteArray& content) const;
    /// Reads a file below the data root; empty if it is not there.
    QByteArray read(const QString& relative) const;

  private:
    QTemporaryDir m_temporary;
    QString m_programData;
    QString m_earlier;
};

/// Sets an environment variable of this process, in whatever letters.
void setEnvironment(const char* name, const QString& value);

/// The bytes of a file; empty if it is not there.
QByteArray bytesOf(const QString& path);
/// Writes a file with the folders it needs.
void writeBytes(const QString& path, const QByteArray& content);

/// An `.asvp` text with a sound header and the given sample lines, CR LF at each end.
QByteArray asvp(const QList<QByteArray>& sampleLines);
