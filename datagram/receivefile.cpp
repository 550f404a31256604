#include "datagram/receivefile.h"

#include "platform/platform.h"

namespace datagram {

bool CReceiveFile::open(const QString& fileName)
{
    return platform::readFile(fileName, m_text);
}

} // namespace datagram
