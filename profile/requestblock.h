#pragma once

#include <QString>
#include <QStringRef>
#include <QVector>

#include <cstdint>
#include <vector>

/// The profile as a front end sends it: text in, named values out. Places of pieces are known
/// here and nowhere else.
///
/// A request is split at "*" into pieces; one piece holds value lists, separated by ";", whose
/// values are separated by ",". References point into the text that was split and live as long.
namespace profile {

/// Pieces of a check, save or save-as request.
constexpr int checkPieces = 15;
/// Pieces of a thin or fix request.
constexpr int thinPieces = 16;
/// Pieces of a full send request.
constexpr int fullSendPieces = 16;
/// Pieces of a short send request.
constexpr int shortSendPieces = 7;

/// The text without any "[" and "]".
QString withoutBrackets(const QString& request);

/// Pieces of a ray path request.
constexpr int rayPieces = 5;

/// The pieces of a text between "*". Whether empty ones count is the rule of each action.
QVector<QStringRef> splitPieces(const QString& block, Qt::SplitBehavior empties);

/// One item of a value list as a 32-bit float: a decimal number with a point, white space around
/// it allowed. What is no finite number (words, NaN, infinities, beyond the range) is 0.
float listNumber(const QStringRef& item);

/// The values of one list, empty items counted as 0, or passed over with `Qt::SkipEmptyParts`. An
/// empty text is one empty item.
QVector<float> parseNumbers(const QStringRef& list, Qt::SplitBehavior empties = Qt::KeepEmptyParts);

/// The seven value lists of a profile, in their order. A list that the text does not have is
/// empty.
struct ValueLists
{
    QVector<float> speed;       ///< m/s
    QVector<float> depth;       ///< m, positive down
    QVector<float> probeDepth;  ///< m, or the alternative first column of a datagram
    QVector<float> probeSpeed;  ///< m/s
    QVector<float> temperature; ///< degrees Celsius
    QVector<float> salinity;    ///< practical salinity
    QVector<float> absorption;  ///< as the source gives it
};

/// The lists beyond sound speed and depth.
constexpr QVector<float> ValueLists::*furtherLists[] = {
    &ValueLists::probeDepth, &ValueLists::probeSpeed, &ValueLists::temperature,
    &ValueLists::salinity,   &ValueLists::absorption,
};

/// The values at the places `kept` of each list, in that order. A list that ends before one of
/// them has fewer values than `kept` afterwards.
ValueLists valuesAt(const ValueLists& lists, const std::vector<std::int32_t>& kept);

/// How many of the lists are read: speeds and depths alone, or all seven.
enum class Lists
{
    SpeedAndDepth = 2,
    All = 7
};

/// The lists of a profile piece: trimmed, split at ";".
ValueLists parseValueLists(const QStringRef& piece, Lists wanted = Lists::All,
                           Qt::SplitBehavior empties = Qt::KeepEmptyParts);

/// Empties each further list that has no text in the profile piece `piece`, where `parseValueLists`
/// reads one empty item.
void dropListsWithoutText(const QStringRef& piece, ValueLists& lists);

/// The profile form of the page, as Check, Save, Thin and Fix take it. Texts as they stand in the
/// request.
struct ProfileForm
{
    QStringRef valueLists; ///< for `parseValueLists`
    QString fileName;
    QString kind; ///< "SoundVelocity", or a content identifier
    QString version;
    QString identifier;
    QString time; ///< yyyyMMddHHmmss, UTC
    QString latitude;
    QString longitude;
    QString radius;
    QString validFrom;
    QString validTo;
    QString source;
    QString history;
    QString statedSamples;
    QString comment;
    QString tolerance; ///< m/s; thin and fix only, else empty
};

/// Reads the form from `pieces`, beginning with the piece `first`. Pieces that are not there stay
/// empty.
ProfileForm parseProfileForm(const QVector<QStringRef>& pieces, int first = 0);

/// The full form of a send request: the content identifier of the profile, then the file name and
/// the value lists, which change places, then the profile form from its kind on. The kind is the
/// content identifier of the datagram.
struct SendForm
{
    QString profileIdentifier;
    ProfileForm profile;
};

/// Reads the form from `pieces`. Pieces that are not there stay empty.
SendForm parseSendForm(const QVector<QStringRef>& pieces);

/// Sound speeds and depths, index for index, as many of each.
struct SampleLists
{
    QVector<float> speed; ///< m/s
    QVector<float> depth; ///< m, positive down
};

/// A request for the paths of one ray through two profiles.
struct RayForm
{
    float angle = 0.0F; ///< degrees below the horizontal
    SampleLists first;
    SampleLists second;
};

/// Reads the form from `rayPieces` pieces. Empty items of the lists are passed over; of two lists
/// of unequal length, what the longer one has beyond the shorter one makes no sample.
RayForm parseRayForm(const QVector<QStringRef>& pieces);

/// The form that saves an `.asvp` file. Texts as they stand in the request.
struct AsvpSaveForm
{
    QStringRef depthSpeedList; ///< flat: depth, speed, depth, speed…
    QString fileName;
    QString kind;
    QString version;
    QString identifier;
    QString time;
    QString latitude;
    QString longitude;
    QString radius;
    QString validFrom;
    QString validTo;
    QString source;
    QString history;
};

/// Reads the form from `pieces`. Pieces that are not there stay empty.
AsvpSaveForm parseAsvpSaveForm(const QVector<QStringRef>& pieces);

} // namespace profile
