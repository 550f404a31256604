#pragma once

#include "settings/tokenstore_token.h"

#include <QByteArray>
#include <QDateTime>
#include <QJsonArray>
#include <QJsonObject>

namespace settings {

/// The content of the JSON mirror of the tokens: an object with "version", "lastsave" and
/// "tokens". Other programs write it too, so whatever it holds beyond that stays in it.
class TokenMirror
{
  public:
    /// A mirror without tokens.
    TokenMirror() = default;
    /// A mirror of these tokens.
    explicit TokenMirror(const TokenMap& tokens);

    /// Outcome of `parse`.
    enum class Parsed
    {
        Whole,
        NoObject, ///< no JSON, or not an object
        NoTokens, ///< an object whose "tokens" is no array
    };

    /// Takes over the content of a mirror file. When it is none, this mirror has no tokens
    /// afterwards.
    Parsed parse(const QByteArray& text);

    /// Whether the list has no element.
    bool isEmpty() const { return m_tokens.isEmpty(); }

    /// The tokens. Of several with one name the last counts; what is no token (no object, or
    /// without a text as its name) is left out. A "Type" that is none of ours counts as the kind
    /// that the value has.
    TokenMap tokens() const;

    /// Puts in a token, or replaces the one of that name.
    void put(const Token& token);

    /// The text of the file, saved at `now`. A whole number that JSON numbers cannot hold to the
    /// last digit is written as a text.
    QByteArray text(const QDateTime& now) const;

  private:
    QJsonObject m_others; ///< everything but the tokens
    QJsonArray m_tokens;
};

} // namespace settings
