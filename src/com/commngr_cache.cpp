// What the manager hands on to the cache and to the comparison of profiles.

#include "kvbase/com/commngr.h"
#include "kvbase/com/kv_cacher.h"
#include "kvbase/com/kv_profile_compare.h"

KV_CachingMethod KV_COMManager::GetCachingMethod() const { return m_cacher->GetCachingMethod(); }
void KV_COMManager::SetCachingMethod(const KV_CachingMethod &method) { m_cacher->SetCachingMethod(method); }
void KV_COMManager::SetMaxCacheSize(std::uint32_t size) { m_cacher->SetMaxCacheSize(size); }
bool KV_COMManager::GetMultiThreading() const { return m_cacher->GetMultiThreading(); }
void KV_COMManager::SetMultiThreading(bool on) { m_cacher->SetMultiThreading(on); }
void KV_COMManager::RemoveFileCache() { m_cacher->RemoveFileCache(); }
void KV_COMManager::RemoveMemCache() { m_cacher->RemoveMemCache(); }
void KV_COMManager::RemoveOldLinks() { m_cacher->RemoveOldLinks(); }

void KV_COMManager::SetCachingPath(const KV_FileSpec &path) {
    m_cachingPath = std::make_unique<KV_FileSpec>(path);
    m_cacher->SetCachingPath(*m_cachingPath);
}

bool KV_COMManager::ProfilesEqual(KV_FileSpec &first, KV_FileSpec &second) {
    return m_profileCompare->Equal(first, second);
}
bool KV_COMManager::ProfilesEqual(KV_ProfileRef &first, KV_ProfileRef &second) {
    return m_profileCompare->Equal(first, second);
}
