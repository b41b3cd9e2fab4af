#include <dlfcn.h>
#include <link.h>
#include <sys/stat.h>

#include <cerrno>
#include <string>

#include "platform/platform.h"

namespace kv::platform {
namespace {

// A name without a dot gets the extension, as on the home platform.
std::string libraryFile(const KV_WString &path) {
    std::string native = nativePath(path);
    if (native.find('.', native.rfind('/') + 1) == std::string::npos) native += kLibraryExtension;
    return native;
}

// The loader gives words, not a number: a file that is there but can't be loaded has the wrong form.
Library open(const std::string &file, std::int32_t &error) {
    Library library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    struct stat facts = {};
    error = library != nullptr ? 0 : stat(file.c_str(), &facts) == 0 ? ENOEXEC : ENOENT;
    return library;
}

// Whether an address lies in the running program: it heads the list of what is loaded.
bool isOfProgram(const void *address) {
    Dl_info facts = {};
    void *loaded = nullptr;
    return dladdr1(address, &facts, &loaded, RTLD_DL_LINKMAP) != 0 &&
           static_cast<const link_map *>(loaded)->l_prev == nullptr;
}

bool holdsZero(const KV_WString &path) { return path.find(KV_WChar{0}) != KV_WString::npos; }

}  // namespace

Library loadLibrary(const KV_WString &path, std::int32_t &error) {
    error = path.empty() || holdsZero(path) ? EINVAL : 0;
    if (error != 0) return nullptr;
    const std::string file = libraryFile(path);
    if (file.find('/') != std::string::npos) return open(file, error);

    const KV_WString program = programPath();
    const std::string folders[] = {nativePath(program.substr(0, program.rfind(KV_WChar('\\')) + 1)), "./"};
    for (const std::string &folder : folders) {
        Library library = open(folder + file, error);
        if (library != nullptr || error != ENOENT) return library;  // the first one found counts
    }
    return open(file, error);
}

Library loadLibraryFrom(const KV_WString &folder, const KV_WString &name, std::int32_t &error) {
    return loadLibrary(folder + KV_WChar('\\') + name, error);
}

void freeLibrary(Library library) {
    if (library != nullptr) dlclose(library);
}

void *findSymbol(Library library, const char *name) {
    if (library != nullptr) return dlsym(library, name);
    void *symbol = dlsym(RTLD_DEFAULT, name);  // looks into the program first, then into its libraries
    return symbol != nullptr && isOfProgram(symbol) ? symbol : nullptr;
}

}  // namespace kv::platform
