// Silence and subnormal numbers: what a second of input takes, the first and the sixtieth of each kind, after a second of
// noise, which is the normal one. Times are for a sample of input; a second has 48000.
//
//     silence      zeros
//     decaying     noise that is halved every 240 samples, so that it is subnormal at 0.63 s and zeros after 0.75 s
//     subnormal    noise within 2^-127
#include "cases.h"
#include "solafs/ORVAsolafs_internal.h"

#include <orva/orva.h>

#include <array>
#include <chrono>
#include <cmath>

namespace
{

constexpr size_t second = 48000;
constexpr size_t blockLength = 480;

// Takes blocks of blockLength samples.
using Take = std::function<void(const float *block)>;
using Output = std::array<float, 8 * blockLength>;

Take filtering(_ORVA_FILTER *created)
{
    return [filter = std::shared_ptr<_ORVA_FILTER>(created, ORVA_DestroyFilter), output = Output()](
               const float *block) mutable { ORVA_Filter(filter.get(), block, output.data(), blockLength); };
}

Take cascade(size_t sections)
{
    std::vector<double> records;
    for (size_t i = 0; i < sections; ++i)
        for (const double value : {-1.9, 0.95, 0.2, 0.1, 0.1})
            records.push_back(value);
    return filtering(ORVA_CreateFilterFromBiquads(1, static_cast<uint32_t>(sections), records.data()));
}

Take directForm()
{
    std::vector<double> b(9, 0.3), a(9, -0.11);
    a[0] = 1.0;
    return filtering(ORVA_CreateFilterFromCoefs(1, 9, b.data(), 9, a.data()));
}

Take resampling(int32_t from, int32_t to, const char *config)
{
    return [resampler =
                std::shared_ptr<ORVA_RESAMPLER>(ORVA_ResampleInit(from, to, config), ORVA_ResampleDestroy),
            output = Output()](const float *block) mutable {
        ORVA_Resample(resampler.get(), block, output.data(), blockLength);
    };
}

// ORVA_SolafsDestroy() would keep the memory.
void freeScaler(ORVA_SOLAFS *solafs)
{
    KTMEM_DisposeMemDescr(solafs->memDescr);
}

Take scaling()
{
    return [solafs = std::shared_ptr<ORVA_SOLAFS>(ORVA_SolafsCreate(20, 44100, 1), freeScaler),
            output = Output()](const float *block) mutable {
        ORVA_SolafsInputData(solafs.get(), 0, block, blockLength, 1.5f);
        ORVA_SolafsOutputData(solafs.get(), 0, output.data(), blockLength);
    };
}

Take suppressing()
{
    return
        [suppressor = std::shared_ptr<ORVA_NOISESUP>(ORVA_CreateNoiseSupEx(16000, 2), ORVA_DestroyNoiseSup),
         output = Output()](const float *block) mutable {
            for (size_t i = 0; i < blockLength; i += 160)
                ORVA_DoNoiseSup(suppressor.get(), block + i, output.data());
        };
}

Take powerSpectrum()
{
    constexpr size_t bins = blockLength / 2 + 1;
    return [fft = std::shared_ptr<ORVA_FFT>(ORVA_FFTProcCreate(blockLength), ORVA_FFTProcDestroy),
            work = std::array<ORVA_COMPLEX, bins>(), output = Output()](const float *block) mutable {
        ORVA_FFTProcExecutePSDEx(fft.get(), block, output.data(), work.data());
        ORVA_PSDtoDB(blockLength, output.data(), output.data() + blockLength, nullptr, 1.0, 120.0);
    };
}

Take correlating()
{
    return [xcorr = std::shared_ptr<ORVA_XCORR>(ORVA_XcorrProcCreate(blockLength, blockLength),
                                                ORVA_XcorrProcDestroy),
            output = Output()](const float *block) mutable {
        ORVA_XcorrPhatProcess(xcorr.get(), block, block, output.data());
    };
}

Take lapping()
{
    std::vector<float> window(2 * (blockLength + 1));
    ORVA_FMCLTFreqWindow(window.data(), blockLength);
    return [fmclt = std::shared_ptr<ORVA_FMCLT>(ORVA_FMCLTProcCreate(blockLength), ORVA_FMCLTProcDestroy),
            window, past = Output(), history = Output(), output = Output()](const float *block) mutable {
        float *real = output.data(), *imag = real + blockLength, *result = imag + blockLength;
        ORVA_FMCLTDirect(fmclt.get(), real, imag, block, history.data(), window.data());
        ORVA_FMCLTInverse(fmclt.get(), real, imag, result, past.data(), window.data());
    };
}

using Second = std::vector<float>;
enum Kind { silence, decaying, subnormal };

Second secondOf(Kind kind, int number)
{
    Second samples = noise(second);
    for (size_t i = 0; i < second; ++i) {
        const double halvings = (static_cast<double>(i) + static_cast<double>(second) * (number - 1)) / 240.0;
        const double gain = kind == silence ? 0.0 : kind == decaying ? std::exp2(-halvings) : 0x1p-127;
        samples[i] = static_cast<float>(samples[i] * gain);
    }
    return samples;
}

double timeOf(const Take &take, const Second &samples)
{
    const auto start = std::chrono::steady_clock::now();
    for (size_t i = 0; i < second; i += blockLength)
        take(samples.data() + i);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

template <class Make> void addSecond(const std::string &name, Make make, Kind kind, int number)
{
    benchmark::RegisterBenchmark(name.c_str(),
                                 [=](benchmark::State &state) {
                                     const Second before = noise(second), late = secondOf(kind, 60);
                                     for (auto _ : state) {
                                         const Take take = make();
                                         double time = timeOf(take, before);
                                         if (number > 0)
                                             time = timeOf(take, secondOf(kind, 1));
                                         for (int i = 2; i < number; ++i)
                                             timeOf(take, late);
                                         if (number > 1)
                                             time = timeOf(take, late);
                                         state.SetIterationTime(time);
                                     }
                                     state.SetItemsProcessed(
                                         static_cast<int64_t>(second * state.iterations()));
                                 })
        ->UseManualTime()
        ->Iterations(1);
}

template <class Make> void addPath(const std::string &path, Make make)
{
    addSecond(path + "/normal", make, silence, 0);
    for (const auto &[name, kind] :
         {std::pair{"silence", silence}, {"decaying", decaying}, {"subnormal", subnormal}})
        for (const int number : {1, 60})
            addSecond(path + "/" + name + " " + std::to_string(number), make, kind, number);
}

const bool registered = [] {
    for (const size_t sections : {1, 4, 10})
        addPath("silence, biquads, sections " + std::to_string(sections), [=] { return cascade(sections); });
    addPath("silence, direct form, order 8", directForm);
    addPath("silence, 44100 to 48000, polyphase", [] { return resampling(44100, 48000, "order=30"); });
    addPath("silence, 44100 to 48000, hold", [] { return resampling(44100, 48000, "type=zoh"); });
    addPath("silence, 48000 to 44100, hold", [] { return resampling(48000, 44100, "type=zoh"); });
    addPath("silence, time scaling", scaling);
    addPath("silence, noise suppressor", suppressing);
    addPath("silence, power spectrum in decibels", powerSpectrum);
    addPath("silence, phase transform", correlating);
    addPath("silence, lapped transform", lapping);
    return true;
}();

} // namespace
