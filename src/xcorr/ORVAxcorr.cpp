#include <orva/ORVAxcorr.h>

#include "xcorr/ORVAxcorr_internal.h"
#include "xcorr/kernels/ORVAxcorr_kernels.h"

#include <kett/KTdebug.h>

#include <algorithm>
#include <limits>

namespace orva
{
namespace
{

template <class Element> Element *newAligned(KT_MEM *memory, int32_t count)
{
    return static_cast<Element *>(
        KTMEM_NewAligned(memory, 16, static_cast<uint64_t>(count) * sizeof(Element)));
}

bool canExecute(const ORVA_XCORR *xcorr)
{
    return xcorr != nullptr && xcorr->fftLength > 0 && xcorr->bufferX != nullptr &&
           xcorr->bufferY != nullptr && xcorr->spectrumX != nullptr && xcorr->spectrumY != nullptr &&
           xcorr->fft != nullptr && xcorr->ifft != nullptr;
}

void combinePlain(ORVA_XCORR &xcorr)
{
    // The inverse transform is not normalised, so its factor cancels against the one in s, and the result is the sum of
    // products divided by the longer length.
    const auto longer = static_cast<float>(std::max(xcorr.lengthX, xcorr.lengthY));
    const auto transform = static_cast<float>(xcorr.fftLength);
    const float s = 1.0f / (longer * transform);
    kernels<XcorrKernels>().combinePlain(xcorr.spectrumX, xcorr.spectrumY, xcorr.spectrumX, xcorr.bins, s);
}

void combinePhat(ORVA_XCORR &xcorr)
{
    const float g = 1.0f / static_cast<float>(xcorr.fftLength);
    kernels<XcorrKernels>().combinePhat(xcorr.spectrumX, xcorr.spectrumY, xcorr.spectrumX, xcorr.bins, g);
}

// What both forms share; they differ in how they combine the spectra.
int32_t correlate(ORVA_XCORR *xcorr, const float *x, const float *y, float *output,
                  void (*combine)(ORVA_XCORR &))
{
    if (!canExecute(xcorr))
        return -1;
    const int32_t longer = xcorr->fftLength / 2;
    float *endX = std::copy_n(x, xcorr->lengthX, xcorr->bufferX);
    std::fill(endX, xcorr->bufferX + xcorr->fftLength, 0.0f); // where the last result was
    std::copy_n(y, xcorr->lengthY, xcorr->bufferY); // zeros follow: no forward transform writes to its input
    // A transform for which FFTW had no memory gives 0.
    if (ORVA_FFTProcExecute(xcorr->fft, xcorr->bufferX, xcorr->spectrumX) == 0 ||
        ORVA_FFTProcExecute(xcorr->fft, xcorr->bufferY, xcorr->spectrumY) == 0)
        return -1;
    combine(*xcorr);
    if (ORVA_IFFTProcExecuteEx(xcorr->ifft, xcorr->spectrumX, xcorr->bufferX, false) == 0)
        return -1;
    // The circular result holds lags 0 .. L-1, the empty lag of the zero padding, and lags -(L-1) .. -1.
    float *zeroLag = std::copy_n(xcorr->bufferX + longer + 1, longer - 1, output);
    std::copy_n(xcorr->bufferX, longer, zeroLag);
    return xcorr->fftLength - 1;
}

} // namespace
} // namespace orva

using namespace orva;

ORVA_XCORR *ORVA_XcorrProcCreate(int32_t lengthX, int32_t lengthY)
{
    const int32_t longer = std::max(lengthX, lengthY);
    if (lengthX < 0 || lengthY < 0 || longer > std::numeric_limits<int32_t>::max() / 2)
        return nullptr;
    KT_MEM *memory = KTMEM_CreateMemDescrEx("XCorr Memory", 0, 0);
    auto *xcorr = static_cast<ORVA_XCORR *>(KTMEM_NewEx(memory, sizeof(ORVA_XCORR), 0));
    if (xcorr == nullptr) {
        KTMEM_DisposeMemDescr(memory);
        return nullptr;
    }
    xcorr->memory = memory;
    xcorr->fftLength = 2 * longer;
    xcorr->bins = longer + 1;
    xcorr->lengthX = lengthX;
    xcorr->lengthY = lengthY;
    xcorr->bufferX = newAligned<float>(memory, xcorr->fftLength);
    xcorr->bufferY = newAligned<float>(memory, xcorr->fftLength);
    xcorr->spectrumX = newAligned<ORVA_COMPLEX>(memory, xcorr->bins);
    xcorr->spectrumY = newAligned<ORVA_COMPLEX>(memory, xcorr->bins);
    xcorr->fft = ORVA_FFTProcCreate(xcorr->fftLength);
    xcorr->ifft = ORVA_IFFTProcCreate(xcorr->fftLength);
    if (xcorr->spectrumX == nullptr || xcorr->spectrumY == nullptr)
        KTDEBUG_Error(-1, "ORVAXcorrProcCreate: Erro na alocacao dos vetores!\n");
    return xcorr;
}

int32_t ORVA_XcorrVectorLength(const ORVA_XCORR *xcorr)
{
    return xcorr != nullptr ? xcorr->fftLength - 1 : -1;
}

int32_t ORVA_XcorrProcExecute(ORVA_XCORR *xcorr, const float *x, const float *y, float *output)
{
    return correlate(xcorr, x, y, output, combinePlain);
}

int32_t ORVA_XcorrPhatProcess(ORVA_XCORR *xcorr, const float *x, const float *y, float *output)
{
    return correlate(xcorr, x, y, output, combinePhat);
}

bool ORVA_XcorrProcDestroy(ORVA_XCORR *xcorr)
{
    if (xcorr == nullptr)
        return true;
    ORVA_FFTProcDestroy(xcorr->fft);
    ORVA_FFTProcDestroy(xcorr->ifft);
    KTMEM_DisposeMemDescr(xcorr->memory);
    return true;
}
