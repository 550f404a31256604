#pragma once

#include <cstddef>
#include <cstdio>
#include <string>

/// Paths and streams as the file writers use them: narrow UTF-8 strings and C streams.
namespace profile {

/// A directory for `fnFileNameConstr` is shorter than this.
constexpr std::size_t maxDirectoryLength = 500;
/// Size of the path buffer that a caller of `fnFileOpenWrite` brings, end mark included.
constexpr std::size_t pathBufferSize = 600;

/// Joins a directory and a file name with a backslash. A separator (backslash or slash) that
/// stands at the seam already counts, so that there is exactly one. An empty directory gives the
/// name alone, a null argument an empty path. Throws `std::out_of_range` for a directory of
/// `maxDirectoryLength` or more: callers test it before, as the functions below do.
std::string fnFileNameConstr(const char* directory, const char* fileName);

/// Opens a file of a directory for reading raw bytes. Null when it cannot be opened; the caller
/// closes the stream.
std::FILE* fnFileOpenRead(const char* directory, const char* fileName);

/// As above, for a whole path.
std::FILE* fnFileOpenRead(const char* path);

/// Opens a file of a directory for writing raw bytes, emptying an older one; makes the directory
/// when it is missing. `path`, a buffer of `pathBufferSize`, receives the joined path. Null when
/// it cannot be opened or the path does not fit; the caller closes the stream.
std::FILE* fnFileOpenWrite(const char* directory, const char* fileName, char* path);

} // namespace profile
