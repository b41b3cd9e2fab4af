#pragma once

#include <string>

namespace kvtool {

/// All bytes of a file. Throws BadInput when it can't be read.
std::string readBytes(const std::string &file);

/// Makes file hold bytes, wholly or not at all: they go to a temporary file beside it, are read back and
/// compared, and only then renamed over it. A link is followed, and the file keeps its permissions, but not
/// its owner. Throws BadInput on any failure, and for what is no regular file or is read-only; the file is
/// then as it was and the temporary file is gone.
void replaceFile(const std::string &file, const std::string &bytes);

}  // namespace kvtool
