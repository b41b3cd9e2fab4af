#include "value_file.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <sstream>

#include "command.h"
#include "file_replace.h"
#include "value_compare.h"
#include "value_survey.h"
#include "value_types.h"

namespace kvtool {
namespace {

constexpr std::size_t kMostLines = 10;

std::string textOf(const KV_Exception &error) {
    KV_String text;
    return error.ToString(text).Ptr();
}

// Where in the text the stream stands.
std::string placeIn(const std::string &bytes, std::istream &stream) {
    const auto position = stream.rdbuf()->pubseekoff(0, std::ios::cur, std::ios::in);
    if (position < 0 || static_cast<std::size_t>(position) >= bytes.size()) return "at its end";
    const auto end = bytes.begin() + static_cast<std::ptrdiff_t>(position);
    return "line " + std::to_string(std::count(bytes.begin(), end, '\n') + 1);
}

std::unique_ptr<KV_UVal> parse(const std::string &file, const std::string &bytes) {
    std::istringstream stream(bytes);
    KV_UVal *value = nullptr;
    try {
        KV_ReadUValTxt(stream, value);
    } catch (const KV_FileException &error) {
        throw BadInput(file, placeIn(bytes, stream) + ": " + textOf(error));
    }
    return std::unique_ptr<KV_UVal>(value);
}

std::string list(const std::vector<std::string> &lines) {
    std::string text;
    for (const std::string &line : lines)
        text += "\n  " + line;
    return text;
}

bool isSameFile(const std::string &a, const std::string &b) {
    std::error_code ignored;
    return a == b || std::filesystem::equivalent(a, b, ignored);
}

}  // namespace

ValueFile::ValueFile(const std::string &file) : m_file(file) {
    const std::string bytes = readBytes(file);
    const std::unique_ptr<KV_UVal> value = parse(file, bytes);
    if (value->GetType() != KV_UVAL_DICT)
        throw BadInput(file,
                       std::string("holds a single ") + typeName(value->GetType()) + ", not a dictionary");
    static_cast<KV_UValDict &>(*value).MoveTo(&m_dict);
    m_unkept = surveyText(bytes);
}

ValueFile ValueFile::openOrNew(const std::string &file) {
    std::error_code ignored;
    if (std::filesystem::exists(file, ignored)) return ValueFile(file);
    return {file, New()};
}

std::string ValueFile::textForm() {
    std::ostringstream stream;
    m_dict.WriteTextFile(stream);
    stream << '\n';
    return stream.str();
}

std::vector<std::string> ValueFile::unwritable() {
    std::unique_ptr<KV_UVal> back;
    try {
        back = parse(m_file, textForm());
    } catch (const BadInput &) {
        return unreadableKeys();
    }
    return differences(m_dict, static_cast<KV_UValDict &>(*back), kMostLines);
}

std::vector<std::string> ValueFile::unreadableKeys() {
    std::vector<std::string> lines;
    for (TreeWalk walk(m_dict); lines.size() < kMostLines && walk.next();) {
        if (walk.key().find('\\') != std::string::npos)
            lines.push_back(walk.path() + ": a key with a backslash is not read back");
    }
    if (lines.empty()) lines.emplace_back("an entry that makes the file unreadable");
    return lines;
}

void ValueFile::write(const std::string &to, bool force) {
    if (isTooDeep())
        throw BadInput(to, "is left as it was: the tool writes no more than " + std::to_string(kDeepestTree) +
                               " levels");
    const std::vector<std::string> lost = unwritable();
    if (!force && !lost.empty())
        throw BadInput(to, "is left as it was, for the text form can't hold:" + list(lost) +
                               "\n--force writes what it can");
    if (!force && isSameFile(to, m_file) && !m_unkept.empty())
        throw BadInput(to, "is left as it was, for it holds what would be lost:" + list(m_unkept) +
                               "\n--force writes all the same, --output FILE writes elsewhere");
    const std::string text = textForm();
    parse(to, text);  // whatever is lost, a file that can't be read is never written
    replaceFile(to, text);
}

bool ValueFile::isTooDeep() { return sizeOf(m_dict).depth > kDeepestTree; }

}  // namespace kvtool
