#include "com/kv_cacher_objects.h"

#include "kvbase/com/commngr.h"
#include "kvbase/univval/kv_dict_path.h"

namespace kv::detail {
namespace {

template <class Object>
Held<Object> make(KV_COMManager &manager, const char *kind, const char *interfaceName) {
    return Held<Object>(
        static_cast<Object *>(manager.CreateObject(KV_DictPath("ProfileModule") + kind, interfaceName)));
}

}  // namespace

Held<KV_IProfile> makeProfile(KV_COMManager &manager) {
    return make<KV_IProfile>(manager, "Profile", "IProfile");
}

Held<KV_ILinkCore> makeLinkCore(KV_COMManager &manager) {
    return make<KV_ILinkCore>(manager, "LinkCore", "ILinkCore");
}

Held<KV_IColorMatcher> makeColorMatcher(KV_COMManager &manager) {
    return make<KV_IColorMatcher>(manager, "ColorMatcher", "IColorMatcher");
}

void copyLink(KV_ILinkCore &link, KV_ILinkCore &source, CopyMode mode) {
    std::int32_t scratch = 0;
    link.CopyFrom(&source, static_cast<int>(mode), &scratch);
}

Held<KV_ILinkCore> copyOf(KV_COMManager &manager, KV_ILinkCore &source, CopyMode mode) {
    Held<KV_ILinkCore> copy = makeLinkCore(manager);
    copyLink(*copy, source, mode);
    return copy;
}

}  // namespace kv::detail
