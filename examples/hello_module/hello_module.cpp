// A component module with one kind of object. docs/modules.md walks through it.

#include <kvbase/com/commngr.h>
#include <kvbase/com/commod.h>
#include <kvbase/runtime/kv_exception.h>

#include <cstring>
#include <memory>
#include <string>
#include <utility>

#include "greeter.h"

namespace {

/// What the module keeps from KV_Init to KV_Exit.
struct Module {
    KV_COMManager *manager;
    KV_DictPath id;
    std::string greeting;
};

class Greeter final : public IGreeter {
public:
    explicit Greeter(Module &module) : m_module(module) { m_module.manager->IncreaseUseCount(m_module.id); }
    void Release() override { delete this; }
    std::string Greet(const std::string &name) override {
        if (name.empty()) throw KV_Exception("nobody to greet", KV_ERR_BAD_INPUT, KV_HERE, true);
        return m_module.greeting + ", " + name + '!';
    }

private:
    ~Greeter() override { m_module.manager->DecreaseUseCount(m_module.id); }
    Module &m_module;
};

}  // namespace

extern "C" {

KV_MODULE_EXPORT void *KV_Init(KV_COMManager *manager, KV_DictPath id) {
    const std::unique_ptr<KV_UTFString> greeting(manager->RegistryGetEntry("Environment", "Greeting"));
    return new Module{manager, std::move(id), greeting->Ptr()};
}

// Paths go by value in the interface. NOLINTNEXTLINE(performance-unnecessary-value-param)
KV_MODULE_EXPORT void *KV_CreateObject(void *context, KV_DictPath subId, const char *interfaceName) {
    if (!(subId == KV_DictPath("Greeter")) || std::strcmp(interfaceName, "IGreeter") != 0) return nullptr;
    IGreeter *const greeter = new Greeter(*static_cast<Module *>(context));
    return greeter;
}

KV_MODULE_EXPORT void KV_Exit(void *context) { delete static_cast<Module *>(context); }
}
