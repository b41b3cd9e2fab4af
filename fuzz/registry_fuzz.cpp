// Any bytes as a registry. What is read has no references left, in the tree that the file has; a new entry
// reads as it was expanded. All else ends in the documented failure.

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "com/comreg.h"
#include "kvbase/runtime/kv_exception.h"
#include "temp_folder.h"

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

bool isString(KV_UVal &value) {
    return value.GetType() == KV_UVAL_STRING || value.GetType() == KV_UVAL_UTFSTRING;
}

bool hasReference(const std::string &text) { return text.find("@{") != text.npos; }

void requireCleaned(KV_UVal &raw, KV_UVal &clean) {
    if (!isString(raw)) return require(clean.GetType() == raw.GetType());
    require(clean.GetType() == KV_UVAL_UTFSTRING);
    const std::string text = clean.GetCStringValue(0);
    require(!hasReference(text));
    KV_String written;
    raw.GetStrValue(written, 0);
    const std::string plain = KV_UTFString(written).Ptr();
    require(hasReference(plain) || plain == text);
}

// Both trees have the same keys. Deep ones are left alone: this recurses.
void requireCleaned(KV_UValDict &raw, KV_UValDict &clean, int depth) {
    require(raw.GetSize() == clean.GetSize());
    auto other = clean.GetValuePtr()->begin();
    for (const auto &[key, value] : *raw.GetValuePtr()) {
        require(other->first == key && (value == nullptr || other->second != nullptr));
        if (value != nullptr && value->GetType() == KV_UVAL_DICT) {
            require(other->second->GetType() == KV_UVAL_DICT);
            if (depth < 200)
                requireCleaned(static_cast<KV_UValDict &>(*value), static_cast<KV_UValDict &>(*other->second),
                               depth + 1);
        } else if (value != nullptr) {
            requireCleaned(*value, *other->second);
        }
        ++other;
    }
}

void requireSound(KV_Registry &registry) {
    requireCleaned(registry.Raw(), *registry.GetSection(""), 0);
    for (const char *section : {"Components", "Environment", "Tracing"})
        registry.GetSection(section);
    registry.DoTracing();
    registry.TraceToFile();
    KV_String name;
    registry.TraceFileName(name);
    require(std::string(name).find(".txt") != std::string::npos);
    try {
        const std::string expanded =
            registry.NewEntry("Environment", "New", new KV_UTFString("<@{Environment:TmpPath}@{a:b}>"))
                ->Ptr();
        const std::unique_ptr<KV_UTFString> entry(registry.GetEntry("Environment", "New"));
        require(expanded == entry->Ptr() && !hasReference(expanded));
    } catch (const KV_COMException &e) {  // what it takes in by its references may itself have others
        require(e.GetComponentError() == KV_COMException::SyntaxError);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const TempFolder folder;
    static const std::string file = folder.native("r.krg");
    std::ofstream(file, std::ios::binary) << std::string(data, data + size);
    try {
        KV_Registry registry(KV_FileSpecFromNative(file.c_str()), KV_Registry::UserFolder::told);
        requireSound(registry);
    } catch (const KV_FileException &) {
    } catch (const KV_COMException &e) {
        require(e.GetComponentError() == KV_COMException::SyntaxError ||
                e.GetComponentError() == KV_COMException::RegistryNotCreated);
    }
    return 0;
}
