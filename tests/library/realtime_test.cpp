// Every function whose header allows it on a real-time thread, seen at work: no heap, no lock, no file, no log. A new
// function is a row of the table, and the objects that its call needs stand above.
#include "names.h"
#include "realtime_claims.h"
#include "support/interposer.h"

#include <kett/kett.h>
#include <orva/orva.h>

#include <fftw3.h>

#include <array>
#include <functional>

using support::Counts;

namespace
{

// What the calls work on.
constexpr int32_t length = 1024;
alignas(64) std::array<float, 2 * length> input, output, window;
alignas(64) std::array<double, 2 * length> doubles;
alignas(64) std::array<ORVA_COMPLEX, length> spectrum, otherSpectrum, work;
std::array<int16_t, length> words;
std::array<int32_t, 4> numbers;
std::array<char, 256> text = {"Text"};
const char *const config =
    "type=lowpass; order=4, fs=48e3; on=yes; biquads=[1 2 3 4 5; 6, 7, 8, 9, 10] window=hann";
const std::array<double, 3> denominator = {1.0, -0.5, 0.25}, numerator = {0.1, 0.2, 0.3};

ORVA_FFT *const forward = ORVA_FFTProcCreate(length);
ORVA_FFT *const inverse = ORVA_IFFTProcCreate(length);
ORVA_XCORR *const xcorr = ORVA_XcorrProcCreate(length, length);
ORVA_NOISESUP *const suppressor = ORVA_CreateNoiseSupEx(16000, 2);
ORVA_NOISESUP *const splitSuppressor = ORVA_CreateNoiseSupEx(32000, 2);
ORVA_SOLAFS *const scaler = ORVA_SolafsCreate(20, 8000, 1);

// A converter that has had a block as long as it will get.
ORVA_RESAMPLER *warmedUp(const char *resamplerConfig)
{
    ORVA_RESAMPLER *resampler = ORVA_ResampleInit(44100, 48000, resamplerConfig);
    ORVA_Resample(resampler, input.data(), output.data(), length);
    return resampler;
}

ORVA_RESAMPLER *const polyphase = warmedUp("order=30");
ORVA_RESAMPLER *const toFlush = warmedUp("order=30");
ORVA_RESAMPLER *const hold = warmedUp("type=zoh");

// A filter of each structure, and one to copy from.
const std::array<double, 10> records = {-0.9, 0.3, 0.1, 0.2, 0.1, -1.1, 0.4, 0.2, 0.4, 0.2};
_ORVA_FILTER *const directForm = ORVA_CreateFilterFromCoefs(2, 3, numerator.data(), 3, denominator.data());
_ORVA_FILTER *const likeDirect = ORVA_CreateFilterFromCoefs(2, 1, numerator.data(), 2, denominator.data());
_ORVA_FILTER *const biquads = ORVA_CreateFilterFromBiquads(2, 2, records.data());
_ORVA_FILTER *const likeBiquads = ORVA_CreateFilterFromBiquads(2, 1, records.data());

struct Row {
    const char *name;
    std::function<void()> call;
};

// clang-format off
const Row table[] = {
    // liborva
    {"ORVAVERSION_Number", [] { ORVAVERSION_Number(&numbers[0], &numbers[1], &numbers[2], &numbers[3]); }},

    {"ORVA_CreateWindow", [] { for (int32_t type = -1; type < 12; ++type) ORVA_CreateWindow(type, window.data(), length); }},
    {"ORVA_ApplyWindow", [] { ORVA_ApplyWindow(window.data(), input.data(), length); }},
    {"ORVA_GetWindowType", [] { ORVA_GetWindowType("Hanning"); ORVA_GetWindowType("no window"); }},
    {"ORVA_GetWindowName", [] { ORVA_GetWindowName(3); ORVA_GetWindowName(99); }},
    {"ORVA_GetWindowNormFactor", [] { ORVA_GetWindowNormFactor(window.data(), length); }},
    {"ORVA_GetTwoWindowNormFactor", [] { ORVA_GetTwoWindowNormFactor(window.data(), input.data(), length); }},
    {"ORVA_GetWindowTypeFromStringConfig", [] { ORVA_GetWindowTypeFromStringConfig(config, "window", 1); }},

    {"ORVA_FFTProcExecute", [] { ORVA_FFTProcExecute(forward, input.data(), spectrum.data()); }},
    {"ORVA_IFFTProcExecuteEx", [] { ORVA_IFFTProcExecuteEx(inverse, spectrum.data(), output.data(), true); }},
    {"ORVA_FFTProcExecutePSDEx", [] { ORVA_FFTProcExecutePSDEx(forward, input.data(), output.data(), work.data()); }},

    {"ORVA_CreatePreEmphAdjust", [] { ORVA_CreatePreEmphAdjust(output.data(), length, 0.97); }},
    {"ORVA_PSDtoDB", [] { ORVA_PSDtoDB(length, input.data(), output.data(), nullptr, 1.0, 120.0); }},
    {"ORVA_ComplexVectorMultiply", [] { ORVA_ComplexVectorMultiply(spectrum.data(), otherSpectrum.data(), work.data(), length); }},

    {"ORVA_Filter", [] { for (auto *filter : {directForm, biquads}) ORVA_Filter(filter, input.data(), output.data(), length); }},
    {"ORVA_FilterEx", [] { for (auto *filter : {directForm, biquads}) ORVA_FilterEx(filter, input.data(), output.data(), length, 1, 3); }},
    {"ORVA_ResetFilter", [] { ORVA_ResetFilter(likeDirect); ORVA_ResetFilter(likeBiquads); }},
    {"ORVA_CopyFilterMemories", [] { ORVA_CopyFilterMemories(directForm, likeDirect); ORVA_CopyFilterMemories(biquads, likeBiquads); }},
    {"ORVA_UpdateFilterBiquads", [] { ORVA_UpdateFilterBiquads(biquads, 2, records.data()); }},

    {"ORVA_Resample", [] { for (auto *resampler : {polyphase, hold}) ORVA_Resample(resampler, input.data(), output.data(), length); }},
    {"ORVA_ResampleFlushBufferSize", [] { for (auto *resampler : {polyphase, hold}) ORVA_ResampleFlushBufferSize(resampler); }},
    {"ORVA_ResampleFlushBuffersEx", [] { for (auto *resampler : {toFlush, hold}) ORVA_ResampleFlushBuffersEx(resampler, output.data(), 0); }},

    {"ORVA_SolafsInputData", [] { ORVA_SolafsInputData(scaler, 0, input.data(), length, 1.0f); ORVA_SolafsInputData(scaler, 0, input.data(), length, 0.6f); }},
    {"ORVA_SolafsOutputData", [] { ORVA_SolafsOutputData(scaler, 0, output.data(), 2 * length); }},
    {"ORVA_SolafsTranslateCursorPosition", [] { ORVA_SolafsTranslateCursorPosition(scaler, length); }},

    {"ORVA_XcorrVectorLength", [] { ORVA_XcorrVectorLength(xcorr); }},
    {"ORVA_XcorrProcExecute", [] { ORVA_XcorrProcExecute(xcorr, input.data(), window.data(), output.data()); }},
    {"ORVA_XcorrPhatProcess", [] { ORVA_XcorrPhatProcess(xcorr, input.data(), window.data(), output.data()); }},

    {"ORVASPLINE_Interpolate", [] { ORVASPLINE_Interpolate(input.data(), window.data(), output.data(), length, 0.5f); }},
    {"ORVAINTERPOLATE_Linear", [] { ORVAINTERPOLATE_Linear(input.data(), window.data(), length, 0.5f); }},

    {"ORVA_FMCLTFreqWindow", [] { ORVA_FMCLTFreqWindow(output.data(), length / 2); }},

    {"ORVA_NoiseSupBufferSize", [] { ORVA_NoiseSupBufferSize(suppressor); }},
    {"ORVA_SetNoiseSupIntensity", [] { ORVA_SetNoiseSupIntensity(suppressor, 3); ORVA_SetNoiseSupIntensity(suppressor, 4); }},
    {"ORVA_DoNoiseSup", [] { for (auto *ns : {suppressor, splitSuppressor}) ORVA_DoNoiseSup(ns, input.data(), output.data()); }},
    {"ORVA_DoNoiseSup16", [] { for (auto *ns : {suppressor, splitSuppressor}) ORVA_DoNoiseSup16(ns, words.data(), words.data()); }},

    {"ORVA_CalcEnergy", [] { ORVA_CalcEnergy(input.data(), length); }},
    {"ORVA_CalcZeroCrossRate", [] { ORVA_CalcZeroCrossRate(input.data(), length); }},
    {"ORVA_RemoveDC", [] { ORVA_RemoveDC(input.data(), output.data(), length); }},
    {"ORVAUTIL_Freq2Mels", [] { ORVAUTIL_Freq2Mels(1000.0); }},
    {"ORVAUTIL_Mels2Freq", [] { ORVAUTIL_Mels2Freq(1000.0); }},
    {"ORVAUTIL_Freq2Bark", [] { ORVAUTIL_Freq2Bark(1000.0); }},
    {"ORVAUTIL_Bark2Freq", [] { ORVAUTIL_Bark2Freq(10.5); }},

    // libkett
    {"KTCORE_Initialize", [] { KTCORE_Initialize(); }},
    {"KTCORE_Finalize", [] { KTCORE_Finalize(); }},

    {"KTSTRING_GetStringValueFromString", [] { KTSTRING_GetStringValueFromString(config, "type", "none", text.data(), 256); }},
    {"KTSTRING_GetIntegerValueFromString", [] { KTSTRING_GetIntegerValueFromString(config, "order", 1); }},
    {"KTSTRING_GetFloatValueFromString", [] { KTSTRING_GetFloatValueFromString(config, "fs", 1.0f); }},
    {"KTSTRING_GetBooleanValueFromString", [] { KTSTRING_GetBooleanValueFromString(config, "on", false); }},
    {"KTSTRING_GetVectorSizeFromString", [] { KTSTRING_GetVectorSizeFromString(config, "order", numbers.data()); }},
    {"KTSTRING_GetDoubleVectorValuesFromString", [] { KTSTRING_GetDoubleVectorValuesFromString(config, "order", doubles.data(), length); }},
    {"KTSTRING_GetMatrixSizeFromString", [] { KTSTRING_GetMatrixSizeFromString(config, "biquads", &numbers[0], &numbers[1]); }},
    {"KTSTRING_GetDoubleMatrixValuesFromString", [] { KTSTRING_GetDoubleMatrixValuesFromString(config, "biquads", doubles.data(), 2, 5); }},
    {"KTSTRING_Strlwr", [] { KTSTRING_Strlwr(text.data(), 0); }},
    {"KTSTRING_CompareInsensitiveN", [] { KTSTRING_CompareInsensitiveN("Hanning", "hanning", 8); }},

    {"KTUTILS_ConvertIEEEFloatToWord16", [] { KTUTILS_ConvertIEEEFloatToWord16(input.data(), words.data(), length); }},
    {"KTUTILS_ConvertWord16ToIEEEFloat", [] { KTUTILS_ConvertWord16ToIEEEFloat(words.data(), output.data(), length); }},

    {"FVectorMulScalar", [] { FVectorMulScalar(output.data(), length, 0.5f); }},
    {"FVectorSumOfSquares", [] { FVectorSumOfSquares(input.data(), length); }},
    {"FVectorAbsMax", [] { FVectorAbsMax(input.data(), length); }},
    {"FVectorArgAbsMax", [] { FVectorArgAbsMax(input.data(), length, output.data()); }},
    {"FilterBlockFloat", [] { FilterBlockFloat(denominator.data(), numerator.data(), 3, doubles.data(), nullptr, input.data(), doubles.data() + 8, length); }},
};
// clang-format on

// Counts from the first call on, and again where the function has warmed up.
Counts countOf(const Row &row)
{
    support::begin();
    row.call();
    row.call();
    return support::end();
}

} // namespace

TEST(RealTime, NoCallOfTheTableTakesMemoryALockAFileOrTheLog)
{
    for (size_t i = 0; i < input.size(); ++i)
        input[i] = static_cast<float>(i % 17) - 8.0f;
    for (const Row &row : table)
        EXPECT_EQ(countOf(row), Counts{}) << row.name;
}

TEST(RealTime, TheTableHoldsWhatTheHeadersAllow)
{
    Names allowed = realtime::functionsForRealTime(SOURCE_DIR "/include/orva");
    allowed.merge(realtime::functionsForRealTime(SOURCE_DIR "/kett/include/kett"));
    Names listed;
    for (const Row &row : table)
        EXPECT_TRUE(listed.insert(row.name).second) << row.name << " stands in the table twice";
    EXPECT_EQ(missing(listed, allowed), Names{}) << "allowed by a header, but not in the table";
    EXPECT_EQ(missing(allowed, listed), Names{}) << "in the table, but allowed by no header";
}

// The control: the table would show what it looks for.
TEST(RealTime, ACallThatAllocatesIsSeen)
{
    const Row row = {"ORVA_FFTProcExecutePSDEx without a work array",
                     [] { ORVA_FFTProcExecutePSDEx(forward, input.data(), output.data(), nullptr); }};
    EXPECT_GE(countOf(row).heap, 4u);
}
