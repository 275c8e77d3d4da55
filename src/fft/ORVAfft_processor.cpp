// Processors: transforms on the arrays of the caller. They only read the plan, so they need no lock.
#include <orva/ORVAfft.h>

#include "common/numbers.h"
#include "fft/ORVAfft_internal.h"
#include "fft/kernels/ORVAfft_kernels.h"

#include <kett/KTdebug.h>
#include <kett/KTvector.h>
#include <orva/ORVAcomplex.h>

#include <algorithm>
#include <cstdlib>

namespace orva
{
namespace
{

bool canExecute(const ORVA_FFT *fft)
{
    return fft != nullptr && fft->plan != nullptr;
}

void transform(const ORVA_FFT *fft, const float *input, ORVA_COMPLEX *output)
{
    // FFTW leaves the input of a real-to-complex transform as it is, but does not say so in its type.
    fftwf_execute_dft_r2c(fft->plan, const_cast<float *>(input), reinterpret_cast<fftwf_complex *>(output));
}

// Whole groups of four bins, which is what power and work arrays have room for.
int32_t groupedCount(const ORVA_FFT *fft)
{
    return 4 * (fft->length / 8 + 1);
}

// N values hold the groups from a length of 4 on. Those after the bins are cleared, so that nothing that the
// heap held reaches the output.
ORVA_COMPLEX *newWorkArray(const ORVA_FFT *fft)
{
    ORVA_COMPLEX *work = ORVA_CreateComplexVector(fft);
    if (work != nullptr)
        std::fill(work + spectrumBins(fft->length), work + groupedCount(fft), ORVA_COMPLEX{});
    return work;
}

} // namespace
} // namespace orva

using namespace orva;

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
    return spectrumBins(fft->length);
}

int32_t ORVA_IFFTProcExecuteEx(const ORVA_FFT *fft, ORVA_COMPLEX *input, float *output, bool normalise)
{
    // The message names the operation without its ending, deliberately: hosts look for it.
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

int32_t ORVA_FFTProcExecutePSDEx(const ORVA_FFT *fft, const float *input, float *power, ORVA_COMPLEX *work)
{
    if (!canExecute(fft) || input == nullptr || power == nullptr)
        return 0;
    ORVA_COMPLEX *bins = work != nullptr ? work : newWorkArray(fft);
    if (bins == nullptr)
        return 0;
    transform(fft, input, bins);
    kernels<FftKernels>().powers(bins, power, groupedCount(fft));
    if (work == nullptr)
        ORVA_DestroyComplexVector(bins);
    return spectrumBins(fft->length);
}

bool ORVA_FFTProcDestroy(ORVA_FFT *fft)
{
    if (fft == nullptr)
        return false;
    if (enterPlanner()) { // else the plan stays
        if (fft->plan != nullptr)
            fftwf_destroy_plan(fft->plan);
        leavePlanner();
    }
    std::free(fft);
    return true;
}
