// The comparison of profiles, given in every way that there is.
#include <gtest/gtest.h>
#include <kvbase/com/kv_profile_compare.h>
#include <kvbase/runtime/kv_exception.h>

#include <optional>

#include "../modules/profile_module/profile_file.h"
#include "profile_host.h"

namespace {

// Gives a profile that it holds, or none.
class Source final : public KV_IProfileSource {
public:
    explicit Source(KV_IProfile *profile) : m_profile(profile) {}
    void AddRef() override { ++references; }
    void Release() override { --references; }
    KV_IProfile *GetProfile() override {
        if (m_profile != nullptr) m_profile->AddRef();
        return m_profile;
    }
    int references = 0;

private:
    KV_IProfile *m_profile;
};

class ProfileCompare : public testing::Test {
protected:
    Ref<ITestProfile> profile(float value) const {
        Ref<ITestProfile> made = host.profile();
        made->Data() = {"text", sumOf(1), {value}};
        return made;
    }
    KV_FileSpec file(const char *name, float value) const {
        std::ofstream(host.folder() / name, std::ios::binary) << bytesOf({"text", sumOf(1), {value}});
        return specOf(host.folder().native(name));
    }

    ProfileHost host;
};

TEST_F(ProfileCompare, TakesEveryKindAndReleasesAll) {
    {
        const Ref<ITestProfile> one = profile(1), two = profile(2);
        Source source(one.get()), empty(nullptr);
        struct Row {
            const char *name;
            KV_ProfileRef reference;
            int value;  // 0: gives no profile
        };
        std::vector<Row> rows(8);
        rows[0] = {"file 1", {}, 1};
        rows[0].reference.SetFile(file("1.icc", 1));
        rows[1] = {"file 2", {}, 2};
        rows[1].reference.SetFile(file("2.icc", 2));
        rows[2] = {"object 1", {}, 1};
        rows[2].reference.SetProfile(one.get());
        rows[3] = {"object 2", {}, 2};
        rows[3].reference.SetProfile(two.get());
        rows[4] = {"source 1", {}, 1};
        rows[4].reference.SetSource(&source);
        rows[5] = {"source without a profile", {}, 0};
        rows[5].reference.SetSource(&empty);
        rows[6] = {"no object", {}, 0};
        rows[6].reference.SetProfile(nullptr);
        rows[7] = {"not set", {}, 0};
        for (Row &first : rows)
            for (Row &second : rows)
                EXPECT_EQ(host.manager().ProfilesEqual(first.reference, second.reference),
                          first.value != 0 && first.value == second.value)
                    << first.name << ", " << second.name;
        rows.clear();
        EXPECT_EQ(source.references, 0);
        EXPECT_EQ(empty.references, 0);
        EXPECT_EQ(host.manager().TotalUseCount(), 2U);
    }
    EXPECT_EQ(host.manager().TotalUseCount(), 0U);
}

TEST_F(ProfileCompare, ComparesFilesAndPassesFailuresOn) {
    KV_FileSpec one = file("1.icc", 1), same = file("same.icc", 1), two = file("2.icc", 2);
    KV_FileSpec none = specOf(host.folder().native("none.icc"));
    EXPECT_TRUE(host.manager().ProfilesEqual(one, one));
    EXPECT_TRUE(host.manager().ProfilesEqual(one, same));
    EXPECT_FALSE(host.manager().ProfilesEqual(one, two));
    EXPECT_THROW(host.manager().ProfilesEqual(one, none), KV_FileException);
    EXPECT_EQ(host.manager().TotalUseCount(), 0U) << "what was opened before is released";
    ProfileHost bare("no_such_module");
    EXPECT_THROW(bare.manager().ProfilesEqual(one, one), KV_FileException);
}

}  // namespace
