#pragma once

#include "datagram/sspdatagram.h"
#include "profile/requestblock.h"

#include <QByteArray>
#include <QString>
#include <QVector>

/// The two forms of a save request, made into what is to be written.
namespace datagram {

/// The columns of a datagram from the value lists of a request, as many values each as there are
/// depths; a list that ends early is continued by 0.
Columns columnsOf(const profile::ValueLists& lists);

/// Why a list of values with its stated number cannot become a datagram, in the order of the
/// tests: "Wrong svp input." below three sound speeds; "Sample count mismatch or too small." when
/// there are fewer sound speeds than depths (surplus ones do not count), or fewer depths than
/// `fewest`; "Stated sample count mismatch." Empty when it can.
QString listsRefusal(const profile::ValueLists& lists, const QString& statedSamples, int fewest);

/// Name under which a datagram is saved: ".vp2", or else ".aml", in its last element becomes
/// ".ssp"; folders keep their names.
QString datagramFileName(const QString& name);

/// Depths and speeds of an `.asvp` save request.
struct DepthSpeedPairs
{
    QVector<float> depths;
    QVector<float> speeds;
};

/// Reads a flat list: depth, speed, depth, speed… False when there are fewer than three pairs or
/// a value is left over.
bool parseDepthSpeedPairs(const QStringRef& list, DepthSpeedPairs& pairs);

} // namespace datagram
