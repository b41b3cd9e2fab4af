// A library that can be loaded only together with another one.
#include <kvbase/base/export.h>

extern "C" {
int leanedOnCall();

KV_MODULE_EXPORT int leaningModuleCall() { return leanedOnCall(); }
}
