#pragma once

#include "settings/tokenstore_token.h"

namespace settings {

/// What became of reading the token database.
enum class DatabaseRead
{
    Whole,      ///< every token is read; there may be none
    Absent,     ///< there is no database
    Unreadable, ///< it is there, but could not be read to its end
};

/// Reads all tokens of the survey system's SQLite database into `tokens`, with their descriptions
/// in the first language. Unless all could be read, `tokens` is empty afterwards and `error`
/// receives the reason.
///
/// The database is opened for reading only, so that none is made where none is. Qt's default
/// connection is used and removed again; where the host has a default connection of its own,
/// another name is taken.
DatabaseRead readTokenDatabase(const QString& path, TokenMap& tokens, QString& error);

} // namespace settings
