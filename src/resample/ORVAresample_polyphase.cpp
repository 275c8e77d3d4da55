// The polyphase converter at work: a block is added to the delay line, the outputs that it makes due are summed.
#include "resample/ORVAresample_polyphase.h"

#include "resample/ORVAresample_work.h"
#include "resample/kernels/ORVAresample_kernels.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace orva
{
namespace
{

// Moves the delay line back to the beginning of `work` when the block does not fit after it. Blocks that are shorter
// than the delay line do so only once in as many samples as that is long.
void makeRoom(PolyphaseResampler *resampler, int32_t count)
{
    const int32_t history = resampler->history;
    if (resampler->end + count <= int64_t{history} + resampler->workCapacity)
        return;
    std::copy(resampler->work + resampler->end - history, resampler->work + resampler->end, resampler->work);
    resampler->end = history;
}

// A block that has been put at the end of the delay line.
struct Block {
    int32_t count;   // samples
    bool allFinite;  // and those of the delay line that go with them
    int64_t due;     // outputs
    int64_t skipped; // of these, the first
};

Block blockOf(const PolyphaseResampler *resampler, int32_t count, bool allFinite)
{
    const int64_t phase = resampler->phase;
    const int64_t down = resampler->downFactor;
    const int64_t span = int64_t{count} * resampler->upFactor; // in L-ths of a sample
    const int64_t due = phase < span ? (span - phase + down - 1) / down : 0;
    return {count, allFinite && resampler->finiteSamples >= resampler->history, due,
            std::min<int64_t>(due, resampler->delayToSkip)};
}

OutputSpan outputsOf(const PolyphaseResampler *resampler, const Block &block, int32_t count)
{
    const int64_t next =
        resampler->nextSample; // the first due output, n, is at the time n M = next L + phase
    const int64_t n = (next * resampler->upFactor + resampler->phase) / resampler->downFactor;
    return {.samples = resampler->work + resampler->end,
            .firstSample = next,
            .firstOutput = n + block.skipped,
            .count = count,
            .zerosFrom = resampler->work + resampler->end + block.count,
            .allFinite = block.allFinite};
}

void advance(PolyphaseResampler *resampler, const Block &block)
{
    const int64_t span = int64_t{block.count} * resampler->upFactor;
    resampler->phase = static_cast<int32_t>(resampler->phase + block.due * resampler->downFactor - span);
    resampler->delayToSkip -= static_cast<int32_t>(block.skipped);
    resampler->nextSample =
        static_cast<int32_t>((int64_t{resampler->nextSample} + block.count) % resampler->downFactor);
    resampler->end += block.count;
}

// How many samples at the end of the delay line are finite, up to `most`.
int32_t finiteAtEnd(const double *end, int32_t most)
{
    int32_t count = 0;
    while (count < most && std::isfinite(end[-1 - count]))
        ++count;
    return count;
}

// Zeros after a block, where groups of outputs reach.
void clearAhead(const PolyphaseResampler *resampler, const Block &block)
{
    std::fill_n(resampler->work + resampler->end + block.count, resampler->ahead, 0.0);
}

} // namespace

int32_t runPolyphase(PolyphaseResampler *resampler, const float *input, float *output, int32_t count)
{
    if (resampler->phase < 0)
        return -1; // flushed
    const int32_t history = resampler->history;
    Block block = blockOf(resampler, count, true);
    const int64_t written = block.due - block.skipped;
    if (written > std::numeric_limits<int32_t>::max() ||
        !growWork(resampler->work, resampler->workCapacity, count,
                  int64_t{history} + count + resampler->ahead)) {
        reportInvalidParameters();
        return -1;
    }
    makeRoom(resampler, count);
    const bool allFinite = kernels<ResampleKernels>().widen(input, resampler->work + resampler->end, count);
    block.allFinite = block.allFinite && allFinite;
    const auto outputs = outputsOf(resampler, block, static_cast<int32_t>(written));
    if (written > 0) {
        clearAhead(resampler, block);
        kernels<ResampleKernels>().sums(resampler->bank, outputs, output);
    }
    advance(resampler, block);
    if (allFinite) {
        resampler->finiteSamples =
            static_cast<int32_t>(std::min<int64_t>(history, int64_t{resampler->finiteSamples} + count));
    } else {
        resampler->finiteSamples = finiteAtEnd(resampler->work + resampler->end, history);
    }
    return static_cast<int32_t>(written);
}

// Zeros go through the filter, no more of them than the last output takes. The phase is left below zero, at that of the last
// output less L, which marks the converter as flushed.
int32_t flushPolyphase(PolyphaseResampler *resampler, float *output, int32_t maxCount)
{
    const int32_t remaining = resampler->delay;
    const int32_t limit = maxCount > 0 ? std::min(maxCount, remaining) : remaining;
    if (limit < 1 || resampler->phase < 0)
        return 0;
    const int64_t last = int64_t{resampler->delayToSkip} + limit - 1;     // outputs before it
    const int64_t time = resampler->phase + last * resampler->downFactor; // of the last, in L-ths of a sample
    const int64_t zeros = time / resampler->upFactor + 1;
    int32_t written = 0;
    for (int64_t played = 0; played < zeros;) {
        const auto count = static_cast<int32_t>(std::min<int64_t>(zeros - played, resampler->workCapacity));
        makeRoom(resampler, count);
        std::fill_n(resampler->work + resampler->end, count, 0.0);
        const Block block = blockOf(resampler, count, true);
        auto outputs =
            outputsOf(resampler, block,
                      static_cast<int32_t>(std::min<int64_t>(block.due - block.skipped, limit - written)));
        outputs.zerosFrom = outputs.samples - std::min<int64_t>(played, resampler->history);
        if (outputs.count > 0) {
            clearAhead(resampler, block);
            kernels<ResampleKernels>().roundedSums(resampler->bank, outputs, output + written);
        }
        written += outputs.count;
        advance(resampler, block);
        played += count;
    }
    resampler->phase = static_cast<int32_t>(time % resampler->upFactor) - resampler->upFactor;
    resampler->delay = remaining - written;
    return written;
}

} // namespace orva
