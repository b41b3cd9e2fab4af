#pragma once

#include <filesystem>
#include <random>
#include <string>
#include <system_error>

#include "utf8_path.h"

// A new folder of a test's own, gone with its contents at the end.
class TempFolder {
public:
    TempFolder() {
        std::random_device random;
        do {
            m_path = std::filesystem::temp_directory_path() / ("kvbase_" + std::to_string(random()));
        } while (!std::filesystem::create_directory(m_path));
    }
    TempFolder(const TempFolder &) = delete;
    TempFolder &operator=(const TempFolder &) = delete;
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }

    std::filesystem::path operator/(const std::filesystem::path &name) const { return m_path / name; }
    // The folder, or what has that name in it, as the system spells it, in UTF-8.
    std::string native() const { return utf8FromPath(m_path); }
    std::string native(const std::filesystem::path &name) const { return utf8FromPath(m_path / name); }

private:
    std::filesystem::path m_path;
};
