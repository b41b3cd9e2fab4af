#pragma once

#include <memory>
#include <streambuf>

class KV_Stream;

namespace kv::detail {

/// Lets standard input and output work on an open KV_Stream, from its position on, in blocks. For one
/// direction at a time: reading moves the stream ahead of what has been taken, and what was written reaches
/// it with the block, with a flush, or in the end. Each character read can be followed by at least 2
/// characters put back. A failed read throws KV_FileException (ReadError, the file's name) to whoever uses
/// the buffer itself; standard input turns that into its bad state. A failed write fails the standard stream;
/// one that only shows in the end is lost, so flush before.
class FileStreambuf : public std::streambuf {
public:
    /// The stream must be open and outlive this object.
    explicit FileStreambuf(KV_Stream &stream);
    FileStreambuf(const FileStreambuf &) = delete;
    FileStreambuf &operator=(const FileStreambuf &) = delete;
    ~FileStreambuf() override;

protected:
    int_type underflow() override;
    int_type overflow(int_type c) override;
    int sync() override;

private:
    bool writeBlock();

    KV_Stream &m_stream;
    std::unique_ptr<char[]> m_block;  // the room for putting back, then the block
};

}  // namespace kv::detail
