#pragma once

/// Diagnostics: everything that is logged by Qt's means, the engine's lines included.
namespace host {

/// Characters of one message that are kept. The engine logs whole requests, which are megabytes
/// for a long cast.
constexpr int kLogLineLength = 2000;

/// From now on each message is one line on stderr: time in UTC, level, text. Longer messages
/// are cut with their length told, control characters become blanks.
void logToStderr();

} // namespace host
