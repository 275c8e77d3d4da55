// FFTW takes memory of its own while it executes a transform of an awkward length. The processors add nothing to that.
#include "support/interposer.h"

#include <orva/ORVAfft.h>

#include <fftw3.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <ostream>
#include <vector>

using support::Counts;

namespace
{

struct Free {
    void operator()(void *block) const
    {
        fftwf_free(block);
    }
};

// Counts of the three executions of one length.
struct Executions {
    Counts forward, inverse, power;

    bool operator==(const Executions &) const = default;
};

std::ostream &operator<<(std::ostream &out, const Executions &counts)
{
    return out << "forward: " << counts.forward << "; inverse: " << counts.inverse
               << "; power: " << counts.power;
}

class Length
{
public:
    explicit Length(int32_t samples)
        : length(samples), real(fftwf_alloc_real(room())), power(fftwf_alloc_real(room())),
          bins(fftwf_alloc_complex(room()))
    {
        std::fill_n(real.get(), room(), 0.0f);
    }

    Executions ofTheProcessors() const
    {
        ORVA_FFT *const forward = ORVA_FFTProcCreate(length);
        ORVA_FFT *const inverse = ORVA_IFFTProcCreate(length);
        auto *const spectrum = reinterpret_cast<ORVA_COMPLEX *>(bins.get());
        Executions counts;
        support::begin();
        ORVA_FFTProcExecute(forward, real.get(), spectrum);
        counts.forward = support::end();
        support::begin();
        ORVA_IFFTProcExecuteEx(inverse, spectrum, real.get(), true);
        counts.inverse = support::end();
        support::begin();
        ORVA_FFTProcExecutePSDEx(forward, real.get(), power.get(), spectrum);
        counts.power = support::end();
        ORVA_FFTProcDestroy(forward);
        ORVA_FFTProcDestroy(inverse);
        return counts;
    }

    // Of plans that are made as the processors make theirs.
    Executions ofFFTW() const
    {
        const fftwf_plan forward = fftwf_plan_dft_r2c_1d(length, real.get(), bins.get(), FFTW_ESTIMATE);
        const fftwf_plan inverse = fftwf_plan_dft_c2r_1d(length, bins.get(), real.get(), FFTW_ESTIMATE);
        Executions counts;
        support::begin();
        fftwf_execute_dft_r2c(forward, real.get(), bins.get());
        counts.forward = counts.power = support::end();
        support::begin();
        fftwf_execute_dft_c2r(inverse, bins.get(), real.get());
        counts.inverse = support::end();
        fftwf_destroy_plan(forward);
        fftwf_destroy_plan(inverse);
        return counts;
    }

private:
    size_t room() const
    {
        return static_cast<size_t>(length) + 8;
    }

    const int32_t length;
    const std::unique_ptr<float, Free> real, power;
    const std::unique_ptr<fftwf_complex, Free> bins;
};

std::vector<int32_t> lengths()
{
    std::vector<int32_t> all;
    for (int32_t length = 1; length <= 300; ++length)
        all.push_back(length);
    for (const int32_t length :
         {509, 1000, 1009, 2039, 3000, 4093, 4095, 4097, 8191, 44100, 48000, 65537, 99991})
        all.push_back(length);
    return all;
}

} // namespace

TEST(RealTimeTransforms, AtAnyLengthTheProcessorsTakeWhatFFTWTakes)
{
    size_t awkward = 0;
    for (const int32_t length : lengths()) {
        const Length transform(length);
        const Executions bare = transform.ofFFTW();
        EXPECT_EQ(transform.ofTheProcessors(), bare) << "length " << length;
        awkward += bare.forward.heap > 0;
    }
    EXPECT_GT(awkward, 0u) << "no length of the list shows what FFTW takes";
}

TEST(RealTimeTransforms, APowerOfTwoTakesNothing)
{
    for (int32_t length = 1; length <= 1 << 18; length *= 2)
        EXPECT_EQ(Length(length).ofTheProcessors(), Executions{}) << "length " << length;
}
