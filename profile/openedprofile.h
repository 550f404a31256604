#pragma once

#include "profile/decimalcounts.h"

#include <QJsonObject>
#include <QString>

namespace profile {

/// What opening a file gave: the reply's own keys, or the reason of the failure.
struct OpenedProfile
{
    QJsonObject reply;
    QString reason;         ///< empty on success
    DecimalCounts decimals; ///< as the file's own text shows them
};

} // namespace profile
