#include "datagram/receivedata.h"

#include "datagram/probe_readers.h"
#include "profile/textfile.h"

#include <array>

namespace datagram {

namespace {

using Reader = int (*)(std::string_view text, ProbeCast& cast);

constexpr int formatCount = 14;

// By format number.
constexpr std::array<Reader, formatCount> readers = {
    probe::readCalcListing,
    probe::readDelimitedRows,
    probe::readDelimitedRows,
    probe::readPressureDatagram,
    probe::readConvertedProfile,
    probe::readSeaBirdConverted,
    probe::readScanListing,
    probe::readBreakpointProfile,
    probe::readBreakpointProfile,
    probe::readSvPlus,
    probe::readSeaBirdDeckUnit,
    probe::readCalibrationExtension,
    probe::readEdf,
    probe::readPlainColumns,
};

} // namespace

int CReceiveData::parse(int format, const QByteArray& text)
{
    m_format = format;
    m_cast = {};
    if (format < 0 || format >= formatCount)
        return 0;
    const QByteArray plain = profile::normalisedText(text);
    std::string_view bytes(plain.constData(), std::size_t(plain.size()));
    // Old systems end a text with control-Z and fill the rest of a block with zeros.
    bytes = bytes.substr(0, bytes.find_last_not_of(std::string_view("\x1A\0", 2)) + 1);
    const int result = readers[std::size_t(format)](bytes, m_cast);
    if (result <= 0)
        m_cast.samples.clear();
    return result;
}

} // namespace datagram
