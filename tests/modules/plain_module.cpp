// The smallest library that can be loaded: one function and one variable.
#include <kvbase/base/export.h>

extern "C" {
KV_MODULE_EXPORT int plainModuleCalls = 0;

KV_MODULE_EXPORT int plainModuleCall() { return ++plainModuleCalls; }
}
