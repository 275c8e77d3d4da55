#include "filter_peers.h"

namespace peers
{

void directForm(const TransferFunction &filter, float *delays, const Block &block)
{
    const auto [order, b, a] = filter;
    for (size_t i = 0; i < block.frames * block.channels; i += block.channels)
        for (size_t c = 0; c < block.channels; ++c) {
            float *delay = delays + c * order;
            float w = block.input[i + c];
            for (size_t k = 0; k < order; ++k)
                w -= a[k + 1] * delay[k];
            float y = b[0] * w;
            for (size_t k = 0; k < order; ++k)
                y += b[k + 1] * delay[k];
            for (size_t k = order; k-- > 1;)
                delay[k] = delay[k - 1];
            if (order > 0)
                delay[0] = w;
            block.output[i + c] = y;
        }
}

void transposedForm(const TransferFunction &filter, float *states, const Block &block)
{
    const auto [order, b, a] = filter;
    for (size_t c = 0; c < block.channels; ++c) {
        float *state = states + c * order;
        for (size_t i = c; i < block.frames * block.channels; i += block.channels) {
            const float x = block.input[i];
            const float y = order > 0 ? state[0] + b[0] * x : b[0] * x;
            for (size_t k = 1; k < order; ++k)
                state[k - 1] = state[k] + b[k] * x - a[k] * y;
            if (order > 0)
                state[order - 1] = b[order] * x - a[order] * y;
            block.output[i] = y;
        }
    }
}

void biquads(const Section *sections, size_t count, double *delays, const Block &block)
{
    for (size_t i = 0; i < block.frames * block.channels; i += block.channels)
        for (size_t c = 0; c < block.channels; ++c) {
            double *w = delays + c * count * 2;
            float x = block.input[i + c];
            for (size_t s = 0; s < count; ++s, w += 2) {
                const auto [a1, a2, b0, b1, b2] = sections[s];
                const double t = static_cast<double>(x) - a1 * w[0] - a2 * w[1];
                x = static_cast<float>(b0 * t + b1 * w[0] + b2 * w[1]);
                w[1] = w[0];
                w[0] = t;
            }
            block.output[i + c] = x;
        }
}

void transposedBiquads(const Section *sections, size_t count, double *states, const Block &block)
{
    for (size_t c = 0; c < block.channels; ++c)
        for (size_t i = c; i < block.frames * block.channels; i += block.channels) {
            double *state = states + c * count * 2;
            double x = static_cast<double>(block.input[i]);
            for (size_t s = 0; s < count; ++s, state += 2) {
                const auto [a1, a2, b0, b1, b2] = sections[s];
                const double y = b0 * x + state[0];
                state[0] = b1 * x - a1 * y + state[1];
                state[1] = b2 * x - a2 * y;
                x = y;
            }
            block.output[i] = static_cast<float>(x);
        }
}

} // namespace peers
