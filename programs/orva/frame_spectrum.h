// The spectrum of one frame of samples after the other, through a Hann window.
#pragma once

#include "failure.h"

extern "C" {
#include "common/spectrum.h"
}

#include <orva/ORVAwinfnc.h>

#include <algorithm>
#include <cstddef>
#include <span>

namespace orva
{

class FrameSpectrum
{
public:
    explicit FrameSpectrum(int32_t size)
    {
        if (!spectrumBegin(&spectrum, ORVA_GetWindowType("Hanning"), size))
            throw Failure{didNotWork, ""}; // it has been told why
    }

    ~FrameSpectrum()
    {
        spectrumEnd(&spectrum);
    }

    FrameSpectrum(const FrameSpectrum &) = delete;
    FrameSpectrum &operator=(const FrameSpectrum &) = delete;

    size_t bins() const
    {
        return static_cast<size_t>(spectrum.bins);
    }

    // The power of each bin of a frame, without scaling; it may be changed before levels() measures it.
    std::span<float> transform(std::span<const float> frame)
    {
        std::copy(frame.begin(), frame.end(), spectrum.frame);
        spectrumTransform(&spectrum);
        return power();
    }

    // The same for a stream: moves `past`, its last samples, on by newer ones, and takes it as the frame.
    std::span<float> follow(std::span<float> past, std::span<const float> newer)
    {
        spectrumFollow(&spectrum, past.data(), newer.data(), static_cast<int32_t>(newer.size()));
        return power();
    }

    std::span<float> power()
    {
        return {spectrum.power, bins()};
    }

    // The level of each bin in dB, 0 being a sine of full scale, no lower than -range. `gain`, one for each bin, multiplies
    // its magnitude; it stands at an address that 16 divides, with room for three more.
    std::span<const float> levels(double range, const float *gain = nullptr)
    {
        spectrumMeasure(&spectrum, gain, range);
        return {spectrum.levels, bins()};
    }

private:
    Spectrum spectrum{};
};

} // namespace orva
