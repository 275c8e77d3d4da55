#include "times.h"

#include "common/cpu.h"
#include "numbers.h"

#include <kett/KTmem.h>
#include <orva/ORVAcomplex.h>
#include <orva/ORVAfft.h>
#include <orva/ORVAfilter.h>
#include <orva/ORVAresample.h>
#include <orva/ORVAsolafs.h>
#include <orva/ORVAspline.h>
#include <orva/ORVAwinfnc.h>
#include <orva/ORVAxcorr.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>

namespace bits
{
namespace
{

constexpr int32_t blockLength = 1024;
constexpr size_t room = 8192; // more than any kernel gives for a block

template <auto destroy> struct Destroy {
    template <class Handle> void operator()(Handle *handle) const
    {
        destroy(handle);
    }
};

template <class Handle, auto destroy> using Owned = std::unique_ptr<Handle, Destroy<destroy>>;

using Filter = Owned<_ORVA_FILTER, ORVA_DestroyFilter>;
using Converter = Owned<ORVA_RESAMPLER, ORVA_ResampleDestroy>;
using Transform = Owned<ORVA_FFT, ORVA_FFTProcDestroy>;
using Spectrum = Owned<ORVA_COMPLEX, ORVA_DestroyComplexVector>;
using Correlation = Owned<ORVA_XCORR, ORVA_XcorrProcDestroy>;

template <class Work> double secondsOf(Work work, int64_t times)
{
    const auto start = std::chrono::steady_clock::now();
    for (int64_t i = 0; i < times; ++i)
        work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Of twenty runs, each long beside a tick of the clock and short beside the slice of time that a system gives a program.
template <class Work> void print(const char *name, size_t values, Work work)
{
    constexpr double enough = 2e-3;
    int64_t times = 1;
    double shortest = secondsOf(work, times);
    while (shortest < enough)
        shortest = secondsOf(work, times *= 2);
    for (int32_t run = 0; run < 20; ++run)
        shortest = std::min(shortest, secondsOf(work, times));
    std::printf("%-9s%-38s%10.3f ns\n", orva::nameOf(orva::levelInForce()), name,
                shortest * 1e9 / static_cast<double>(times) / static_cast<double>(values));
    std::fflush(stdout);
}

void printFilters(const std::vector<float> &noise, std::vector<float> &output)
{
    constexpr uint32_t sectionCount = 10;
    std::vector<double> sections;
    for (uint32_t s = 0; s < sectionCount; ++s)
        sections.insert(sections.end(), {-1.6, 0.7, 0.5, -0.2, 0.1});
    for (const int32_t channels : {1, 2}) {
        const Filter filter(ORVA_CreateFilterFromBiquads(channels, sectionCount, sections.data()));
        print(channels == 1 ? "biquads, 10 sections, 1 channel" : "biquads, 10 sections, 2 channels",
              blockLength, [&] { ORVA_Filter(filter.get(), noise.data(), output.data(), blockLength); });
    }
}

void printConverters(const std::vector<float> &noise, std::vector<float> &output)
{
    const Converter polyphase(ORVA_ResampleInit(44100, 48000, "order=30")),
        hold(ORVA_ResampleInit(44100, 48000, "type=zoh"));
    print("resampling 44100 to 48000, order 30", blockLength,
          [&] { ORVA_Resample(polyphase.get(), noise.data(), output.data(), blockLength); });
    print("hold, 44100 to 48000", blockLength,
          [&] { ORVA_Resample(hold.get(), noise.data(), output.data(), blockLength); });
}

void printTimeScaling(std::vector<float> &output)
{
    std::vector<float> saw(blockLength);
    for (size_t i = 0; i < saw.size(); ++i)
        saw[i] = static_cast<float>(static_cast<int32_t>(i % 100) - 50) * 0x1p-6f;
    ORVA_SOLAFS *scaler = ORVA_SolafsCreate(20, 44100, 1);
    print("time scaling, 1.5", blockLength, [&] {
        ORVA_SolafsInputData(scaler, 0, saw.data(), blockLength, 1.5f);
        ORVA_SolafsOutputData(scaler, 0, output.data(), static_cast<int32_t>(room));
    });
    ORVA_SolafsDestroy(scaler);
    KTMEM_DisposeDisplayed();
}

void printSpectra(const std::vector<float> &noise, std::vector<float> &output)
{
    constexpr size_t bins = blockLength / 2 + 1;
    const Transform fft(ORVA_FFTProcCreate(blockLength));
    const Spectrum spectrum(ORVA_CreateComplexVector(fft.get()));
    print("FFT of 1024, by FFTW", blockLength,
          [&] { ORVA_FFTProcExecute(fft.get(), noise.data(), spectrum.get()); });
    std::vector<float> power(bins + 4);
    print("power spectrum of 1024, by FFTW", blockLength,
          [&] { ORVA_FFTProcExecutePSDEx(fft.get(), noise.data(), power.data(), spectrum.get()); });
    print("decibels, 513 bins", bins,
          [&] { ORVA_PSDtoDB(blockLength, power.data(), output.data(), nullptr, 1.0, 100.0); });
    const Correlation correlation(ORVA_XcorrProcCreate(blockLength, blockLength));
    print("correlation of 1024, by FFTW", blockLength,
          [&] { ORVA_XcorrProcExecute(correlation.get(), noise.data(), noise.data(), output.data()); });
}

void printWindow(const std::vector<float> &noise)
{
    const std::vector<float> ones(blockLength, 1.0f); // with which the data stay what they are
    std::vector<float> data = noise;
    print("window application", blockLength,
          [&] { ORVA_ApplyWindow(ones.data(), data.data(), blockLength); });
}

void printSpline(const std::vector<float> &noise, std::vector<float> &output)
{
    constexpr int32_t points = 64;
    std::vector<float> x(points), second(points);
    for (size_t i = 0; i < points; ++i)
        x[i] = static_cast<float>(i) * 0x1p-5f - 1.0f;
    ORVASPLINE_Estimate(x.data(), noise.data(), points, 0.0f, 0.0f, second.data());
    print("spline of 64 points", blockLength, [&] {
        for (size_t i = 0; i < blockLength; ++i)
            output[i] = ORVASPLINE_Interpolate(x.data(), noise.data(), second.data(), points, noise[i]);
    });
}

} // namespace

void printTimes()
{
    Numbers numbers(201);
    const auto noise = numbers.vector(blockLength, &Numbers::sample);
    std::vector<float> output(room);
    printFilters(noise, output);
    printConverters(noise, output);
    printTimeScaling(output);
    printSpectra(noise, output);
    printWindow(noise);
    printSpline(noise, output);
}

} // namespace bits
