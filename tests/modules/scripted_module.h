#pragma once

#include <functional>
#include <string>
#include <vector>

class KV_COMManager;

// What a scripted module writes down, and how it behaves. The test's, to which the module points.
struct ModuleScript {
    std::vector<std::string> calls;  // "init ID", "create SUBID INTERFACE", "exit", in their order
    int failingInits = 0;            // how many times KV_Init throws
    std::string askAtInit;           // the path of an object that KV_Init asks the manager for
    std::function<void()> atExit;    // what KV_Exit does
};

// What KV_Init and KV_CreateObject throw.
struct ModuleFailure {
    int code;
};

// What the module makes for "ICounted": an object that counts as one of the component at the registry's
// entry.
class ICounted {
public:
    ICounted() = default;
    ICounted(const ICounted &) = delete;
    ICounted &operator=(const ICounted &) = delete;
    virtual void Release() = 0;
    // The same when the manager is gone.
    virtual void Forget() = 0;

protected:
    virtual ~ICounted() = default;
};

// Exported as "moduleScript": where the module looks for its script.
using ModuleScriptFunction = ModuleScript **(*)();
