#include "stream/file_streambuf.h"

#include <istream>
#include <ostream>

#include "stream/stream_fixture.h"
#include "system.h"

namespace {

using kv::detail::FileStreambuf;

class FileStreambufOnFile : public StreamFiles {};

TEST_F(FileStreambufOnFile, BytesComeBack) {
    std::string text(150'000, '\0');  // longer than two blocks, with every byte value in it
    for (std::size_t i = 0; i < text.size(); ++i)
        text[i] = static_cast<char>(i * 7 + i / 251);
    KV_FStream file = opened("f", "w");
    {
        FileStreambuf buffer(file);
        std::ostream out(&buffer);
        out << text.substr(0, 10) << std::flush;
        if (kOpenFilesAreShared) {
            EXPECT_EQ(bytes("f"), text.substr(0, 10));
        }
        out << text.substr(10);
        EXPECT_TRUE(out.good());
    }
    file.Open("r", false);
    FileStreambuf buffer(file);
    std::istream in(&buffer);
    std::string read;
    for (int c = in.get(); c != EOF; c = in.get()) {
        if (!read.empty()) {  // two back, also where a block begins
            ASSERT_TRUE(in.unget().unget());
            ASSERT_EQ(in.get(), static_cast<unsigned char>(read.back()));
            ASSERT_EQ(in.get(), c);
        }
        read += static_cast<char>(c);
    }
    EXPECT_TRUE(read == text);
}

TEST_F(FileStreambufOnFile, FailureToWriteIsSeen) {
    static_cast<void>(opened("f", "w"));
    KV_FStream unwritable = opened("f", "r");
    FileStreambuf output(unwritable);
    std::ostream out(&output);
    out << "short" << std::flush;
    EXPECT_TRUE(out.bad());
}

// A medium that fails.
class UnreadableFile : public KV_FStream {
public:
    using KV_FStream::KV_FStream;
    std::uint64_t Read(void *, std::uint64_t, std::uint64_t) override { return 0; }
    int GetLastError() override { return 1; }
};

TEST_F(FileStreambufOnFile, FailureToReadIsNotTakenForTheEnd) {
    UnreadableFile unreadable(spec("f"));
    FileStreambuf input(unreadable);
    expectFileError([&] { input.sgetc(); }, "ReadError;   Detail: " + std::string(spec("f").GetFileName()));
    std::istream in(&input);
    EXPECT_TRUE(in.get() == EOF && in.bad());
}

}  // namespace
