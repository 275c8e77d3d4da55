// What comes of a processor for which memory runs out. FFTW's planner ends the process when it gets none, so the failures
// stop short of it.
#include "support/interposer.h"
#include "support/log.h"

#include <orva/ORVAxcorr.h>

#include <gtest/gtest.h>

namespace
{

// The allocations of a processor in their order: two for its descriptor, the record, the two buffers, the two spectra.
constexpr uint64_t recordIs = 3, spectraBegin = 6, spectraEnd = 7;

const std::vector<support::Message> spectraMessage = {
    support::error("ORVAXcorrProcCreate: Erro na alocacao dos vetores!\n")};

} // namespace

TEST(XcorrHeap, WithoutABufferOrASpectrumAProcessorExecutesNothing)
{
    const float samples[16] = {1, 2, 3};
    for (uint64_t n = recordIs + 1; n <= spectraEnd; ++n) {
        support::Log log;
        support::failAllocation(n);
        ORVA_XCORR *xcorr = ORVA_XcorrProcCreate(16, 16);
        EXPECT_TRUE(support::endFailure()) << n;
        ASSERT_NE(xcorr, nullptr) << n;
        EXPECT_EQ(log.messages, n >= spectraBegin ? spectraMessage : std::vector<support::Message>{}) << n;
        float output = 7;
        EXPECT_EQ(ORVA_XcorrProcExecute(xcorr, samples, samples, &output), -1) << n;
        EXPECT_EQ(ORVA_XcorrPhatProcess(xcorr, samples, samples, &output), -1) << n;
        EXPECT_EQ(output, 7) << n;
        EXPECT_EQ(ORVA_XcorrVectorLength(xcorr), 31) << n;
        EXPECT_TRUE(ORVA_XcorrProcDestroy(xcorr)) << n;
    }
}

TEST(XcorrHeap, WithoutMemoryTheCoefficientIsRefusedAndTheLagUntouched)
{
    constexpr uint64_t own = 2; // of the descriptor of the call itself
    const float samples[16] = {1, 2, 3};
    for (uint64_t n = 1; n <= own + spectraEnd; ++n) {
        support::Log log;
        int32_t lag = 12345;
        support::failAllocation(n);
        EXPECT_EQ(ORVA_XcorrCoef(samples, 16, samples, 16, &lag), -1.0) << n;
        EXPECT_TRUE(support::endFailure()) << n;
        EXPECT_EQ(lag, 12345) << n;
        EXPECT_EQ(log.messages, n >= own + spectraBegin ? spectraMessage : std::vector<support::Message>{})
            << n;
    }
}

// The copies of the two vectors and the result come last.
TEST(XcorrHeap, WithoutOneOfItsOwnVectorsTheCoefficientIsRefused)
{
    const float samples[16] = {1, 2, 3};
    int32_t lag = 12345;
    ORVA_XcorrCoef(samples, 16, samples, 16, nullptr); // so that FFTW keeps nothing more
    support::begin();
    const double usual = ORVA_XcorrCoef(samples, 16, samples, 16, nullptr);
    const uint64_t allocations = support::end().heap / 2; // each is freed
    for (uint64_t n = allocations - 2; n <= allocations; ++n) {
        support::failAllocation(n);
        EXPECT_EQ(ORVA_XcorrCoef(samples, 16, samples, 16, &lag), -1.0) << n;
        EXPECT_TRUE(support::endFailure()) << n;
        EXPECT_EQ(lag, 12345) << n;
    }
    support::failAllocation(allocations + 1);
    EXPECT_EQ(ORVA_XcorrCoef(samples, 16, samples, 16, &lag), usual);
    EXPECT_FALSE(support::endFailure());
}
