// All doubles below 2^-1021 are multiples of u = 2^-1074, and the products and sums of such numbers are rounded to that: a
// product to the nearest multiple, of two equally near ones to the even one, while a sum is exact. So memories are run as
// numbers of u, which are integers and no burden to any processor,
//
//     w[n] = (x[n] - R(a1 w[n-1])) - R(a2 w[n-2])
//     y[n] = (R(b0 w[n]) + R(b1 w[n-1])) + R(b2 w[n-2])
//
// where R rounds to integers as above and leaves a zero its sign. Before that the product of an integer below 2^40 and a
// factor of 53 digits is rounded to 53 digits itself. This hides only on which side of the middle between two integers it
// was, if it then is that middle; a step in which it is, is done as by definition.
//
// With zeros of either sign at its input, what a section gives are zeros whose signs are those of y, and the next one takes
// them. So nothing may be cleared: the smallest memory decides signs for as long as it lasts.
//
// Each section is run over all frames before the next. Sooner or later its memories come back to what they were, often
// after a few frames; from then on its zeros repeat as well, as long as no sign at the input has a say.
#include "filter/ORVAfilter_silence.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

namespace orva
{
namespace
{

using Pair [[gnu::vector_size(16)]] = double;
using PairBits [[gnu::vector_size(16)]] = int64_t;

constexpr int64_t signBit = INT64_MIN;
constexpr double mostUnits = 0x1p40;

// By its bits, as a comparison may be slow, too.
bool isTiny(double w)
{
    return (std::bit_cast<int64_t>(w) & ~signBit) < int64_t{1} << 40;
}

// The bits of such a number without the sign are the integer.
double unitsOf(double w)
{
    return std::copysign(static_cast<double>(std::bit_cast<int64_t>(w) & ~signBit), w);
}

double ofUnits(double units)
{
    const auto magnitude = static_cast<int64_t>(std::fabs(units));
    return std::bit_cast<double>(magnitude | (std::bit_cast<int64_t>(units) & signBit));
}

// Where the rounding may have been hidden: a half, or what is never reached, for factors of so few digits that each product
// is exact.
double doubtOf(double factor)
{
    constexpr int64_t lowDigits = (int64_t{1} << 41) - 1;
    return (std::bit_cast<int64_t>(factor) & lowDigits) == 0 ? 2.0 : 0.5;
}

struct Section {
    double a1, a2, b0, b1, b2;
    bool isUsual; // no product of an integer with a factor reaches 2^51
};

Section sectionOf(const double *record)
{
    const bool isUsual =
        std::all_of(record, record + biquadDoubles, [](double c) { return -1024.0 < c && c < 1024.0; });
    return {record[0], record[1], record[2], record[3], record[4], isUsual};
}

// One section of one channel; n is the frame that comes next.
struct Run {
    const float *input;
    float *output;
    int64_t stride;
    int64_t frameCount;
    bool isSilent;     // all of the input are zeros
    bool givesSilence; // up to now
    int64_t n;
    double w[biquadSlots]; // the newest first
};

Pair rounded(Pair product)
{
    constexpr double toIntegers = 0x1.8p52;
    const Pair integers = (product + toIntegers) - toIntegers;
    return reinterpret_cast<Pair>(reinterpret_cast<PairBits>(integers) |
                                  (reinterpret_cast<PairBits>(product) & signBit));
}

PairBits isDoubtful(Pair product, Pair integers, Pair doubt)
{
    return reinterpret_cast<Pair>(reinterpret_cast<PairBits>(product - integers) & ~signBit) == doubt;
}

// The search for memories that come back: those of frames 2^k are kept. Periods that are multiples of four will do, which
// take the four slots round.
struct Cycle {
    Pair w;
    int64_t first;
    int64_t lastOpen;

    bool isRound(Pair now, int64_t n)
    {
        const int64_t length = n - first;
        const bool isSame =
            std::bit_cast<std::array<int64_t, 2>>(now) == std::bit_cast<std::array<int64_t, 2>>(w);
        if (length > 0 && length % 4 == 0 && isSame && lastOpen < first)
            return true;
        if (length > 0 && (n & (n - 1)) == 0)
            *this = {now, n, lastOpen};
        return false;
    }
};

// The frame after as many whole periods as there is room for.
int64_t repeated(const Run &run, int64_t n, int64_t period)
{
    const int64_t end = run.frameCount - (run.frameCount - n) % period;
    for (; n < end; ++n)
        run.output[n * run.stride] = run.output[(n - period) * run.stride];
    return n;
}

// Frames in numbers of u, up to one that has to be done by definition; memories of zeros may be, and stay so.
void runUnits(const Section &s, Run &run)
{
    if (!s.isUsual || !std::all_of(std::begin(run.w), std::end(run.w), isTiny))
        return;
    const Pair a = {s.a1, s.a2}, b = {s.b1, s.b2}, c = {s.b0, 0.0};
    const Pair doubtA = {doubtOf(s.a1), doubtOf(s.a2)}, doubtB = {doubtOf(s.b1), doubtOf(s.b2)};
    const Pair doubtC = {doubtOf(s.b0), 2.0};
    Pair w = {unitsOf(run.w[0]), unitsOf(run.w[1])}, older = {unitsOf(run.w[2]), unitsOf(run.w[3])};
    Cycle cycle = {w, run.n, -1};
    int64_t n = run.n;
    for (; n < run.frameCount && (w[0] != 0.0 || w[1] != 0.0); ++n) {
        const float x = run.input[n * run.stride];
        if (x != 0.0f)
            break;
        if (run.isSilent && cycle.isRound(w, n))
            n = repeated(run, n, n - cycle.first);
        if (n == run.frameCount)
            break;
        const Pair aw = w * a, bw = w * b;
        const Pair A = rounded(aw), B = rounded(bw);
        const double now = (static_cast<double>(x) - A[0]) - A[1];
        const Pair cw = Pair{now, 0.0} * c;
        const Pair C = rounded(cw);
        const PairBits doubts =
            isDoubtful(aw, A, doubtA) | isDoubtful(bw, B, doubtB) | isDoubtful(cw, C, doubtC);
        if ((doubts[0] | doubts[1]) != 0 || std::fabs(now) >= mostUnits)
            break;
        run.output[n * run.stride] = std::copysign(0.0f, static_cast<float>((C[0] + B[0]) + B[1]));
        if (A[0] == 0.0 && A[1] == 0.0) // the sign of x has a say in that of `now`
            cycle.lastOpen = n;
        older = Pair{w[1], older[0]};
        w = Pair{now, w[0]};
    }
    run.n = n;
    const double units[] = {w[0], w[1], older[0], older[1]};
    std::transform(std::begin(units), std::end(units), run.w, ofUnits);
}

void runFrame(const Section &s, Run &run)
{
    const int64_t at = run.n++ * run.stride;
    const double w1 = run.w[0], w2 = run.w[1];
    const double w = (static_cast<double>(run.input[at]) - w1 * s.a1) - w2 * s.a2;
    const auto y = static_cast<float>((w * s.b0 + s.b1 * w1) + s.b2 * w2);
    run.output[at] = y;
    run.givesSilence = run.givesSilence && y == 0.0f;
    std::copy_backward(run.w, run.w + 3, run.w + 4);
    run.w[0] = w;
}

// `memory` is the section's first slot, `position` the one of the first frame.
void runSection(const Section &s, Run &run, double *memory, size_t slot, int64_t position)
{
    const auto at = [=](int64_t p) -> double & { return memory[static_cast<size_t>(p & 3) * slot]; };
    for (int64_t k = 0; k < 4; ++k)
        run.w[k] = at(position + 1 + k);
    while (run.n < run.frameCount) {
        runUnits(s, run);
        if (run.n < run.frameCount)
            runFrame(s, run);
    }
    for (int64_t k = 0; k < 4; ++k)
        at(position - run.frameCount + 1 + k) = run.w[k];
}

// Whether memories are tiny, and not all of them zero, which no processor is slow with.
bool lingers(const _DFIISOSstate &state, size_t channels)
{
    const size_t count = biquadSlots * channels * static_cast<size_t>(state.numBiquads);
    const auto isZero = [](double w) { return (std::bit_cast<int64_t>(w) & ~signBit) == 0; };
    return std::all_of(state.memory, state.memory + count, isTiny) &&
           !std::all_of(state.memory, state.memory + count, isZero);
}

// The frames of zeros at the beginning.
int64_t silentFrames(const Frames &frames, int64_t frameCount)
{
    for (int64_t n = 0; n < frameCount; ++n) {
        const float *frame = frames.input + frames.first + n * frames.stride;
        if (std::any_of(frame, frame + frames.channels, [](float x) { return x != 0.0f; }))
            return n;
    }
    return frameCount;
}

void runSilence(_DFIISOSstate &state, const Frames &frames, int64_t frameCount)
{
    const auto sections = static_cast<size_t>(state.numBiquads);
    for (size_t c = 0; c < frames.channels; ++c) {
        float *output = frames.output + frames.first + c;
        Run run = {frames.input + frames.first + c, output, frames.stride, frameCount, true, true, 0, {}};
        for (size_t s = 0; s < sections; ++s) {
            run.n = 0;
            run.givesSilence = true;
            runSection(sectionOf(state.coefs + biquadDoubles * s), run, state.memory + c * sections + s,
                       frames.channels * sections, state.position);
            run.input = output;
            run.isSilent = run.givesSilence;
        }
    }
    state.position = static_cast<int32_t>((state.position - frameCount) & 3);
}

} // namespace

// In parts, so that silence is found within a long block, too.
void runBiquadsInUnits(_DFIISOSstate &state, const Frames &frames)
{
    constexpr int64_t framesAtOnce = 4096;
    const auto run = kernels<FilterKernels>().biquads;
    if (state.numBiquads == 0 || frames.first > frames.last || !isRegular(frames))
        return run(state, frames);
    Frames part = frames;
    while (part.first <= frames.last) {
        const int64_t left = (frames.last - part.first) / frames.stride + 1;
        int64_t count = std::min(left, framesAtOnce);
        const int64_t silent = lingers(state, frames.channels) ? silentFrames(part, count) : 0;
        if (silent > 0)
            runSilence(state, part, count = silent);
        part.last = part.first + (count - 1) * frames.stride;
        if (silent == 0)
            run(state, part);
        part.first += count * frames.stride;
    }
}

} // namespace orva
