// The use count against a stand-in for libkett and one for the FFT engine: which call brings the library up or takes
// it down, and in what order.
#include "fft/ORVAfft_recorder.h"
#include "support/random.h"

#include <orva/ORVAcore.h>
#include <orva/ORVAfft.h>

#include <gtest/gtest.h>

using Calls = std::vector<std::string>;

bool ORVA_InitializeFFT()
{
    recorder::note("engine up");
    return false; // nobody looks at it
}

bool ORVA_FinalizeFFT()
{
    recorder::note("engine down");
    return false;
}

namespace
{

const Calls start = {
    "register liborva 3.7.18.0",
    "default orva.fftw.prepare_plans=%d, 0",
    "libkett up",
    "engine up",
};
const Calls stop = {"engine down", "libkett down"};
const Calls nothing = {};

enum class Call { initialize, finalize };

constexpr Call up = Call::initialize;
constexpr Call down = Call::finalize;

Calls effectOf(Call call)
{
    recorder::takeCalls();
    call == Call::initialize ? ORVA_Initialize() : ORVA_Finalize();
    return recorder::takeCalls();
}

// Brings the count to zero from wherever it is: above zero after the first call, and zero where the stop comes.
bool zeroTheCount()
{
    ORVA_Initialize();
    for (int uses = 1; uses < 10; ++uses)
        if (effectOf(down) == stop)
            return true;
    return false;
}

} // namespace

TEST(UseCount, StartsAtZero)
{
    EXPECT_EQ(effectOf(up), start);
    EXPECT_EQ(effectOf(down), stop);
}

TEST(UseCount, OnlyTheFirstUseStartsAndOnlyTheLastStops)
{
    const struct {
        const char *title;
        std::vector<Call> before; // from a count of zero
        Call call;
        const Calls &effect;
        int usesAfter; // calls of finalize until the stop comes; 0: none comes, the count is zero or below
    } rows[] = {
        {"0, initialize", {}, up, start, 1},
        {"-1, initialize", {down}, up, start, 1},
        {"-3, initialize", {down, down, down}, up, start, 1},
        {"1, initialize", {up}, up, nothing, 2},
        {"2, initialize", {up, up}, up, nothing, 3},
        {"3, finalize", {up, up, up}, down, nothing, 2},
        {"2, finalize", {up, up}, down, nothing, 1},
        {"1, finalize", {up}, down, stop, 0},
        {"0, finalize", {}, down, nothing, 0},
        {"-1, finalize", {down}, down, nothing, 0},
        {"1 after healing, finalize", {down, down, up}, down, stop, 0},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.title);
        ASSERT_TRUE(zeroTheCount());
        for (const Call call : row.before)
            effectOf(call);
        EXPECT_EQ(effectOf(row.call), row.effect);
        for (int use = 1; use <= row.usesAfter + 2; ++use)
            EXPECT_EQ(effectOf(down), use == row.usesAfter ? stop : nothing) << "finalize " << use;
    }
}

TEST(UseCount, AnySequenceOfCallsFollowsThePlainCount)
{
    support::Random random;
    int count = 0;
    for (int i = 0; i < 5000; ++i) {
        const Call call = random.integer(0, 1) == 0 ? up : down;
        const Calls &expected = call == up ? (count <= 0 ? start : nothing) : (count == 1 ? stop : nothing);
        ASSERT_EQ(effectOf(call), expected) << "call " << i << " at a count of " << count;
        count = call == down ? count - 1 : count > 0 ? count + 1 : 1;
    }
}
