// What is hashed, a family a row. Each takes its inputs from Numbers of a fixed seed and meets every path of the kernels:
// odd sizes, every alignment, blocks cut anywhere, one and several channels, buffers that overlap.
#pragma once

#include "digest.h"

#include <span>

namespace bits
{

struct Family {
    const char *name;
    bool takesMaths; // passes through the C library's sines, logarithms and the like
    void (*compute)(Digest &results);
};

std::span<const Family> families();

void kettVectors(Digest &results);
void kettSamples(Digest &results);
void kettFilter(Digest &results);
void kettNumbers(Digest &results);

void spectra(Digest &results);
void correlation(Digest &results);
void lappedTransform(Digest &results);
void decibelsAndEmphasis(Digest &results);
void twiddles(Digest &results);

void directForm(Digest &results);
void biquads(Digest &results);
void filterText(Digest &results);
void filterDesigns(Digest &results);

void resampleSums(Digest &results);
void resampleHold(Digest &results);
void resampleTaps(Digest &results);

void timeScaling(Digest &results);
void interpolation(Digest &results);
void measures(Digest &results);
void energy(Digest &results);
void scales(Digest &results);
void suppressorSamples(Digest &results);
void windows(Digest &results);
void windowShapes(Digest &results);

} // namespace bits
