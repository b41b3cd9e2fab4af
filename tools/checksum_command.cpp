#include <kvbase/kvbase.h>

#include <filesystem>
#include <iostream>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "command.h"
#include "file_replace.h"

namespace fs = std::filesystem;

namespace kvtool {
namespace {

struct Arguments {
    std::vector<std::string> files;
};

void refuseLarge(const std::string &file, std::uintmax_t size) {
    if (size > std::numeric_limits<unsigned int>::max()) throw BadInput(file, "is 4 GiB or larger");
}

KV_CheckSum checksumOf(const std::string &file) {
    std::error_code noFile;
    const fs::path path = pathFromUtf8(file);
    if (fs::is_regular_file(path, noFile)) refuseLarge(file, fs::file_size(path));  // before it is read
    std::string bytes = readBytes(file);
    refuseLarge(file, bytes.size());
    unsigned char digest[16];
    MD5String(reinterpret_cast<unsigned char *>(bytes.data()), static_cast<unsigned int>(bytes.size()),
              digest);
    return {digest, sizeof digest};
}

// A file that can't be read does not keep the others from being told.
void checksum(const Arguments &args) {
    std::string failures;
    for (const std::string &file : args.files) {
        try {
            std::cout << checksumOf(file).GetSum() << "  " << file << '\n';
        } catch (const BadInput &failure) {
            failures += (failures.empty() ? "" : "\nkvtool: ") + std::string(failure.what());
        }
    }
    if (!failures.empty()) throw BadInput(failures);
}

}  // namespace

void addChecksumCommand(CLI::App &app) {
    const auto args = std::make_shared<Arguments>();
    CLI::App *command = app.add_subcommand(
        "checksum", "Prints the MD5 digest of each file, as link files and the cache are named by it");
    command->add_option("FILE", args->files, "the files to read")->required();
    command->callback([args] { checksum(*args); });
}

}  // namespace kvtool
