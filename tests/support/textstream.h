#pragma once

#include "platform/platform.h"
#include "tests/support/datafolder.h"

#include <QTemporaryDir>

#include <cstdio>
#include <string>

/// A stream over a file that holds a text and goes with the object. Not std::tmpfile, which on
/// Windows makes its file in the root of the drive, where not everybody may write.
class TextStream
{
  public:
    explicit TextStream(const std::string& text)
    {
        const QString path = m_folder.filePath(QStringLiteral("text"));
        writeBytes(path, QByteArray::fromStdString(text));
        m_stream = platform::openStream(path, "rb");
    }
    ~TextStream() { std::fclose(m_stream); }
    Q_DISABLE_COPY(TextStream)

    std::FILE* get() const { return m_stream; }

  private:
    QTemporaryDir m_folder;
    std::FILE* m_stream = nullptr;
};
