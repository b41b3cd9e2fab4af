#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "kvbase/com/kv_cached_interfaces.h"

class KV_COMManager;

namespace kv::detail {

/// One reference to an object of a module, released at its end. Null for none.
template <class Object>
class Held {
public:
    Held() = default;
    /// Takes a reference over that the caller has.
    explicit Held(Object *object) : m_object(object) {}
    Held(Held &&other) noexcept : m_object(other.give()) {}
    /// A reference to a class goes where one to its base is wanted.
    template <class Derived>
    Held(Held<Derived> &&other) noexcept : m_object(other.give()) {}
    Held &operator=(Held &&other) noexcept {
        std::swap(m_object, other.m_object);
        return *this;
    }
    ~Held() {
        if (m_object != nullptr) m_object->Release();
    }

    /// A reference more to an object.
    static Held more(Object *object) {
        if (object != nullptr) object->AddRef();
        return Held(object);
    }

    Object *get() const { return m_object; }
    Object *operator->() const { return m_object; }
    Object &operator*() const { return *m_object; }
    explicit operator bool() const { return m_object != nullptr; }
    /// Hands the reference to the caller.
    Object *give() { return std::exchange(m_object, nullptr); }

private:
    Object *m_object = nullptr;
};

/// References that are to be released when a lock is no longer held: declared before it.
struct Released {
    std::vector<Held<KV_IObject>> objects;
};

/// New objects of the profile module. They throw what CreateObject throws; never call them under the cacher's
/// lock, which comes after the manager's. Null only when the manager gives null.
Held<KV_IProfile> makeProfile(KV_COMManager &manager);
Held<KV_ILinkCore> makeLinkCore(KV_COMManager &manager);
Held<KV_IColorMatcher> makeColorMatcher(KV_COMManager &manager);

/// Whom a copy of a link is for.
enum class CopyMode : int { towardsCaller = 0, intoCache = 1 };
/// Gives link content and id of source.
void copyLink(KV_ILinkCore &link, KV_ILinkCore &source, CopyMode mode);
/// A new link with content and id of source. Throws what CreateObject and the module throw.
Held<KV_ILinkCore> copyOf(KV_COMManager &manager, KV_ILinkCore &source, CopyMode mode);

}  // namespace kv::detail
