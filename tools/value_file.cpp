#include "value_file.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <memory>
#include <sstream>
#include <string_view>

#include "command.h"
#include "file_replace.h"
#include "value_compare.h"
#include "value_types.h"

namespace kvtool {
namespace {

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

std::unique_ptr<KV_UValDict> parseText(const std::string &file, const std::string &bytes) {
    std::istringstream stream(bytes);
    KV_UVal *read = nullptr;
    try {
        KV_ReadUValTxt(stream, read);
    } catch (const KV_FileException &error) {
        throw BadInput(file, placeIn(bytes, stream) + ": " + textOf(error));
    }
    std::unique_ptr<KV_UVal> value(read);
    if (value->GetType() != KV_UVAL_DICT)
        throw BadInput(file,
                       std::string("holds a single ") + typeName(value->GetType()) + ", not a dictionary");
    return std::unique_ptr<KV_UValDict>(static_cast<KV_UValDict *>(value.release()));
}

// Every version of the binary form has its name at this place.
bool namesBinaryForm(const std::string &bytes) {
    constexpr std::string_view name = "UVALBINDUMP_";
    constexpr std::size_t place = 8;
    return bytes.size() >= place && bytes.compare(place, name.size(), name) == 0;
}

struct Parsed {
    std::unique_ptr<KV_UValDict> dict;
    ValueForm form = ValueForm::Text;
    std::size_t size = 0;  // of the binary form: the bytes that it takes
};

// Throws KV_FileException.
Parsed parseBinary(const std::string &bytes) {
    auto dict = std::make_unique<KV_UValDict>(0);
    KV_SStream stream(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
    dict->ReadBinFromStream(&stream);
    return {std::move(dict), ValueForm::Binary, static_cast<std::size_t>(stream.Tell())};
}

// Finds the form as KV_UValDict::ReadFile does: what is invalid as binary form is read as text. Of what is
// invalid both ways, the failure told is that of the form that is meant.
Parsed parse(const std::string &file, const std::string &bytes) {
    if (bytes.empty()) throw BadInput(file, "is empty");
    if (bytes.size() > std::numeric_limits<std::uint32_t>::max())
        throw BadInput(file, "is larger than the tool reads");
    std::string invalid;
    try {
        return parseBinary(bytes);
    } catch (const KV_FileException &error) {
        invalid = textOf(error);
        if (error.GetFileErrorId() != KV_FileException::InvalidFile) throw BadInput(file, invalid);
    }
    try {
        return {parseText(file, bytes)};
    } catch (const BadInput &) {
        if (namesBinaryForm(bytes)) throw BadInput(file, invalid);
        throw;
    }
}

std::string binaryForm(KV_UValDict &dict) {
    KV_SStream stream;
    stream.Open("w", false);
    dict.AppendBinToStream(&stream);
    return {stream.GetMemPtr(), stream.Length()};
}

// Whether the binary form of the values is these bytes. Paths in the keys of a file may have made a level
// that the form has no place for.
bool isBinaryForm(KV_UValDict &dict, std::string_view bytes) {
    try {
        return binaryForm(dict) == bytes;
    } catch (const KV_FileException &) {
        return false;
    }
}

std::string textForm(KV_UValDict &dict) {
    std::ostringstream stream;
    dict.WriteTextFile(stream);
    stream << '\n';
    return stream.str();
}

std::string list(const std::vector<std::string> &lines) {
    std::string text;
    for (const std::string &line : lines)
        text += "\n  " + line;
    return text;
}

bool isSameFile(const std::string &a, const std::string &b) {
    std::error_code ignored;
    return a == b || std::filesystem::equivalent(pathFromUtf8(a), pathFromUtf8(b), ignored);
}

}  // namespace

const char *formName(ValueForm form) { return form == ValueForm::Text ? "text" : "binary"; }

ValueFile::ValueFile(const std::string &file) : m_file(file) {
    const std::string bytes = readBytes(file);
    const Parsed parsed = parse(file, bytes);
    parsed.dict->MoveTo(&m_dict);
    m_form = parsed.form;
    if (m_form == ValueForm::Text)
        m_survey = surveyText(bytes);
    else
        surveyBinary(bytes, parsed.size);
}

// What is not kept of the binary form, which takes so many of the bytes.
void ValueFile::surveyBinary(const std::string &bytes, std::size_t size) {
    if (!isBinaryForm(m_dict, std::string_view(bytes).substr(0, size))) {
        const char *twice = "a key that comes twice or has the path separator, or a text that is no UTF-8";
        // A file in the other byte order says so from its first tag on, and always differs.
        if ((static_cast<unsigned char>(bytes.front()) & 0x40U) != 0)
            m_survey.unkept.push_back(std::string("another byte order, perhaps ") + twice);
        else
            m_survey.misread.push_back(std::string("somewhere ") + twice + ": the values differ");
    }
    if (size < bytes.size())
        m_survey.misread.push_back(std::to_string(bytes.size() - size) +
                                   " bytes behind the values are not read");
}

void ValueFile::refuseMisread() const {
    if (!misread().empty())
        throw BadInput(m_file, "holds what is not read as it is written:" + list(misread()) +
                                   "\n--force goes on with what was read");
}

ValueFile ValueFile::openOrNew(const std::string &file, ValueForm form) {
    std::error_code ignored;
    if (std::filesystem::exists(pathFromUtf8(file), ignored)) return ValueFile(file);
    return {file, form, New()};
}

// The values in their form. Throws BadInput, on behalf of the file to be written, when it has no place for
// them.
std::string ValueFile::bytes(const std::string &to) {
    if (m_form == ValueForm::Text) return textForm(m_dict);
    try {
        return binaryForm(m_dict);
    } catch (const KV_FileException &error) {
        throw BadInput(to, textOf(error));
    }
}

std::vector<std::string> ValueFile::unwritable() {
    Parsed back;
    try {
        back = parse(m_file, bytes(m_file));
    } catch (const BadInput &) {
        if (m_form == ValueForm::Binary) throw;
        return unreadableKeys();
    }
    return differences(m_dict, *back.dict, kMostLines);
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
    if (!force) refuseMisread();
    const std::string written = bytes(to);
    const std::vector<std::string> lost = unwritable();
    if (!force && !lost.empty())
        throw BadInput(to, std::string("is left as it was, for the ") + formName(m_form) +
                               " form can't hold:" + list(lost) + "\n--force writes what it can");
    if (!force && isSameFile(to, m_file) && !unkept().empty())
        throw BadInput(to, "is left as it was, for it holds what would be lost:" + list(unkept()) +
                               "\n--force writes all the same, --output FILE writes elsewhere");
    parse(to, written);  // whatever is lost, a file that can't be read is never written
    replaceFile(to, written);
}

bool ValueFile::isTooDeep() { return sizeOf(m_dict).depth > kDeepestTree; }

}  // namespace kvtool
