#include "profile/requestblock.h"

#include <algorithm>
#include <cmath>

namespace profile {

namespace {

// The text of a piece; empty beyond the last one.
class PieceTexts
{
  public:
    PieceTexts(const QVector<QStringRef>& pieces, int first) : m_pieces(pieces), m_first(first) {}

    QStringRef ref(int index) const
    {
        const int place = m_first + index;
        return place < m_pieces.size() ? m_pieces[place] : QStringRef();
    }
    QString operator[](int index) const { return ref(index).toString(); }

  private:
    const QVector<QStringRef>& m_pieces;
    int m_first;
};

SampleLists sampleLists(const QStringRef& speeds, const QStringRef& depths)
{
    SampleLists lists;
    lists.speed = parseNumbers(speeds, Qt::SkipEmptyParts);
    lists.depth = parseNumbers(depths, Qt::SkipEmptyParts);
    const int samples = std::min(lists.speed.size(), lists.depth.size());
    lists.speed.resize(samples);
    lists.depth.resize(samples);
    return lists;
}

} // namespace

QString withoutBrackets(const QString& request)
{
    QString block = request;
    block.remove(QLatin1Char('[')).remove(QLatin1Char(']'));
    return block;
}

QVector<QStringRef> splitPieces(const QString& block, Qt::SplitBehavior empties)
{
    return block.splitRef(QLatin1Char('*'), empties);
}

float listNumber(const QStringRef& item)
{
    bool isNumber = false;
    const float value = item.toFloat(&isNumber);
    return isNumber && std::isfinite(value) ? value : 0.0F;
}

QVector<float> parseNumbers(const QStringRef& list, Qt::SplitBehavior empties)
{
    QVector<float> values;
    values.reserve(int(list.count(QLatin1Char(','))) + 1);
    int start = 0;
    while (true) {
        const int end = list.indexOf(QLatin1Char(','), start);
        const QStringRef item = list.mid(start, end < 0 ? -1 : end - start);
        if (!item.isEmpty() || empties == Qt::KeepEmptyParts)
            values.append(listNumber(item));
        if (end < 0)
            return values;
        start = end + 1;
    }
}

ValueLists parseValueLists(const QStringRef& piece, Lists wanted, Qt::SplitBehavior empties)
{
    ValueLists lists;
    QVector<float>* const places[] = {
        &lists.speed,       &lists.depth,    &lists.probeDepth, &lists.probeSpeed,
        &lists.temperature, &lists.salinity, &lists.absorption,
    };
    const QVector<QStringRef> parts = piece.trimmed().split(QLatin1Char(';'), empties);
    const int count = std::min(parts.size(), int(wanted));
    for (int i = 0; i < count; ++i)
        *places[i] = parseNumbers(parts[i]);
    return lists;
}

ValueLists valuesAt(const ValueLists& lists, const std::vector<std::int32_t>& kept)
{
    const auto picked = [&kept](const QVector<float>& values) {
        QVector<float> some;
        some.reserve(int(kept.size()));
        for (const std::int32_t place : kept) {
            if (place >= 0 && place < values.size())
                some.append(values[place]);
        }
        return some;
    };
    ValueLists result;
    result.speed = picked(lists.speed);
    result.depth = picked(lists.depth);
    for (const auto list : furtherLists)
        result.*list = picked(lists.*list);
    return result;
}

void dropListsWithoutText(const QStringRef& piece, ValueLists& lists)
{
    constexpr int firstFurther = 2;
    const QVector<QStringRef> parts = piece.trimmed().split(QLatin1Char(';'), Qt::KeepEmptyParts);
    int place = firstFurther;
    for (const auto list : furtherLists) {
        if (place >= parts.size() || parts[place].trimmed().isEmpty())
            (lists.*list).clear();
        ++place;
    }
}

ProfileForm parseProfileForm(const QVector<QStringRef>& pieces, int first)
{
    const PieceTexts piece(pieces, first);
    ProfileForm form;
    form.valueLists = piece.ref(0);
    form.fileName = piece[1];
    form.kind = piece[2];
    form.version = piece[3];
    form.identifier = piece[4];
    form.time = piece[5];
    form.latitude = piece[6];
    form.longitude = piece[7];
    form.radius = piece[8];
    form.validFrom = piece[9];
    form.validTo = piece[10];
    form.source = piece[11];
    form.history = piece[12];
    form.statedSamples = piece[13];
    form.comment = piece[14];
    form.tolerance = piece[15];
    return form;
}

SendForm parseSendForm(const QVector<QStringRef>& pieces)
{
    const PieceTexts piece(pieces, 0);
    SendForm form;
    form.profileIdentifier = piece[0];
    form.profile = parseProfileForm(pieces, 1);
    form.profile.fileName = piece[1];
    form.profile.valueLists = piece.ref(2);
    return form;
}

RayForm parseRayForm(const QVector<QStringRef>& pieces)
{
    const PieceTexts piece(pieces, 0);
    RayForm form;
    form.angle = piece.ref(0).toFloat(); // beyond all numbers is out of range, no number is 0
    form.first = sampleLists(piece.ref(1), piece.ref(2));
    form.second = sampleLists(piece.ref(3), piece.ref(4));
    return form;
}

AsvpSaveForm parseAsvpSaveForm(const QVector<QStringRef>& pieces)
{
    const PieceTexts piece(pieces, 0);
    AsvpSaveForm form;
    form.depthSpeedList = piece.ref(0);
    form.fileName = piece[1];
    form.kind = piece[2];
    form.version = piece[3];
    form.identifier = piece[4];
    form.time = piece[5];
    form.latitude = piece[6];
    // Pieces 7 and 9 are hemisphere letters; the sign of the numbers tells the same.
    form.longitude = piece[8];
    form.radius = piece[10];
    form.validFrom = piece[11];
    form.validTo = piece[12];
    form.source = piece[13];
    form.history = piece[14];
    return form;
}

} // namespace profile
