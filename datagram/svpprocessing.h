#pragma once

#include "datagram/receivedata.h"

#include <QByteArray>

namespace datagram {

/// Builds the datagram of content identifier 0, talker and sentence "$RVS00", from what a probe
/// reader found.
class CSVPProcessing
{
  public:
    explicit CSVPProcessing(const CReceiveData& data);

    /// Header, one row of depth and sound speed (two decimals) per kept sample, "No Comment", "*",
    /// the checksum in two lower-case digits, a backslash, CR and LF. A sample at the depth of the
    /// one kept before it is not kept. Empty for data of format 7.
    const QByteArray& datagram() const { return m_datagram; }

    /// Number of kept samples.
    int samples() const { return m_samples; }

  private:
    QByteArray m_datagram;
    int m_samples = 0;
};

} // namespace datagram
