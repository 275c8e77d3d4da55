// Each level of both recursions against the plain form: outputs, memories and positions, bit by bit.
#include "filter/kernels/ORVAfilter_kernels.h"
#include "support/bits.h"
#include "support/levels.h"
#include "support/random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

using namespace orva;

using support::Random;
using support::sameBits;

namespace
{

// Numbers of a size, with infinities, not-a-number, subnormals and zeros among them in one vector of four.
template <class Real> std::vector<Real> numbers(Random &random, size_t count, double size = 1.0)
{
    constexpr Real inf = std::numeric_limits<Real>::infinity();
    const Real odd[] = {Real(0),
                        -Real(0),
                        inf,
                        -inf,
                        std::numeric_limits<Real>::quiet_NaN(),
                        std::numeric_limits<Real>::denorm_min(),
                        std::numeric_limits<Real>::max()};
    const bool isMixed = random.integer(0, 3) == 0;
    std::vector<Real> values(count);
    for (auto &value : values)
        value = isMixed && random.integer(0, 50) == 0 ? odd[random.integer(0, 6)]
                                                      : static_cast<Real>(random.real(-size, size));
    return values;
}

// Where the frames of a call lie in one array, so that input and output may overlap.
struct Layout {
    size_t channels;
    size_t input;
    size_t output;
    size_t size; // floats in the array: the last frame ends it
    int64_t first;
    int64_t last;
    int64_t stride;

    Frames frames(std::vector<float> &array) const
    {
        return {array.data() + input, array.data() + output, first, last, stride, channels};
    }

    std::string describe() const
    {
        std::ostringstream text;
        text << "channels " << channels << ", input at " << input << ", output at " << output
             << ", frames from " << first << " to " << last << " by " << stride;
        return text.str();
    }
};

// One call in four has frames or buffers that overlap, one in four gaps between frames, one in four is in place.
Layout anyLayout(Random &random, size_t channels, int64_t frames)
{
    const auto wide = static_cast<int64_t>(channels);
    Layout layout = {channels, 0, 0, 0, random.integer(0, 3), 0, wide};
    const int64_t kind = random.integer(0, 3);
    if (kind == 0)
        layout.stride += random.integer(0, 3);
    else if (kind == 1)
        layout.stride = random.integer(1, wide);
    layout.last = layout.first + (frames - 1) * layout.stride;
    const auto reach = static_cast<size_t>(std::max<int64_t>(layout.last + wide, 0));
    if (kind == 1 || random.integer(0, 3) == 0) {
        layout.input = static_cast<size_t>(random.integer(0, 2 * wide));
        layout.output = static_cast<size_t>(random.integer(0, 2 * wide));
    } else if (random.integer(0, 2) != 0) {
        layout.output = reach;
    }
    layout.size = reach + std::max(layout.input, layout.output);
    return layout;
}

// A few frames mostly, so that what comes before and after the steady state meets everything.
int64_t anyFrameCount(Random &random)
{
    const int64_t most[] = {12, 60, 300, 1300};
    return random.integer(0, most[std::min<int64_t>(random.integer(0, 20) / 6, 3)]);
}

size_t anyChannelCount(Random &random)
{
    return static_cast<size_t>(random.integer(0, 4) == 0 ? random.integer(1, 70) : random.integer(1, 9));
}

struct Direct {
    Direct(Random &random, size_t channels, int32_t numOrder, int32_t denOrder)
        : memory(numbers<float>(random, (static_cast<size_t>(std::max(numOrder, denOrder)) + 1) * channels)),
          numerator(numbers<float>(random, static_cast<size_t>(numOrder))),
          denominator(numbers<float>(random, static_cast<size_t>(denOrder), 0.9 / (denOrder + 1)))
    {
        state.order = std::max(numOrder, denOrder);
        state.numOrder = numOrder;
        state.denOrder = denOrder;
        state.position = static_cast<int32_t>(random.integer(0, state.order));
        state.gain = static_cast<float>(random.real(-1.0, 1.0));
    }

    void run(const FilterKernels &kernels, const Frames &frames)
    {
        state.memory = memory.data();
        state.numerator = numerator.data();
        state.denominator = denominator.data();
        kernels.directForm(state, frames);
    }

    std::vector<float> memory, numerator, denominator;
    _DFIIstate state = {};
};

struct Cascade {
    Cascade(Random &random, size_t channels, size_t sections)
        : memory(numbers<double>(random, biquadSlots * channels * sections)),
          coefs(numbers<double>(random, biquadDoubles * sections, 0.5))
    {
        state.numBiquads = static_cast<int32_t>(sections);
        state.position = static_cast<int32_t>(random.integer(0, 3));
    }

    void run(const FilterKernels &kernels, const Frames &frames)
    {
        state.memory = memory.data();
        state.coefs = coefs.data();
        kernels.biquads(state, frames);
    }

    std::vector<double> memory, coefs;
    _DFIISOSstate state = {};
};

// Blocks that follow each other, all of them with the memories that the one before has left.
template <class Filter>
void compareBlocks(Random &random, Level level, const Filter &filter, size_t channels,
                   const std::string &title)
{
    Filter plain = filter, fast = filter;
    for (int block = 0; block < 3; ++block) {
        const Layout layout = anyLayout(random, channels, anyFrameCount(random));
        auto expected = numbers<float>(random, layout.size);
        auto actual = expected;
        plain.run(kernelsAt<FilterKernels>(Level::plain), layout.frames(expected));
        fast.run(kernelsAt<FilterKernels>(level), layout.frames(actual));
        const std::string where = std::string(nameOf(level)) + ", " + title + ", " + layout.describe();
        ASSERT_TRUE(sameBits(actual, expected)) << where;
        ASSERT_TRUE(sameBits(fast.memory, plain.memory)) << where;
        ASSERT_EQ(fast.state.position, plain.state.position) << where;
    }
}

} // namespace

TEST(FilterKernels, EveryLevelRunsTheDirectFormAsThePlainOneDoes)
{
    Random random;
    for (const Level level : support::fasterLevels())
        for (int repeat = 0; repeat < 80 && !testing::Test::HasFatalFailure(); ++repeat) {
            const size_t channels = anyChannelCount(random);
            const auto numOrder = static_cast<int32_t>(random.integer(0, 14));
            const auto denOrder = static_cast<int32_t>(random.integer(0, 14));
            compareBlocks(random, level, Direct(random, channels, numOrder, denOrder), channels,
                          "orders " + std::to_string(numOrder) + "/" + std::to_string(denOrder));
        }
}

TEST(FilterKernels, EveryLevelRunsLongDirectFormsAsThePlainOneDoes)
{
    Random random;
    for (const Level level : support::fasterLevels())
        for (const int32_t order : {47, 48, 49, 191, 193, 384, 767, 769, 1535, 1536, 1537}) {
            const auto channels = static_cast<size_t>(random.integer(1, 4));
            compareBlocks(random, level, Direct(random, channels, order, 3), channels,
                          "order " + std::to_string(order));
            compareBlocks(random, level, Direct(random, 1, 2, order), 1, "order " + std::to_string(order));
        }
}

TEST(FilterKernels, EveryLevelRunsBiquadsAsThePlainOneDoes)
{
    Random random;
    for (const Level level : support::fasterLevels())
        for (int repeat = 0; repeat < 80 && !testing::Test::HasFatalFailure(); ++repeat) {
            const size_t channels = anyChannelCount(random);
            const auto sections = static_cast<size_t>(random.integer(0, 5) == 0 ? random.integer(0, 70)
                                                                                : random.integer(0, 12));
            compareBlocks(random, level, Cascade(random, channels, sections), channels,
                          "sections " + std::to_string(sections));
        }
}

TEST(FilterKernels, EveryFrameCountLeavesTheMemoriesOfThePlainForm)
{
    Random random;
    for (const Level level : support::fasterLevels())
        for (int64_t frames = 0; frames <= 130; ++frames) {
            const auto channels = static_cast<size_t>(1 + frames % 9);
            const auto reach = static_cast<size_t>(frames) * channels;
            const Layout layout = {channels,
                                   0,
                                   reach,
                                   2 * reach,
                                   0,
                                   (frames - 1) * static_cast<int64_t>(channels),
                                   static_cast<int64_t>(channels)};
            const auto compare = [&](const auto &filter) {
                auto plain = filter, fast = filter;
                auto expected = random.noise(layout.size);
                auto actual = expected;
                plain.run(kernelsAt<FilterKernels>(Level::plain), layout.frames(expected));
                fast.run(kernelsAt<FilterKernels>(level), layout.frames(actual));
                ASSERT_TRUE(sameBits(actual, expected)) << nameOf(level) << ", " << layout.describe();
                ASSERT_TRUE(sameBits(fast.memory, plain.memory))
                    << nameOf(level) << ", " << layout.describe();
                ASSERT_EQ(fast.state.position, plain.state.position)
                    << nameOf(level) << ", " << layout.describe();
            };
            compare(Direct(random, channels, 5, 4));
            compare(Cascade(random, channels, 3));
        }
}
