// Consecutive outputs are summed side by side, in the lanes of vectors. Each row of the bank is one sample: its coefficients
// are loaded and multiplied with that sample in all lanes.
//
//               output   n  n+1  n+2  n+3 ...
//     newest sample      0   0    0    c  ...        0: the sample is newer than any that this output takes
//     the next older     0   c    c    c
//     ...                c   c    c    c
//     the oldest         c   0    0    0             0: older than any
//
// A zero coefficient leaves a sum in double as it is: its product with a finite sample is +0 or -0, and no such sum is ever
// -0, since it starts at +0, and neither +0 plus a zero nor two numbers that cancel give -0. A sum rounded to float after
// each product can become -0; so it is held from the output's oldest sample on. A product with an infinity would be
// not-a-number; therefore blocks with samples that are not finite take the plain form.
//
// The same outputs of several periods share each load of coefficients, so that there are eight vectors of sums at once:
//
//     outputs   |  n ..                |  n + D ..             |  n + 2 D ..           |      D a multiple of L
//               |^^^^^^^^              |^^^^^^^^               |^^^^^^^^
//
// What is left at the end of a span is summed as one more group that reaches back over outputs already there: the same sums
// with the same bits.
#include "common/lanes.h"
#include "resample/kernels/ORVAresample_kernels.h"

namespace orva
{
namespace ORVA_LEVEL
{
namespace
{

constexpr int32_t narrowLanes = 8;
constexpr int32_t wideLanes = 16;

using Longs [[gnu::vector_size(ORVA_VECTOR_BYTES)]] = int64_t;

// How a sum takes a product: in double, or rounded to float.
struct Exact {
    static constexpr bool canBeMinusZero = false;

    [[gnu::always_inline]] static inline Doubles add(Doubles sum, Doubles product)
    {
        return sum + product;
    }

    static auto plain()
    {
        return kernelsAt<ResampleKernels, Level::plain>().sums;
    }
};

struct Rounded {
    static constexpr bool canBeMinusZero = true;

    [[gnu::always_inline]] static inline Doubles add(Doubles sum, Doubles product)
    {
        return widen(narrow(sum + product));
    }

    static auto plain()
    {
        return kernelsAt<ResampleKernels, Level::plain>().roundedSums;
    }
};

// A group of outputs: its place in the bank, the samples that it takes, the newest of them, and the coefficient of h that
// this one would have for the first output, below 0 if it is newer than any that the output takes.
struct Group {
    BankPlace at;
    int32_t rows;
    const double *newest;
    int64_t coefficient;
};

// (lanes - 1) M = wholeSamples L + rest: how far apart the newest samples of the first and the last output of a group are.
template <int32_t lanes> struct Reach {
    explicit Reach(const PolyphaseBank &bank)
        : wholeSamples((lanes - 1) * int64_t{bank.down} / bank.up),
          rest((lanes - 1) * int64_t{bank.down} % bank.up)
    {
    }

    int64_t wholeSamples;
    int64_t rest;
};

template <int32_t lanes>
[[gnu::always_inline]] inline Group groupAt(const PolyphaseBank &bank, const OutputSpan &span,
                                            Reach<lanes> reach, int32_t k)
{
    const int64_t n = span.firstOutput + k;
    const int64_t time = (n + lanes - 1) * bank.down; // of the last output, in L-ths of a sample
    const int64_t newest = time / bank.up;
    const int64_t older = reach.wholeSamples + (time - newest * bank.up < reach.rest ? 1 : 0);
    return {placeOf(bank, n, newest), static_cast<int32_t>(bank.taps + older),
            span.samples + (newest - span.firstSample), n * bank.down - newest * bank.up};
}

template <int32_t periods, int32_t vectors> struct Sums {
    Doubles sum[periods][vectors];
    const double *x[periods];
    const double *coefs;
    int32_t rowsLeft;
};

// Takes `rows` samples more. With `isEnd`, outputs that have taken all theirs are held; `coefficient` is then that of h for
// the first output.
template <class Sum, bool isEnd, int32_t periods, int32_t vectors>
[[gnu::always_inline]] inline void takeRows(const PolyphaseBank &bank, Sums<periods, vectors> &s,
                                            int32_t rows, int64_t coefficient)
{
    Longs h[vectors] = {};
    if constexpr (isEnd) {
        int64_t ofLane[vectors * doubleLanes];
        for (int32_t l = 0; l < vectors * doubleLanes; ++l)
            ofLane[l] = coefficient + l * int64_t{bank.down};
        for (int32_t v = 0; v < vectors; ++v)
            h[v] = load<Longs>(ofLane + v * doubleLanes);
    }
    const int64_t end = int64_t{bank.taps} * bank.up;
    while (rows > 0) {
        int32_t run = rows < s.rowsLeft ? rows : s.rowsLeft;
        rows -= run;
        s.rowsLeft -= run;
        for (; run > 0; --run) {
            Doubles c[vectors];
#pragma GCC unroll 8
            for (int32_t v = 0; v < vectors; ++v)
                c[v] = load<Doubles>(s.coefs + v * doubleLanes);
#pragma GCC unroll 8
            for (int32_t q = 0; q < periods; ++q) {
                const auto sample = allLanes<Doubles>(*s.x[q]--);
#pragma GCC unroll 8
                for (int32_t v = 0; v < vectors; ++v) {
                    const Doubles next = Sum::add(s.sum[q][v], c[v] * sample);
                    if constexpr (isEnd)
                        s.sum[q][v] = h[v] < end ? next : s.sum[q][v];
                    else
                        s.sum[q][v] = next;
                }
            }
            s.coefs += bank.pitch;
            if constexpr (isEnd)
                for (int32_t v = 0; v < vectors; ++v)
                    h[v] += int64_t{bank.up};
        }
        if (s.rowsLeft == 0) {
            s.coefs += bank.up - bank.rows * bank.pitch;
            s.rowsLeft = bank.rows;
        }
    }
}

// The group, and those of the periods after it.
template <class Sum, int32_t lanes, int32_t periods>
[[gnu::always_inline]] inline void sumGroups(const PolyphaseBank &bank, Group group, int64_t sampleStep,
                                             float *output, int64_t outputStep)
{
    constexpr int32_t vectors = lanes / doubleLanes;
    Sums<periods, vectors> s = {{}, {}, group.at.coefs, group.at.rowsLeft};
#pragma GCC unroll 8
    for (int32_t q = 0; q < periods; ++q)
        s.x[q] = group.newest + q * sampleStep;
    if constexpr (Sum::canBeMinusZero) {
        takeRows<Sum, false>(bank, s, bank.taps, 0);
        takeRows<Sum, true>(bank, s, group.rows - bank.taps,
                            group.coefficient + int64_t{bank.taps} * bank.up);
    } else {
        takeRows<Sum, false>(bank, s, group.rows, 0);
    }
#pragma GCC unroll 8
    for (int32_t q = 0; q < periods; ++q) {
#pragma GCC unroll 8
        for (int32_t v = 0; v < vectors; ++v)
            store(output + q * outputStep + v * doubleLanes, narrow(s.sum[q][v]));
    }
}

// `periods` as a constant.
template <class Sum, int32_t most>
[[gnu::always_inline]] inline void sumPeriods(const PolyphaseBank &bank, Group group, int64_t sampleStep,
                                              float *output, int64_t outputStep, int64_t periods)
{
    if constexpr (most > 1) {
        if (periods < most) {
            sumPeriods<Sum, most - 1>(bank, group, sampleStep, output, outputStep, periods);
            return;
        }
    }
    sumGroups<Sum, narrowLanes, most>(bank, group, sampleStep, output, outputStep);
}

// Groups of one period after the other, from output k on.
template <class Sum, int32_t lanes>
void sumInTurn(const PolyphaseBank &bank, const OutputSpan &span, float *output, int32_t k)
{
    const Reach<lanes> reach(bank);
    for (; k < span.count; k += lanes) {
        const int32_t first = k <= span.count - lanes ? k : span.count - lanes;
        const Group group = groupAt<lanes>(bank, span, reach, first);
        if (first >= 0) {
            sumGroups<Sum, lanes, 1>(bank, group, 0, output + first, 0);
        } else {
            float whole[lanes];
            sumGroups<Sum, lanes, 1>(bank, group, 0, whole, 0);
            for (int32_t i = 0; i < span.count; ++i)
                output[i] = whole[i - first];
        }
    }
}

template <class Sum> void sumsOf(const PolyphaseBank &bank, const OutputSpan &span, float *output)
{
    if (bank.lanes < narrowLanes) {
        Sum::plain()(bank, span, output);
        return;
    }
    constexpr int32_t mostPeriods = doubleLanes; // eight vectors
    const int32_t count = span.count;
    const int64_t perRound = int64_t{mostPeriods} * bank.up;
    const int64_t step = (count + perRound - 1) / perRound * bank.up;
    if (step < narrowLanes || count < 2 * step) {
        if (bank.lanes == wideLanes)
            sumInTurn<Sum, wideLanes>(bank, span, output, 0);
        else
            sumInTurn<Sum, narrowLanes>(bank, span, output, 0);
        return;
    }
    const Reach<narrowLanes> reach(bank);
    const auto outputStep = static_cast<int32_t>(step);
    const int64_t sampleStep = step / bank.up * bank.down;
    int32_t first = 0;
    Group next = groupAt<narrowLanes>(bank, span, reach, first);
    for (int32_t k = 0; k < outputStep; k += narrowLanes) {
        const Group group = next; // the next is found ahead, while this one is summed
        const int32_t here = first;
        first = k + narrowLanes <= outputStep - narrowLanes ? k + narrowLanes : outputStep - narrowLanes;
        next = groupAt<narrowLanes>(bank, span, reach, first);
        sumPeriods<Sum, mostPeriods>(bank, group, sampleStep, output + here, outputStep,
                                     (count - narrowLanes - here) / outputStep + 1);
    }
    const int32_t inLastPeriods = count % outputStep;
    sumInTurn<Sum, narrowLanes>(bank, span, output, count - inLastPeriods % narrowLanes);
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
