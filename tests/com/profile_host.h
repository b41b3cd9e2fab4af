#pragma once

// A manager whose profile module is the test one, in a folder of its own.

#include <kvbase/com/commngr.h>
#include <kvbase/com/kv_cacher.h>

#include <cstdint>
#include <cstring>
#include <fstream>
#include <memory>
#include <string>

#include "../modules/profile_module/test_interfaces.h"
#include "temp_folder.h"

struct Release {
    template <class Object>
    void operator()(Object *object) const {
        object->Release();
    }
};
// A reference that is released at its end.
template <class Object>
using Ref = std::unique_ptr<Object, Release>;

inline KV_CheckSum sumOf(std::uint32_t number) {
    unsigned char bytes[16] = {1};
    std::memcpy(bytes + 12, &number, sizeof number);
    return {bytes, 16};
}

inline KV_FileSpec specOf(const std::string &native) { return KV_FileSpecFromNative(native.c_str()); }

inline std::string registryText(const std::string &module) {
    return "<< /Components << /ProfileModule (" + module + ") >> >>";
}

class ProfileHost {
public:
    explicit ProfileHost(const std::string &module = "profile_module") {
        const std::string file = m_folder.native("test.krg");
        std::ofstream(pathFromUtf8(file)) << registryText(module);
        m_manager = std::make_unique<KV_COMManager>(specOf(file));
    }

    KV_COMManager &manager() { return *m_manager; }
    KV_Cacher &cacher() { return *m_manager->Cacher(); }
    const TempFolder &folder() const { return m_folder; }
    // The folder as a caching path.
    KV_FileSpec cachingPath(const std::string &name) const { return specOf(m_folder.native(name) + '\\'); }

    // New objects of the module.
    Ref<ITestProfile> profile() const { return make<ITestProfile, KV_IProfile>("Profile", "IProfile"); }
    Ref<ITestMatcher> matcher() const {
        return make<ITestMatcher, KV_IColorMatcher>("ColorMatcher", "IColorMatcher");
    }
    // With one value, and as large as count tells.
    Ref<ITestLink> link(float value, std::size_t count = 1) const {
        Ref<ITestLink> link = make<ITestLink, KV_ILinkCore>("LinkCore", "ILinkCore");
        link->Values().assign(count, value);
        return link;
    }
    // A matcher that has built the link of sum; effort tells how long that takes.
    Ref<ITestMatcher> builder(KV_CheckSum sum, std::int32_t effort = 1) const {
        Ref<ITestMatcher> matcher = this->matcher();
        KV_LinkRequest request;
        request.setting2 = effort;
        matcher->Setup(&request, 1, 0, 0);
        matcher->Prepare();
        matcher->SetChecksum(&sum);
        return matcher;
    }

private:
    template <class Object, class Interface>
    Ref<Object> make(const char *kind, const char *interfaceName) const {
        const KV_DictPath path = KV_DictPath("ProfileModule") + kind;
        auto *object = static_cast<Interface *>(m_manager->CreateObject(path, interfaceName));
        return Ref<Object>(static_cast<Object *>(object));
    }

    TempFolder m_folder;
    std::unique_ptr<KV_COMManager> m_manager;
};

// Takes over what an operation of the cacher gave.
inline Ref<ITestLink> testLink(KV_ILinkCore *link) { return Ref<ITestLink>(static_cast<ITestLink *>(link)); }
