#include "families.h"

namespace bits
{

std::span<const Family> families()
{
    static constexpr Family table[] = {
        {"kett vectors", false, kettVectors},
        {"kett samples", false, kettSamples},
        {"kett filter", false, kettFilter},
        {"kett numbers", false, kettNumbers},
        {"fft", false, spectra},
        {"fft maths", true, decibelsAndEmphasis},
        {"xcorr", false, correlation},
        {"fmclt", false, lappedTransform},
        {"fmclt maths", true, twiddles},
        {"filter direct", false, directForm},
        {"filter biquads", false, biquads},
        {"filter text", false, filterText},
        {"filter maths", true, filterDesigns},
        {"resample sums", false, resampleSums},
        {"resample hold", false, resampleHold},
        {"resample maths", true, resampleTaps},
        {"solafs", false, timeScaling},
        {"interpolate", false, interpolation},
        {"measures", false, measures},
        {"measures maths", true, energy},
        {"scales maths", true, scales},
        {"noisesup", false, suppressorSamples},
        {"window", false, windows},
        {"window maths", true, windowShapes},
    };
    return table;
}

} // namespace bits
