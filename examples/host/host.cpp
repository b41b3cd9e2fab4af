// A program that asks a component module for an object. Its argument is a registry.

#include <kvbase/com/commngr.h>
#include <kvbase/runtime/kv_exception.h>

#include <iostream>
#include <memory>

#include "../hello_module/greeter.h"

namespace {

struct Release {
    void operator()(IGreeter *greeter) const { greeter->Release(); }
};

void greet(const char *registry) {
    KV_COMManager manager(KV_FileSpecFromNative(registry));
    const std::unique_ptr<IGreeter, Release> greeter(
        static_cast<IGreeter *>(manager.CreateObject("Hello:Greeter", "IGreeter")));
    std::cout << greeter->Greet("kvbase") << '\n';
    try {
        greeter->Greet("");
    } catch (const KV_Exception &error) {  // by its type, though the module raised it
        KV_String text;
        std::cout << error.ToString(text).Ptr() << '\n';
    }
    std::cout << manager.TotalUseCount() << " object in use\n";
}

}  // namespace

int main(int argc, char **argv) {
    if (argc != 2) {
        std::cerr << "usage: hello_host REGISTRY\n";
        return 2;
    }
    try {
        greet(argv[1]);
        return 0;
    } catch (const KV_Exception &error) {
        KV_String text;
        std::cerr << "hello_host: " << error.ToString(text).Ptr() << '\n';
        return 1;
    }
}
