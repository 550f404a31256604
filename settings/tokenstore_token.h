#pragma once

#include <QJsonValue>
#include <QMap>
#include <QString>

#include <optional>

namespace settings {

/// The kind of value that a token holds; the number is that of "Type" in the mirror.
enum class TokenKind
{
    Float = 0,
    Integer = 1,
    Text = 2,
};

/// A named setting of the survey system.
struct Token
{
    QString name; ///< as it stands in the database and the mirror; names differ by case
    QString description;
    TokenKind kind = TokenKind::Text;
    QJsonValue value; ///< a number or a text; anything else is no usable value

    bool hasValue() const { return value.isDouble() || value.isString(); }
};

/// Tokens by their names.
using TokenMap = QMap<QString, Token>;

/// The value as a whole number: a number without a fraction, or a text that is one throughout.
/// None for any other value, and beyond 64 bits.
std::optional<qint64> integerOf(const Token& token);

/// The value as text; of a number its shortest text, with a decimal point. None where the value is
/// neither text nor number.
std::optional<QString> textOf(const Token& token);

} // namespace settings
