#include "settings/tokenstore.h"

#include "platform/filelock.h"
#include "platform/platform.h"
#include "settings/tokenstore_database.h"

#include <QDebug>
#include <QFileInfo>
#include <QThread>

#include <cstdio>
#include <utility>

namespace settings {

namespace {

constexpr int lockTries = 100;
constexpr int lockPause = 100; // ms

const QString& saving()
{
    static const QString prefix = QStringLiteral("saveJson - ");
    return prefix;
}

void debugLine(const QString& text)
{
    qDebug().noquote().nospace() << text;
}

void warningLine(const QString& text)
{
    qWarning().noquote().nospace() << text;
}

bool makeFolderOf(const QString& path)
{
    return !path.isEmpty() && platform::makeFolder(QFileInfo(path).path());
}

} // namespace

/// What one kind of lookup says about a name that is unknown.
struct TokenStore::Lookup
{
    const char* logged;
    bool isNameLogged;
    const char* noted; ///< in the log of missing tokens; the name follows
};

TokenPaths systemTokenPaths()
{
    TokenPaths paths;
    const QString root = platform::dataRoot();
    if (!root.isEmpty())
        paths.mirror = platform::nativePath(root + QStringLiteral("tqrv\\QRVTokens.json"));
    paths.database =
        platform::systemFile(QStringLiteral("C:\\ProgramData\\Ardentide\\tqrv\\tqrv.db"),
                             QStringLiteral("tqrv/tqrv.db"));
    paths.lock = platform::systemFile(QStringLiteral("c:\\temp\\token.lck"),
                                      QStringLiteral("temp/token.lck"));
    paths.missing = platform::systemFile(QStringLiteral("c:/temp/missingtokens.txt"),
                                         QStringLiteral("temp/missingtokens.txt"));
    return paths;
}

TokenStore::TokenStore(TokenPaths paths, Wait wait)
    : m_paths(std::move(paths)), m_wait(std::move(wait))
{
}

void TokenStore::sleepFor(int milliseconds)
{
    QThread::msleep(static_cast<unsigned long>(milliseconds));
}

bool TokenStore::initialise()
{
    if (m_paths.mirror.isEmpty())
        return false;
    if (makeFolderOf(m_paths.missing)) {
        if (std::FILE* const log = platform::openStream(m_paths.missing, "a"))
            std::fclose(log);
    }
    if (QFileInfo::exists(m_paths.mirror))
        return true;
    if (m_tokens.isEmpty()) {
        debugLine(QStringLiteral("Init tokens. Empty list"));
        QString error;
        const DatabaseRead outcome = readTokenDatabase(m_paths.database, m_tokens, error);
        if (!error.isEmpty())
            debugLine(QStringLiteral("CGetToken - ") + error);
        if (m_tokens.isEmpty())
            warningLine(QStringLiteral("No tokens in database"));
        // The database is read only while there is no mirror. One that lacks what could not be
        // read today would hide it for ever.
        if (outcome == DatabaseRead::Unreadable)
            return false;
    }
    return saveNewMirror();
}

bool TokenStore::saveNewMirror()
{
    platform::FileLock lock;
    if (!secureLock(lock, saving()))
        return false;
    // Another process may have made it meanwhile, and have added to it.
    if (QFileInfo::exists(m_paths.mirror))
        return true;
    makeFolderOf(m_paths.mirror);
    return writeMirror(TokenMirror(m_tokens));
}

TokenStatus TokenStore::integerValue(const QString& name, qint64& value)
{
    static constexpr Lookup lookup{"CGetToken - Not found", false, "getTokValueInt missing token "};
    Token token;
    const TokenStatus status = find(name, lookup, token);
    if (status != TokenStatus::Found)
        return status;
    const std::optional<qint64> number = integerOf(token);
    if (!number) {
        debugLine(QStringLiteral("CGetToken - Not an integer: ") + name);
        return TokenStatus::WrongKind;
    }
    value = *number;
    return TokenStatus::Found;
}

TokenStatus TokenStore::textValue(const QString& name, QString& value)
{
    static constexpr Lookup lookup{"CGetToken - Not found", false, "getTokValueStr missing token "};
    Token token;
    const TokenStatus status = find(name, lookup, token);
    if (status == TokenStatus::Found)
        value = *textOf(token);
    return status;
}

int TokenStore::tokenValue(const QString& name, Token& token)
{
    static constexpr Lookup lookup{"get_token_value - Not found ", true,
                                   "get_token_value missing token "};
    Token found;
    switch (find(name, lookup, found)) {
    case TokenStatus::Found:
        token = found;
        return 0;
    case TokenStatus::WrongKind:
        return -2;
    case TokenStatus::Absent:
    case TokenStatus::Unreadable:
        break;
    }
    return -1;
}

TokenStatus TokenStore::find(const QString& name, const Lookup& lookup, Token& token)
{
    debugLine(QStringLiteral("Get token ") + name);
    TokenMirror mirror;
    {
        platform::FileLock lock;
        if (!secureLock(lock, QString()) || !readMirror(mirror)) {
            warningLine(QStringLiteral("CGetToken - read failed"));
            return TokenStatus::Unreadable;
        }
    }
    m_tokens = mirror.tokens();
    const auto found = m_tokens.constFind(name);
    if (found == m_tokens.constEnd()) {
        debugLine(QLatin1String(lookup.logged) + (lookup.isNameLogged ? name : QString()));
        noteMissing(QLatin1String(lookup.noted) + name);
        return TokenStatus::Absent;
    }
    if (!found->hasValue()) {
        debugLine(QStringLiteral("CGetToken - Neither text nor number: ") + name);
        return TokenStatus::WrongKind;
    }
    token = *found;
    return TokenStatus::Found;
}

bool TokenStore::addText(const QString& name, const QString& description, const QString& value,
                         Existing existing)
{
    return add({name, description, TokenKind::Text, value}, existing);
}

bool TokenStore::addInteger(const QString& name, const QString& description, qint64 value,
                            Existing existing)
{
    return add({name, description, TokenKind::Integer, value}, existing);
}

bool TokenStore::add(const Token& token, Existing existing)
{
    debugLine(QStringLiteral("Add token ") + token.name);
    // Held from reading to writing: what another process adds in between would be lost.
    platform::FileLock lock;
    TokenMirror mirror;
    if (!secureLock(lock, saving()) || !readMirror(mirror))
        return false;
    m_tokens = mirror.tokens();
    if (existing == Existing::Kept && m_tokens.contains(token.name))
        return true;
    mirror.put(token);
    if (!writeMirror(mirror))
        return false;
    m_tokens.insert(token.name, token);
    return true;
}

bool TokenStore::secureLock(platform::FileLock& lock, const QString& who) const
{
    makeFolderOf(m_paths.lock);
    if (!lock.open(m_paths.lock)) {
        debugLine(who + QStringLiteral("Error creating handle to new file."));
        return false;
    }
    for (int i = 0; i < lockTries; ++i) {
        if (lock.tryLock()) {
            debugLine(who + QStringLiteral("File lock secured"));
            return true;
        }
        debugLine(who + QStringLiteral("File lock failed. Sleep some"));
        m_wait(lockPause);
    }
    warningLine(who + QStringLiteral("File lock failed. Giving up after 100 tries"));
    return false;
}

bool TokenStore::readMirror(TokenMirror& mirror) const
{
    debugLine(QStringLiteral("Read json file"));
    QByteArray text;
    if (!platform::readFile(m_paths.mirror, text)) {
        debugLine(QStringLiteral("Couldn't open file."));
        return false;
    }
    switch (mirror.parse(text)) {
    case TokenMirror::Parsed::NoObject:
        debugLine(QStringLiteral("CGetToken - isObject is false"));
        return false;
    case TokenMirror::Parsed::NoTokens:
        debugLine(QStringLiteral("CGetToken - tokens is no array"));
        return false;
    case TokenMirror::Parsed::Whole:
        break;
    }
    if (mirror.isEmpty())
        debugLine(QStringLiteral("token size is 0"));
    debugLine(QStringLiteral("CGetToken - read OK"));
    return true;
}

bool TokenStore::writeMirror(const TokenMirror& mirror) const
{
    const QByteArray text = mirror.text(QDateTime::currentDateTimeUtc());
    // What is larger could be written, but never read again.
    if (text.size() > platform::maxFileSize) {
        debugLine(QStringLiteral("saveJson - more than a mirror can hold"));
        return false;
    }
    QString error;
    if (platform::replaceFile(m_paths.mirror, text, &error))
        return true;
    debugLine(QStringLiteral("Couldn't open save file."));
    debugLine(QStringLiteral("saveJson - ") + error);
    return false;
}

void TokenStore::noteMissing(const QString& text) const
{
    std::FILE* const log = platform::openStream(m_paths.missing, "a");
    if (log == nullptr)
        return;
    std::fputs((text + QLatin1Char('\n')).toUtf8().constData(), log);
    std::fclose(log);
}

} // namespace settings
