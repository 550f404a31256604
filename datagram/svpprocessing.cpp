#include "datagram/svpprocessing.h"

#include "datagram/sspdatagram.h"
#include "settings/numbers.h"

namespace datagram {

namespace {

// A number with leading zeros.
QByteArray padded(int number, int width)
{
    return QByteArray::number(number).rightJustified(width, '0');
}

QByteArray fixed(double value)
{
    return QByteArray::fromStdString(settings::fixedText(value, 2));
}

} // namespace

CSVPProcessing::CSVPProcessing(const CReceiveData& data)
{
    constexpr int formatWithoutDatagram = 7;
    if (data.format() == formatWithoutDatagram)
        return;
    QByteArray rows;
    const ProbeSample* kept = nullptr;
    for (const ProbeSample& sample : data.samples()) {
        if (kept != nullptr && kept->depth == sample.depth)
            continue;
        kept = &sample;
        ++m_samples;
        rows += fixed(sample.depth) + ',' + fixed(sample.speed) + ",0,0,0\r\n";
    }
    const ProbeHeader& header = data.header();
    m_datagram = "$RVS00,00001," + padded(m_samples, 4) + ',' + padded(header.hours, 2) +
                 padded(header.minutes, 2) + padded(header.seconds, 2) + ',' +
                 padded(header.day, 2) + ',' + padded(header.month, 2) + ',' +
                 QByteArray::number(header.year) + ',' + rows + "No Comment*";
    const int sum = checksum(m_datagram, m_datagram.indexOf('*'));
    m_datagram += QByteArray::number(sum, 16).rightJustified(2, '0') + "\\\r\n";
}

} // namespace datagram
