// What leaning_module depends on.
#include <kvbase/base/export.h>

extern "C" KV_MODULE_EXPORT int leanedOnCall() { return 5; }
