// A profile module as small as it can be while it does what the library expects of one: it builds links,
// which takes time, and keeps them in profile files. Every object counts as one of the component's for as
// long as it lives, so that one which is never released shows in the manager's counts.

#include <kvbase/com/commngr.h>
#include <kvbase/com/kv_cacher.h>
#include <kvbase/runtime/kv_exception.h>
#include <kvbase/runtime/kv_platform_facts.h>
#include <kvbase/univval/kv_dict_path.h>

#include <atomic>
#include <limits>
#include <string>
#include <utility>

#include "profile_file.h"

namespace {

struct Module {
    KV_COMManager *manager;
    KV_DictPath id;
};

// The count of references of an object of the module, which begins with one.
template <class Interface>
class Object : public Interface {
public:
    explicit Object(Module &module) : m_module(module) { module.manager->IncreaseUseCount(module.id); }
    Object(const Object &) = delete;
    Object &operator=(const Object &) = delete;
    void AddRef() final { ++m_references; }
    void Release() final {
        if (--m_references == 0) delete this;
    }

protected:
    ~Object() override { m_module.manager->DecreaseUseCount(m_module.id); }
    Module &m_module;

private:
    std::atomic<int> m_references{1};
};

class TextTag final : public Object<KV_ITextTag> {
public:
    TextTag(Module &module, std::string text) : Object(module), m_text(std::move(text)) {}
    void GetText(std::string &text) override { text = m_text; }

private:
    std::string m_text;
};

class Profile final : public Object<ITestProfile> {
public:
    using Object::Object;
    void Open(KV_FileSpec &file, int mode) override {
        m_mode = mode;
        m_data = dataOf(readFile(file));
    }
    void Save(KV_FileSpec &file, int mode) override {
        if (mode == 1) writeFile(file, bytesOf(m_data), m_failAt);
    }
    std::uint32_t GetSize() override { return static_cast<std::uint32_t>(m_data.values.size()); }
    KV_ITextTag *GetTextTag(int index) override {
        return index != 0 || m_mode != 0 || m_data.text.empty() ? nullptr
                                                                : new TextTag(m_module, m_data.text);
    }
    bool Equal(KV_IProfile *other) override {
        const auto &second = *static_cast<Profile *>(other);
        constexpr int kToCompare = 9;
        if ((m_mode != kToCompare && m_mode != kNotOpened) ||
            (second.m_mode != kToCompare && second.m_mode != kNotOpened))
            throw KV_Exception("opened in another mode", KV_ERR_BAD_INPUT, true);
        return bytesOf(m_data) == bytesOf(second.m_data);
    }
    TestProfileData &Data() override { return m_data; }
    void FailAt(std::size_t bytes) override { m_failAt = bytes; }

private:
    static constexpr int kNotOpened = -1;
    TestProfileData m_data;
    int m_mode = kNotOpened;
    std::size_t m_failAt = std::numeric_limits<std::size_t>::max();
};

class Link final : public Object<ITestLink> {
public:
    using Object::Object;
    void CopyFrom(KV_ILinkCore *source, int mode, std::int32_t *scratch) override {
        if (mode != 0 && mode != 1) throw KV_Exception("another mode", KV_ERR_BAD_INPUT, true);
        if (++*scratch != 1) throw KV_Exception("scratch is not 0", KV_ERR_BAD_INPUT, true);
        m_values = static_cast<Link *>(source)->m_values;
        m_id = source->GetId();
    }
    std::uint32_t GetId() override { return m_id; }
    void SetId(std::uint32_t id) override { m_id = id; }
    std::uint32_t GetSize() override { return static_cast<std::uint32_t>(m_values.size()); }
    std::vector<float> &Values() override { return m_values; }

private:
    std::vector<float> m_values;
    std::atomic<std::uint32_t> m_id{0};
};

// Steps of a walk that ends where it began: time that no compiler takes away.
float slowly(float value, std::int32_t effort) {
    volatile float place = value;
    for (std::int32_t i = 0; i < effort; ++i)
        place = -place;
    for (std::int32_t i = 0; i < effort; ++i)
        place = -place;
    return place;
}

class Matcher final : public Object<ITestMatcher> {
public:
    explicit Matcher(Module &module) : Object(module), m_profile(new Profile(module)) {}
    void Setup(KV_LinkRequest *request, int first, int second, int third) override {
        if (first != 1 || second != 0 || third != 0)
            throw KV_Exception("another set-up", KV_ERR_BAD_INPUT, true);
        m_reference = request->contexts[0].profile;
        m_effort = request->setting2;
    }
    void Prepare() override {
        KV_FileSpec file = m_reference.GetFileSpec();
        if (isFromFile()) m_profile->Open(file, 0);
    }
    void SetChecksum(KV_CheckSum *sum) override {
        if (isFromFile() && m_profile->Data().sum != *sum)
            throw KV_ProfileException("another link", KV_ERR_PROFILE_TYPE, KV_HERE);
        if (!isFromFile()) m_profile->Data() = built(*sum);
    }
    KV_ILinkCore *GetLinkCore() override {
        Link *link = new Link(m_module);
        link->Values() = m_profile->Data().values;
        return link;
    }
    bool GetProfile(KV_IProfile *&out) override {
        m_profile->AddRef();
        out = m_profile;
        return true;
    }
    ITestProfile &SavedProfile() override { return *m_profile; }

private:
    ~Matcher() override { m_profile->Release(); }
    bool isFromFile() const { return m_reference.GetKind() == KV_PROFILE_REF_FILE; }
    TestProfileData built(const KV_CheckSum &sum) const {
        TestProfileData data{std::string("Test link, Kalvor Version  : ") + KV_KalvorVersion(), sum, {}};
        for (std::size_t i = 0; i < kTestLinkValues; ++i)
            data.values.push_back(slowly(testLinkValue(sum, i), m_effort));
        return data;
    }

    Profile *m_profile;
    KV_ProfileRef m_reference;
    std::int32_t m_effort = 0;
};

}  // namespace

// Paths go by value in the interface. NOLINTBEGIN(performance-unnecessary-value-param)
extern "C" {

KV_MODULE_EXPORT void *KV_Init(KV_COMManager *manager, KV_DictPath id) { return new Module{manager, id}; }

KV_MODULE_EXPORT void *KV_CreateObject(void *context, KV_DictPath subId, const char *interfaceName) {
    auto &module = *static_cast<Module *>(context);
    const std::string name = interfaceName;
    KV_CheckSum any;
    module.manager->Cacher()->InMemCache(&any);  // modules may use the cache while the manager is locked
    if (subId == KV_DictPath("Profile") && name == "IProfile")
        return static_cast<KV_IProfile *>(new Profile(module));
    if (subId == KV_DictPath("LinkCore") && name == "ILinkCore")
        return static_cast<KV_ILinkCore *>(new Link(module));
    if (subId == KV_DictPath("ColorMatcher") && name == "IColorMatcher")
        return static_cast<KV_IColorMatcher *>(new Matcher(module));
    return nullptr;
}

KV_MODULE_EXPORT void KV_Exit(void *context) { delete static_cast<Module *>(context); }
}
// NOLINTEND(performance-unnecessary-value-param)
