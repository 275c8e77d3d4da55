// What tests and benchmarks of silence share: the paths that samples take, and seconds of silence and of subnormal numbers.
//
//     silence      zeros
//     decaying     noise that is halved every 240 samples, so that it is subnormal at 0.63 s and zeros after 0.75 s
//     subnormal    noise within 2^-127
#pragma once

#include <kett/KTmem.h>
#include <orva/orva.h>

#include <array>
#include <cmath>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace silence
{

inline constexpr size_t second = 48000;
inline constexpr size_t blockLength = 480;

// Takes blocks of blockLength samples.
using Take = std::function<void(const float *block)>;
using Output = std::array<float, 8 * blockLength>;

inline Take filtering(_ORVA_FILTER *created)
{
    return [filter = std::shared_ptr<_ORVA_FILTER>(created, ORVA_DestroyFilter), output = Output()](
               const float *block) mutable { ORVA_Filter(filter.get(), block, output.data(), blockLength); };
}

inline Take cascade(size_t sections)
{
    std::vector<double> records;
    for (size_t i = 0; i < sections; ++i)
        for (const double value : {-1.9, 0.95, 0.2, 0.1, 0.1})
            records.push_back(value);
    return filtering(ORVA_CreateFilterFromBiquads(1, static_cast<uint32_t>(sections), records.data()));
}

inline Take directForm()
{
    std::vector<double> b(9, 0.3), a(9, -0.11);
    a[0] = 1.0;
    return filtering(ORVA_CreateFilterFromCoefs(1, 9, b.data(), 9, a.data()));
}

inline Take resampling(int32_t from, int32_t to, const char *config)
{
    return [resampler =
                std::shared_ptr<ORVA_RESAMPLER>(ORVA_ResampleInit(from, to, config), ORVA_ResampleDestroy),
            output = Output()](const float *block) mutable {
        ORVA_Resample(resampler.get(), block, output.data(), blockLength);
    };
}

inline void freeScaler(ORVA_SOLAFS *solafs)
{
    ORVA_SolafsDestroy(solafs);
    KTMEM_DisposeDisplayed();
}

inline Take scaling()
{
    return [solafs = std::shared_ptr<ORVA_SOLAFS>(ORVA_SolafsCreate(20, 44100, 1), freeScaler),
            output = Output()](const float *block) mutable {
        ORVA_SolafsInputData(solafs.get(), 0, block, blockLength, 1.5f);
        ORVA_SolafsOutputData(solafs.get(), 0, output.data(), blockLength);
    };
}

inline Take suppressing()
{
    return
        [suppressor = std::shared_ptr<ORVA_NOISESUP>(ORVA_CreateNoiseSupEx(16000, 2), ORVA_DestroyNoiseSup),
         output = Output()](const float *block) mutable {
            for (size_t i = 0; i < blockLength; i += 160)
                ORVA_DoNoiseSup(suppressor.get(), block + i, output.data());
        };
}

inline Take powerSpectrum()
{
    constexpr size_t bins = blockLength / 2 + 1;
    return [fft = std::shared_ptr<ORVA_FFT>(ORVA_FFTProcCreate(blockLength), ORVA_FFTProcDestroy),
            work = std::array<ORVA_COMPLEX, bins>(), output = Output()](const float *block) mutable {
        ORVA_FFTProcExecutePSDEx(fft.get(), block, output.data(), work.data());
        ORVA_PSDtoDB(blockLength, output.data(), output.data() + blockLength, nullptr, 1.0, 120.0);
    };
}

inline Take correlating()
{
    return [xcorr = std::shared_ptr<ORVA_XCORR>(ORVA_XcorrProcCreate(blockLength, blockLength),
                                                ORVA_XcorrProcDestroy),
            output = Output()](const float *block) mutable {
        ORVA_XcorrPhatProcess(xcorr.get(), block, block, output.data());
    };
}

inline Take lapping()
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

enum Kind { zeros, decaying, subnormal };

inline constexpr struct {
    const char *name;
    Kind kind;
} kinds[] = {{"silence", zeros}, {"decaying", decaying}, {"subnormal", subnormal}};

// The second of this number, counted from 1, that a second of noise becomes.
inline Second secondOf(Kind kind, int number, Second samples)
{
    for (size_t i = 0; i < second; ++i) {
        const double halvings = (static_cast<double>(i) + static_cast<double>(second) * (number - 1)) / 240.0;
        const double gain = kind == zeros ? 0.0 : kind == decaying ? std::exp2(-halvings) : 0x1p-127;
        samples[i] = static_cast<float>(samples[i] * gain);
    }
    return samples;
}

struct Path {
    const char *name;
    std::function<Take()> make;
};

inline const Path paths[] = {
    {"biquads, sections 1", [] { return cascade(1); }},
    {"biquads, sections 4", [] { return cascade(4); }},
    {"biquads, sections 10", [] { return cascade(10); }},
    {"direct form, order 8", directForm},
    {"44100 to 48000, polyphase", [] { return resampling(44100, 48000, "order=30"); }},
    {"44100 to 48000, hold", [] { return resampling(44100, 48000, "type=zoh"); }},
    {"48000 to 44100, hold", [] { return resampling(48000, 44100, "type=zoh"); }},
    {"time scaling", scaling},
    {"noise suppressor", suppressing},
    {"power spectrum in decibels", powerSpectrum},
    {"phase transform", correlating},
    {"lapped transform", lapping},
};

} // namespace silence
