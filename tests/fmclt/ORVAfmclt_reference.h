// What the tests of the lapped transform share: a stream with its arrays, and arrays aligned as FFTW wants them.
#pragma once

#include <orva/ORVAfmclt.h>

#include <fftw3.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace fmclt
{

using Samples = std::vector<float>;

struct Destroy {
    void operator()(ORVA_FMCLT *processor) const
    {
        ORVA_FMCLTProcDestroy(processor);
    }
    void operator()(float *vector) const
    {
        fftwf_free(vector);
    }
};
using Processor = std::unique_ptr<ORVA_FMCLT, Destroy>;
using Aligned = std::unique_ptr<float, Destroy>;

inline Processor processor(int32_t M)
{
    return Processor(ORVA_FMCLTProcCreate(M));
}

inline Samples twiddles(int32_t M)
{
    Samples window(2 * static_cast<size_t>(M) + 2);
    ORVA_FMCLTFreqWindow(window.data(), M);
    return window;
}

// One channel on its way through direct and inverse.
struct Stream {
    explicit Stream(int32_t M)
        : window(twiddles(M)), history(static_cast<size_t>(M), 0.0f), overlap(history), real(history),
          imag(history)
    {
    }

    void direct(const Processor &fmclt, const float *block)
    {
        ORVA_FMCLTDirect(fmclt.get(), real.data(), imag.data(), block, history.data(), window.data());
    }

    Samples inverse(const Processor &fmclt)
    {
        Samples output(overlap.size());
        ORVA_FMCLTInverse(fmclt.get(), real.data(), imag.data(), output.data(), overlap.data(),
                          window.data());
        return output;
    }

    Samples window, history, overlap, real, imag;
};

} // namespace fmclt
