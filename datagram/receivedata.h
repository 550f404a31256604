#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

namespace datagram {

/// One level as a file gives it.
struct ProbeSample
{
    double depth = 0; ///< m
    double speed = 0; ///< m/s
    double third = 0; ///< what the format keeps beside them, see docs/probe-files.md
};

/// What a file says about the cast as a whole.
struct ProbeHeader
{
    int year = 0;
    int month = 0;
    int day = 0;
    int hours = 0;
    int minutes = 0;
    int seconds = 0;
    bool hasTime = false; ///< whether the six numbers above are set

    double latitude = 0;      ///< degrees times 100 plus minutes, never negative
    char latitudeMark = 'I';  ///< 'N', 'S', or 'I' where it is not known
    double longitude = 0;     ///< degrees times 100 plus minutes, never negative
    char longitudeMark = 'I'; ///< 'E', 'W', or 'I' where it is not known
};

/// What a reader found in a text.
struct ProbeCast
{
    ProbeHeader header;
    /// In file order. All values are finite but those of format 4: its reader lets "nan" and
    /// "inf" through (`Scanner::anyNumber`) to the check of the samples, which names the sample.
    std::vector<ProbeSample> samples;
    QString instrument; ///< the instrument or probe that the file names; empty where it does not
    int leftOut = 0;    ///< levels without a usable depth or sound speed, passed over
    QString remark;     ///< what a surveyor should know about the samples; may be empty
    QString reason;     ///< where there are no samples: why, for a surveyor
};

/// Results of `CReceiveData::parse` below 0; only format 4 has them.
enum ProbeError
{
    ProbeUnknownFormat = -1, ///< the text is not of the format
    ProbeIllegalTime = -3,   ///< the time is missing or illegal
    ProbeCountDiffers = -4,  ///< the stated number of samples differs from what was found
    ProbeIllegalRow = -5,    ///< a row is no sample
};

/// Format numbers of `CReceiveData::parse`.
enum ProbeFormat
{
    CalcListing = 0,
    DelimitedRows = 1,
    DelimitedRowsToo = 2,
    PressureDatagram = 3,
    ConvertedAsvp = 4,
    SeaBirdConverted = 5,
    ScanListing = 6,
    BreakpointProfile = 7,
    BreakpointProfileToo = 8,
    SvPlusFile = 9,
    SeaBirdDeckUnit = 10,
    CalibrationExtension = 11,
    EdfExport = 12,
    PlainColumns = 13,
};

/// Reads the text of a probe or profile file.
class CReceiveData
{
  public:
    /// Reads `text` as `format` and replaces what was read before. Returns the number of samples,
    /// 0 when there are none or no such format, or a `ProbeError`.
    int parse(int format, const QByteArray& text);

    /// The format number that was asked for last, legal or not.
    int format() const { return m_format; }

    /// Empty after an error.
    const std::vector<ProbeSample>& samples() const { return m_cast.samples; }
    const ProbeHeader& header() const { return m_cast.header; }
    const ProbeCast& cast() const { return m_cast; }

  private:
    int m_format = -1;
    ProbeCast m_cast;
};

} // namespace datagram
