// FFTW allocates while it executes some of these plans; the transforms themselves never do.
#include "ORVAfmclt_reference.h"
#include "support/interposer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

using namespace fmclt;
using support::Counts;

namespace
{

// What the bare plans of one block length ask of the heap.
struct Bare {
    Counts direct, inverse, trig;
};

template <class Run> Counts counted(Run run)
{
    support::begin();
    run();
    return support::end();
}

Bare bareCounts(int32_t M)
{
    const Aligned room(fftwf_alloc_real(2 * static_cast<size_t>(M) + 2));
    float *buffer = room.get();
    auto *bins = reinterpret_cast<fftwf_complex *>(buffer);
    const fftwf_plan direct = fftwf_plan_dft_r2c_1d(2 * M, buffer, bins, FFTW_ESTIMATE);
    const fftwf_plan inverse = fftwf_plan_dft_c2r_1d(2 * M, bins, buffer, FFTW_ESTIMATE);
    const fftwf_plan trig = fftwf_plan_r2r_1d(M, buffer, buffer, FFTW_RODFT11, FFTW_ESTIMATE);
    const Bare counts = {counted([&] { fftwf_execute_dft_r2c(direct, buffer, bins); }),
                         counted([&] { fftwf_execute_dft_c2r(inverse, bins, buffer); }),
                         counted([&] { fftwf_execute_r2r(trig, buffer, buffer); })};
    for (const fftwf_plan plan : {direct, inverse, trig})
        fftwf_destroy_plan(plan);
    return counts;
}

} // namespace

TEST(FmcltHeap, TransformsAskForNoMoreThanTheBarePlans)
{
    for (const int32_t M : {1,  2,  3,  4,   5,   7,   8,   12,  16,   20,   31,   32,  48,
                            63, 64, 65, 100, 128, 256, 480, 512, 1000, 1024, 2048, 4096}) {
        const auto fmclt = processor(M);
        Stream stream(M);
        const Samples block(static_cast<size_t>(M), 0.5f);
        Samples output(block);
        const Aligned data(fftwf_alloc_real(static_cast<size_t>(M)));
        std::fill_n(data.get(), M, 0.25f);
        const Bare bare = bareCounts(M);
        const auto direct = counted([&] { stream.direct(fmclt, block.data()); });
        const auto inverse = counted([&] {
            ORVA_FMCLTInverse(fmclt.get(), stream.real.data(), stream.imag.data(), output.data(),
                              stream.overlap.data(), stream.window.data());
        });
        const auto trig = counted([&] { ORVA_FMCLTCDTiv(fmclt.get(), data.get()); });
        EXPECT_EQ(direct, bare.direct) << M;
        EXPECT_EQ(inverse, bare.inverse) << M;
        EXPECT_EQ(trig, bare.trig) << M;
        std::printf("M = %4d: direct %llu, inverse %llu, sine %llu heap calls\n", M,
                    static_cast<unsigned long long>(direct.heap),
                    static_cast<unsigned long long>(inverse.heap),
                    static_cast<unsigned long long>(trig.heap));
    }
}
