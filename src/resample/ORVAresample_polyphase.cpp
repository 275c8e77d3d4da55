// The polyphase converter at work. With x the input, an output in phase p at input sample i is
//
//     y = sum over j = 0 .. taps - 1 of phases[p][j] x(i - j)
//
// added in double from j = 0 on. That order fixes the bits, so one sum cannot be split; but several outputs
// can be summed at once, each in its order. They reach across input samples, so a block is first laid out
// newest sample first, with the delay line behind it: then every output is one product of two stretches of
// memory.
#include "resample/ORVAresample_internal.h"

#include <algorithm>
#include <array>
#include <limits>

namespace
{

constexpr size_t outputsAtOnce = 6; // hides the time of an addition, and fits the registers

struct Factors {
    const double *coefs;
    const double *samples;
};

} // namespace

template <size_t count> static inline void sumProducts(const Factors *factors, int32_t taps, float *output)
{
    std::array<Factors, count> at;
    std::copy_n(factors, count, at.begin());
    std::array<double, count> sum{};
    for (int32_t j = 0; j < taps; ++j) {
#pragma GCC unroll 8
        for (size_t k = 0; k < count; ++k)
            sum[k] += at[k].coefs[j] * at[k].samples[j];
    }
    for (size_t k = 0; k < count; ++k)
        output[k] = static_cast<float>(sum[k]);
}

static void pushBlock(PolyphaseResampler *resampler, const float *input, int32_t count)
{
    double *ring = resampler->ring;
    const int32_t taps = resampler->tapsPerPhase;
    const int32_t newest = (resampler->ringPosition - count % taps + taps) % taps;
    int32_t slot = newest;
    for (int32_t j = 0; j < std::min(count, taps); ++j) {
        ring[slot] = static_cast<double>(input[count - 1 - j]);
        if (++slot == taps)
            slot = 0;
    }
    resampler->ringPosition = newest;
}

// The block newest sample first, and behind it the delay line, which goes on from there.
static void layOut(PolyphaseResampler *resampler, const float *input, int32_t count)
{
    double *work = resampler->work;
    for (int32_t i = 0; i < count; ++i)
        work[count - 1 - i] = static_cast<double>(input[i]);
    const double *ring = resampler->ring;
    std::rotate_copy(ring, ring + resampler->ringPosition, ring + resampler->tapsPerPhase, work + count);
}

// `written` outputs of the block that is laid out, the first at `start`, in L-ths of a sample from its
// beginning.
static void sumOutputs(const PolyphaseResampler *resampler, int32_t count, int64_t start, int32_t written,
                       float *output)
{
    const int32_t up = resampler->upFactor;
    const int32_t taps = resampler->tapsPerPhase;
    double *const *phases = resampler->phases;
    const int32_t samplesPerStep = resampler->downFactor / up;
    const int32_t phasesPerStep = resampler->downFactor % up;
    const double *work = resampler->work;
    int64_t newest = count - 1 - start / up; // in `work`; below it behind the last output
    auto phase = static_cast<int32_t>(start % up);
    const auto next = [&] {
        const Factors factors{phases[phase], work + newest};
        newest -= samplesPerStep;
        phase += phasesPerStep;
        if (phase >= up) {
            phase -= up;
            --newest;
        }
        return factors;
    };
    std::array<Factors, outputsAtOnce> group;
    int32_t left = written;
    for (; left >= int32_t{outputsAtOnce}; left -= int32_t{outputsAtOnce}, output += outputsAtOnce) {
        std::generate(group.begin(), group.end(), next);
        sumProducts<outputsAtOnce>(group.data(), taps, output);
    }
    for (; left > 0; --left, ++output) {
        group[0] = next();
        sumProducts<1>(group.data(), taps, output);
    }
}

int32_t runPolyphase(PolyphaseResampler *resampler, const float *input, float *output, int32_t count)
{
    if (resampler->phase < 0)
        return -1; // flushed
    const int64_t phase = resampler->phase;
    const int64_t down = resampler->downFactor;
    const int64_t span = int64_t{count} * resampler->upFactor; // of the block, in L-ths of a sample
    const int64_t due = phase < span ? (span - phase + down - 1) / down : 0;
    const int64_t skipped = std::min<int64_t>(due, resampler->delayToSkip);
    const int64_t written = due - skipped;
    if (written > std::numeric_limits<int32_t>::max() ||
        !growWork(resampler->work, resampler->workCapacity, count,
                  int64_t{count} + resampler->tapsPerPhase)) {
        reportInvalidParameters();
        return -1;
    }
    if (written > 0)
        layOut(resampler, input, count);
    pushBlock(resampler, input, count); // before anything is written over `input`
    if (written > 0)
        sumOutputs(resampler, count, phase + skipped * down, static_cast<int32_t>(written), output);
    resampler->delayToSkip -= static_cast<int32_t>(skipped);
    resampler->phase = static_cast<int32_t>(phase + due * down - span);
    return static_cast<int32_t>(written);
}

// sum = (float) (sum + coefs[j] x(i - j)): the running sum is a float, which is meant.
static float sumRounded(float sum, const double *coefs, const double *samples, int32_t count)
{
    for (int32_t j = 0; j < count; ++j)
        sum = static_cast<float>(static_cast<double>(sum) + coefs[j] * samples[j]);
    return sum;
}

int32_t flushPolyphase(PolyphaseResampler *resampler, float *output, int32_t maxCount)
{
    const int32_t remaining = resampler->delay;
    const int32_t limit = maxCount > 0 ? std::min(maxCount, remaining) : remaining;
    if (limit < 1 || resampler->phase < 0)
        return 0;
    double *ring = resampler->ring;
    const int32_t taps = resampler->tapsPerPhase;
    int32_t position = resampler->ringPosition;
    int32_t phase = resampler->phase;
    int32_t written = 0;
    while (phase >= 0 && written < limit) {
        position = position > 0 ? position - 1 : taps - 1;
        ring[position] = 0.0;
        while (phase < resampler->upFactor) {
            if (resampler->delayToSkip == 0) {
                const double *coefs = resampler->phases[phase];
                const int32_t first = taps - position; // up to the end of the ring
                const float sum = sumRounded(0.0f, coefs, ring + position, first);
                output[written++] = sumRounded(sum, coefs + first, ring, position);
                if (written >= limit)
                    break; // the phase is not moved on, and comes out below zero: that makes a flush final
            } else {
                --resampler->delayToSkip;
            }
            phase += resampler->downFactor;
        }
        phase -= resampler->upFactor;
    }
    resampler->phase = phase;
    resampler->ringPosition = position;
    resampler->delay = remaining - written;
    return written;
}
