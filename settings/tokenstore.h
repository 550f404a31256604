#pragma once

#include "settings/tokenstore_mirror.h"
#include "settings/tokenstore_token.h"

#include <QString>

#include <functional>

namespace platform {
class FileLock;
}

namespace settings {

/// Where the token store finds its files.
struct TokenPaths
{
    QString database; ///< the survey system's SQLite database, only read
    QString mirror;   ///< "QRVTokens.json", shared with other processes
    QString lock;     ///< "token.lck", which serialises access to the mirror
    QString missing;  ///< the log of lookups of unknown tokens
};

/// The files of the survey system. On Windows all but the mirror have fixed places; elsewhere all
/// are below the data root, and all are empty without one.
TokenPaths systemTokenPaths();

/// Outcome of a lookup. Only `Absent` tells that a token may be added with its default.
enum class TokenStatus
{
    Found,
    Absent,     ///< the mirror was read and lacks the token
    Unreadable, ///< the mirror could not be locked or read
    WrongKind,  ///< the token is there, but its value is not of the kind asked for
};

/// The named settings of the survey system, kept in memory and mirrored in a JSON file that
/// several processes share. The mirror is the truth: it is read anew at every lookup.
///
/// Nothing is thrown; each failure is a line in the log. A call waits while another process holds
/// the lock, up to ten seconds, so whoever looks up several tokens ends at the first
/// `Unreadable`.
class TokenStore
{
  public:
    /// Waits for some milliseconds.
    using Wait = std::function<void(int milliseconds)>;

    /// Touches no file yet. Tests give a `wait` that takes less time.
    explicit TokenStore(TokenPaths paths = systemTokenPaths(), Wait wait = sleepFor);

    /// Readies the log of missing tokens and, while there is no mirror, makes it from the
    /// database; without a database, with no tokens. To be called before the first lookup; with
    /// a mirror it costs next to nothing. False when there is no mirror afterwards.
    bool initialise();

    /// Looks up a whole number. `value` changes only when it is `Found`.
    TokenStatus integerValue(const QString& name, qint64& value);

    /// Looks up a text; a number is found as its text. `value` changes only when it is `Found`.
    TokenStatus textValue(const QString& name, QString& value);

    /// Looks up a token of any kind. 0 when it is found, -1 when the mirror cannot be read or the
    /// name is unknown, -2 when its value is neither text nor number; `token` changes only with 0.
    int tokenValue(const QString& name, Token& token);

    /// What adding does with a token that is there already.
    enum class Existing
    {
        Replaced,
        Kept, ///< for defaults: another process may have set the token since it was looked up
    };

    /// Adds a token to the mirror, or replaces it. Other tokens stay, also those that other
    /// processes have added. False, and nothing changed, when the mirror cannot be locked, read or
    /// written. There must be a mirror, see `initialise`.
    bool addText(const QString& name, const QString& description, const QString& value,
                 Existing existing = Existing::Replaced);
    bool addInteger(const QString& name, const QString& description, qint64 value,
                    Existing existing = Existing::Replaced);

    /// The tokens as they were last read.
    const TokenMap& tokens() const { return m_tokens; }

  private:
    struct Lookup;

    static void sleepFor(int milliseconds);

    TokenStatus find(const QString& name, const Lookup& lookup, Token& token);
    bool add(const Token& token, Existing existing);
    bool saveNewMirror();
    bool secureLock(platform::FileLock& lock, const QString& who) const;
    bool readMirror(TokenMirror& mirror) const;
    bool writeMirror(const TokenMirror& mirror) const;
    void noteMissing(const QString& text) const;

    TokenPaths m_paths;
    Wait m_wait;
    TokenMap m_tokens;
};

} // namespace settings
