#include "datagram/receiver.h"

#include "profile/requestblock.h"

namespace datagram {

bool isPairList(const QString& request)
{
    constexpr int fewestValues = 6;
    const QString list = profile::withoutBrackets(request);
    const int values = list.count(QLatin1Char(',')) + 1;
    return values % 2 == 0 && values >= fewestValues;
}

} // namespace datagram
