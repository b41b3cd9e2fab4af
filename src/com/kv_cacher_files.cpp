// The cacher's side of link files: when they are read and written.

#include <utility>

#include "com/kv_cacher_table.h"
#include "com/link_files.h"
#include "kvbase/com/kv_cacher.h"
#include "platform/platform.h"

using namespace kv::detail;

KV_WString KV_Cacher::cachingPath() {
    KV_SynchCacher lock(&m_mutex);
    return m_tables->cachingPath;
}

void KV_Cacher::SetCachingPath(const KV_FileSpec &path) {
    KV_WString text = path.IsValid() ? path.GetFileNameW() : KV_WString();
    {
        KV_SynchCacher lock(&m_mutex);
        m_tables->cachingPath = text;
    }
    makeFolders(text);
}

KV_WString KV_Cacher::GetLinkName(KV_CheckSum *sum) { return linkFileName(cachingPath(), *sum); }

KV_WString KV_Cacher::GetLinkFilePath(KV_CheckSum *sum) {
    if (m_method != KV_CACHING_FILES) return {};
    KV_WString name = GetLinkName(sum);
    return kv::platform::pathExists(name) ? name : KV_WString();
}

void KV_Cacher::RemoveFileCache() { deleteLinkFiles(cachingPath()); }

void KV_Cacher::RemoveOldLinks() {
    if (m_manager != nullptr) deleteOldLinkFiles(cachingPath(), *m_manager);
}

void KV_Cacher::fetchFromFile(KV_CheckSum *sum, int threadId, KV_ILinkCore *&link, bool keep) {
    if (fetchCached(sum, link) || CreateThreadID(sum) != threadId) return;
    const KV_WString file = GetLinkFilePath(sum);
    if (file.empty()) return;
    {
        const Held<KV_IColorMatcher> matcher = makeColorMatcher(*m_manager);
        if (!matcher) return;
        KV_LinkRequest request;
        request.contexts[0].profile.SetFile(file);
        matcher->Setup(&request, 1, 0, 0);
        matcher->Prepare();
        matcher->SetChecksum(sum);
        SetLink(sum, matcher.get(), keep, KV_CACHING_MEMORY);
    }
    KV_ILinkCore *copy = nullptr;
    if (!fetchCached(sum, copy)) return;
    Held<KV_ILinkCore>(std::exchange(link, copy));  // releases the caller's
}

void KV_Cacher::storeFile(KV_CheckSum *sum, KV_IColorMatcher &matcher) {
    KV_IProfile *given = nullptr;
    if (!matcher.GetProfile(given)) return;
    const Held<KV_IProfile> profile(given);
    if (!profile) return;
    const KV_WString prefix = cachingPath();
    const KV_WString temporary = temporaryLinkFileName(prefix, *sum);
    KV_FileSpec spec(temporary);
    bool isSaved = true;
    try {
        profile->Save(spec, 1);
    } catch (...) {
        isSaved = false;  // a disk that is full; the link is in memory all the same
    }
    const KV_WString name = linkFileName(prefix, *sum);
    KV_SynchCacher lock(&m_mutex);  // of two threads that wrote the same link, the first one's file stays
    const bool isWanted = GetLinkFilePath(sum).empty();
    if (isSaved && isWanted && kv::platform::renameFile(temporary, name)) return;
    kv::platform::deleteFile(temporary);
    // By the method 1 there was none; one that is there now is another process's, and whole.
    if (!isSaved && m_method != KV_CACHING_FILES) kv::platform::deleteFile(name);
}
