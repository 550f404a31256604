#include "settings/tokenstore_mirror.h"

#include <QJsonDocument>
#include <QVariant>

#include <cmath>

namespace settings {

namespace {

constexpr int mirrorVersion = 1;

const QString& versionKey()
{
    static const QString key = QStringLiteral("version");
    return key;
}

const QString& tokensKey()
{
    static const QString key = QStringLiteral("tokens");
    return key;
}

const QString& nameKey()
{
    static const QString key = QStringLiteral("Name");
    return key;
}

const QString& valueKey()
{
    static const QString key = QStringLiteral("Value");
    return key;
}

TokenKind kindOf(const QJsonValue& type, const QJsonValue& value)
{
    for (const TokenKind kind : {TokenKind::Float, TokenKind::Integer, TokenKind::Text}) {
        if (type.isDouble() && type.toDouble() == double(int(kind)))
            return kind;
    }
    if (!value.isDouble())
        return TokenKind::Text;
    const double number = value.toDouble();
    return number == std::trunc(number) ? TokenKind::Integer : TokenKind::Float;
}

// Whether writing the number would change it: Qt writes numbers with the 53 bits of a double,
// though it reads whole ones with 64.
bool isTooWide(const QVariant& value)
{
    constexpr qint64 limit = Q_INT64_C(1) << 53;
    return value.type() == QVariant::LongLong &&
           (value.toLongLong() > limit || value.toLongLong() < -limit);
}

void fill(QJsonObject& element, const Token& token)
{
    element.insert(nameKey(), token.name);
    element.insert(QStringLiteral("Descr"), token.description);
    element.insert(QStringLiteral("Type"), int(token.kind));
    element.insert(valueKey(), token.value);
}

} // namespace

TokenMirror::TokenMirror(const TokenMap& tokens)
{
    for (const Token& token : tokens) {
        QJsonObject element;
        fill(element, token);
        m_tokens.append(element);
    }
}

TokenMirror::Parsed TokenMirror::parse(const QByteArray& text)
{
    *this = TokenMirror();
    const QJsonDocument document = QJsonDocument::fromJson(text);
    if (!document.isObject())
        return Parsed::NoObject;
    QJsonObject object = document.object();
    const QJsonValue tokens = object.take(tokensKey());
    if (!tokens.isArray() && !tokens.isUndefined())
        return Parsed::NoTokens;
    m_others = object;
    m_tokens = tokens.toArray();
    return Parsed::Whole;
}

TokenMap TokenMirror::tokens() const
{
    TokenMap map;
    for (const QJsonValue& value : m_tokens) {
        const QJsonObject element = value.toObject();
        const QJsonValue name = element.value(nameKey());
        if (!name.isString())
            continue;
        Token token;
        token.name = name.toString();
        token.description = element.value(QLatin1String("Descr")).toString();
        token.value = element.value(valueKey());
        token.kind = kindOf(element.value(QLatin1String("Type")), token.value);
        map.insert(token.name, token);
    }
    return map;
}

void TokenMirror::put(const Token& token)
{
    bool isThere = false;
    for (int i = 0; i < m_tokens.size(); ++i) {
        QJsonObject element = m_tokens.at(i).toObject();
        if (element.value(nameKey()) != QJsonValue(token.name))
            continue;
        // Of several with one name, readers take one or another: all of them change.
        fill(element, token);
        m_tokens.replace(i, element);
        isThere = true;
    }
    if (isThere)
        return;
    QJsonObject element;
    fill(element, token);
    m_tokens.append(element);
}

QByteArray TokenMirror::text(const QDateTime& now) const
{
    QJsonArray elements = m_tokens;
    for (int i = 0; i < elements.size(); ++i) {
        const QVariant value = m_tokens.at(i).toObject().value(valueKey()).toVariant();
        if (!isTooWide(value))
            continue;
        QJsonObject element = m_tokens.at(i).toObject();
        element.insert(valueKey(), value.toString());
        elements.replace(i, element);
    }
    QJsonObject object = m_others;
    if (!object.contains(versionKey()))
        object.insert(versionKey(), mirrorVersion);
    object.insert(QStringLiteral("lastsave"),
                  now.toUTC().toString(QStringLiteral("yyyyMMdd_hhmmss")));
    object.insert(tokensKey(), elements);
    return QJsonDocument(object).toJson();
}

} // namespace settings
