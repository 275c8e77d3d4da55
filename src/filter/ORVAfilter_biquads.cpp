// The biquad form: a cascade of sections, each with its own w per channel. In one section:
//     w[n] = (x[n] - a1 w[n-1]) - a2 w[n-2]
//     y[n] = (b0 w[n] + b1 w[n-1]) + b2 w[n-2]
// The sums are double; y is rounded to float before it enters the next section.
#include "filter/ORVAfilter_internal.h"

#include <algorithm>

int32_t _DFIISOSfilter(_ORVA_FILTER *filter, const float *input, float *output, uint32_t numSamples,
                       uint32_t offset, uint32_t stride)
{
    auto *state = static_cast<_DFIISOSstate *>(filter->state);
    const auto channels = static_cast<size_t>(filter->numChannels);
    const auto sections = static_cast<size_t>(state->numBiquads);
    const size_t slot = channels * sections; // doubles
    const double *records = state->coefs;
    double *memory = state->memory;
    auto position = static_cast<uint32_t>(state->position);
    const int64_t last = lastFrameStart(numSamples, filter->numChannels);

    for (int64_t i = offset; i <= last; i += stride) {
        double *w0 = memory + position * slot;
        const double *w1 = memory + ((position + 1) & 3) * slot;
        const double *w2 = memory + ((position + 2) & 3) * slot;
        for (size_t c = 0; c < channels; ++c) {
            float x = input[i + static_cast<int64_t>(c)];
            const double *record = records;
            for (size_t s = 0; s < sections; ++s, record += biquadDoubles) {
                const double a1 = record[0], a2 = record[1], b0 = record[2], b1 = record[3], b2 = record[4];
                const double t = (static_cast<double>(x) - w1[s] * a1) - w2[s] * a2;
                w0[s] = t;
                x = static_cast<float>((t * b0 + b1 * w1[s]) + b2 * w2[s]);
            }
            output[i + static_cast<int64_t>(c)] = x;
            w0 += sections;
            w1 += sections;
            w2 += sections;
        }
        position = (position - 1) & 3;
    }
    state->position = static_cast<int32_t>(position);
    return 1;
}

int32_t _DFIISOSreset(_ORVA_FILTER *filter)
{
    const auto *state = static_cast<const _DFIISOSstate *>(filter->state);
    const size_t slot = static_cast<size_t>(filter->numChannels) * static_cast<size_t>(state->numBiquads);
    std::fill_n(state->memory, biquadSlots * slot, 0.0);
    return 1;
}

int32_t _DFIISOScopyMem(_ORVA_FILTER *destination, const _ORVA_FILTER *source)
{
    auto *to = static_cast<_DFIISOSstate *>(destination->state);
    const auto *from = static_cast<const _DFIISOSstate *>(source->state);
    const auto channels = static_cast<size_t>(source->numChannels);
    const auto toSections = static_cast<size_t>(to->numBiquads);
    const auto fromSections = static_cast<size_t>(from->numBiquads);
    const size_t toSize = biquadSlots * channels * toSections;

    if (toSections > 0 && fromSections == toSections) {
        std::copy_n(from->memory, toSize, to->memory);
        to->position = from->position;
        return 1;
    }
    if (toSections == 0 || fromSections == 0) {
        std::fill_n(to->memory, toSize, 0.0);
        to->position = 0;
        return 1;
    }
    const size_t common = std::min(toSections, fromSections);
    const size_t missing = toSections - common;
    for (size_t t = 0; t < biquadSlots; ++t) {
        for (size_t c = 0; c < channels; ++c) {
            std::copy_n(from->memory + (t * channels + c) * fromSections, common,
                        to->memory + (t * channels + c) * toSections);
            // `channels` times c, where the copy has the section count: hosts depend on which memories are
            // kept. With many channels the stretch reaches past the memory, whose end is where clearing
            // stops.
            const size_t cleared = std::min(toSections * t * channels + channels * c + fromSections, toSize);
            std::fill_n(to->memory + cleared, std::min(missing, toSize - cleared), 0.0);
        }
    }
    to->position = from->position;
    return 1;
}
