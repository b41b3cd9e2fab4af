#pragma once

// Runs kvtool as a user does, to look at its exit code, its output and the files that it leaves.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "temp_folder.h"

namespace fs = std::filesystem;

struct Outcome {
    int exitCode;
    std::string out;
    std::string err;
};

inline std::string contents(const fs::path &file) {
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

// Printed text, with the line ends that C++ has.
inline std::string printed(const fs::path &file) {
    std::string text = contents(file);
    for (std::size_t at = 0; (at = text.find("\r\n", at)) != std::string::npos;)
        text.erase(at, 1);
    return text;
}

struct Row {
    const char *arguments;
    int exitCode;
    const char *out;  // the whole of it when it is empty or ends in a line end, else a part
    const char *err;  // a part
};

inline void expectOutcome(const Row &row, const Outcome &outcome) {
    const std::string out = row.out;
    EXPECT_EQ(outcome.exitCode, row.exitCode) << row.arguments << '\n' << outcome.err;
    if (out.empty() || out.back() == '\n')
        EXPECT_EQ(outcome.out, out) << row.arguments;
    else
        EXPECT_NE(outcome.out.find(out), std::string::npos) << row.arguments << '\n' << outcome.out;
    EXPECT_NE(outcome.err.find(row.err), std::string::npos) << row.arguments << '\n' << outcome.err;
    EXPECT_EQ(outcome.err.empty(), row.exitCode == 0) << row.arguments << '\n' << outcome.err;
}

// Each test works in a folder of its own.
class ToolTest : public testing::Test {
protected:
    void SetUp() override { fs::current_path(m_folder / ""); }
    void TearDown() override { fs::current_path(m_before); }

    fs::path file(const std::string &name) const { return m_folder / pathFromUtf8(name); }
    void write(const char *name, const std::string &text) const {
        std::ofstream(file(name), std::ios::binary) << text;
    }

    // Runs in the test's folder, behind another command of the shell: cmd.exe takes the quotes off a line
    // that begins with one.
    Outcome run(const std::string &arguments, const std::string &before = "cd .") const {
        const std::string program = fs::path(KVTOOL).make_preferred().string();
        const std::string command = before + " && \"" + program + "\" " + arguments + " >out.txt 2>err.txt";
        // Wine at times starts no shell at all (-1), or the shell no program (9009).
        int status = -1;
        for (int tries = 0; (status == -1 || status == 9009) && tries < 5; ++tries)
            status = std::system(command.c_str());
        return {status < 256 ? status : status / 256, printed(file("out.txt")), printed(file("err.txt"))};
    }

    template <std::size_t Count>
    void expectOutcomes(const Row (&rows)[Count]) const {
        for (const Row &row : rows)
            expectOutcome(row, run(row.arguments));
    }

    void expectNoTemporaryFile() const {
        for (const auto &entry : fs::recursive_directory_iterator(m_folder / ""))
            EXPECT_EQ(entry.path().filename().string().find(".tmp-"), std::string::npos) << entry.path();
    }

private:
    fs::path m_before = fs::current_path();
    TempFolder m_folder;
};
