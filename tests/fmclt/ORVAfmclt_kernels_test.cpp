// The kernels of the lapped transform: each level against the plain form bit by bit.
#include "fmclt/kernels/ORVAfmclt_kernels.h"

#include "support/bits.h"
#include "support/levels.h"
#include "support/random.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace orva;
using support::sameBits;

namespace
{

using Samples = std::vector<float>;

// Arrays of `size` floats from `offset` on, with marks around what is written.
struct Arrays {
    Arrays(support::Random &random, size_t size, bool isMixed)
        : offset(static_cast<size_t>(random.integer(0, 15)))
    {
        for (Samples *array : {&a, &b, &c, &d})
            *array = isMixed ? random.mixed(size + offset + 32) : random.noise(size + offset + 32);
    }

    float *at(Samples &array) const
    {
        return array.data() + offset;
    }

    size_t offset;
    Samples a, b, c, d;
};

template <class Run> void check(const Arrays &start, const char *what, Run run)
{
    Arrays expected = start;
    run(kernelsAt<FmcltKernels>(Level::plain), expected);
    for (const Level level : support::fasterLevels()) {
        Arrays actual = start;
        run(kernelsAt<FmcltKernels>(level), actual);
        EXPECT_TRUE(sameBits(actual.a, expected.a)) << what << " at " << nameOf(level);
        EXPECT_TRUE(sameBits(actual.b, expected.b)) << what << " at " << nameOf(level);
        EXPECT_TRUE(sameBits(actual.c, expected.c)) << what << " at " << nameOf(level);
        EXPECT_TRUE(sameBits(actual.d, expected.d)) << what << " at " << nameOf(level);
    }
}

} // namespace

TEST(FmcltKernels, HaveTheBitsOfThePlainFormAtEverySizeAndAlignment)
{
    support::Random random;
    for (int32_t M = 1; M <= 300; ++M)
        for (const bool isMixed : {false, true}) {
            SCOPED_TRACE("M " + std::to_string(M));
            const Arrays start(random, 2 * static_cast<size_t>(M) + 2, isMixed);
            const auto factor = static_cast<float>(random.real(0.01, 10.0));
            check(start, "coefficientsOf", [&](const FmcltKernels &kernels, Arrays &x) {
                kernels.coefficientsOf(x.at(x.a), x.at(x.b), x.at(x.c), x.at(x.d), M, factor);
            });
            check(start, "innerBinsOf", [&](const FmcltKernels &kernels, Arrays &x) {
                kernels.innerBinsOf(x.at(x.a), x.at(x.b), x.at(x.c), x.at(x.d), M, factor);
            });
            check(start, "overlapAdd", [&](const FmcltKernels &kernels, Arrays &x) {
                kernels.overlapAdd(x.at(x.a), x.at(x.a) + M, x.at(x.b), x.at(x.c), M, 2.0 * M);
            });
            check(start, "divide",
                  [&](const FmcltKernels &kernels, Arrays &x) { kernels.divide(x.at(x.a), M, factor); });
        }
}

TEST(FmcltKernels, OverlapHasThemForAnyDivisorAndAnyMagnitude)
{
    support::Random random;
    for (int round = 0; round < 200; ++round) {
        Arrays start(random, 64, false);
        for (Samples *array : {&start.a, &start.c})
            for (float &x : *array)
                x = random.anyFloat();
        const auto M = round % 2 == 0 ? int64_t{1} << random.integer(0, 28) : random.integer(1, 1 << 28);
        check(start, "overlapAdd", [&](const FmcltKernels &kernels, Arrays &x) {
            kernels.overlapAdd(x.at(x.a), x.at(x.a) + 32, x.at(x.b), x.at(x.c), 32,
                               2.0 * static_cast<double>(M));
        });
    }
}

TEST(FmcltKernels, CoefficientsHaveThemWithOneArrayForBothParts)
{
    support::Random random;
    const Arrays start(random, 128, false);
    check(start, "coefficientsOf", [&](const FmcltKernels &kernels, Arrays &x) {
        kernels.coefficientsOf(x.at(x.a), x.at(x.b), x.at(x.c), x.at(x.c), 50, 0.5f);
    });
}
