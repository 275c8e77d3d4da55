// Both correlations beside the textbook sum over all lags, and beside the bare transforms that they are made
// of: two forward and one inverse of twice the length. Times are for a sample of one of the two vectors.
#include "cases.h"

#include <orva/ORVAxcorr.h>

#include <algorithm>

namespace
{

using Execute = int32_t (*)(ORVA_XCORR *, const float *, const float *, float *);
using Processor = Owned<ORVA_XCORR, ORVA_XcorrProcDestroy>;

void plainCorrelation(const std::vector<float> &x, const std::vector<float> &y, std::vector<float> &r)
{
    const auto L = static_cast<int64_t>(x.size());
    for (int64_t lag = 1 - L; lag < L; ++lag) {
        float sum = 0.0f;
        for (int64_t n = std::max<int64_t>(0, -lag); n < L - std::max<int64_t>(0, lag); ++n)
            sum += x[static_cast<size_t>(n + lag)] * y[static_cast<size_t>(n)];
        r[static_cast<size_t>(lag + L - 1)] = sum / static_cast<float>(L);
    }
}

auto transforms(size_t L)
{
    const auto length = static_cast<int>(2 * L);
    AlignedFloats x = alignedFloats(2 * L), y = alignedFloats(2 * L), result = alignedFloats(2 * L);
    AlignedFloats spectrumX = alignedFloats(2 * L + 2), spectrumY = alignedFloats(2 * L + 2);
    const auto input = noise(L);
    std::copy(input.begin(), input.end(), x.get());
    std::copy(input.begin(), input.end(), y.get());
    Plan forward(fftwf_plan_dft_r2c_1d(length, x.get(), complexOf(spectrumX.get()), FFTW_ESTIMATE));
    Plan inverse(fftwf_plan_dft_c2r_1d(length, complexOf(spectrumX.get()), result.get(), FFTW_ESTIMATE));
    return [x = std::move(x), y = std::move(y), result = std::move(result), spectrumX = std::move(spectrumX),
            spectrumY = std::move(spectrumY), forward = std::move(forward), inverse = std::move(inverse)] {
        fftwf_execute_dft_r2c(forward.get(), x.get(), complexOf(spectrumX.get()));
        fftwf_execute_dft_r2c(forward.get(), y.get(), complexOf(spectrumY.get()));
        fftwf_execute_dft_c2r(inverse.get(), complexOf(spectrumX.get()), result.get());
    };
}

void addLength(const std::string &form, Execute execute, size_t L)
{
    const std::string name = form + ", L " + std::to_string(L);
    addLevels(name, L, [=] {
        const auto length = static_cast<int32_t>(L);
        return [execute, x = noise(L), y = noise(L), r = std::vector<float>(2 * L),
                xcorr = Processor(ORVA_XcorrProcCreate(length, length))]() mutable {
            execute(xcorr.get(), x.data(), y.data(), r.data());
        };
    });
    addCase(name + "/bare", L, [=] { return transforms(L); });
    if (execute == ORVA_XcorrProcExecute && L <= 4096) {
        addCase(name + "/plain", L, [=] {
            return [x = noise(L), y = noise(L), r = std::vector<float>(2 * L)]() mutable {
                plainCorrelation(x, y, r);
            };
        });
    }
}

const bool registered = [] {
    for (size_t L : {64, 256, 1000, 1024, 4096, 16384, 48000}) {
        addLength("plain", ORVA_XcorrProcExecute, L);
        addLength("phase transform", ORVA_XcorrPhatProcess, L);
    }
    return true;
}();

} // namespace
