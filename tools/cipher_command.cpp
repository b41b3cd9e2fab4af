#include <kvbase/kvbase.h>

#include <limits>
#include <memory>
#include <vector>

#include "command.h"
#include "file_replace.h"

namespace kvtool {
namespace {

struct Arguments {
    std::string from;
    std::string to;
    bool force = false;
};

constexpr std::uint32_t kBlock = 8;
// The length of whole blocks that hold the bytes still has 32 bits.
constexpr std::uint32_t kLargest = std::numeric_limits<std::uint32_t>::max() / kBlock * kBlock;

std::uint32_t lengthOf(const std::string &bytes, const std::string &file) {
    if (bytes.size() > kLargest)
        throw BadInput(file,
                       "is larger than the " + std::to_string(kLargest) + " bytes that can be enciphered");
    return static_cast<std::uint32_t>(bytes.size());
}

std::string enciphered(const std::string &bytes, const std::string &file) {
    const std::uint32_t length = lengthOf(bytes, file);
    KV_SStream stream;
    stream.Open("wb", false);
    if (length == 0) return {};
    const std::uint32_t size = (length - 1) / kBlock * kBlock + kBlock;
    if (stream.WriteEncrypted(bytes.data(), length) != size || stream.Length() != size)
        throw BadInput(file, "can't be enciphered: there is not enough memory");
    return {stream.GetMemPtr(), size};
}

// The enciphered form stores no length: blanks at the end are taken for the padding of the last block.
std::string deciphered(const std::string &bytes, const std::string &file) {
    const std::uint32_t length = lengthOf(bytes, file);
    if (length % kBlock != 0)
        throw BadInput(
            file, "is not enciphered: its " + std::to_string(length) + " bytes are no whole blocks of 8");
    KV_SStream stream(bytes.data(), length);
    std::vector<char> text(std::size_t{length} + 1);
    std::size_t size = stream.ReadEncrypted(text.data(), length);
    if (size != length) throw BadInput(file, "can't be deciphered: there is not enough memory");
    while (size > 0 && text[size - 1] == ' ')
        --size;
    // The stream ends the text with a zero in the place of the first blank; a zero of the text's own looks
    // the same.
    if (size > 0 && text[size - 1] == '\0') {
        std::string without(text.data(), size - 1);
        if (enciphered(without, file) == bytes) return without;
    }
    return {text.data(), size};
}

void encipher(const Arguments &args) {
    const std::string bytes = readBytes(args.from);
    const std::string result = enciphered(bytes, args.from);
    if (!args.force && deciphered(result, args.from) != bytes)
        throw BadInput(args.from,
                       "ends in blanks, which can't be told from the padding and would be lost; --force "
                       "writes all the same");
    replaceFile(args.to, result);
}

void decipher(const Arguments &args) { replaceFile(args.to, deciphered(readBytes(args.from), args.from)); }

void addCommand(CLI::App &app, const char *name, const char *help, void (*run)(const Arguments &),
                bool withForce) {
    const auto args = std::make_shared<Arguments>();
    CLI::App *command = app.add_subcommand(name, help);
    command->add_option("FROM", args->from, "the file to read")->required();
    command->add_option("TO", args->to, "the file to write")->required();
    if (withForce) command->add_flag("--force", args->force, "write also when blanks at the end are lost");
    command->callback([run, args] { run(*args); });
}

}  // namespace

void addCipherCommands(CLI::App &app) {
    addCommand(app, "encipher", "Enciphers a file as the library's streams do", encipher, true);
    addCommand(app, "decipher", "Deciphers a file that was enciphered so", decipher, false);
}

}  // namespace kvtool
