// Measures of a frame, scales of frequency, and the samples of the suppressor.
#include "families.h"
#include "noisesup/kernels/ORVAnoisesup_kernels.h"
#include "numbers.h"

#include <orva/ORVAmisc.h>
#include <orva/ORVAutil.h>

namespace bits
{

void measures(Digest &results)
{
    Numbers numbers(19);
    for (int32_t round = 0; round < 3000; ++round) {
        const size_t offset = numbers.size(0, 15), length = numbers.size(1, 400);
        const auto draw = numbers.coin() ? &Numbers::mixed : &Numbers::finite;
        const auto input = numbers.vector(offset + length, draw);
        std::vector<float> output(offset + length);
        results.add(ORVA_CalcZeroCrossRate(input.data() + offset, static_cast<int32_t>(length)));
        ORVA_RemoveDC(input.data() + offset, output.data() + offset, static_cast<int32_t>(length));
        results.add(output);
        results.add(ORVAUTIL_Bark2Freq(30.0 * numbers.real()));
    }
}

void energy(Digest &results)
{
    Numbers numbers(24);
    for (int32_t round = 0; round < 20000; ++round) {
        const auto input = numbers.vector(numbers.size(1, 40), &Numbers::finite);
        results.add(ORVA_CalcEnergy(input.data(), static_cast<int32_t>(input.size())));
    }
}

void scales(Digest &results)
{
    Numbers numbers(20);
    for (int32_t round = 0; round < 20000; ++round) {
        results.add(ORVAUTIL_Freq2Mels(24000.0 * (numbers.real() + 1.0)));
        results.add(ORVAUTIL_Mels2Freq(2000.0 * (numbers.real() + 1.0)));
        results.add(ORVAUTIL_Freq2Bark(24000.0 * (numbers.real() + 1.0)));
    }
}

void suppressorSamples(Digest &results)
{
    Numbers numbers(21);
    const auto &kernels = orva::kernels<orva::NoisesupKernels>();
    for (int32_t round = 0; round < 2500; ++round) {
        const size_t from = numbers.size(0, 15), to = numbers.size(0, 15), length = numbers.size(0, 400);
        std::vector<float> band(from + length);
        for (float &x : band)
            x = numbers.integer(0, 3) == 0 ? numbers.mixed() : 40000.0f * numbers.sample();
        std::vector<int16_t> samples(to + length);
        kernels.narrowBand(band.data() + from, samples.data() + to, static_cast<int32_t>(length));
        results.add(samples);
        for (int16_t &sample : samples)
            sample = static_cast<int16_t>(numbers.next());
        kernels.widenBand(samples.data() + to, band.data() + from, static_cast<int32_t>(length));
        results.add(band);
    }
}

} // namespace bits
