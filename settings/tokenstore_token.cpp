#include "settings/tokenstore_token.h"

#include <QVariant>

#include <cmath>

namespace settings {

std::optional<qint64> integerOf(const Token& token)
{
    if (!token.hasValue())
        return std::nullopt;
    // Texts are read without the locale by QString.
    const QVariant value = token.value.toVariant();
    bool isNumber = false;
    const bool isFraction = value.type() == QVariant::Double;
    const qint64 whole = value.toLongLong(&isNumber);
    if (isNumber && !isFraction)
        return whole;
    const double number = value.toDouble(&isNumber);
    constexpr double limit = 9223372036854775808.0; // 2^63
    if (!isNumber || !(number >= -limit && number < limit) || number != std::trunc(number))
        return std::nullopt;
    return static_cast<qint64>(number);
}

std::optional<QString> textOf(const Token& token)
{
    if (!token.hasValue())
        return std::nullopt;
    return token.value.toVariant().toString();
}

} // namespace settings
