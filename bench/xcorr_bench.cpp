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
    AlignedFloats samples = alignedFloats(2 * L), spectrum = alignedFloats(2 * L + 2);
    const auto length = static_cast<int>(2 * L);
    Plan forward(fftwf_plan_dft_r2c_1d(length, samples.get(), complexOf(spectrum.get()), FFTW_ESTIMATE));
    Plan inverse(fftwf_plan_dft_c2r_1d(length, complexOf(spectrum.get()), samples.get(), FFTW_ESTIMATE));
    return [input = noise(L), samples = std::move(samples), spectrum = std::move(spectrum),
            forward = std::move(forward), inverse = std::move(inverse)] {
        std::copy(input.begin(), input.end(), samples.get());
        fftwf_execute_dft_r2c(forward.get(), samples.get(), complexOf(spectrum.get()));
        fftwf_execute_dft_r2c(forward.get(), samples.get(), complexOf(spectrum.get()));
        fftwf_execute_dft_c2r(inverse.get(), complexOf(spectrum.get()), samples.get());
    };
}

void addLength(const std::string &form, Execute execute, size_t L)
{
    const std::string name = form + ", L " + std::to_string(L);
    addCase(name + "/orva", L, [=] {
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
    for (size_t L : {64, 256, 1024, 4096, 16384}) {
        addLength("plain", ORVA_XcorrProcExecute, L);
        addLength("phase transform", ORVA_XcorrPhatProcess, L);
    }
    return true;
}();

} // namespace
