// The rules of the cache in memory, on one thread; cacher_threads_test.cpp has many.

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <thread>
#include <vector>

#include "profile_host.h"

namespace {

void *const kNone = reinterpret_cast<void *>(std::intptr_t{-1});  // NOLINT(performance-no-int-to-ptr)

// One step of a registration with the handles that it works on.
struct Registration {
    std::int32_t step(KV_Cacher &cacher, KV_CheckSum sum, int thread) {
        return cacher.Register(&sum, thread, 0, createEvent, deleteEvent);
    }
    bool isDone() const { return createEvent == kNone && deleteEvent == kNone; }

    void *createEvent = kNone;
    void *deleteEvent = kNone;
};

class CacherTest : public testing::Test {
protected:
    CacherTest() { cacher.SetCachingMethod(KV_CACHING_MEMORY); }
    // Every object that was made has been released once the cache is empty.
    void TearDown() override {
        cacher.RemoveMemCache();
        EXPECT_EQ(host.manager().TotalUseCount(), 0u);
        EXPECT_EQ(cacher.GetCounts().openHandles, 0);
    }

    void store(std::uint32_t number, std::size_t size, bool keep = false, std::int32_t pinned = 0) {
        KV_CheckSum sum = sumOf(number);
        cacher.SetLinkCore(&sum, host.link(static_cast<float>(number), size).get(), keep, pinned,
                           KV_CACHING_AS_SET);
    }
    bool has(std::uint32_t number) {
        KV_CheckSum sum = sumOf(number);
        return cacher.InMemCache(&sum);
    }
    void unregister(std::uint32_t number, int thread, bool unpin = false) {
        KV_CheckSum sum = sumOf(number);
        cacher.UnRegister(&sum, thread, unpin);
    }
    int creator(std::uint32_t number) {
        KV_CheckSum sum = sumOf(number);
        return cacher.CreateThreadID(&sum);
    }
    // What GetLinkCore makes of a link, which is released if it is replaced.
    Ref<ITestLink> fetched(std::uint32_t number, int thread, Ref<ITestLink> link = nullptr) {
        KV_CheckSum sum = sumOf(number);
        KV_ILinkCore *object = link.release();
        cacher.GetLinkCore(&sum, thread, object, false, 0);
        return testLink(object);
    }

    ProfileHost host;
    KV_Cacher &cacher = host.cacher();
};

TEST_F(CacherTest, FirstCallerCreatesAndTheOthersWait) {
    Registration first, second, third;
    EXPECT_EQ(first.step(cacher, sumOf(1), 7), 0);
    EXPECT_TRUE(first.isDone());
    EXPECT_EQ(creator(1), 7);
    EXPECT_FALSE(has(1));
    second.step(cacher, sumOf(1), 8);
    third.step(cacher, sumOf(1), 9);
    second.step(cacher, sumOf(1), 8);  // looks again and is still one waiter
    EXPECT_NE(second.createEvent, kNone);
    EXPECT_EQ(second.deleteEvent, kNone);
    KV_CacherCounts counts = cacher.GetCounts();
    EXPECT_EQ(std::vector({counts.creating, counts.users, counts.waiters, counts.openHandles}),
              std::vector({1, 1, 2, 1}));
    EXPECT_FALSE(cacher.CacherWait(second.createEvent, 0));

    unregister(1, 7);
    EXPECT_EQ(creator(1), -1);
    // One signal a waiter: the first one leaves another behind.
    EXPECT_TRUE(cacher.CacherWait(second.createEvent, 0));
    EXPECT_FALSE(cacher.CacherWait(third.createEvent, 0));
    EXPECT_EQ(second.step(cacher, sumOf(1), 8), 0);
    EXPECT_TRUE(second.isDone());
    void *event = third.createEvent;
    EXPECT_TRUE(cacher.CacherWait(event, 0));
    third.step(cacher, sumOf(1), 9);
    EXPECT_TRUE(third.isDone());
    EXPECT_TRUE(cacher.CacherWait(event, 60000)) << "a closed event isn't waited for";
    counts = cacher.GetCounts();
    EXPECT_EQ(std::vector({counts.creating, counts.users, counts.waiters, counts.openHandles}),
              std::vector({0, 2, 0, 0}));
    unregister(1, 8);
    unregister(1, 9);
    unregister(1, 9);
    EXPECT_EQ(cacher.GetCounts().users, 0);
}

TEST_F(CacherTest, EventsLetOneThroughAndAllOnceClosed) {
    void *event = nullptr, *other = nullptr;
    cacher.CacherCreateEvent(event);
    cacher.CacherCreateEvent(other);
    EXPECT_NE(event, other);
    EXPECT_EQ(cacher.GetCounts().openHandles, 2);
    std::vector<std::thread> waiters(3);
    for (std::thread &waiter : waiters)
        waiter = std::thread([&] { EXPECT_TRUE(cacher.CacherWait(event, 60000)); });
    cacher.CacherCloseHandle(event);
    cacher.CacherCloseHandle(event);
    cacher.CacherCloseHandle(kNone);
    EXPECT_EQ(cacher.GetCounts().openHandles, 1);
    cacher.CacherCloseHandle(other);
    for (std::thread &waiter : waiters)
        waiter.join();
}

TEST_F(CacherTest, GetLinkCoreCopiesToAndFromTheTable) {
    EXPECT_EQ(fetched(1, 7), nullptr);
    EXPECT_EQ(creator(1), 7);
    store(1, 3);
    unregister(1, 7);
    const Ref<ITestLink> copy = fetched(1, 8);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->Values(), std::vector<float>(3, 1.0f));
    EXPECT_EQ(copy->GetId(), 1u);

    copy->Values()[0] = 5;  // equal ids: not copied again
    copy->AddRef();
    EXPECT_EQ(fetched(1, 8, Ref<ITestLink>(copy.get()))->Values()[0], 5);
    copy->SetId(9);
    copy->AddRef();
    EXPECT_EQ(fetched(1, 8, Ref<ITestLink>(copy.get()))->Values()[0], 1);
    EXPECT_EQ(copy->GetId(), 1u);

    // A creator that has the link already: it is copied, keeps its number, and isn't counted.
    Ref<ITestLink> own = host.link(2);
    own->SetId(77);
    const std::uint32_t size = cacher.GetCurrentCacheSize();
    own = fetched(2, 7, std::move(own));
    own->Values()[0] = 5;
    EXPECT_TRUE(has(2));
    EXPECT_EQ(cacher.GetCurrentCacheSize(), size);
    unregister(2, 7);
    EXPECT_EQ(fetched(2, 8)->Values()[0], 2);
    EXPECT_EQ(fetched(2, 8)->GetId(), 77u);
}

TEST_F(CacherTest, FirstLinkStoredStaysAndIsNumbered) {
    KV_CheckSum sum = sumOf(1);
    const Ref<ITestLink> first = host.link(1), second = host.link(2);
    cacher.SetLinkCore(&sum, first.get(), false, 0, KV_CACHING_MEMORY);
    cacher.SetLinkCore(&sum, second.get(), false, 0, KV_CACHING_MEMORY);
    cacher.SetLink(&sum, host.builder(sum).get(), false, KV_CACHING_MEMORY);
    EXPECT_EQ(first->GetId(), 1u);
    EXPECT_EQ(second->GetId(), 0u);
    EXPECT_EQ(fetched(1, 7)->Values(), first->Values());
    cacher.SetLinkCore(&(sum = sumOf(2)), second.get(), false, 0, KV_CACHING_OFF);
    cacher.SetLink(&sum, nullptr, false, KV_CACHING_MEMORY);
    cacher.SetLinkCore(&sum, nullptr, false, 0, KV_CACHING_MEMORY);
    EXPECT_FALSE(has(2));
    cacher.SetLink(&sum, host.builder(sum).get(), false, KV_CACHING_MEMORY);
    EXPECT_EQ(fetched(2, 7)->Values()[17], testLinkValue(sum, 17));
    EXPECT_EQ(cacher.GetCurrentCacheSize(), 1 + kTestLinkValues);
}

TEST_F(CacherTest, OffStoresNothingButStillOrdersThreads) {
    cacher.SetCachingMethod(KV_CACHING_OFF);
    EXPECT_FALSE(cacher.CachingIsOn());
    EXPECT_EQ(fetched(1, 7), nullptr);
    store(1, 1);
    EXPECT_FALSE(has(1));
    Registration second;
    second.step(cacher, sumOf(1), 8);
    EXPECT_FALSE(second.isDone());
    unregister(1, 7);
    second.step(cacher, sumOf(1), 8);
    EXPECT_TRUE(second.isDone());
    EXPECT_EQ(cacher.GetCachingMethod(), KV_CACHING_OFF);
}

struct StoredLink {
    std::size_t size;
    bool keep;
    std::int32_t pinned;
    bool isRegistered;
};

// Links 1, 2, ... are stored one after the other, with a limit of 10.
struct EvictionCase {
    const char *name;
    std::vector<StoredLink> stored;
    std::vector<std::uint32_t> left;
    std::uint32_t size;
};
const EvictionCase kEvictions[] = {
    {"AsMuchAsTheLimit", {{5, false, 0, false}, {5, false, 0, false}}, {1, 2}, 10},
    {"OneMore", {{5, false, 0, false}, {6, false, 0, false}}, {2}, 6},
    {"LastComesFirstAfterARemoval",
     {{5, false, 0, false}, {1, false, 0, false}, {4, false, 0, false}, {2, false, 0, false}},
     {2, 3, 4},
     7},
    {"Alone", {{20, false, 0, false}}, {1}, 20},
    {"ItselfWhenItMadeItsEntry", {{1, true, 0, false}, {20, false, 0, false}}, {1}, 0},
    {"NotItselfWhenRegistered", {{1, true, 0, false}, {20, false, 0, true}}, {1, 2}, 20},
    {"KeptAndPinnedNeitherGoNorCount",
     {{5, true, 0, false}, {5, false, 1, false}, {8, false, 0, false}, {9, false, 0, true}},
     {1, 2, 4},
     9},
    {"OneInUseIsCountedOutButStays", {{5, false, 0, true}, {9, false, 0, true}}, {1, 2}, 9},
    {"OnlyUntilThereIsRoom", {{4, false, 0, false}, {4, false, 0, false}, {5, false, 0, true}}, {2, 3}, 9},
};

class EvictionTest : public CacherTest, public testing::WithParamInterface<EvictionCase> {};

TEST_P(EvictionTest, GoesFromTheFirstSlotOnward) {
    cacher.SetMaxCacheSize(10);
    std::uint32_t number = 0;
    for (const StoredLink &link : GetParam().stored) {
        Registration registration;
        if (link.isRegistered) registration.step(cacher, sumOf(number + 1), 7);
        store(++number, link.size, link.keep, link.pinned);
    }
    std::vector<std::uint32_t> left;
    for (number = 1; number <= GetParam().stored.size(); ++number)
        if (has(number)) left.push_back(number);
    EXPECT_EQ(left, GetParam().left);
    EXPECT_EQ(cacher.GetCurrentCacheSize(), GetParam().size);
}

INSTANTIATE_TEST_SUITE_P(Rows, EvictionTest, testing::ValuesIn(kEvictions),
                         [](const auto &row) { return std::string(row.param.name); });

TEST_F(CacherTest, EvictedInUseGoesWithItsLastUser) {
    cacher.SetMaxCacheSize(0);
    fetched(1, 7);
    store(1, 1);
    unregister(1, 7);
    fetched(1, 8);
    fetched(1, 9);
    fetched(2, 9);
    store(2, 1);
    EXPECT_TRUE(has(1));
    EXPECT_EQ(cacher.GetCounts().pendingDeletion, 1);
    unregister(1, 8);
    EXPECT_TRUE(has(1));
    Registration late;
    late.step(cacher, sumOf(1), 10);
    EXPECT_EQ(late.createEvent, kNone);
    void *event = late.deleteEvent;
    EXPECT_FALSE(cacher.CacherWait(event, 0));
    late.step(cacher, sumOf(1), 10);
    EXPECT_EQ(late.deleteEvent, event);
    unregister(1, 9);
    EXPECT_FALSE(has(1));
    EXPECT_TRUE(cacher.CacherWait(event, 60000));
    late.step(cacher, sumOf(1), 10);
    EXPECT_TRUE(late.isDone());
    EXPECT_EQ(creator(1), 10);
}

TEST_F(CacherTest, UnpinnedLinksCanGo) {
    cacher.SetMaxCacheSize(4);
    store(1, 3, false, 1);
    store(2, 5);
    EXPECT_FALSE(has(2));
    KV_CheckSum one = sumOf(1);
    cacher.RegisterLink(&one, 7, 1);
    unregister(1, 7, true);
    store(3, 4);
    EXPECT_TRUE(has(1)) << "the limit is not exceeded";
    store(4, 1);
    EXPECT_FALSE(has(1));
    EXPECT_TRUE(has(3) && has(4));
    EXPECT_EQ(cacher.GetCurrentCacheSize(), 2u) << "its 3 go, though they never came";
}

// The plain form of the table: numbers in their slots.
TEST_F(CacherTest, FindsWhatAPlainListFinds) {
    constexpr std::size_t kLimit = 700;
    constexpr std::uint32_t kNumbers = 3000;
    cacher.SetMaxCacheSize(kLimit);
    std::vector<std::uint32_t> slots;
    std::mt19937 random(5);
    for (int i = 0; i < 2 * static_cast<int>(kNumbers); ++i) {
        const auto number = static_cast<std::uint32_t>(random() % kNumbers);
        store(number, 1);
        if (std::find(slots.begin(), slots.end(), number) == slots.end()) slots.push_back(number);
        if (slots.size() > kLimit) {
            slots.front() = slots.back();
            slots.pop_back();
        }
    }
    for (std::uint32_t number = 0; number < kNumbers; ++number)
        ASSERT_EQ(has(number), std::find(slots.begin(), slots.end(), number) != slots.end()) << number;
    EXPECT_EQ(cacher.GetCounts().entries, static_cast<std::int32_t>(kLimit));
}

TEST_F(CacherTest, FullTableStaysFull) {
    for (std::uint32_t number = 0; number < 1024; ++number)
        store(number, 1, true);
    Registration registration;
    EXPECT_EQ(registration.step(cacher, sumOf(5000), 7), -1);
    EXPECT_TRUE(registration.isDone());
    const Ref<ITestLink> link = fetched(5000, 7, host.link(3));
    EXPECT_EQ(link->Values()[0], 3);
    store(5000, 1);
    unregister(5000, 7);
    EXPECT_FALSE(has(5000));
    EXPECT_EQ(cacher.GetCurrentCacheSize(), 0u);
    EXPECT_TRUE(has(1023));

    cacher.RemoveMemCache();
    const KV_CacherCounts counts = cacher.GetCounts();
    EXPECT_EQ(std::vector({counts.entries, counts.links, counts.users}), std::vector({1024, 0, 0}));
    EXPECT_EQ(registration.step(cacher, sumOf(1), 7), -1);
    KV_CheckSum empty;
    EXPECT_EQ(cacher.RegisterLink(&empty, 7, 0), 0) << "a blank entry has the empty checksum";
}

TEST_F(CacherTest, RemovingAllLetsWaitersGoOn) {
    Registration first, second;
    first.step(cacher, sumOf(1), 7);
    second.step(cacher, sumOf(1), 8);
    cacher.RemoveMemCache();
    unregister(1, 7);
    EXPECT_TRUE(cacher.CacherWait(second.createEvent, 60000));
    EXPECT_EQ(second.step(cacher, sumOf(1), 8), 1);
    EXPECT_TRUE(second.isDone());
    EXPECT_EQ(creator(1), 8);
}

TEST_F(CacherTest, ProfilesGoOldestFirst) {
    struct Row {
        const char *name;
        std::vector<std::size_t> sizes;  // of the profiles 1, 2, ...
        std::vector<std::uint32_t> left;
    };
    const Row rows[] = {
        {"as much as the limit", {4, 6}, {1, 2}}, {"the oldest", {4, 4, 3}, {2, 3}},
        {"two of them", {4, 4, 9}, {3}},          {"larger than the limit, alone", {11}, {}},
        {"larger than the limit", {4, 11}, {}},
    };
    cacher.SetMaxCacheSize(10);
    for (const Row &row : rows) {
        std::vector<std::uint32_t> left;
        std::uint32_t number = 0;
        for (std::size_t size : row.sizes) {
            const Ref<ITestProfile> profile = host.profile();
            profile->Data().values.resize(size);
            KV_CheckSum sum = sumOf(++number);
            cacher.SetProfile(&sum, profile.get());
        }
        for (number = 1; number <= row.sizes.size(); ++number) {
            KV_CheckSum sum = sumOf(number);
            const Ref<KV_IProfile> profile(cacher.GetProfile(&sum));
            if (!profile) continue;
            EXPECT_EQ(profile->GetSize(), row.sizes[number - 1]) << row.name;
            left.push_back(number);
        }
        EXPECT_EQ(left, row.left) << row.name;
        cacher.RemoveMemCache();
        EXPECT_EQ(cacher.GetCurrentCacheSize(), 0u);
    }
}

TEST_F(CacherTest, LinksAndProfilesShareTheLimit) {
    cacher.SetMaxCacheSize(10);
    store(1, 8);
    const Ref<ITestProfile> profile = host.profile();
    profile->Data().values.resize(5);
    KV_CheckSum sum = sumOf(1);
    cacher.SetProfile(&sum, profile.get());
    EXPECT_EQ(Ref<KV_IProfile>(cacher.GetProfile(&sum)), nullptr) << "it makes room for itself in vain";
    EXPECT_TRUE(has(1));
    profile->Data().values.resize(2);
    cacher.SetProfile(&sum, profile.get());
    cacher.SetProfile(&sum, host.profile().get());
    store(2, 3);
    EXPECT_FALSE(has(1));
    EXPECT_EQ(Ref<KV_IProfile>(cacher.GetProfile(&sum)).get(), profile.get()) << "the first one stays";
}

TEST_F(CacherTest, WithoutAModuleNothingIsMadeAndTheCallerStaysRegistered) {
    ProfileHost bare("no_such_module");
    KV_Cacher &other = bare.cacher();
    other.SetCachingMethod(KV_CACHING_MEMORY);
    const Ref<ITestLink> link = host.link(1);
    KV_CheckSum sum = sumOf(1);
    other.SetLinkCore(&sum, link.get(), false, 0, KV_CACHING_MEMORY);
    KV_ILinkCore *none = nullptr;
    EXPECT_ANY_THROW(other.GetLinkCore(&sum, 7, none, false, 0));
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(other.GetCounts().users, 1);
    other.RemoveMemCache();
}

}  // namespace
