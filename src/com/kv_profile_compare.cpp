#include "kvbase/com/kv_profile_compare.h"

#include "com/kv_cacher_objects.h"
#include "kvbase/runtime/kv_exception.h"

using kv::detail::Held;

namespace {

Held<KV_IProfile> opened(KV_COMManager &manager, const KV_FileSpec &file) {
    constexpr int kToCompare = 9;
    Held<KV_IProfile> profile = kv::detail::makeProfile(manager);
    if (!profile)
        throw KV_COMException("KV_ProfileCompare::Equal", KV_COMException::InvalidComponentId, KV_HERE);
    KV_FileSpec copy(file);
    profile->Open(copy, kToCompare);
    return profile;
}

Held<KV_IProfile> profileOf(KV_IProfileSource *source) {
    const auto held = Held<KV_IProfileSource>::more(source);
    return Held<KV_IProfile>(held ? held->GetProfile() : nullptr);
}

// Null when the reference gives no profile.
Held<KV_IProfile> profileOf(KV_COMManager &manager, const KV_ProfileRef &reference) {
    switch (reference.GetKind()) {
    case KV_PROFILE_REF_FILE:
        return opened(manager, reference.GetFileSpec());
    case KV_PROFILE_REF_OBJECT:
        return Held<KV_IProfile>::more(reference.GetProfile());
    case KV_PROFILE_REF_SOURCE:
        return profileOf(reference.GetSource());
    default:
        return {};
    }
}

}  // namespace

KV_ProfileCompare::KV_ProfileCompare(void *manager) : m_manager(static_cast<KV_COMManager *>(manager)) {}

// The first object is released first: it stands behind the second one.

bool KV_ProfileCompare::Equal(KV_FileSpec &first, KV_FileSpec &second) {
    Held<KV_IProfile> other;
    const Held<KV_IProfile> one = opened(*m_manager, first);
    other = opened(*m_manager, second);
    return one->Equal(other.get());
}

bool KV_ProfileCompare::Equal(KV_ProfileRef &first, KV_ProfileRef &second) {
    Held<KV_IProfile> other;
    const Held<KV_IProfile> one = profileOf(*m_manager, first);
    other = profileOf(*m_manager, second);
    return one && other && one->Equal(other.get());
}
