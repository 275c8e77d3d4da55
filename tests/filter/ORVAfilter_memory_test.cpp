// The memories from inside: their layout, odd values in them, and what a copy leaves where.
#include "filter/ORVAfilter_internal.h"
#include "filter/ORVAfilter_reference.h"
#include "support/bits.h"

using namespace orva;

using support::Random;
using support::sameBits;

namespace
{

_DFIIstate *direct(const Filter &filter)
{
    return static_cast<_DFIIstate *>(filter->state);
}

_DFIISOSstate *biquads(const Filter &filter)
{
    return static_cast<_DFIISOSstate *>(filter->state);
}

Filter directOfOrder(size_t channels, size_t order)
{
    return fromCoefs(channels, std::vector<double>(order + 1, 1.0), {1.0});
}

Filter ofSections(size_t channels, size_t sections)
{
    return fromRecords(channels, std::vector<double>(5 * sections, 0.25));
}

// A memory of `size` elements with a guard after it, in the place of the one that a filter owns.
template <class T> class Guarded
{
public:
    Guarded(Random &random, T *&memory, size_t size) : count(size)
    {
        std::free(memory);
        memory = static_cast<T *>(std::calloc(count + guard, sizeof(T)));
        content = memory;
        for (size_t i = 0; i < count; ++i)
            content[i] = static_cast<T>(random.real(-1.0, 1.0));
        std::fill_n(content + count, guard, static_cast<T>(77));
    }

    std::vector<T> values() const
    {
        return std::vector<T>(content, content + count);
    }

    bool guardHolds() const
    {
        return std::all_of(content + count, content + count + guard,
                           [](T x) { return x == static_cast<T>(77); });
    }

private:
    static constexpr size_t guard = 2000;
    size_t count;
    T *content;
};

// Runs filter and reference on from where they stand.
testing::AssertionResult sameNextFrames(Random &random, Pair &pair)
{
    const size_t channels = pair.reference->channels;
    const auto input = randomSamples(random, channels * 20);
    std::vector<float> output(input.size()), expected(input.size());
    ORVA_Filter(pair.filter.get(), input.data(), output.data(), static_cast<uint32_t>(input.size()));
    pair.reference->run(input.data(), expected.data(), static_cast<int64_t>(input.size()), 0,
                        static_cast<int64_t>(channels));
    return sameBits(output, expected) << " " << pair.name;
}

} // namespace

TEST(DirectMemory, RowsAreWrittenDownward)
{
    const Filter filter = directOfOrder(2, 2);
    const std::vector<float> x = {1.0f, 2.0f, 3.0f, 4.0f, 5.0f, 6.0f, 7.0f, 8.0f};
    std::vector<float> y(2);
    const std::vector<std::vector<float>> rings = {
        {1, 2, 0, 0, 0, 0}, {1, 2, 0, 0, 3, 4}, {1, 2, 5, 6, 3, 4}, {7, 8, 5, 6, 3, 4}};
    const int32_t positions[] = {2, 1, 0, 2};
    ASSERT_EQ(direct(filter)->position, 0);
    for (size_t frame = 0; frame < 4; ++frame) {
        ASSERT_EQ(ORVA_Filter(filter.get(), x.data() + 2 * frame, y.data(), 2), 1);
        const float *ring = direct(filter)->memory;
        EXPECT_TRUE(sameBits(std::vector<float>(ring, ring + 6), rings[frame])) << "frame " << frame;
        EXPECT_EQ(direct(filter)->position, positions[frame]) << "frame " << frame;
    }
}

TEST(DirectMemory, ARingOfOneRowKeepsItsPosition)
{
    const Filter filter = directOfOrder(1, 0);
    float x[] = {1.0f, 2.0f};
    ASSERT_EQ(ORVA_Filter(filter.get(), x, x, 2), 1);
    EXPECT_EQ(direct(filter)->position, 0);
    EXPECT_EQ(direct(filter)->memory[0], 2.0f);
}

TEST(BiquadMemory, SlotsAreWrittenDownwardChannelByChannelWithSectionsTogether)
{
    // Section 0 doubles, section 1 passes on: w is x in section 0 and 2 x in section 1.
    const Filter filter = fromRecords(2, {0, 0, 2, 0, 0, 0, 0, 1, 0, 0});
    const std::vector<float> x = {1.0f, 10.0f, 2.0f, 20.0f};
    std::vector<float> y(4);
    ASSERT_EQ(ORVA_Filter(filter.get(), x.data(), y.data(), 4), 1);
    const double *memory = biquads(filter)->memory;
    const std::vector<double> expected = {1, 2, 10, 20, 0, 0, 0, 0, 0, 0, 0, 0, 2, 4, 20, 40};
    EXPECT_TRUE(sameBits(std::vector<double>(memory, memory + 16), expected));
    EXPECT_EQ(biquads(filter)->position, 2);
    for (const int32_t position : {1, 0, 3, 2}) {
        ASSERT_EQ(ORVA_Filter(filter.get(), x.data(), y.data(), 2), 1);
        EXPECT_EQ(biquads(filter)->position, position);
    }
}

TEST(DirectMemory, AnyContentAtAnyPositionGivesTheBitsOfTheRecursion)
{
    Random random;
    for (int repeat = 0; repeat < 500; ++repeat) {
        const auto channels = static_cast<size_t>(random.integer(1, 9));
        Pair pair = directPair(random, channels, static_cast<size_t>(random.integer(0, 12)),
                               static_cast<size_t>(random.integer(0, 12)));
        auto *state = direct(pair.filter);
        auto &past = static_cast<DirectReference &>(*pair.reference).past;
        const size_t rows = past.size() + 1;
        const auto position = static_cast<size_t>(random.integer(0, state->order));
        const auto content = randomSamples(random, rows * channels);
        std::copy(content.begin(), content.end(), state->memory);
        state->position = static_cast<int32_t>(position);
        for (size_t k = 0; k + 1 < rows; ++k)
            for (size_t c = 0; c < channels; ++c)
                past[k][c] = content[(position + 1 + k) % rows * channels + c];

        ASSERT_TRUE(sameNextFrames(random, pair));
        const auto now = static_cast<size_t>(state->position);
        for (size_t k = 0; k + 1 < rows; ++k)
            for (size_t c = 0; c < channels; ++c)
                ASSERT_TRUE(sameBits(state->memory[(now + 1 + k) % rows * channels + c], past[k][c]))
                    << pair.name;
    }
}

TEST(BiquadMemory, AnyContentAtAnyPositionGivesTheBitsOfTheRecursion)
{
    Random random;
    for (int repeat = 0; repeat < 500; ++repeat) {
        const auto channels = static_cast<size_t>(random.integer(1, 9));
        const auto sections = static_cast<size_t>(random.integer(1, 6));
        Pair pair = biquadPair(random, channels, sections);
        auto *state = biquads(pair.filter);
        auto &past = static_cast<BiquadReference &>(*pair.reference).past;
        const auto content = randomSamples(random, 4 * channels * sections);
        std::copy(content.begin(), content.end(), state->memory);
        state->position = static_cast<int32_t>(random.integer(0, 3));
        const auto at = [&](size_t back, size_t c, size_t s) {
            return ((static_cast<size_t>(state->position) + back) % 4 * channels + c) * sections + s;
        };
        for (size_t s = 0; s < sections; ++s)
            for (size_t c = 0; c < channels; ++c)
                past[s][c] = {state->memory[at(1, c, s)], state->memory[at(2, c, s)],
                              state->memory[at(3, c, s)]};

        ASSERT_TRUE(sameNextFrames(random, pair));
        for (size_t s = 0; s < sections; ++s)
            for (size_t c = 0; c < channels; ++c)
                for (size_t back = 1; back <= 3; ++back)
                    ASSERT_TRUE(sameBits(state->memory[at(back, c, s)], past[s][c][back - 1])) << pair.name;
    }
}

TEST(FilterReset, ClearsAllMemoriesAndLeavesThePosition)
{
    Random random;
    for (size_t channels = 0; channels <= 5; ++channels)
        for (size_t order = 0; order <= 6; ++order) {
            const Filter filter = directOfOrder(channels, order);
            Guarded<float> memory(random, direct(filter)->memory, (order + 1) * channels);
            direct(filter)->position = static_cast<int32_t>(order / 2);
            EXPECT_EQ(ORVA_ResetFilter(filter.get()), 1);
            EXPECT_TRUE(sameBits(memory.values(), std::vector<float>((order + 1) * channels)));
            EXPECT_TRUE(memory.guardHolds());
            EXPECT_EQ(direct(filter)->position, static_cast<int32_t>(order / 2));

            const Filter cascade = ofSections(channels, order);
            Guarded<double> slots(random, biquads(cascade)->memory, 4 * channels * order);
            biquads(cascade)->position = 3;
            EXPECT_EQ(ORVA_ResetFilter(cascade.get()), 1);
            EXPECT_TRUE(sameBits(slots.values(), std::vector<double>(4 * channels * order)));
            EXPECT_TRUE(slots.guardHolds());
            EXPECT_EQ(biquads(cascade)->position, 3);
        }
}

TEST(DirectCopy, RowsKeepTheirNumbersAndClearingStartsAtFourTimesTheSourceRows)
{
    Random random;
    for (size_t d = 0; d <= 12; ++d)
        for (size_t s = 0; s <= 12; ++s)
            for (size_t nc = 0; nc <= 4; ++nc) {
                const Filter destination = directOfOrder(nc, d);
                const Filter source = directOfOrder(nc, s);
                Guarded<float> to(random, direct(destination)->memory, (d + 1) * nc);
                Guarded<float> from(random, direct(source)->memory, (s + 1) * nc);
                direct(destination)->position =
                    static_cast<int32_t>(random.integer(0, static_cast<int64_t>(d)));
                const auto sourcePosition = static_cast<int32_t>(random.integer(0, static_cast<int64_t>(s)));
                direct(source)->position = sourcePosition;

                auto expected = to.values();
                const auto history = from.values();
                for (size_t i = 0; i < (std::min(d, s) + 1) * nc; ++i)
                    expected[i] = history[i];
                if (d > s)
                    for (size_t i = 0; i < (d - s) * nc; ++i)
                        if (4 * (s + 1) * nc + i < expected.size())
                            expected[4 * (s + 1) * nc + i] = 0.0f;

                const auto title = testing::Message()
                                   << "order " << s << " into " << d << ", channels " << nc;
                ASSERT_EQ(ORVA_CopyFilterMemories(destination.get(), source.get()), 1) << title;
                ASSERT_TRUE(sameBits(to.values(), expected)) << title;
                ASSERT_TRUE(sameBits(from.values(), history)) << title;
                ASSERT_TRUE(to.guardHolds() && from.guardHolds()) << title;
                ASSERT_EQ(direct(source)->position, sourcePosition) << title;
                // max(d, position of the source), and inside the ring of d + 1 rows where that lies after it
                const int32_t larger = std::max(static_cast<int32_t>(d), sourcePosition);
                ASSERT_EQ(direct(destination)->position,
                          larger > static_cast<int32_t>(d) ? static_cast<int32_t>(d) : larger)
                    << title;
            }
}

TEST(DirectCopy, TheHistoryOfEqualOrdersIsRotated)
{
    Random random;
    const size_t order = 4;
    for (uint32_t frames = 0; frames <= 11; ++frames) {
        Pair source = directPair(random, 1, order, order);
        const Filter destination = directOfOrder(1, order);
        std::vector<float> x = random.noise(frames);
        for (float &sample : x)
            ASSERT_EQ(ORVA_Filter(source.filter.get(), &sample, &sample, 1), 1);
        ASSERT_EQ(ORVA_CopyFilterMemories(destination.get(), source.filter.get()), 1);
        EXPECT_EQ(direct(destination)->position, 4);
        // In step only after one frame more than a multiple of the five rows.
        EXPECT_EQ(direct(source.filter)->position == 4, frames % 5 == 1) << "frames " << frames;
        const float *ring = direct(source.filter)->memory;
        EXPECT_TRUE(std::equal(ring, ring + 5, direct(destination)->memory)) << "frames " << frames;
    }
}

TEST(DirectCopy, ASourceOfHigherOrderCannotSendThePositionOutOfTheRing)
{
    const Filter destination = directOfOrder(1, 2);
    const Filter source = directOfOrder(1, 9);
    float x = 5.0f;
    ASSERT_EQ(ORVA_Filter(source.get(), &x, &x, 1), 1);
    ASSERT_EQ(direct(source)->position, 9);
    ASSERT_EQ(ORVA_CopyFilterMemories(destination.get(), source.get()), 1);
    EXPECT_EQ(direct(destination)->position, 2);
    // Row 0 is then w[n-1].
    float y[] = {0.0f, 0.0f, 0.0f};
    ASSERT_EQ(ORVA_Filter(destination.get(), y, y, 3), 1);
    EXPECT_TRUE(sameBits<float>(y, std::vector<float>{5.0f, 5.0f, 0.0f}));
}

TEST(BiquadCopy, SectionsAreMatchedByNumberAndClearingFollowsTheChannels)
{
    Random random;
    for (size_t nd = 0; nd <= 6; ++nd)
        for (size_t ns = 0; ns <= 6; ++ns)
            for (size_t nc = 0; nc <= 9; ++nc) {
                const Filter destination = ofSections(nc, nd);
                const Filter source = ofSections(nc, ns);
                Guarded<double> to(random, biquads(destination)->memory, 4 * nc * nd);
                Guarded<double> from(random, biquads(source)->memory, 4 * nc * ns);
                biquads(destination)->position = static_cast<int32_t>(random.integer(0, 3));
                biquads(source)->position = static_cast<int32_t>(random.integer(0, 3));

                auto expected = to.values();
                const auto history = from.values();
                const size_t end = expected.size();
                int32_t position = biquads(source)->position;
                if (nd > 0 && ns == nd) {
                    expected = history;
                } else if (nd == 0 || ns == 0) {
                    expected.assign(end, 0.0);
                    position = 0;
                } else {
                    for (size_t t = 0; t < 4; ++t)
                        for (size_t c = 0; c < nc; ++c) {
                            for (size_t i = 0; i < std::min(nd, ns); ++i)
                                expected[nd * t * nc + nd * c + i] = history[ns * t * nc + ns * c + i];
                            for (size_t i = 0; nd > ns && i < nd - ns; ++i)
                                if (nd * t * nc + nc * c + ns + i < end)
                                    expected[nd * t * nc + nc * c + ns + i] = 0.0;
                        }
                }

                const auto title = testing::Message() << ns << " sections into " << nd << ", channels " << nc;
                ASSERT_EQ(ORVA_CopyFilterMemories(destination.get(), source.get()), 1) << title;
                ASSERT_TRUE(sameBits(to.values(), expected)) << title;
                ASSERT_TRUE(sameBits(from.values(), history)) << title;
                ASSERT_TRUE(to.guardHolds() && from.guardHolds()) << title;
                ASSERT_EQ(biquads(destination)->position, position) << title;
            }
}

TEST(BiquadCopy, EqualSectionCountsGoOnWhereTheSourceStands)
{
    Random random;
    const auto records = randomRecords(random, 3);
    const Filter source = fromRecords(2, records);
    const Filter destination = fromRecords(2, records);
    auto x = random.noise(2 * 37);
    ASSERT_EQ(ORVA_Filter(source.get(), x.data(), x.data(), 2 * 37), 1);
    ASSERT_EQ(ORVA_CopyFilterMemories(destination.get(), source.get()), 1);
    const auto next = random.noise(100);
    std::vector<float> y(100), z(100);
    ASSERT_EQ(ORVA_Filter(source.get(), next.data(), y.data(), 100), 1);
    ASSERT_EQ(ORVA_Filter(destination.get(), next.data(), z.data(), 100), 1);
    EXPECT_TRUE(sameBits(z, y));
}

TEST(FilterCopy, AFilterMayBeCopiedToItself)
{
    Random random;
    const Filter filter = directOfOrder(2, 3);
    auto x = random.noise(4);
    ASSERT_EQ(ORVA_Filter(filter.get(), x.data(), x.data(), 4), 1);
    const std::vector<float> ring(direct(filter)->memory, direct(filter)->memory + 8);
    ASSERT_EQ(direct(filter)->position, 2);
    EXPECT_EQ(ORVA_CopyFilterMemories(filter.get(), filter.get()), 1);
    EXPECT_TRUE(sameBits(std::vector<float>(direct(filter)->memory, direct(filter)->memory + 8), ring));
    EXPECT_EQ(direct(filter)->position, 3) << "rotated as any copy is";

    const Filter cascade = ofSections(2, 2);
    ASSERT_EQ(ORVA_Filter(cascade.get(), x.data(), x.data(), 4), 1);
    const std::vector<double> slots(biquads(cascade)->memory, biquads(cascade)->memory + 16);
    EXPECT_EQ(ORVA_CopyFilterMemories(cascade.get(), cascade.get()), 1);
    EXPECT_TRUE(
        sameBits(std::vector<double>(biquads(cascade)->memory, biquads(cascade)->memory + 16), slots));
    EXPECT_EQ(biquads(cascade)->position, 2);
}
