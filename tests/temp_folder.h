#pragma once

#include <filesystem>
#include <random>
#include <string>
#include <system_error>

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
    // As the system spells it, in UTF-8.
    std::string native() const {
        const auto text = m_path.u8string();
        return {text.begin(), text.end()};
    }

private:
    std::filesystem::path m_path;
};
