#pragma once

#include <filesystem>
#include <string>

namespace kvtool {

/// The path that a word of the command line, which is UTF-8 on every system, stands for; and the way back.
std::filesystem::path pathFromUtf8(const std::string &text);
std::string utf8FromPath(const std::filesystem::path &path);

// A path that the library's form of paths can't tell from another one is refused: on POSIX one with a
// backslash, or with bytes that are no UTF-8.

/// All bytes of a file. Throws BadInput when it can't be read. A pipe is read to its end, too, and held as a
/// whole: one that never ends takes what memory there is.
std::string readBytes(const std::string &file);

/// Makes file hold bytes, wholly or not at all: they go to a temporary file beside it, are read back and
/// compared, and only then renamed over it. A link is followed, and the file keeps its permissions, but not
/// its owner; further names of the same file (hard links) keep the former content. Throws BadInput on any
/// failure, and for what is no regular file or is read-only; the file is then as it was and the temporary
/// file is gone.
///
/// Nobody waits until the system has put the bytes onto the disk: when the power fails in the seconds after,
/// the file can be found empty or cut.
void replaceFile(const std::string &file, const std::string &bytes);

}  // namespace kvtool
