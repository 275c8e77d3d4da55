// Processors: transforms on the arrays of the caller. They only read the plan, so they need no lock.
#include <orva/ORVAfft.h>

#include "fft/ORVAfft_internal.h"

#include <algorithm>
#include <cstdlib>

#include <kett/KTdebug.h>
#include <kett/KTvector.h>

static int32_t binCount(const ORVA_FFT *fft)
{
    return fft->length / 2 + 1;
}

static bool canExecute(const ORVA_FFT *fft)
{
    return fft != nullptr && fft->plan != nullptr;
}

static void transform(const ORVA_FFT *fft, const float *input, ORVA_COMPLEX *output)
{
    // FFTW leaves the input of a real-to-complex transform as it is, but does not say so in its type.
    fftwf_execute_dft_r2c(fft->plan, const_cast<float *>(input), reinterpret_cast<fftwf_complex *>(output));
}

ORVA_FFT *ORVA_FFTProcCreate(int32_t length)
{
    return __FFTW_CreatePlan(length, false);
}

ORVA_FFT *ORVA_IFFTProcCreate(int32_t length)
{
    return __FFTW_CreatePlan(length, true);
}

int32_t ORVA_FFTProcExecute(const ORVA_FFT *fft, const float *input, ORVA_COMPLEX *output)
{
    if (static_cast<const void *>(input) == output)
        KTDEBUG_TerminalError(-1, "ORVA_FFTProcExecute: Input and output vectors must be different!");
    if (!canExecute(fft) || input == nullptr || output == nullptr)
        return 0;
    transform(fft, input, output);
    return binCount(fft);
}

int32_t ORVA_IFFTProcExecuteEx(const ORVA_FFT *fft, ORVA_COMPLEX *input, float *output, bool normalise)
{
    // The message names the operation without its ending, on purpose: hosts look for it.
    if (static_cast<const void *>(output) == input)
        KTDEBUG_TerminalError(-1, "ORVA_IFFTProcExecute: Input and output vectors must be different!");
    if (!canExecute(fft) || input == nullptr || output == nullptr)
        return 0;
    const int32_t N = fft->length;
    fftwf_execute_dft_c2r(fft->plan, reinterpret_cast<fftwf_complex *>(input), output);
    if (normalise)
        FVectorMulScalar(output, N, 1.0f / static_cast<float>(N));
    return N;
}

// Whole groups of four bins, which is what power and work arrays have room for.
static int32_t groupedCount(const ORVA_FFT *fft)
{
    return 4 * (fft->length / 8 + 1);
}

// power[k] = re re + im im
static void squareBins(const ORVA_COMPLEX *bins, float *power, int32_t count)
{
    for (int32_t k = 0; k < count; ++k)
        power[k] = bins[k].re * bins[k].re + bins[k].im * bins[k].im;
}

// N values hold the groups from a length of 4 on. Those behind the bins are cleared, so that nothing that the
// heap held reaches the output.
static ORVA_COMPLEX *newWorkArray(const ORVA_FFT *fft)
{
    const auto size = static_cast<size_t>(std::max(fft->length, 4));
    auto *work = static_cast<ORVA_COMPLEX *>(fftwf_malloc(size * sizeof(ORVA_COMPLEX)));
    if (work != nullptr)
        std::fill(work + binCount(fft), work + groupedCount(fft), ORVA_COMPLEX{});
    return work;
}

int32_t ORVA_FFTProcExecutePSDEx(const ORVA_FFT *fft, const float *input, float *power, ORVA_COMPLEX *work)
{
    if (!canExecute(fft) || input == nullptr || power == nullptr)
        return 0;
    ORVA_COMPLEX *bins = work != nullptr ? work : newWorkArray(fft);
    if (bins == nullptr)
        return 0;
    transform(fft, input, bins);
    squareBins(bins, power, groupedCount(fft));
    if (work == nullptr)
        fftwf_free(bins);
    return binCount(fft);
}

bool ORVA_FFTProcDestroy(ORVA_FFT *fft)
{
    if (fft == nullptr)
        return false;
    MutexLock(__FFTW_PlanLock);
    if (fft->plan != nullptr)
        fftwf_destroy_plan(fft->plan);
    MutexUnlock(__FFTW_PlanLock);
    std::free(fft);
    return true;
}
