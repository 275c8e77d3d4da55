// Transforms, spectra, correlation, lapped transforms. Lengths beyond the room are those that are refused or find no memory:
// the test limits it.
#include "walk.h"

#include <orva/ORVAcomplex.h>
#include <orva/ORVAfft.h>
#include <orva/ORVAfmclt.h>
#include <orva/ORVAxcorr.h>

#include <algorithm>
#include <cmath>

namespace arguments
{

namespace
{

int32_t createdLength(Walk &walk)
{
    return walk.pick({INT32_MIN, -1, 0, 1, 2, 3, 4, 16, 37, 64, 100, 1024, INT32_MAX - 1, INT32_MAX});
}

int32_t executedLength(Walk &walk)
{
    return walk.pick({-1, 0, 1, 2, 3, 7, 8, 37, 64});
}

size_t countOf(int32_t length)
{
    return length > 0 ? static_cast<size_t>(length) : 0;
}

size_t binsOf(int32_t length)
{
    return countOf(length) / 2 + 1;
}

// Null or a processor of this length, made at the first use and never destroyed.
ORVA_FFT *processor(Walk &walk, int32_t length, ORVA_FFT *(*create)(int32_t))
{
    static ORVA_FFT *made[2000] = {};
    ORVA_FFT *&fft = made[length + 1];
    if (fft == nullptr)
        fft = create(length);
    return walk.pick({false, true}) ? fft : nullptr;
}

bool executes(const ORVA_FFT *fft, int32_t length)
{
    return fft != nullptr && length > 0;
}

void createAndDestroy(Walk &walk, ORVA_FFT *(*create)(int32_t))
{
    const int32_t length = createdLength(walk);
    ORVA_FFT *const fft = walk.call([&] { return create(length); });
    walk.expect((fft != nullptr) == (length < 2000), "a processor, unless memory is out");
    walk.expect(ORVA_FFTProcDestroy(fft) == (fft != nullptr), "it is destroyed");
}

ORVA_XCORR *correlation(int32_t lengthX, int32_t lengthY)
{
    static ORVA_XCORR *made[20][20] = {};
    ORVA_XCORR *&xcorr = made[lengthX][lengthY];
    if (xcorr == nullptr)
        xcorr = ORVA_XcorrProcCreate(lengthX, lengthY);
    return xcorr;
}

void correlate(Walk &walk, int32_t (*execute)(ORVA_XCORR *, const float *, const float *, float *))
{
    const int32_t lengthX = walk.pick({0, 1, 3, 16});
    const int32_t lengthY = walk.pick({0, 1, 2, 16});
    ORVA_XCORR *const xcorr = walk.pick({false, true}) ? correlation(lengthX, lengthY) : nullptr;
    const int32_t longer = std::max(lengthX, lengthY);
    const float *const x = walk.in<float>(countOf(lengthX), lengthX > 0 ? Walk::neverNull : Walk::any);
    const float *const y = walk.in<float>(countOf(lengthY), lengthY > 0 ? Walk::neverNull : Walk::any);
    float *const output = walk.out<float>(countOf(2 * longer - 1), Walk::neverNull);
    const int32_t written = walk.call([&] { return execute(xcorr, x, y, output); });
    walk.expect(written == (xcorr != nullptr && longer > 0 ? 2 * longer - 1 : -1), "the number of lags");
    walk.expect(written > 0 || walk.isUntouched(output), "a refusal writes nothing");
}

constexpr int32_t blockLengths[] = {1, 2, 3, 4, 16, 63};

int32_t blockLength(Walk &walk)
{
    return walk.pick({1, 2, 3, 4, 16, 63});
}

ORVA_FMCLT *lapped(Walk &walk, int32_t length)
{
    static ORVA_FMCLT *made[64] = {};
    for (const int32_t M : blockLengths)
        if (made[M] == nullptr)
            made[M] = ORVA_FMCLTProcCreate(M);
    return walk.pick({false, true}) ? made[length] : nullptr;
}

Walk::Use arrayOf(const ORVA_FMCLT *fmclt)
{
    return fmclt != nullptr ? Walk::neverNull : Walk::any;
}

} // namespace

const Row transforms[] = {
    {"ORVA_FFTProcCreate", [](Walk &walk) { createAndDestroy(walk, ORVA_FFTProcCreate); }},
    {"ORVA_IFFTProcCreate", [](Walk &walk) { createAndDestroy(walk, ORVA_IFFTProcCreate); }},
    {"ORVA_FFTProcExecute",
     [](Walk &walk) {
         const int32_t n = executedLength(walk);
         const ORVA_FFT *const fft = processor(walk, n, ORVA_FFTProcCreate);
         const float *const input = walk.in<float>(countOf(n), Walk::aligned);
         auto *const output = walk.out<ORVA_COMPLEX>(binsOf(n), Walk::aligned);
         const int32_t bins = walk.call([&] { return ORVA_FFTProcExecute(fft, input, output); });
         const bool done = executes(fft, n) && input != nullptr && output != nullptr;
         walk.expect(bins == (done ? n / 2 + 1 : 0), "the number of bins");
         walk.expect(done || walk.isUntouched(output), "a refusal writes nothing");
     }},
    {"ORVA_IFFTProcExecuteEx",
     [](Walk &walk) {
         const int32_t n = executedLength(walk);
         const ORVA_FFT *const fft = processor(walk, n, ORVA_IFFTProcCreate);
         auto *const input = walk.inOut<ORVA_COMPLEX>(binsOf(n), Walk::aligned);
         float *const output = walk.out<float>(countOf(n), Walk::aligned);
         const bool normalise = walk.pick({false, true});
         const int32_t written =
             walk.call([&] { return ORVA_IFFTProcExecuteEx(fft, input, output, normalise); });
         const bool done = executes(fft, n) && input != nullptr && output != nullptr;
         walk.expect(written == (done ? n : 0), "the number of samples");
         walk.expect(done || (walk.isUntouched(output) && walk.isUntouched(input)),
                     "a refusal writes nothing");
     }},
    {"ORVA_FFTProcExecutePSDEx",
     [](Walk &walk) {
         const int32_t n = executedLength(walk);
         const ORVA_FFT *const fft = processor(walk, n, ORVA_FFTProcCreate);
         const float *const input = walk.in<float>(countOf(n), Walk::aligned);
         float *const power = walk.out<float>(4 * (countOf(n) / 8 + 1), Walk::aligned);
         auto *const work = walk.out<ORVA_COMPLEX>(std::max<size_t>(countOf(n), 4), Walk::aligned);
         const int32_t bins = walk.call([&] { return ORVA_FFTProcExecutePSDEx(fft, input, power, work); });
         const bool done = executes(fft, n) && input != nullptr && power != nullptr;
         walk.expect(bins == (done ? n / 2 + 1 : 0), "the number of bins");
         walk.expect(done || walk.isUntouched(power), "a refusal writes nothing");
     }},
    {"ORVA_FFTProcDestroy",
     [](Walk &walk) {
         const int32_t n = executedLength(walk);
         ORVA_FFT *const fft = walk.pick({false, true}) ? ORVA_FFTProcCreate(n) : nullptr;
         walk.expect(walk.call([&] { return ORVA_FFTProcDestroy(fft); }) == (fft != nullptr), "the result");
     }},
    {"ORVA_CreateComplexVector",
     [](Walk &walk) {
         const int32_t n = executedLength(walk);
         const ORVA_FFT *const fft = processor(walk, n, ORVA_FFTProcCreate);
         auto *const vector = walk.call([&] { return ORVA_CreateComplexVector(fft); });
         walk.expect((vector != nullptr) == executes(fft, n), "a vector where there is a length");
         for (size_t i = 0; vector != nullptr && i < std::max<size_t>(countOf(n), 4); ++i)
             vector[i] = {1.0f, 1.0f};
         ORVA_DestroyComplexVector(vector);
     }},
    {"ORVA_DestroyComplexVector",
     [](Walk &walk) {
         static const ORVA_FFT *const fft = ORVA_FFTProcCreate(16);
         ORVA_COMPLEX *const vector = walk.pick({false, true}) ? ORVA_CreateComplexVector(fft) : nullptr;
         walk.expect(walk.call([&] { return ORVA_DestroyComplexVector(vector); }) == (vector != nullptr),
                     "the result");
     }},
    {"ORVA_CreatePreEmphAdjust",
     [](Walk &walk) {
         const int32_t n = walk.pick({INT32_MIN, -3, -2, -1, 0, 1, 2, 3, 64, 1001});
         const double coefficient = walk.real<double>();
         float *const output = walk.out<float>(n < -1 ? 0 : static_cast<size_t>(n / 2 + 1));
         walk.expect(walk.call([&] { return ORVA_CreatePreEmphAdjust(output, n, coefficient); }), "true");
     }},
    {"ORVA_PSDtoDB",
     [](Walk &walk) {
         const int32_t n = walk.pick({INT32_MIN, -1, 0, 1, 2, 9, 64});
         const size_t half = countOf(n) / 2;
         const size_t room = n > 0 ? std::max((half + 3) / 4 * 4, half + 1) : 0;
         const float *const power = walk.in<float>(room, Walk::aligned);
         float *const output = walk.out<float>(room, Walk::aligned);
         const float *const adjustment = walk.in<float>(room, Walk::aligned);
         const double norm = walk.real<double>();
         const double range = walk.real<double>();
         const bool done = walk.call([&] { return ORVA_PSDtoDB(n, power, output, adjustment, norm, range); });
         walk.expect(done == (n > 0 && power != nullptr && output != nullptr), "the result");
         walk.expect(done || walk.isUntouched(output), "a refusal writes nothing");
         for (size_t i = 0; done && i <= half; ++i)
             walk.expect(output[i] >= static_cast<float>(-range) || std::isnan(output[i]) ||
                             std::isnan(range) || std::isnan(norm),
                         "the floor");
     }},
    {"ORVA_ComplexVectorMultiply",
     [](Walk &walk) {
         const int32_t n = walk.pick({INT32_MIN, -1, 0, 1, 2, 7, 64});
         const auto *const a = walk.in<ORVA_COMPLEX>(countOf(n));
         const auto *const b = walk.in<ORVA_COMPLEX>(countOf(n));
         auto *const output = walk.out<ORVA_COMPLEX>(countOf(n));
         const bool done = walk.call([&] { return ORVA_ComplexVectorMultiply(a, b, output, n); });
         walk.expect(done == (a != nullptr && b != nullptr && output != nullptr && n >= 0), "the result");
         walk.expect((done && n > 0) || walk.isUntouched(output), "a refusal writes nothing");
     }},

    {"ORVA_XcorrProcCreate",
     [](Walk &walk) {
         constexpr int32_t longest = 1073741823;
         const auto lengths = {INT32_MIN, -1, 0, 1, 2, 16, 100, longest, longest + 1, INT32_MAX};
         const int32_t lengthX = walk.pick(lengths);
         const int32_t lengthY = walk.pick(lengths);
         ORVA_XCORR *const xcorr = walk.call([&] { return ORVA_XcorrProcCreate(lengthX, lengthY); });
         const auto [shorter, longer] = std::minmax({lengthX, lengthY});
         walk.expect((xcorr != nullptr) == (shorter >= 0 && longer <= longest), "a processor");
         walk.expect(walk.messages() <= (longer == longest ? 1 : 0), "a message only where memory is out");
         walk.expect(ORVA_XcorrProcDestroy(xcorr), "it is destroyed");
     }},
    {"ORVA_XcorrVectorLength",
     [](Walk &walk) {
         const int32_t length = walk.pick({0, 1, 16});
         const ORVA_XCORR *const xcorr = walk.pick({false, true}) ? correlation(length, 1) : nullptr;
         const int32_t lags = walk.call([&] { return ORVA_XcorrVectorLength(xcorr); });
         walk.expect(lags == (xcorr == nullptr ? -1 : 2 * std::max(length, 1) - 1), "the number of lags");
     }},
    {"ORVA_XcorrProcExecute", [](Walk &walk) { correlate(walk, ORVA_XcorrProcExecute); }},
    {"ORVA_XcorrPhatProcess", [](Walk &walk) { correlate(walk, ORVA_XcorrPhatProcess); }},
    {"ORVA_XcorrProcDestroy",
     [](Walk &walk) {
         const int32_t length = walk.pick({0, 1, 16});
         ORVA_XCORR *const xcorr = walk.pick({false, true}) ? ORVA_XcorrProcCreate(length, 3) : nullptr;
         walk.expect(walk.call([&] { return ORVA_XcorrProcDestroy(xcorr); }), "true");
     }},
    {"ORVA_XcorrCoef",
     [](Walk &walk) {
         const int32_t lengthX = walk.pick({INT32_MIN, -1, 0, 1, 16, 1073741824, INT32_MAX});
         const int32_t lengthY = walk.pick({INT32_MIN, -1, 0, 3, 16, 1073741824, INT32_MAX});
         const float *const x = walk.in<float>(lengthX <= 16 ? countOf(lengthX) : 0);
         const float *const y = walk.in<float>(lengthY <= 16 ? countOf(lengthY) : 0);
         int32_t *const lag = walk.out<int32_t>(1);
         const double likeness = walk.call([&] { return ORVA_XcorrCoef(x, lengthX, y, lengthY, lag); });
         const bool isNull = x == nullptr || y == nullptr;
         const auto [shorter, longer] = std::minmax({lengthX, lengthY});
         walk.expect(walk.messages() == (isNull ? 1 : 0), "a message for a null vector");
         if (isNull || shorter < 0 || longer > 16)
             walk.expect(likeness == -1.0 && walk.isUntouched(lag), "a refusal");
         else
             walk.expect(shorter > 0 || std::isnan(likeness), "no likeness of nothing");
     }},

    {"ORVA_FMCLTProcCreate",
     [](Walk &walk) {
         const int32_t length =
             walk.pick({INT32_MIN, -1, 0, 1, 2, 3, 4, 63, 64, 268435456, 268435457, INT32_MAX});
         ORVA_FMCLT *const fmclt = walk.call([&] { return ORVA_FMCLTProcCreate(length); });
         walk.expect((fmclt != nullptr) == (length > 0 && length <= 64), "a processor");
         walk.expect(ORVA_FMCLTProcDestroy(fmclt) == (fmclt != nullptr ? 1 : 0), "it is destroyed");
     }},
    {"ORVA_FMCLTProcDestroy",
     [](Walk &walk) {
         const int32_t length = blockLength(walk);
         ORVA_FMCLT *const fmclt = walk.pick({false, true}) ? ORVA_FMCLTProcCreate(length) : nullptr;
         walk.expect(walk.call([&] { return ORVA_FMCLTProcDestroy(fmclt); }) == (fmclt != nullptr ? 1 : 0),
                     "the result");
     }},
    {"ORVA_FMCLTFreqWindow",
     [](Walk &walk) {
         const int32_t length = walk.pick({INT32_MIN, -2, -1, 0, 1, 2, 64, 500});
         float *const window = walk.out<float>(length < 0 ? 0 : 2 * (countOf(length) + 1),
                                               length < 0 ? Walk::any : Walk::neverNull);
         walk.call([&] { ORVA_FMCLTFreqWindow(window, length); });
         walk.expect(length != 0 || (std::isnan(window[0]) && std::isnan(window[1])), "one entry for 0");
     }},
    {"ORVA_FMCLTDirect",
     [](Walk &walk) {
         const int32_t M = blockLength(walk);
         ORVA_FMCLT *const fmclt = lapped(walk, M);
         const Walk::Use use = arrayOf(fmclt);
         float *const real = walk.out<float>(countOf(M), use);
         float *const imag = walk.out<float>(countOf(M), use);
         const float *const current = walk.in<float>(countOf(M), use);
         float *const history = walk.inOut<float>(countOf(M), use);
         const float *const window = walk.in<float>(countOf(2 * M + 2), use);
         walk.call([&] { ORVA_FMCLTDirect(fmclt, real, imag, current, history, window); });
         walk.expect(fmclt != nullptr ||
                         (walk.isUntouched(real) && walk.isUntouched(imag) && walk.isUntouched(history)),
                     "null does nothing");
     }},
    {"ORVA_FMCLTInverse",
     [](Walk &walk) {
         const int32_t M = blockLength(walk);
         ORVA_FMCLT *const fmclt = lapped(walk, M);
         const Walk::Use use = arrayOf(fmclt);
         const float *const real = walk.in<float>(countOf(M), use);
         const float *const imag = walk.in<float>(countOf(M), use);
         float *const output = walk.out<float>(countOf(M), use);
         float *const overlap = walk.inOut<float>(countOf(M), use);
         const float *const window = walk.in<float>(countOf(2 * M + 2), use);
         walk.call([&] { ORVA_FMCLTInverse(fmclt, real, imag, output, overlap, window); });
         walk.expect(fmclt != nullptr || (walk.isUntouched(output) && walk.isUntouched(overlap)),
                     "null does nothing");
     }},
    {"ORVA_FMCLTCDTiv",
     [](Walk &walk) {
         const int32_t M = blockLength(walk);
         ORVA_FMCLT *const fmclt = lapped(walk, M);
         float *const data =
             walk.inOut<float>(countOf(M), fmclt != nullptr ? Walk::alignedNeverNull : Walk::any);
         walk.call([&] { ORVA_FMCLTCDTiv(fmclt, data); });
         walk.expect(fmclt != nullptr || walk.isUntouched(data), "null does nothing");
     }},
    {},
};

} // namespace arguments
