// Cross-correlation in the plainest forms: the sum in double for values, the stated steps over the same
// transform for bits.
#pragma once

#include "support/bits.h"

#include <orva/ORVAcomplex.h>
#include <orva/ORVAfft.h>
#include <orva/ORVAxcorr.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace xcorr
{

using Samples = std::vector<float>;

inline int32_t lengthOf(const Samples &samples)
{
    return static_cast<int32_t>(samples.size());
}

struct Destroy {
    void operator()(ORVA_XCORR *xcorr) const
    {
        ORVA_XcorrProcDestroy(xcorr);
    }
    void operator()(ORVA_FFT *fft) const
    {
        ORVA_FFTProcDestroy(fft);
    }
    void operator()(ORVA_COMPLEX *vector) const
    {
        ORVA_DestroyComplexVector(vector);
    }
};
using Processor = std::unique_ptr<ORVA_XCORR, Destroy>;
using Transform = std::unique_ptr<ORVA_FFT, Destroy>;
using Spectrum = std::unique_ptr<ORVA_COMPLEX, Destroy>;

inline Processor processor(size_t lengthX, size_t lengthY)
{
    return Processor(ORVA_XcorrProcCreate(static_cast<int32_t>(lengthX), static_cast<int32_t>(lengthY)));
}

using Form = int32_t (*)(ORVA_XCORR *, const float *, const float *, float *);

inline Samples run(Form form, const Samples &x, const Samples &y)
{
    const auto xcorr = processor(x.size(), y.size());
    Samples output(2 * std::max(x.size(), y.size()) - 1);
    EXPECT_EQ(form(xcorr.get(), x.data(), y.data(), output.data()), lengthOf(output));
    return output;
}

// r(t) / L for t = -(L-1) .. L-1, the sum over n of x[n+t] y[n].
inline std::vector<double> bySums(const Samples &x, const Samples &y)
{
    const int64_t longer = std::max(lengthOf(x), lengthOf(y));
    std::vector<double> result;
    for (int64_t t = -(longer - 1); t <= longer - 1; ++t) {
        double sum = 0;
        for (int64_t n = 0; n < lengthOf(y); ++n)
            if (n + t >= 0 && n + t < lengthOf(x))
                sum += double{x[static_cast<size_t>(n + t)]} * double{y[static_cast<size_t>(n)]};
        result.push_back(sum / static_cast<double>(longer));
    }
    return result;
}

inline ORVA_COMPLEX plainBin(ORVA_COMPLEX X, ORVA_COMPLEX Y, float s)
{
    const float re1 = X.im * Y.im;
    const float re2 = X.re * Y.re;
    const float im1 = X.im * Y.re;
    const float im2 = X.re * Y.im;
    const float re = re1 + re2;
    const float im = im1 - im2;
    return {re * s, im * s};
}

inline ORVA_COMPLEX phatBin(ORVA_COMPLEX X, ORVA_COMPLEX Y, float g)
{
    const float re1 = X.re * Y.re;
    const float re2 = X.im * Y.im;
    const float im1 = X.im * Y.re;
    const float im2 = X.re * Y.im;
    const float re = re1 + re2;
    const float im = im1 - im2;
    const float re22 = re * re;
    const float im22 = im * im;
    const float p = re22 + im22;
    const double m = std::sqrt(double{p});
    if (!(m > 0))
        return {re, im};
    const double w = double{g} / m;
    return {static_cast<float>(double{re} * w), static_cast<float>(double{im} * w)};
}

// Both ways, made once for each length.
inline const std::pair<Transform, Transform> &transformsOf(int32_t length)
{
    static std::map<int32_t, std::pair<Transform, Transform>> made;
    auto &transforms = made[length];
    if (transforms.first == nullptr)
        transforms = {Transform(ORVA_FFTProcCreate(length)), Transform(ORVA_IFFTProcCreate(length))};
    return transforms;
}

// The steps, over transforms of their own.
inline Samples bySteps(const Samples &x, const Samples &y, bool phat)
{
    const size_t longer = std::max(x.size(), y.size());
    const auto length = static_cast<int32_t>(2 * longer);
    const Transform &forward = transformsOf(length).first, &inverse = transformsOf(length).second;
    const Spectrum X(ORVA_CreateComplexVector(forward.get())), Y(ORVA_CreateComplexVector(forward.get())),
        room(ORVA_CreateComplexVector(forward.get()));
    float *time = &room.get()->re;
    const auto transformed = [&](const Samples &samples, ORVA_COMPLEX *spectrum) {
        std::fill_n(time, length, 0.0f);
        std::copy(samples.begin(), samples.end(), time);
        ORVA_FFTProcExecute(forward.get(), time, spectrum);
    };
    transformed(x, X.get());
    transformed(y, Y.get());
    const float product = static_cast<float>(longer) * static_cast<float>(length);
    const float s = 1.0f / product;
    const float g = 1.0f / static_cast<float>(length);
    for (size_t k = 0; k <= longer; ++k)
        X.get()[k] = phat ? phatBin(X.get()[k], Y.get()[k], g) : plainBin(X.get()[k], Y.get()[k], s);
    ORVA_IFFTProcExecuteEx(inverse.get(), X.get(), time, false);
    Samples result(time + longer + 1, time + 2 * longer);
    result.insert(result.end(), time, time + longer);
    return result;
}

} // namespace xcorr
