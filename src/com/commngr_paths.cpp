// Folders and characterization data of the manager: what it keeps for others.

#include <algorithm>
#include <cstring>
#include <string_view>

#include "com/comreg.h"
#include "kvbase/com/commngr.h"
#include "kvbase/com/commod.h"
#include "kvbase/runtime/kv_tracer.h"

namespace {

using Path = std::unique_ptr<KV_FileSpec>;

// Also when path is the object that gives way.
void store(Path &at, const KV_FileSpec &path) { at = std::make_unique<KV_FileSpec>(path); }

}  // namespace

void KV_COMManager::SetLibPath(const KV_FileSpec &path) { store(m_libPath, path); }
void KV_COMManager::SetSITRDirPath(const KV_FileSpec &path) { store(m_sitrDirPath, path); }
void KV_COMManager::SetScreenDirPath(const KV_FileSpec &path) { store(m_screenDirPath, path); }
void KV_COMManager::SetColorConversionProfilesPath(const KV_FileSpec &path) {
    store(m_colorConversionProfilesPath, path);
}
void KV_COMManager::SetTargetDirPath(const KV_FileSpec &path) { store(m_targetDirPath, path); }

void KV_COMManager::SetTmpDirPath(char *path) {
    std::unique_ptr<char[]> copy;
    if (path != nullptr) {
        const std::size_t size = std::strlen(path) + 1;
        copy = std::make_unique<char[]>(size);
        std::copy_n(path, size, copy.get());
    }
    m_tmpDirPath = std::move(copy);
}

// ---- characterization data -------------------------------------------------------------------------------

void KV_COMManager::SetCharacterizationDataPath(const KV_FileSpec &path) {
    store(m_characterizationDataPath, path);
}

void KV_COMManager::SetCallBackCharacterizationDataPath(CharacterizationCallback callback) {
    if (callback == nullptr) return;
    m_characterizationDataPath.reset();
    m_characterizationCallback = callback;
}

KV_FileSpec *KV_COMManager::GetCharacterizationDataPath(const std::string &name) {
    constexpr std::size_t kLongestName = 511;
    // Up to a zero byte; a copy, since name may go with the former result.
    const std::string wanted(name, 0, name.find(char{0}));
    m_characterizationResult.reset();
    if (wanted.size() > kLongestName) return nullptr;
    if (m_characterizationCallback != nullptr) {
        store(m_characterizationResult, m_characterizationCallback(wanted));
    } else if (m_characterizationDataPath != nullptr) {
        store(m_characterizationResult, *m_characterizationDataPath);
        *m_characterizationResult += wanted.c_str();
    }
    return m_characterizationResult.get();
}

KV_FileSpec *KV_COMManager::GetCharacterizationDataFileSpec(const std::string &name) {
    for (std::string base = name.substr(0, name.find('.')); !base.empty(); base.pop_back()) {
        KV_FileSpec *const file = GetCharacterizationDataPath(base + "_Kalvor.enc");
        if (file != nullptr && file->FileExists()) return file;
        if (base.back() != 'L') break;
    }
    return nullptr;
}

// ---- services --------------------------------------------------------------------------------------------

void KV_COMManager::Trace(std::string &text, std::uint32_t mask) { KalvorTrace(text, mask); }
void KV_COMManager::PrintOn(std::ostream & /*stream*/) {}
void KV_COMManager::DumpOn(std::ostream & /*stream*/) {}
