#pragma once

#include <string>

#include "test_interfaces.h"

// The file of a profile: a line that names the format, the text, the checksum, the number of values, each on
// a line; the values, four bytes each; the digest of all before. So a file that was cut, or mixed with
// another one, is told from a whole one.
std::string bytesOf(const TestProfileData &data);
// Throws KV_ProfileException when the bytes are no such file.
TestProfileData dataOf(const std::string &bytes);

// Throw KV_FileException. The writing shows what it has got in several pieces, so that a reader can see a
// file that is not complete; it fails once it has written failAt bytes.
std::string readFile(const KV_FileSpec &file);
void writeFile(const KV_FileSpec &file, const std::string &bytes, std::size_t failAt);
