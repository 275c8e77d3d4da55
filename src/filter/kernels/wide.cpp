// Which calls run over vectors: those with frames and buffers that lie apart, and with frames enough to be worth it.
#include "filter/kernels/ORVAfilter_kernels.h"
#include "filter/kernels/wide_biquads.h"
#include "filter/kernels/wide_direct.h"

namespace orva
{
namespace ORVA_LEVEL
{
namespace
{

void directForm(_DFIIstate &state, const Frames &frames)
{
    constexpr int64_t fewFrames = 8;
    if (frames.first > frames.last)
        return;
    if (!isRegular(frames) || int64_t{state.order} * lanesFor(frames.channels) > historyFloats ||
        (frames.last - frames.first) / frames.stride < fewFrames)
        return kernelsAt<FilterKernels, Level::plain>().directForm(state, frames);

    const int64_t frameCount = (frames.last - frames.first) / frames.stride + 1;
    for (size_t channel = 0; channel < frames.channels;) {
        const size_t left = frames.channels - channel;
        const int64_t lanes = lanesFor(left);
        const size_t channels = left < static_cast<size_t>(lanes) ? left : static_cast<size_t>(lanes);
        runDirect({state, frames, frameCount, channel, static_cast<int64_t>(channels)}, lanes);
        channel += channels;
    }
    const int64_t rows = int64_t{state.order} + 1;
    state.position = static_cast<int32_t>((state.position - frameCount % rows + rows) % rows);
}

void biquads(_DFIISOSstate &state, const Frames &frames)
{
    const auto &plain = kernelsAt<FilterKernels, Level::plain>();
    if (frames.first > frames.last)
        return;
    if (!isRegular(frames) || state.numBiquads == 0)
        return plain.biquads(state, frames);
    // Two frames at least are left to the plain form, which leaves them where they belong in the slots.
    const int64_t frameCount = ((frames.last - frames.first) / frames.stride - 1) / stepsOfLag * stepsOfLag;
    if (frameCount < leastFrames(state, frames.channels))
        return plain.biquads(state, frames);
    runCascade(state, frames, frameCount);
    Frames rest = frames;
    rest.first += frameCount * frames.stride;
    plain.biquads(state, rest);
}

} // namespace
} // namespace ORVA_LEVEL

template <> const FilterKernels &kernelsAt<FilterKernels, Level::ORVA_LEVEL>()
{
    static constexpr FilterKernels table = {ORVA_LEVEL::directForm, ORVA_LEVEL::biquads};
    return table;
}

} // namespace orva
