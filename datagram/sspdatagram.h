#pragma once

#include "datagram/contentidentifier.h"
#include "profile/decimalcounts.h"

#include <QByteArray>
#include <QString>
#include <QVector>

#include <string_view>
#include <vector>

/// The sound speed profile datagram: "$QZS" and a content identifier, a header, one row of five
/// fields per sample ended by CR LF, a tail with position and comment, "*", a checksum of two
/// hexadecimal digits, a backslash, CR and LF. Fields are separated by commas; text is UTF-8.
namespace datagram {

using profile::DecimalCounts;

/// The columns of a profile, equally long.
struct Columns
{
    QVector<float> depth;       ///< m
    QVector<float> speed;       ///< m/s
    QVector<float> alternative; ///< alternative first column, e.g. a pressure
    QVector<float> temperature; ///< degrees Celsius
    QVector<float> salinity;    ///< practical salinity, or a conductivity
    QVector<float> absorption;  ///< absorption coefficient
};

/// Header: tag with the identifier in two digits, "00000", the number of samples, then time, day,
/// month and year, cut out of the 14 characters of `time` (yyyyMMddHHmmss) and not tested.
QByteArray fnConstrSspHeader(const QString& time, int identifier, int samples);

/// The same header around texts that are copied as they stand: "003" stays "003".
QByteArray sspHeader(const QString& identifier, const QString& samples, const QString& time);

/// The rows of samples 0 to `samples` - 1. Empty for a count below 1 and for an identifier that
/// has no rows. A column that ends early is continued by 0.
QByteArray fnConstrSspBody(int samples, int identifier, const Columns& columns,
                           const DecimalCounts& decimals);

/// Tail: latitude and longitude without their "-", each with its hemisphere letter ("S" and "W"
/// for a number below 0, "N" and "E" else, also for a text that is no number), two empty fields,
/// the comment and "*".
QByteArray fnConstrSspTail(const QString& latitude, const QString& longitude,
                           const QString& comment);

/// Exclusive OR of the bytes from the second one up to, but not including, the one at `end`.
unsigned char checksum(const QByteArray& text, int end);

/// The datagram made of a text that ends in "*": the checksum of all before that "*", the
/// backslash and the line end behind it.
QByteArray sealed(const QByteArray& text);

/// A coordinate in decimal degrees as degrees times 100 plus minutes, six decimals, the sign kept
/// in front: 59.5 is "5930.000000". A text that is no finite number counts as 0.
QString degreesMinutesText(const QString& degrees);

/// A whole datagram with the texts of a request in it, or why there is none: "No samples
/// extracted." or "No SSP datagram tail generated."
struct BuiltDatagram
{
    QByteArray bytes;
    QString reason; ///< empty on success
};

/// What a datagram is made of. Texts are copied as they stand; the position is in decimal degrees.
struct DatagramParts
{
    QString identifier; ///< two digits; read as an integer for the rows
    QString samples;
    QString time; ///< yyyyMMddHHmmss
    QString latitude;
    QString longitude;
    QString comment;
    Columns columns;
};

/// Builds header, rows and tail and seals them.
BuiltDatagram buildDatagram(const DatagramParts& parts, const DecimalCounts& decimals);

/// The fields of a datagram: commas and line ends separate, but for the last seven bytes, and a
/// line end directly followed by a comma makes no extra field. From the 6 001st on all is one
/// field: no legal datagram has as many.
class DatagramFields
{
  public:
    DatagramFields() = default;
    explicit DatagramFields(const QByteArray& text);

    std::size_t size() const { return m_fields.size(); }

    /// A field; empty where there is none. Lives as long as this object or a copy of it.
    std::string_view operator[](std::size_t index) const
    {
        return index < m_fields.size() ? m_fields[index] : std::string_view();
    }

  private:
    QByteArray m_flat; // never changed once the fields look into it: copies share it
    std::vector<std::string_view> m_fields;
};

/// Number of the first rule that a datagram breaks, 1 to 10, or 0 for a sound one: 1 first byte
/// "$"; 2 fourth byte "S"; 3 legal content identifier; 4 samples 1 to 1000; 5 time; 6 day;
/// 7 month; 8 year; 9 as many fields as samples ask for, give or take two; 10 a backslash, CR, LF
/// at the end. Fields that are not there read as empty.
int fnVerifySXX(const QByteArray& text, const DatagramFields& fields);

/// A converted profile: one vector of values for each quantity.
using ConvertedProfile = std::vector<QVector<float>>;

/// One value of a converted profile; -99 for a vector or an index that it has not.
double getFromS00(const ConvertedProfile& profile, int index, int vector);

} // namespace datagram
