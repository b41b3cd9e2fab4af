#pragma once

// What the cache and the comparison of profiles call of the profile module, which is not part of this
// library: abstract classes that such a module implements, and the records that are handed to it. Its objects
// come from KV_COMManager::CreateObject:
//
//   path                        interface name    a pointer to
//   ProfileModule:Profile       "IProfile"        KV_IProfile
//   ProfileModule:LinkCore      "ILinkCore"       KV_ILinkCore
//   ProfileModule:ColorMatcher  "IColorMatcher"   KV_IColorMatcher
//
// What CreateObject gives as void * is cast to the class of the last column, so a module hands out exactly a
// pointer of that type, with one reference, which is the caller's to release.
//
// Objects may be made, used and released on different threads. Where nothing else is said, one object is used
// by one thread at a time.

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "kvbase/base/export.h"
#include "kvbase/base/types.h"
#include "kvbase/runtime/kv_checksum.h"
#include "kvbase/runtime/kv_file_spec.h"

struct KV_LinkRequest;

/// An object with a count of references, which deletes itself when the last one is released. Both operations
/// may be called by any number of threads at once, and raise nothing.
class KV_EXPORT KV_IObject {
public:
    /// One reference more.
    virtual void AddRef() = 0;
    /// One reference less. The pointer is not to be used any more by whoever held that reference.
    virtual void Release() = 0;

protected:
    KV_IObject() = default;
    KV_IObject(const KV_IObject &) = default;
    KV_IObject &operator=(const KV_IObject &) = default;
    virtual ~KV_IObject();
};

/// A text that a profile carries.
class KV_EXPORT KV_ITextTag : public KV_IObject {
public:
    /// Sets text. May raise.
    virtual void GetText(std::string &text) = 0;

protected:
    ~KV_ITextTag() override;
};

/// A colour profile.
class KV_EXPORT KV_IProfile : public KV_IObject {
public:
    /// Reads the profile from a file. The library opens with the mode 0 to look at a link file's text, and 9
    /// to compare. May raise.
    virtual void Open(KV_FileSpec &file, int mode) = 0;
    /// Writes the profile to a file, in place of one that has that name. The library saves with the mode 1.
    /// May raise.
    virtual void Save(KV_FileSpec &file, int mode) = 0;
    /// The size that counts toward the cache's limit, in a unit of the module's choice; the same at every
    /// call. Called while the cache is locked: it has to answer at once and may not call CreateObject.
    virtual std::uint32_t GetSize() = 0;
    /// A text of the profile, with a reference for the caller; null when there is none. The library asks for
    /// the index 0: a text with "Kalvor Version", four more characters, and then what KV_KalvorVersion gave
    /// when the profile was written. May raise.
    virtual KV_ITextTag *GetTextTag(int index) = 0;
    /// Whether both profiles are equal; other is not null and is only read. What that means is the module's
    /// to say. May raise.
    virtual bool Equal(KV_IProfile *other) = 0;

protected:
    ~KV_IProfile() override;
};

/// An object that gives a profile, such as one that makes it when it is needed.
class KV_EXPORT KV_IProfileSource : public KV_IObject {
public:
    /// The profile, with a reference for the caller; null when there is none. May raise.
    virtual KV_IProfile *GetProfile() = 0;

protected:
    ~KV_IProfileSource() override;
};

/// The core of a colour link: what a transform from one device to another needs.
class KV_EXPORT KV_ILinkCore : public KV_IObject {
public:
    /// Takes content and id of source, which is only read: several links may be copied from one source at
    /// once, on several threads. mode is 0 for a copy towards a caller, 1 for one into the cache; scratch
    /// points to an integer that is 0 and belongs to the callee for the time of the call. May raise, and
    /// may call CreateObject.
    virtual void CopyFrom(KV_ILinkCore *source, int mode, std::int32_t *scratch) = 0;
    /// The number that the cache gave, 0 in a new link; links of equal numbers have equal content.
    virtual std::uint32_t GetId() = 0;
    /// Stores the number. GetId and SetId are called while the cache is locked: they may not raise or call
    /// CreateObject. A link that is stored for two checksums is numbered twice, so SetId may meet a GetId or
    /// a copy from this link on another thread.
    virtual void SetId(std::uint32_t id) = 0;
    /// The size, with the rules of KV_IProfile::GetSize.
    virtual std::uint32_t GetSize() = 0;

protected:
    ~KV_ILinkCore() override;
};

/// Builds links.
class KV_EXPORT KV_IColorMatcher : public KV_IObject {
public:
    /// Takes the request, which the caller may drop after the call. The library passes 1, 0 and 0. May raise.
    virtual void Setup(KV_LinkRequest *request, int first, int second, int third) = 0;
    /// Called next; what is to be read may be read here. May raise.
    virtual void Prepare() = 0;
    /// Called last, with the checksum that identifies the link; it is to be copied, if it is needed. From
    /// then on GetLinkCore works. May raise.
    virtual void SetChecksum(KV_CheckSum *sum) = 0;
    /// The link, with a reference, which the cache keeps; null when there is none. May raise.
    virtual KV_ILinkCore *GetLinkCore() = 0;
    /// True and a profile in out that holds the link when it is saved, with a reference for the caller; false
    /// when there is none. May raise.
    virtual bool GetProfile(KV_IProfile *&out) = 0;

protected:
    ~KV_IColorMatcher() override;
};

/// What a KV_ProfileRef refers to.
enum KV_ProfileRefKind : std::int32_t {
    KV_PROFILE_REF_FILE = 0,    ///< a file
    KV_PROFILE_REF_OBJECT = 1,  ///< a profile object
    KV_PROFILE_REF_SOURCE = 2,  ///< an object that gives a profile
    KV_PROFILE_REF_NONE = 5,    ///< nothing: not set
};

/// A profile, given in one of several ways. It holds a reference to each of its objects, and so do its
/// copies. One thread at a time.
class KV_EXPORT KV_ProfileRef {
public:
    /// Refers to nothing.
    KV_ProfileRef() = default;
    KV_ProfileRef(const KV_ProfileRef &other);
    KV_ProfileRef &operator=(const KV_ProfileRef &other);
    /// Releases the objects.
    virtual ~KV_ProfileRef();

    /// Makes it refer to nothing: releases the objects, and empties file and checksum.
    void Reset();

    // Each of these makes it refer to nothing first, so attachment and checksum are set afterwards. A null
    // object is taken: the reference is then of that kind, without an object.
    /// Refers to a file.
    void SetFile(const KV_FileSpec &file);
    /// Refers to a profile object.
    void SetProfile(KV_IProfile *profile);
    /// Refers to an object that gives the profile.
    void SetSource(KV_IProfileSource *source);

    /// Keeps a further object with the reference, in place of a former one; null for none. This library
    /// doesn't look at it.
    void SetAttachment(KV_IObject *attachment);
    /// The checksum of the profile, for those who want to keep it here. This library doesn't look at it.
    void SetCheckSum(const KV_CheckSum &sum) { m_sum = sum; }

    KV_ProfileRefKind GetKind() const { return m_kind; }
    const KV_FileSpec &GetFileSpec() const { return m_file; }
    // The objects stay the reference's; null when there is none.
    KV_IProfile *GetProfile() const { return m_profile; }
    KV_IProfileSource *GetSource() const { return m_source; }
    KV_IObject *GetAttachment() const { return m_attachment; }
    const KV_CheckSum &GetCheckSum() const { return m_sum; }

private:
    KV_ProfileRefKind m_kind = KV_PROFILE_REF_NONE;
    KV_FileSpec m_file;
    KV_IProfile *m_profile = nullptr;
    KV_IProfileSource *m_source = nullptr;
    KV_IObject *m_attachment = nullptr;
    KV_CheckSum m_sum;
};

/// A profile with a name.
struct KV_NamedProfileRef {
    KV_WString name;
    KV_ProfileRef profile;
};

/// A profile and the settings of its use. All settings are for modules to read and to set: this library
/// only gives them the values below, in this order, and no meaning.
class KV_EXPORT KV_ProfileContext {
public:
    KV_ProfileContext() = default;
    KV_ProfileContext(const KV_ProfileContext &) = default;
    KV_ProfileContext &operator=(const KV_ProfileContext &) = default;
    virtual ~KV_ProfileContext();

    KV_ProfileRef profile;
    std::vector<KV_NamedProfileRef> namedProfiles;

    std::int32_t setting1 = 2;
    std::int32_t setting2 = 1;
    float setting3 = 100.0f;
    float setting4[3] = {10.0f, 25.0f, 50.0f};
    std::int32_t setting5 = 1;
    std::int32_t setting6 = 1;
    std::int32_t setting7 = 9;
    std::set<std::int32_t> setting8;
    float setting9[6] = {-1.0f, -1.0f, -1.0f, -1.0f, -1.0f, -1.0f};
};

/// What a colour matcher is asked for. To read a link file, the library sets the profile of the first context
/// to that file and leaves everything else at its default; the settings are as those of KV_ProfileContext.
struct KV_EXPORT KV_LinkRequest {
    std::int32_t setting1 = 180;
    std::int32_t setting2 = 40;
    float setting3 = 15.0f;
    std::int32_t setting4 = 15;
    float setting5[2] = {100.0f, 100.0f};
    std::int32_t setting6 = 1;
    unsigned char setting7[8][128] = {};
    KV_ProfileContext contexts[2];
    float setting8[9] = {90.0f, 100.0f, 50.0f, 50.0f, 100.0f, 80.0f, 100.0f, 100.0f, 400.0f};
    std::int32_t setting9 = 9;
    float setting10 = 20.0f;
    float setting11[3] = {15.0f, 100.0f, 100.0f};
    std::int32_t setting12 = 10;
    std::int32_t setting13 = 1;
    KV_WString setting14;
    alignas(8) unsigned char setting15[2][64] = {};
    alignas(8) unsigned char setting16[8][24] = {};
    std::int32_t setting17 = 0;
    float setting18[2] = {-1.0f, -1.0f};
    std::int32_t setting19 = 0;
};
