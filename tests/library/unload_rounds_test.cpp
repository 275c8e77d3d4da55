// Two thousand rounds of loading, use and unloading, some of them while plans are prepared, from one thread and from several:
// nothing stays mapped, no thread stays, and memory does not grow. Two hundred rounds where each takes ten times as long.
#include "host.h"
#include "support/threads.h"

#include <gtest/gtest.h>

#include <functional>
#include <thread>
#include <vector>

#include <malloc.h>

using namespace host;
using namespace support;

namespace
{

#if defined __SANITIZE_ADDRESS__ || defined EMULATED
constexpr int rounds = 200;
#else
constexpr int rounds = 2000;
#endif
constexpr int roundsUntilAPreparation = 100;

void liveRound(int number)
{
    if (number % roundsUntilAPreparation == roundsUntilAPreparation - 1) {
        const Loaded library;
        startPreparation(library);
    }
    useOnce();
}

// The loader, and the caches of threads that have gone, take turns between amounts; a hundred bytes a round would show.
void expectThatMemoryIsFlat(const std::function<void(int first, int last)> &live)
{
    live(0, rounds / 2);
    const size_t halfWay = mallinfo2().uordblks;
    live(rounds / 2, rounds);
    EXPECT_LT(mallinfo2().uordblks, halfWay + 100 * rounds / 2);
}

} // namespace

TEST(UnloadRounds, LeaveNothingEachTime)
{
    const DataFolder folder;
    const auto threads = threadsAfterTheFirst();
    expectThatMemoryIsFlat([&](int first, int last) {
        for (int round = first; round < last; ++round) {
            liveRound(round);
            ASSERT_FALSE(isMapped("liborva.so")) << round;
            ASSERT_FALSE(isMapped("libkett.so")) << round;
            ASSERT_TRUE(threadsComeDownTo(threads)) << round;
        }
    });
}

TEST(UnloadRounds, FromSeveralThreadsLeaveNothing)
{
    const DataFolder folder;
    const auto threads = threadsAfterTheFirst();
    expectThatMemoryIsFlat([](int first, int last) {
        std::vector<std::thread> hosts;
        for (int t = 0; t < 4; ++t)
            hosts.emplace_back([=] {
                for (int round = first + t; round < last; round += 4)
                    liveRound(round);
            });
        for (std::thread &host : hosts)
            host.join();
    });
    EXPECT_FALSE(isMapped("liborva.so"));
    EXPECT_FALSE(isMapped("libkett.so"));
    EXPECT_TRUE(threadsComeDownTo(threads));
}
