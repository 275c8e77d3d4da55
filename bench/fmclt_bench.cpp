// The lapped transform beside the bare executions of its plans: what copies, twiddles and scaling cost. The
// bare form puts its input into the buffer too, since the plans run in place. Times are for a sample of a
// block.
#include "cases.h"

#include <orva/ORVAfmclt.h>

#include <algorithm>

namespace
{

using Processor = Owned<ORVA_FMCLT, ORVA_FMCLTProcDestroy>;

struct Stream {
    explicit Stream(size_t M)
        : fmclt(ORVA_FMCLTProcCreate(static_cast<int32_t>(M))), block(noise(M)), output(M), past(M),
          real(noise(M)), imag(noise(M)), window(2 * (M + 1))
    {
        ORVA_FMCLTFreqWindow(window.data(), static_cast<int32_t>(M));
    }

    Processor fmclt;
    std::vector<float> block, output, past, real, imag, window;
};

void addDirect(size_t M)
{
    const std::string name = "direct, M " + std::to_string(M);
    addLevels(name, M, [=] {
        return [s = Stream(M)]() mutable {
            ORVA_FMCLTDirect(s.fmclt.get(), s.real.data(), s.imag.data(), s.block.data(), s.past.data(),
                             s.window.data());
        };
    });
    addCase(name + "/bare", M, [=] {
        AlignedFloats buffer = alignedFloats(2 * M + 2);
        Plan plan(fftwf_plan_dft_r2c_1d(static_cast<int>(2 * M), buffer.get(), complexOf(buffer.get()),
                                        FFTW_ESTIMATE));
        return [input = noise(2 * M), buffer = std::move(buffer), plan = std::move(plan)] {
            std::copy(input.begin(), input.end(), buffer.get());
            fftwf_execute_dft_r2c(plan.get(), buffer.get(), complexOf(buffer.get()));
        };
    });
}

void addInverse(size_t M)
{
    const std::string name = "inverse, M " + std::to_string(M);
    addLevels(name, M, [=] {
        return [s = Stream(M)]() mutable {
            ORVA_FMCLTInverse(s.fmclt.get(), s.real.data(), s.imag.data(), s.output.data(), s.past.data(),
                              s.window.data());
        };
    });
    addCase(name + "/bare", M, [=] {
        AlignedFloats buffer = alignedFloats(2 * M + 2);
        Plan plan(fftwf_plan_dft_c2r_1d(static_cast<int>(2 * M), complexOf(buffer.get()), buffer.get(),
                                        FFTW_ESTIMATE));
        return [input = noise(2 * M + 2), buffer = std::move(buffer), plan = std::move(plan)] {
            std::copy(input.begin(), input.end(), buffer.get());
            fftwf_execute_dft_c2r(plan.get(), complexOf(buffer.get()), buffer.get());
        };
    });
}

// A block forward and back.
void addPair(size_t M)
{
    const std::string name = "pair, M " + std::to_string(M);
    addLevels(name, M, [=] {
        return [s = Stream(M), history = std::vector<float>(M)]() mutable {
            ORVA_FMCLTDirect(s.fmclt.get(), s.real.data(), s.imag.data(), s.block.data(), history.data(),
                             s.window.data());
            ORVA_FMCLTInverse(s.fmclt.get(), s.real.data(), s.imag.data(), s.output.data(), s.past.data(),
                              s.window.data());
        };
    });
    addCase(name + "/bare", M, [=] {
        AlignedFloats buffer = alignedFloats(2 * M + 2);
        const auto length = static_cast<int>(2 * M);
        Plan direct(fftwf_plan_dft_r2c_1d(length, buffer.get(), complexOf(buffer.get()), FFTW_ESTIMATE));
        Plan inverse(fftwf_plan_dft_c2r_1d(length, complexOf(buffer.get()), buffer.get(), FFTW_ESTIMATE));
        return [input = noise(2 * M), buffer = std::move(buffer), direct = std::move(direct),
                inverse = std::move(inverse)] {
            std::copy(input.begin(), input.end(), buffer.get());
            fftwf_execute_dft_r2c(direct.get(), buffer.get(), complexOf(buffer.get()));
            fftwf_execute_dft_c2r(inverse.get(), complexOf(buffer.get()), buffer.get());
        };
    });
}

void addSineTransform(size_t M)
{
    const std::string name = "sine transform, M " + std::to_string(M);
    addLevels(name, M, [=] {
        AlignedFloats data = alignedFloats(M);
        return [input = noise(M), data = std::move(data),
                fmclt = Processor(ORVA_FMCLTProcCreate(static_cast<int32_t>(M)))] {
            std::copy(input.begin(), input.end(), data.get());
            ORVA_FMCLTCDTiv(fmclt.get(), data.get());
        };
    });
    addCase(name + "/bare", M, [=] {
        AlignedFloats data = alignedFloats(M);
        Plan plan(
            fftwf_plan_r2r_1d(static_cast<int>(M), data.get(), data.get(), FFTW_RODFT11, FFTW_ESTIMATE));
        return [input = noise(M), data = std::move(data), plan = std::move(plan)] {
            std::copy(input.begin(), input.end(), data.get());
            fftwf_execute_r2r(plan.get(), data.get(), data.get());
        };
    });
}

const bool registered = [] {
    for (size_t M : {64, 256, 480, 512, 1024, 4096}) {
        addDirect(M);
        addInverse(M);
        addPair(M);
        addSineTransform(M);
    }
    return true;
}();

} // namespace
