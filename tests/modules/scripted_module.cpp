// A component module that does what a test tells it, and tells what was asked of it. Built as it stands,
// without KV_Exit (SCRIPTED_WITHOUT_EXIT), and into a test program.

#include "scripted_module.h"

#include <kvbase/com/commngr.h>
#include <kvbase/com/commod.h>
#include <kvbase/runtime/kv_exception.h>

namespace {

ModuleScript *script = nullptr;

// A module serves "Ink:A" and "Ink:B" in these tests, or a single entry; this is the one whose count it
// changes.
const char *const kEntry = "Ink:A";

class Counted final : public ICounted {
public:
    explicit Counted(KV_COMManager &manager) : m_manager(manager) { m_manager.IncreaseUseCount(kEntry); }
    void Release() override {
        m_manager.DecreaseUseCount(kEntry);
        delete this;
    }
    void Forget() override { delete this; }

private:
    ~Counted() override = default;
    KV_COMManager &m_manager;
};

std::string textOf(const KV_DictPath &path) {
    const KV_String text = path;
    return text.Ptr();
}

}  // namespace

// Paths go by value in the interface. NOLINTBEGIN(performance-unnecessary-value-param)
extern "C" {

KV_MODULE_EXPORT ModuleScript **moduleScript() { return &script; }

KV_MODULE_EXPORT void *KV_Init(KV_COMManager *manager, KV_DictPath id) {
    script->calls.push_back("init " + textOf(id));
    if (script->failingInits > 0) throw ModuleFailure{script->failingInits--};
    if (!script->askAtInit.empty())
        static_cast<ICounted *>(manager->CreateObject(script->askAtInit.c_str(), "ICounted"))->Release();
    return manager;
}

KV_MODULE_EXPORT void *KV_CreateObject(void *context, KV_DictPath subId, const char *interfaceName) {
    auto &manager = *static_cast<KV_COMManager *>(context);
    const std::string name = interfaceName;
    script->calls.push_back("create " + textOf(subId) + ' ' + name);
    if (name == "ThrowOwn") throw ModuleFailure{7};
    if (name == "ThrowProfile") throw KV_ProfileException("no profile", KV_ERR_PROFILE_TYPE, KV_HERE);
    if (name == "AskOther") return manager.CreateObject("Other:Thing", "ICounted");
    return name == "ICounted" ? static_cast<ICounted *>(new Counted(manager)) : nullptr;
}

#if !defined(SCRIPTED_WITHOUT_EXIT)
KV_MODULE_EXPORT void KV_Exit(void *) {
    script->calls.push_back("exit");
    if (script->atExit) script->atExit();
}
#endif
}
// NOLINTEND(performance-unnecessary-value-param)
