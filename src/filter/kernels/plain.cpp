#include "filter/kernels/ORVAfilter_kernels.h"

namespace orva
{
namespace plain
{
namespace
{

// One recursion of any order over a delay line that numerator and denominator share. Per channel, the coefficients
// divided by a(0):
//     w[n] = x[n] - sum(k = 1 .. denOrder) a(k) w[n-k]
//     y[n] = sum(k = 1 .. numOrder) b(k) w[n-k] + b(0) w[n]
// All in float, in the order of k, the term of w[n] last. An input is read before its output is cleared, since they may
// be one.
void directForm(_DFIIstate &state, const Frames &frames)
{
    const size_t channels = frames.channels;
    const int32_t order = state.order;
    float *const ring = state.memory;
    int32_t position = state.position;

    for (int64_t i = frames.first; i <= frames.last; i += frames.stride) {
        const float *x = frames.input + i;
        float *y = frames.output + i;
        float *w = ring + static_cast<size_t>(position) * channels;
        for (size_t c = 0; c < channels; ++c) {
            w[c] = x[c];
            y[c] = 0.0f;
        }
        int32_t row = position;
        for (int32_t k = 0; k < order; ++k) {
            row = row < order ? row + 1 : 0;
            const float *older = ring + static_cast<size_t>(row) * channels;
            if (k < state.denOrder)
                for (size_t c = 0; c < channels; ++c)
                    w[c] -= state.denominator[k] * older[c];
            if (k < state.numOrder)
                for (size_t c = 0; c < channels; ++c)
                    y[c] += state.numerator[k] * older[c];
        }
        for (size_t c = 0; c < channels; ++c)
            y[c] += w[c] * state.gain;
        position = position < 1 ? order : position - 1;
    }
    state.position = position;
}

// A cascade of sections, each with its own w per channel. In one section:
//     w[n] = (x[n] - a1 w[n-1]) - a2 w[n-2]
//     y[n] = (b0 w[n] + b1 w[n-1]) + b2 w[n-2]
// The sums are double; y is rounded to float before it enters the next section.
void biquads(_DFIISOSstate &state, const Frames &frames)
{
    const size_t channels = frames.channels;
    const auto sections = static_cast<size_t>(state.numBiquads);
    const size_t slot = channels * sections; // doubles
    double *const memory = state.memory;
    auto position = static_cast<uint32_t>(state.position);

    for (int64_t i = frames.first; i <= frames.last; i += frames.stride) {
        const float *input = frames.input + i;
        float *output = frames.output + i;
        double *w0 = memory + position * slot;
        const double *w1 = memory + ((position + 1) & 3) * slot;
        const double *w2 = memory + ((position + 2) & 3) * slot;
        for (size_t c = 0; c < channels; ++c) {
            float x = input[c];
            const double *record = state.coefs;
            for (size_t s = 0; s < sections; ++s, record += biquadDoubles) {
                const double a1 = record[0], a2 = record[1], b0 = record[2], b1 = record[3], b2 = record[4];
                const double w = (static_cast<double>(x) - w1[s] * a1) - w2[s] * a2;
                w0[s] = w;
                x = static_cast<float>((w * b0 + b1 * w1[s]) + b2 * w2[s]);
            }
            output[c] = x;
            w0 += sections;
            w1 += sections;
            w2 += sections;
        }
        position = (position - 1) & 3;
    }
    state.position = static_cast<int32_t>(position);
}

} // namespace
} // namespace plain

template <> const FilterKernels &kernelsAt<FilterKernels, Level::plain>()
{
    static constexpr FilterKernels table = {plain::directForm, plain::biquads};
    return table;
}

} // namespace orva
