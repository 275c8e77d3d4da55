// Groups of eight consecutive outputs are summed in the lanes of vectors. Each row of the bank is one sample: its coefficients
// are loaded and multiplied with that sample in all lanes.
//
//               output   n  n+1  n+2  n+3 ...
//     newest sample      0   0    0    c  ...        0: the sample is newer than any that this output takes
//     the next older     0   c    c    c
//     ...                c   c    c    c
//     the oldest         c   0    0    0             0: older than any
//
// A zero coefficient leaves a sum in double as it is: its product with a finite sample is +0 or -0, and no such sum is ever
// -0, since it starts at +0, and neither +0 plus a zero nor two numbers that cancel give -0. So zeros need no care, but in
// two cases. A sum rounded to float after each product can become -0, and the product with an infinity is not-a-number:
// then an output's sum is held at the samples that are not its own, which are among the first and the last few rows.
//
// As a sum starts at +0, it stays there while the samples are zeros; so the newest of them are left out, which in a flush
// are many.
//
// Several groups are summed at once, so that additions overlap: of a long span those a round apart, which share each load
// of coefficients, of a short one those side by side.
//
//     outputs   |  n ..          |  n + round ..    |  n + 2 round ..          |  n ..  n + 8 ..  n + 16 ..
//               |^^^^^^^^        |^^^^^^^^          |^^^^^^^^                  |^^^^^^^^^^^^^^^^^^^^^^^^^^
//
// Groups begin where the bank has them. What they sum beyond the ends of a span is dropped.
#include "common/lanes.h"
#include "resample/kernels/ORVAresample_kernels.h"

namespace orva
{
namespace ORVA_LEVEL
{
namespace
{

constexpr int32_t vectors = groupLanes / doubleLanes;
constexpr int32_t mostSharing = doubleLanes;                          // eight vectors of sums
constexpr int32_t mostSideBySide = doubleLanes < 4 ? doubleLanes : 4; // two pointers for each

using Longs [[gnu::vector_size(ORVA_VECTOR_BYTES)]] = int64_t;

// How a sum takes a product: in double, or rounded to float; and whether it is held.
struct Exact {
    static constexpr bool isHeld = false;

    [[gnu::always_inline]] static inline Doubles add(Doubles sum, Doubles product)
    {
        return sum + product;
    }

    static auto plain()
    {
        return kernelsAt<ResampleKernels, Level::plain>().sums;
    }
};

struct ExactHeld : Exact {
    static constexpr bool isHeld = true;
};

struct Rounded {
    static constexpr bool isHeld = true;

    [[gnu::always_inline]] static inline Doubles add(Doubles sum, Doubles product)
    {
        return widen(narrow(sum + product));
    }

    static auto plain()
    {
        return kernelsAt<ResampleKernels, Level::plain>().roundedSums;
    }
};

// A group of outputs, the samples that it takes, the newest of them, and which coefficient of h the first output would have
// for that one: below 0, if it is newer than any that this output takes.
struct Group {
    int64_t firstOutput;
    BankPlace at;
    const double *newest;
    int64_t coefficient;
};

bool comesRound(const PolyphaseBank &bank)
{
    return bank.groupSize == 0 && bank.down > 1;
}

// The group with this number in its round.
[[gnu::always_inline]] inline Group groupAt(const PolyphaseBank &bank, const OutputSpan &span, int32_t number,
                                            int64_t firstOutput)
{
    const int64_t newest = newestSample(bank, firstOutput + groupLanes - 1);
    const BankPlace at = bank.groupSize != 0 ? BankPlace{bank.coefs + number * bank.groupSize, bank.rows}
                                             : placeInRows(bank, firstOutput, newest);
    return {firstOutput, at, span.samples + (newest - span.firstSample),
            firstOutput * bank.down - newest * bank.up};
}

// Where groups that are summed at once have their coefficients.
enum class From {
    one,      // all those of the first, where rows follow each other up to the last
    oneRound, // the same, where rows come round
    each      // each its own, where rows follow each other
};

constexpr int32_t bankCount(From from, int32_t groups)
{
    return from == From::each ? groups : 1;
}

template <From from, int32_t groups> struct Sums {
    static constexpr int32_t banks = bankCount(from, groups);

    Doubles sum[groups][vectors];
    const double *x[groups];
    const double *coefs[banks];
    int32_t rowsLeft;
};

// Takes `rows` samples more. At an edge, outputs whose own the samples are not are held; `coefficients` are then those of h
// for the first output of each group.
template <class Sum, bool isEdge, From from, int32_t groups>
[[gnu::always_inline]] inline void takeRows(const PolyphaseBank &bank, Sums<from, groups> &s, int32_t rows,
                                            const int64_t *coefficients)
{
    constexpr int32_t banks = Sums<from, groups>::banks;
    Longs h[banks][vectors] = {};
    if constexpr (isEdge) {
        int64_t ofLane[groupLanes];
        for (int32_t b = 0; b < banks; ++b) {
            for (int32_t l = 0; l < groupLanes; ++l)
                ofLane[l] = coefficients[b] + l * int64_t{bank.down};
            for (int64_t v = 0; v < vectors; ++v)
                h[b][v] = load<Longs>(ofLane + v * doubleLanes);
        }
    }
    const int64_t end = int64_t{bank.taps} * bank.up;
    const int64_t pitch = bank.pitch;
    const int64_t comeRound = bank.up - bank.rows * pitch;
#pragma GCC unroll 2 // what steps from row to row is a sixth of it
    for (; rows > 0; --rows) {
        Doubles c[banks][vectors];
#pragma GCC unroll 8
        for (int32_t b = 0; b < banks; ++b) {
#pragma GCC unroll 8
            for (int32_t v = 0; v < vectors; ++v)
                c[b][v] = load<Doubles>(s.coefs[b] + v * doubleLanes);
            s.coefs[b] += pitch;
        }
        if constexpr (from == From::oneRound) {
            if (--s.rowsLeft == 0) {
                s.coefs[0] += comeRound;
                s.rowsLeft = bank.rows;
            }
        }
#pragma GCC unroll 8
        for (int32_t g = 0; g < groups; ++g) {
            const int32_t b = g < banks ? g : 0;
            const auto sample = allLanes<Doubles>(*s.x[g]--);
#pragma GCC unroll 8
            for (int32_t v = 0; v < vectors; ++v) {
                const Doubles next = Sum::add(s.sum[g][v], c[b][v] * sample);
                if constexpr (isEdge)
                    s.sum[g][v] = ((h[b][v] >= 0) & (h[b][v] < end)) ? next : s.sum[g][v];
                else
                    s.sum[g][v] = next;
            }
        }
        if constexpr (isEdge) {
            for (int32_t b = 0; b < banks; ++b)
                for (int32_t v = 0; v < vectors; ++v)
                    h[b][v] += int64_t{bank.up};
        }
    }
}

// The first rows of a group whose samples are zeros.
[[gnu::always_inline]] inline int32_t zeroRows(const PolyphaseBank &bank, const OutputSpan &span,
                                               const Group &group)
{
    const int64_t zeros = group.newest - span.zerosFrom + 1;
    return zeros <= 0 ? 0 : zeros < bank.groupRows ? static_cast<int32_t>(zeros) : bank.groupRows;
}

template <From from, int32_t groups>
[[gnu::always_inline]] inline void skipRows(const PolyphaseBank &bank, Sums<from, groups> &s, int32_t rows)
{
    for (int32_t g = 0; g < groups; ++g)
        s.x[g] -= rows;
    for (int32_t b = 0; b < Sums<from, groups>::banks; ++b)
        s.coefs[b] += rows * bank.pitch;
    if constexpr (from == From::oneRound) {
        s.rowsLeft -= rows;
        if (s.rowsLeft <= 0) {
            const int32_t rounds = 1 - s.rowsLeft / bank.rows;
            s.coefs[0] += rounds * (bank.up - bank.rows * bank.pitch);
            s.rowsLeft += rounds * bank.rows;
        }
    }
}

// All rows but the first `skipped`: those newer than the newest sample of one of a group's outputs, those that are of all
// outputs, those older than the oldest of one.
template <class Sum, From from, int32_t groups>
[[gnu::always_inline]] inline void takeHeldRows(const PolyphaseBank &bank, Sums<from, groups> &s,
                                                const Group *group, int32_t skipped)
{
    const int32_t edge = bank.groupRows - bank.taps;
    const int32_t ends[] = {edge < bank.taps ? edge : bank.taps, bank.taps, bank.groupRows};
    skipRows(bank, s, skipped);
    int32_t row = skipped;
    for (int32_t part = 0; part < 3; ++part) {
        const int32_t rows = ends[part] - row;
        if (rows <= 0)
            continue;
        int64_t coefficients[Sums<from, groups>::banks];
        for (int32_t b = 0; b < Sums<from, groups>::banks; ++b)
            coefficients[b] = group[b].coefficient + row * int64_t{bank.up};
        if (part == 1)
            takeRows<Sum, false>(bank, s, rows, coefficients);
        else
            takeRows<Sum, true>(bank, s, rows, coefficients);
        row += rows;
    }
}

// Outputs of a group that belong to the span.
[[gnu::always_inline]] inline void put(const OutputSpan &span, int64_t firstOutput, const float *sums,
                                       float *output)
{
    const int64_t k = firstOutput - span.firstOutput;
    if (k >= 0 && k + groupLanes <= span.count) {
        __builtin_memcpy(output + k, sums, groupLanes * sizeof(float));
        return;
    }
    for (int64_t l = k < 0 ? -k : 0; l < groupLanes && k + l < span.count; ++l)
        output[k + l] = sums[l];
}

template <class Sum, From from, int32_t groups>
[[gnu::always_inline]] inline void sumGroups(const PolyphaseBank &bank, const OutputSpan &span,
                                             const Group *group, float *output)
{
    Sums<from, groups> s = {{}, {}, {}, group[0].at.rowsLeft};
#pragma GCC unroll 8
    for (int32_t g = 0; g < groups; ++g)
        s.x[g] = group[g].newest;
#pragma GCC unroll 8
    for (int32_t b = 0; b < Sums<from, groups>::banks; ++b)
        s.coefs[b] = group[b].at.coefs;
    if constexpr (Sum::isHeld)
        takeHeldRows<Sum>(bank, s, group, zeroRows(bank, span, group[0])); // no later group has fewer
    else
        takeRows<Sum, false>(bank, s, bank.groupRows, nullptr);
    float sums[groups][groupLanes];
#pragma GCC unroll 8
    for (int32_t g = 0; g < groups; ++g) {
#pragma GCC unroll 8
        for (int32_t v = 0; v < vectors; ++v)
            store(sums[g] + v * doubleLanes, narrow(s.sum[g][v]));
    }
    for (int32_t g = 0; g < groups; ++g)
        put(span, group[g].firstOutput, sums[g], output);
}

// `count` as a constant.
template <class Sum, From from, int32_t most>
[[gnu::always_inline]] inline void sumAtOnce(const PolyphaseBank &bank, const OutputSpan &span,
                                             const Group *group, int64_t count, float *output)
{
    if constexpr (most > 1) {
        if (count < most) {
            sumAtOnce<Sum, from, most - 1>(bank, span, group, count, output);
            return;
        }
    }
    sumGroups<Sum, from, most>(bank, span, group, output);
}

template <class Sum> void sumSharing(const PolyphaseBank &bank, const OutputSpan &span, float *output)
{
    const int64_t samplesPerRound = int64_t{bank.round} / bank.up * bank.down;
    const auto inRound = static_cast<int32_t>(span.firstOutput % bank.round);
    const int64_t round = span.firstOutput - inRound;
    for (int32_t number = 0; number < groupCount(bank); ++number) {
        int32_t start = groupStart(bank, number);
        if (start + groupLanes <= inRound) // to the first group that reaches into the span
            start += bank.round;
        Group group[mostSharing] = {groupAt(bank, span, number, round + start)};
        int32_t left = (span.count - 1 - (start - inRound)) / bank.round + 1;
        for (int32_t turns = (left + mostSharing - 1) / mostSharing; turns > 0; --turns) {
            const int32_t count = left <= mostSharing ? left : (left + turns - 1) / turns;
            for (int32_t g = 1; g < count; ++g) {
                group[g].firstOutput = group[g - 1].firstOutput + bank.round;
                group[g].newest = group[g - 1].newest + samplesPerRound;
            }
            if (comesRound(bank))
                sumAtOnce<Sum, From::oneRound, mostSharing>(bank, span, group, count, output);
            else
                sumAtOnce<Sum, From::one, mostSharing>(bank, span, group, count, output);
            group[0].firstOutput += count * int64_t{bank.round};
            group[0].newest += count * samplesPerRound;
            left -= count;
        }
    }
}

template <class Sum> void sumSideBySide(const PolyphaseBank &bank, const OutputSpan &span, float *output)
{
    const int64_t end = span.firstOutput + span.count;
    const int32_t groups = groupCount(bank);
    const int32_t most = comesRound(bank) ? 1 : mostSideBySide; // each would come round at a place of its own
    int64_t round = span.firstOutput / bank.round * bank.round;
    auto number = static_cast<int32_t>((span.firstOutput - round) / groupLanes);
    number = number < groups ? number : groups - 1;
    int64_t n = round + groupStart(bank, number);
    while (n < end) {
        Group group[mostSideBySide] = {};
        int32_t count = 0;
        do {
            group[count++] = groupAt(bank, span, number, n);
            if (++number == groups) {
                number = 0;
                round += bank.round;
            }
            n = round + groupStart(bank, number);
        } while (count < most && n < end);
        if (comesRound(bank))
            sumGroups<Sum, From::oneRound, 1>(bank, span, group, output);
        else
            sumAtOnce<Sum, From::each, mostSideBySide>(bank, span, group, count, output);
    }
}

template <class Sum> void sumsOf(const PolyphaseBank &bank, const OutputSpan &span, float *output)
{
    if (!bank.isWide) {
        Sum::plain()(bank, span, output);
        return;
    }
    if (!Sum::isHeld && !span.allFinite) {
        sumsOf<ExactHeld>(bank, span, output);
        return;
    }
    // In parts whose samples stay in the nearest cache. They end with a round, so that no group is cut.
    constexpr int64_t samplesAtOnce = 2048;
    const int64_t samplesPerRound = int64_t{bank.round} / bank.up * bank.down;
    const int64_t turns = samplesAtOnce / samplesPerRound / mostSharing;
    const int64_t length = (turns > 0 ? turns : 1) * mostSharing * bank.round;
    for (int32_t done = 0; done < span.count;) {
        const int64_t first = span.firstOutput + done;
        const int64_t untilEnd = first / bank.round * bank.round + length - first;
        const int32_t left = span.count - done;
        const int32_t count = left < untilEnd ? left : static_cast<int32_t>(untilEnd);
        OutputSpan part = span;
        part.firstOutput = first;
        part.count = count;
        if (count < 2 * int64_t{bank.round})
            sumSideBySide<Sum>(bank, part, output + done);
        else
            sumSharing<Sum>(bank, part, output + done);
        done += count;
    }
}

using HalfBits [[gnu::vector_size(ORVA_VECTOR_BYTES / 2)]] = uint32_t;

bool widenBlock(const float *input, double *output, int32_t count)
{
    constexpr uint32_t exponent = 0x7F800000; // all ones: infinity or not-a-number
    HalfBits nonFinite = {};
    for (int32_t i = 0; i < count; i += doubleLanes) {
        const int32_t left = count - i < doubleLanes ? count - i : doubleLanes;
        const auto x =
            left == doubleLanes ? load<HalfFloats>(input + i) : loadPart<HalfFloats>(input + i, left);
        nonFinite |= reinterpret_cast<HalfBits>((reinterpret_cast<HalfBits>(x) & exponent) == exponent);
        if (left == doubleLanes)
            store(output + i, widen(x));
        else
            storePart(output + i, widen(x), left);
    }
    uint32_t any = 0;
    for (int32_t l = 0; l < doubleLanes; ++l)
        any |= nonFinite[l];
    return any == 0;
}

void narrowBlock(const double *input, float *output, int32_t count)
{
    int32_t i = 0;
    for (; i <= count - doubleLanes; i += doubleLanes)
        store(output + i, narrow(load<Doubles>(input + i)));
    for (; i < count; ++i)
        output[i] = static_cast<float>(input[i]);
}

int32_t hold(const double *samples, int32_t count, float *output, uint32_t up, uint32_t down, uint32_t *phase)
{
    return kernelsAt<ResampleKernels, Level::plain>().hold(samples, count, output, up, down, phase);
}

} // namespace
} // namespace ORVA_LEVEL

template <> const ResampleKernels &kernelsAt<ResampleKernels, Level::ORVA_LEVEL>()
{
    static constexpr ResampleKernels table = {ORVA_LEVEL::widenBlock, ORVA_LEVEL::narrowBlock,
                                              ORVA_LEVEL::sumsOf<ORVA_LEVEL::Exact>,
                                              ORVA_LEVEL::sumsOf<ORVA_LEVEL::Rounded>, ORVA_LEVEL::hold};
    return table;
}

} // namespace orva
