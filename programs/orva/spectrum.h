// The spectrum of one frame after the other, seen through a window. Levels are in dB, 0 being a sine of full scale.
#pragma once

#include <orva/ORVAfft.h>

#include <memory>
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
    Spectrum(int32_t window, int32_t size);

    // To be filled before each transform; it is windowed in place.
    float *frame()
    {
        return samples.data();
    }

    // From 0 to half the rate.
    int32_t bins() const
    {
        return size / 2 + 1;
    }

    // The level of each bin, no lower than -range.
    const std::vector<float> &levels(double range);

private:
    struct Destroy {
        void operator()(ORVA_FFT *fft) const
        {
            ORVA_FFTProcDestroy(fft);
        }
    };

    int32_t size;
    double norm = 0;
    std::vector<float> window, samples, power, decibels;
    std::vector<ORVA_COMPLEX> work;
    std::unique_ptr<ORVA_FFT, Destroy> fft;
};

} // namespace orva
