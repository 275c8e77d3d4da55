#include <orva/ORVAfmclt.h>

#include "common/memory.h"
#include "common/numbers.h"
#include "fft/ORVAfft_internal.h"
#include "fmclt/ORVAfmclt_internal.h"
#include "fmclt/kernels/ORVAfmclt_kernels.h"

#include <algorithm>
#include <cmath>

namespace orva
{
namespace
{

constexpr int32_t longestBlock = 1 << 28;

fftwf_complex *binsOf(float *buffer)
{
    return reinterpret_cast<fftwf_complex *>(buffer);
}

// Plans on the buffer itself, which FFTW_ESTIMATE leaves as it is. False where one cannot be had.
bool makePlans(ORVA_FMCLT &fmclt)
{
    const int32_t M = fmclt.blockLength;
    fmclt.buffer = fftwf_alloc_real(2 * static_cast<size_t>(M) + 2);
    if (fmclt.buffer == nullptr)
        return false;
    float *buffer = fmclt.buffer;
    if (heapHoldsPlan(2 * M))
        fmclt.planDirect = fftwf_plan_dft_r2c_1d(2 * M, buffer, binsOf(buffer), FFTW_ESTIMATE);
    if (fmclt.planDirect != nullptr && heapHoldsPlan(2 * M))
        fmclt.planInverse = fftwf_plan_dft_c2r_1d(2 * M, binsOf(buffer), buffer, FFTW_ESTIMATE);
    if (fmclt.planInverse != nullptr && heapHoldsPlan(M))
        fmclt.planTrig = fftwf_plan_r2r_1d(M, buffer, buffer, FFTW_RODFT11, FFTW_ESTIMATE);
    return fmclt.planTrig != nullptr;
}

// The first and the last bin are real: a sum of coefficients times the root of 1/8, the sum in float, then times g.
void setOuterBin(float *bin, float real, float imag, double factor, float g)
{
    const float sum = real + imag;
    bin[0] = static_cast<float>(static_cast<double>(sum) * factor) * g;
    bin[1] = 0.0f;
}

} // namespace
} // namespace orva

using namespace orva;

ORVA_FMCLT *ORVA_FMCLTProcCreate(int32_t blockLength)
{
    if (blockLength < 1 || blockLength > longestBlock)
        return nullptr;
    auto *fmclt = newZeroed<ORVA_FMCLT>(1);
    if (fmclt == nullptr)
        return nullptr;
    fmclt->blockLength = blockLength;
    bool isMade = false;
    if (enterPlanner()) {
        isMade = makePlans(*fmclt);
        leavePlanner();
    }
    if (isMade)
        return fmclt;
    ORVA_FMCLTProcDestroy(fmclt);
    return nullptr;
}

int32_t ORVA_FMCLTProcDestroy(ORVA_FMCLT *fmclt)
{
    if (fmclt == nullptr)
        return 0;
    const bool hasPlanner = enterPlanner();
    for (const fftwf_plan plan : {fmclt->planDirect, fmclt->planInverse, fmclt->planTrig})
        if (hasPlanner && plan != nullptr) // else the plan stays
            fftwf_destroy_plan(plan);
    fftwf_free(fmclt->buffer);
    if (hasPlanner)
        leavePlanner();
    std::free(fmclt);
    return 1;
}

// window[k] = exp(-j theta), theta = 2 pi ((2k + 1) / 8 + k / (4M)), with k and M taken through float.
void ORVA_FMCLTFreqWindow(float *window, int32_t blockLength)
{
    const double md = static_cast<double>(static_cast<float>(blockLength));
    for (int64_t k = 0; k <= blockLength; ++k) {
        const double kd = static_cast<double>(static_cast<float>(k));
        const double theta = ((kd + kd + 1.0) * 0.125 + kd / (md * 4.0)) * twoPi;
        window[2 * k] = static_cast<float>(std::cos(theta));
        window[2 * k + 1] = -static_cast<float>(std::sin(theta));
    }
}

void ORVA_FMCLTDirect(ORVA_FMCLT *fmclt, float *real, float *imag, const float *current, float *history,
                      const float *window)
{
    if (fmclt == nullptr)
        return;
    const int32_t M = fmclt->blockLength;
    float *buffer = fmclt->buffer;
    std::copy_n(current, M, std::copy_n(history, M, buffer));
    fftwf_execute_dft_r2c(fmclt->planDirect, buffer, binsOf(buffer));
    std::copy_n(current, M, history); // before the coefficients, which may take the place of the block
    const float s = static_cast<float>(std::sqrt(1.0 / static_cast<double>(M + M)));
    kernels<FmcltKernels>().coefficientsOf(buffer, window, real, imag, M, s);
}

// The root of 2M before the transform and 2M after it: two steps with roundings of their own, not one factor.
void ORVA_FMCLTInverse(ORVA_FMCLT *fmclt, const float *real, const float *imag, float *output, float *overlap,
                       const float *window)
{
    if (fmclt == nullptr)
        return;
    constexpr double rootOfEighth = 0.3535533905932738;
    const int32_t M = fmclt->blockLength;
    float *buffer = fmclt->buffer;
    const double d = static_cast<double>(M) + static_cast<double>(M);
    const float g = static_cast<float>(std::sqrt(d));
    setOuterBin(buffer, real[0], imag[0], rootOfEighth, g);
    kernels<FmcltKernels>().innerBinsOf(real, imag, window, buffer, M, g);
    setOuterBin(buffer + 2 * static_cast<int64_t>(M), real[M - 1], imag[M - 1], -rootOfEighth, g);
    fftwf_execute_dft_c2r(fmclt->planInverse, binsOf(buffer), buffer);
    kernels<FmcltKernels>().overlapAdd(buffer, buffer + M, output, overlap, M, d);
}

void ORVA_FMCLTCDTiv(ORVA_FMCLT *fmclt, float *data)
{
    if (fmclt == nullptr)
        return;
    const int32_t M = fmclt->blockLength;
    fftwf_execute_r2r(fmclt->planTrig, data, data);
    kernels<FmcltKernels>().divide(data, M, static_cast<float>(std::sqrt(static_cast<double>(2 * M))));
}
