#include "kvbase/com/kv_cached_interfaces.h"

#include <utility>

KV_IObject::~KV_IObject() = default;
KV_ITextTag::~KV_ITextTag() = default;
KV_IProfile::~KV_IProfile() = default;
KV_IProfileSource::~KV_IProfileSource() = default;
KV_ILinkCore::~KV_ILinkCore() = default;
KV_IColorMatcher::~KV_IColorMatcher() = default;
KV_ProfileContext::~KV_ProfileContext() = default;

namespace {

template <class Object>
Object *more(Object *object) {
    if (object != nullptr) object->AddRef();
    return object;
}

template <class Object>
void release(Object *&object) {
    if (Object *former = std::exchange(object, nullptr)) former->Release();
}

}  // namespace

KV_ProfileRef::KV_ProfileRef(const KV_ProfileRef &other)
    : m_kind(other.m_kind),
      m_file(other.m_file),
      m_profile(more(other.m_profile)),
      m_source(more(other.m_source)),
      m_attachment(more(other.m_attachment)),
      m_sum(other.m_sum) {}

KV_ProfileRef &KV_ProfileRef::operator=(const KV_ProfileRef &other) {
    KV_ProfileRef copy(other);  // before anything is released: it may be all that holds the objects
    std::swap(m_kind, copy.m_kind);
    std::swap(m_file, copy.m_file);
    std::swap(m_profile, copy.m_profile);
    std::swap(m_source, copy.m_source);
    std::swap(m_attachment, copy.m_attachment);
    std::swap(m_sum, copy.m_sum);
    return *this;
}

KV_ProfileRef::~KV_ProfileRef() { Reset(); }

void KV_ProfileRef::Reset() {
    m_kind = KV_PROFILE_REF_NONE;
    m_file = KV_FileSpec();
    m_sum.Reset();
    release(m_profile);
    release(m_source);
    release(m_attachment);
}

void KV_ProfileRef::SetFile(const KV_FileSpec &file) {
    KV_FileSpec copy(file);  // it may be this reference's own
    Reset();
    m_file = std::move(copy);
    m_kind = KV_PROFILE_REF_FILE;
}

void KV_ProfileRef::SetProfile(KV_IProfile *profile) {
    more(profile);
    Reset();
    m_profile = profile;
    m_kind = KV_PROFILE_REF_OBJECT;
}

void KV_ProfileRef::SetSource(KV_IProfileSource *source) {
    more(source);
    Reset();
    m_source = source;
    m_kind = KV_PROFILE_REF_SOURCE;
}

void KV_ProfileRef::SetAttachment(KV_IObject *attachment) {
    more(attachment);
    release(m_attachment);
    m_attachment = attachment;
}
