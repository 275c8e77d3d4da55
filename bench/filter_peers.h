// The textbook's loops of both structures, compiled apart with every freedom that a C compiler has on this processor. All
// run interleaved frames.
#pragma once

#include <cstddef>

namespace peers
{

// A transfer function of `order`, divided by a(0): b and a hold `order` + 1 coefficients.
struct TransferFunction {
    size_t order;
    const float *b;
    const float *a;
};

struct Section {
    double a1, a2, b0, b1, b2;
};

struct Block {
    size_t channels;
    size_t frames;
    const float *input;
    float *output;
};

// Direct form II with a delay line per channel that moves at each sample: `order` floats a channel.
void directForm(const TransferFunction &filter, float *delays, const Block &block);

// Transposed direct form II, as numerical packages filter: `order` floats a channel.
void transposedForm(const TransferFunction &filter, float *states, const Block &block);

// Sections in double, float between them: two doubles a section and channel.
void biquads(const Section *sections, size_t count, double *delays, const Block &block);

// Transposed sections, in double from end to end: two doubles a section and channel.
void transposedBiquads(const Section *sections, size_t count, double *states, const Block &block);

} // namespace peers
