#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

// What a run of kvtool gave; line ends as in memory.
struct ToolOutcome {
    int exitCode;
    std::string out;
    std::string err;
};

// Runs kvtool in a folder, which gets its output, through the system's shell.
inline ToolOutcome runTool(const std::filesystem::path &folder, const std::string &arguments) {
    const auto text = [](const char *file) {
        std::ifstream in(file, std::ios::binary);
        std::string bytes{std::istreambuf_iterator<char>(in), {}};
        std::erase(bytes, '\r');
        return bytes;
    };
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder);
    const std::string tool = std::filesystem::path(KVTOOL).make_preferred().string();
    const int status = std::system((tool + " " + arguments + " >out.txt 2>err.txt").c_str());
    ToolOutcome outcome{status < 256 ? status : status / 256, text("out.txt"), text("err.txt")};
    std::filesystem::current_path(before);
    return outcome;
}
