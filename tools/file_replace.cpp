#include "file_replace.h"

#include <kvbase/kvbase.h>

#include <algorithm>
#include <filesystem>
#include <random>

#include "bad_input.h"

namespace fs = std::filesystem;

namespace kvtool {
namespace {

// Removes the temporary file unless it has taken the target's place.
class TemporaryFile {
public:
    explicit TemporaryFile(const fs::path &target) {
        std::random_device random;
        do {
            m_path = target;
            m_path += ".tmp-" + std::to_string(random());
        } while (fs::exists(m_path));
    }
    ~TemporaryFile() {
        std::error_code ignored;
        if (!m_path.empty()) fs::remove(m_path, ignored);
    }
    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;

    const fs::path &path() const { return m_path; }
    void become(const fs::path &target) {
        fs::rename(m_path, target);
        m_path.clear();
    }

private:
    fs::path m_path;
};

// The library's form of a path. Where it isn't the same file, there is none: on POSIX a backslash is a
// separator to the library, and bytes that are no UTF-8 are replaced.
KV_FileSpec specOf(const fs::path &path) {
    fs::path spelled = path;
    const KV_String native(utf8FromPath(spelled.make_preferred()).c_str());
    KV_FileSpec spec = KV_FileSpecFromNative(native);
    if (KV_NativePath(spec) != native)
        throw BadInput(native.Ptr(), "can't be reached: a backslash in its path, or bytes that are no UTF-8");
    return spec;
}

bool writeBytes(const fs::path &path, const std::string &bytes) {
    KV_FStream stream(specOf(path));
    if (!stream.Open("wb", false)) return false;
    const bool written = stream.Write(bytes.data(), 1, bytes.size()) == bytes.size() && stream.Flush() == 0;
    return stream.Close() && written;
}

// The file that is meant, behind a link, if it can be replaced.
fs::path targetOf(const std::string &file) {
    fs::path path = pathFromUtf8(file);
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    const bool isLink = fs::is_symlink(fs::symlink_status(path, error));
    if (!fs::exists(status)) {
        if (isLink) throw BadInput(file, "is a link to nothing");
        const fs::path folder = fs::absolute(path).parent_path();
        if (!fs::is_directory(folder, error))
            throw BadInput(file, "can't be written: its folder doesn't exist");
        return path;
    }
    if (!fs::is_regular_file(status)) throw BadInput(file, "can't be replaced: it is no regular file");
    if ((status.permissions() & fs::perms::owner_write) == fs::perms::none)
        throw BadInput(file, "is read-only");
    return isLink ? fs::canonical(path) : path;
}

}  // namespace

fs::path pathFromUtf8(const std::string &text) { return std::u8string(text.begin(), text.end()); }

std::string utf8FromPath(const fs::path &path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

std::string readBytes(const std::string &file) {
    const fs::path path = pathFromUtf8(file);
    const KV_FileSpec spec = specOf(path);
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (status.type() == fs::file_type::not_found) throw BadInput(file, "doesn't exist");
    if (fs::is_directory(status)) throw BadInput(file, "is a folder");
    if (status.type() == fs::file_type::none) throw BadInput(file, "can't be opened: " + error.message());
    if (!fs::is_regular_file(status) && !fs::is_fifo(status)) throw BadInput(file, "is no file that ends");
    KV_FStream stream(spec);
    if (!stream.Open("rb", false)) throw BadInput(file, "can't be opened");
    std::string bytes;
    constexpr std::size_t kPiece = std::size_t{1} << 16;
    std::uint64_t got = 0;
    do {
        const std::size_t size = bytes.size();
        bytes.resize(size + kPiece);
        got = stream.Read(bytes.data() + size, 1, kPiece);
        bytes.resize(size + got);
    } while (got != 0);
    if (stream.GetLastError() != 0) throw BadInput(file, "can't be read to its end");
    return bytes;
}

void replaceFile(const std::string &file, const std::string &bytes) {
    try {
        const fs::path target = targetOf(file);
        specOf(target);  // else not even the temporary file may be made
        TemporaryFile temporary(target);
        // Nobody else may look into it before it has the target's permissions.
        constexpr fs::perms kOwnerOnly = fs::perms::owner_read | fs::perms::owner_write;
        const bool isNew = !fs::exists(target);
        if (!writeBytes(temporary.path(), ""))
            throw BadInput(file, "can't be written: its folder takes no files");
        const fs::perms usual = fs::status(temporary.path()).permissions();
        fs::permissions(temporary.path(), kOwnerOnly);
        if (!writeBytes(temporary.path(), bytes)) throw BadInput(file, "can't be written whole");
        if (readBytes(utf8FromPath(temporary.path())) != bytes)
            throw BadInput(file, "can't be written: what was written is not read back");
        fs::permissions(temporary.path(), isNew ? usual : fs::status(target).permissions());
        temporary.become(target);
    } catch (const fs::filesystem_error &error) {
        throw BadInput(file, "can't be written: " + error.code().message());
    }
}

}  // namespace kvtool
