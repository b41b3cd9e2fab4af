#include <gtest/gtest.h>
#include <kvbase/runtime/kv_lock.h>

#include <atomic>
#include <thread>

namespace {

// No end of an inner lock, nor a second one, may let the other thread in: the sum would miss steps. The last
// Reset has to, though the scope goes on.
template <class Mutex, class Synch>
void expectExclusionUntilReleasedAsOftenAsTaken() {
    constexpr int kSteps = 2000;
    Mutex mutex;
    int sum = 0;
    const auto count = [&] {
        for (int i = 0; i < kSteps; ++i) {
            Synch outer(&mutex);
            { Synch inner(&mutex); }
            Synch reset(&mutex);
            reset.Reset();
            reset.Reset();
            const int before = sum;
            std::this_thread::yield();
            sum = before + 1;
        }
    };
    std::thread other(count);
    count();
    Synch scope(&mutex);
    scope.Reset();
    other.join();
    EXPECT_EQ(sum, 2 * kSteps);
}

TEST(Locks, ExcludeUntilReleasedAsOftenAsTaken) {
    expectExclusionUntilReleasedAsOftenAsTaken<KV_Mutex, KV_Synch>();
    expectExclusionUntilReleasedAsOftenAsTaken<KV_MutexCacher, KV_SynchCacher>();
}

TEST(Locks, NullIsNoLock) {
    KV_Synch(nullptr).Reset();
    KV_SynchCacher(nullptr).Reset();
}

// Two threads that only go on by each other's signal take turns; a count of one too many, or a Wait that does
// not wait, soon lets the second one run ahead.
void expectTakesTurns(KV_Semaphore &empty) {
    constexpr int kRounds = 200;
    KV_Semaphore done;
    std::atomic<int> turn{0}, misplaced{0};
    std::thread other([&] {
        for (int i = 0; i < kRounds; ++i) {
            empty.Wait();
            if (turn++ != 2 * i + 1) ++misplaced;
            done.Signal();
        }
    });
    for (int i = 0; i < kRounds; ++i) {
        if (turn++ != 2 * i) ++misplaced;
        empty.Signal();
        done.Wait();
    }
    other.join();
    EXPECT_EQ(misplaced, 0);
}

TEST(Semaphore, LetsAsManyThroughAsItsCount) {
    struct CountCase {
        int initial, signals, count;
    };
    for (const CountCase &c : {CountCase{0, 0, 0}, {2, 1, 3}, {1000, 30, 1024}, {1024, 1, 1024}}) {
        SCOPED_TRACE(c.initial);
        KV_Semaphore semaphore(c.initial);
        for (int i = 0; i < c.signals; ++i)
            semaphore.Signal();
        for (int i = 0; i < c.count; ++i)
            semaphore.Wait();
        expectTakesTurns(semaphore);
    }
}

TEST(Semaphore, DoesNothingWithAnImpossibleCount) {
    for (int initial : {-1, 1025}) {
        KV_Semaphore none(initial);
        none.Signal();
        // A semaphore of that count would wait for ever.
        for (int i = 0; i <= 1026; ++i)
            none.Wait();
    }
}

}  // namespace
