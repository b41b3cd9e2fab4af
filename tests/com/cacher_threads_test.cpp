// Many threads over one cache: whatever they do, the tables are whole after each round, no link is anybody's
// but its checksum's, and every object is released.

#include <gtest/gtest.h>
#include <kvbase/runtime/kv_exception.h>

#include <array>
#include <atomic>
#include <chrono>
#include <iostream>
#include <random>
#include <thread>
#include <vector>

#include "countdown.h"
#include "profile_host.h"

namespace {

constexpr int kThreads = 16;
constexpr int kRounds = 40;
constexpr int kSteps = 30;
constexpr std::uint32_t kSums = 40;
constexpr std::uint32_t kLimit = 12 * kTestLinkValues;

// What has happened in a round, or in all of them.
struct Record {
    std::atomic<int> waits{0}, builds{0}, hits{0}, giveUps{0}, evictionsInUse{0}, slowWakings{0};
    std::atomic<int> wrongLinks{0}, secondCreators{0};

    void add(const Record &other) {
        waits += other.waits;
        builds += other.builds;
        hits += other.hits;
        giveUps += other.giveUps;
        evictionsInUse += other.evictionsInUse;
        slowWakings += other.slowWakings;
    }
};

std::ostream &operator<<(std::ostream &out, const Record &record) {
    return out << record.waits << " waits, " << record.builds << " links built, " << record.hits << " found, "
               << record.giveUps << " given up, " << record.evictionsInUse << " evicted in use, "
               << record.slowWakings << " slow wakings";
}

class Round {
public:
    Round(ProfileHost &host, Record &record, unsigned number)
        : m_host(host), m_cacher(host.cacher()), m_record(record), m_number(number) {}

    void run() {
        std::vector<std::thread> threads;
        threads.reserve(kThreads);
        for (int id = 0; id < kThreads; ++id)
            threads.emplace_back([this, id] { all(id); });
        for (std::thread &thread : threads)
            thread.join();
    }

private:
    void all(int id) {
        waitForOne(id);
        meet(m_waited);
        traffic(id);
        meet(m_moved);
        m_cacher.SetMaxCacheSize(100 * kLimit);  // or one of two users could wait for the other to leave
        meet(m_roomy);
        evictWhileUsed(id);
    }

    static void meet(Countdown &place) {
        place.countDown();
        place.wait();
    }

    // All ask for a link that the first thread creates, or gives up in every other round, once they all wait.
    void waitForOne(int id) {
        using std::chrono::steady_clock;
        KV_CheckSum sum = sumOf(1000 + m_number);
        KV_ILinkCore *link = nullptr;
        if (id != 0) m_created.wait();
        m_cacher.GetLinkCore(&sum, id, link, false, 0);
        if (id != 0) {
            testLink(link);
            m_cacher.UnRegister(&sum, id, false);
            return;
        }
        m_created.countDown();
        while (m_cacher.GetCounts().waiters < kThreads - 1)
            std::this_thread::yield();
        m_record.waits += kThreads - 1;
        if (m_number % 2 == 0) build(sum, true);
        const auto begin = steady_clock::now();
        m_cacher.UnRegister(&sum, id, false);
        while (m_cacher.GetCounts().waiters > 0)
            std::this_thread::yield();
        if (steady_clock::now() - begin > std::chrono::milliseconds(700)) ++m_record.slowWakings;
    }

    // Each uses links at random; who finds none builds it, or gives up.
    void traffic(int id) {
        std::minstd_rand random(static_cast<unsigned>(id) * 1000 + m_number + 1);
        for (int step = 0; step < kSteps; ++step) {
            const std::uint32_t number = static_cast<std::uint32_t>(random()) % kSums;
            KV_CheckSum sum = sumOf(number);
            KV_ILinkCore *link = nullptr;
            m_cacher.GetLinkCore(&sum, id, link, false, 0);
            Ref<ITestLink> held = testLink(link);
            const bool isCreator = m_cacher.CreateThreadID(&sum) == id;
            if (isCreator && ++m_creators[number] != 1) ++m_record.secondCreators;
            if (held) {
                ++m_record.hits;
            } else if (random() % 4 == 0) {
                ++m_record.giveUps;
            } else {
                build(sum, random() % 2 == 0);
            }
            check(held.get(), sum);
            if (random() % 4 == 0) build(sumOf(static_cast<std::uint32_t>(random()) % kSums), false);
            if (isCreator) --m_creators[number];
            m_cacher.UnRegister(&sum, id, random() % 2 == 0);
            if (held) askAgain(sum, id, std::move(held));
        }
    }

    // With the link in hand: it may have gone from the cache, and then goes there again.
    void askAgain(KV_CheckSum sum, int id, Ref<ITestLink> held) {
        KV_ILinkCore *link = held.release();
        m_cacher.GetLinkCore(&sum, id, link, false, 0);
        check(static_cast<ITestLink *>(link), sum);
        m_cacher.UnRegister(&sum, id, false);
        link->Release();
    }

    // Two threads use each of eight links, and what is stored then has no room beside them.
    void evictWhileUsed(int id) {
        KV_CheckSum sum = sumOf(100 + static_cast<std::uint32_t>(id) / 2);
        KV_ILinkCore *link = nullptr;
        m_cacher.GetLinkCore(&sum, id, link, false, 0);
        const Ref<ITestLink> held = testLink(link);
        while (m_cacher.CreateThreadID(&sum) == id) {  // the second user would wait for the whole phase
            build(sum, true);
            m_cacher.UnRegister(&sum, id, false);
            m_cacher.RegisterLink(&sum, id, 0);
        }
        meet(m_used);
        if (id == 0) {
            m_cacher.SetMaxCacheSize(kLimit);
            KV_CheckSum large = sumOf(2000 + m_number);
            m_cacher.RegisterLink(&large, id, 0);
            m_cacher.SetLinkCore(&large, m_host.link(0, 2 * kLimit).get(), false, 0, KV_CACHING_MEMORY);
            m_record.evictionsInUse += m_cacher.GetCounts().pendingDeletion;
            m_cacher.UnRegister(&large, id, false);
        }
        meet(m_evicted);
        check(held.get(), sum);
        m_cacher.UnRegister(&sum, id, false);
    }

    void build(KV_CheckSum sum, bool asLink) {
        ++m_record.builds;
        const Ref<ITestMatcher> matcher = m_host.builder(sum, 20);
        if (!asLink) return m_cacher.SetLink(&sum, matcher.get(), false, KV_CACHING_AS_SET);
        const Ref<KV_ILinkCore> link(matcher->GetLinkCore());
        m_cacher.SetLinkCore(&sum, link.get(), false, 0, KV_CACHING_AS_SET);
    }

    void check(ITestLink *link, const KV_CheckSum &sum) {
        if (link == nullptr) return;
        for (std::size_t i : {std::size_t{0}, std::size_t{15}, kTestLinkValues - 1})
            if (link->Values()[i] != testLinkValue(sum, i)) ++m_record.wrongLinks;
    }

    ProfileHost &m_host;
    KV_Cacher &m_cacher;
    Record &m_record;
    unsigned m_number;
    Countdown m_created{1}, m_waited{kThreads}, m_moved{kThreads}, m_roomy{kThreads}, m_used{kThreads},
        m_evicted{kThreads};
    std::array<std::atomic<int>, kSums> m_creators{};
};

TEST(CacherThreads, AgreeWhoBuildsAndLeaveNothingBehind) {
    ProfileHost host;
    KV_Cacher &cacher = host.cacher();
    cacher.SetCachingMethod(KV_CACHING_MEMORY);
    cacher.SetMaxCacheSize(kLimit);
    Record total;
    for (unsigned number = 0; number < kRounds; ++number) {
        Record record;
        Round(host, record, number).run();
        std::cout << "round " << number << ": " << record << '\n';
        EXPECT_EQ(record.wrongLinks + record.secondCreators, 0);
        const KV_CacherCounts counts = cacher.GetCounts();
        EXPECT_EQ(std::vector({counts.creating, counts.waiters, counts.users, counts.pendingDeletion,
                               counts.openHandles}),
                  std::vector(5, 0));
        EXPECT_EQ(host.manager().TotalUseCount(), static_cast<std::uint32_t>(counts.links));
        EXPECT_LE(cacher.GetCurrentCacheSize(), 2 * kLimit);
        ASSERT_FALSE(testing::Test::HasFailure());
        total.add(record);
    }
    std::cout << "all: " << total << '\n';
    EXPECT_GE(total.waits, kRounds * (kThreads - 1));
    EXPECT_GE(total.builds, kRounds * 20);
    EXPECT_GE(total.hits, kRounds * 20);
    EXPECT_GE(total.giveUps, kRounds);
    EXPECT_GE(total.evictionsInUse, kRounds * 6);
    EXPECT_LE(total.slowWakings, kRounds / 4) << "waiters go on by the signal, not by the time-out";
    cacher.RemoveMemCache();
    EXPECT_EQ(host.manager().TotalUseCount(), 0u);
}

// Everything at once, by both methods: nothing crashes or stays behind, and a link is its checksum's.
TEST(CacherThreads, MayCallAllOperationsAtOnce) {
    ProfileHost host;
    KV_Cacher &cacher = host.cacher();
    std::atomic<int> wrong{0}, found{0};
    const auto work = [&](int id) {
        std::minstd_rand random(static_cast<unsigned>(id) + 1);
        for (int step = 0; step < 150; ++step) {
            KV_CheckSum sum = sumOf(static_cast<std::uint32_t>(random()) % 8);
            KV_ILinkCore *link = nullptr;
            try {
                cacher.GetLinkCore(&sum, id, link, false, 0);
                if (link == nullptr) cacher.SetLink(&sum, host.builder(sum).get(), false, KV_CACHING_AS_SET);
            } catch (const KV_FileException &) {  // the file went in between
            }
            if (const Ref<ITestLink> held = testLink(link)) {
                ++found;
                if (held->Values().at(7) != testLinkValue(sum, 7)) ++wrong;
            }
            cacher.UnRegister(&sum, id, false);
            switch (random() % 16) {
            case 0:
                cacher.RemoveMemCache();
                break;
            case 1:
                cacher.RemoveFileCache();
                break;
            case 2:
                cacher.SetCachingMethod(random() % 2 == 0 ? KV_CACHING_FILES : KV_CACHING_MEMORY);
                break;
            case 3:
                cacher.SetMaxCacheSize(static_cast<std::uint32_t>(random()) % kLimit);
                break;
            case 4:
                cacher.SetProfile(&sum, host.profile().get());
                break;
            case 5:
                Ref<KV_IProfile>(cacher.GetProfile(&sum));
                break;
            default:
                break;
            }
        }
    };
    cacher.SetCachingMethod(KV_CACHING_FILES);
    host.manager().SetCachingPath(host.cachingPath("links"));
    std::vector<std::thread> threads;
    threads.reserve(8);
    for (int id = 0; id < 8; ++id)
        threads.emplace_back(work, id);
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_GE(found, 100);
    cacher.RemoveMemCache();
    EXPECT_EQ(cacher.GetCounts().openHandles, 0);
    EXPECT_EQ(host.manager().TotalUseCount(), 0U);
}

}  // namespace
