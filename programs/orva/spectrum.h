// The spectrum of one frame after the other, seen through a window. Levels are in dB, 0 being a sine of full scale.
#pragma once

#include <orva/ORVAfft.h>

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace orva
{

// The code of a window; refuses, as used wrongly, a name that none has.
int32_t windowNamed(const std::string &name);

class Spectrum
{
public:
    // Refuses, as used wrongly, a window without gain at this size.
    explicit Spectrum(int32_t size, const std::string &window = "Hanning");

    // To be filled before each transform; it is windowed in place.
    std::span<float> frame()
    {
        return samples;
    }

    // From 0 to half the rate.
    size_t bins() const
    {
        return samples.size() / 2 + 1;
    }

    // The power of each bin of the frame, without scaling; it may be changed before levels() measures it.
    std::span<float> transform();

    // The same for a stream: moves `past`, its last samples, on by newer ones, and takes it as the frame.
    void follow(std::span<float> past, std::span<const float> newer);

    std::span<float> power()
    {
        return {powers.data(), bins()};
    }

    // The level of each bin, no lower than -range. `gain`, one for each bin, multiplies its magnitude; it stands at an
    // address that 16 divides, with room for three more.
    std::span<const float> levels(double range, const float *gain = nullptr);

private:
    struct Destroy {
        void operator()(ORVA_FFT *fft) const
        {
            ORVA_FFTProcDestroy(fft);
        }
    };

    double norm = 0;
    std::vector<float> window, samples, powers, decibels;
    std::vector<ORVA_COMPLEX> work;
    std::unique_ptr<ORVA_FFT, Destroy> fft;
};

} // namespace orva
