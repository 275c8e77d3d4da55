// What the processors and the spectrum utilities ask of the heap, of locks, of files and of the log.
#include "support/interposer.h"

#include <orva/orva.h>

#include <gtest/gtest.h>

#include <vector>

using support::Counts;

TEST(SpectrumResources, AFrameTakesNothingFromTheSystem)
{
    for (int32_t length : {64, 480, 1024, 1200, 4096}) {
        const auto size = static_cast<size_t>(length);
        ORVA_FFT *there = ORVA_FFTProcCreate(length), *back = ORVA_IFFTProcCreate(length);
        ORVA_COMPLEX *spectrum = ORVA_CreateComplexVector(there), *product = ORVA_CreateComplexVector(there);
        std::vector<float> window(size), frame(size, 0.25f), power(size), adjustment(size), decibels(size);
        for (int round = 0; round < 2; ++round) {
            support::begin();
            ORVA_CreateWindow(3, window.data(), static_cast<uint32_t>(length));
            ORVA_ApplyWindow(window.data(), frame.data(), length);
            ORVA_FFTProcExecute(there, frame.data(), spectrum);
            ORVA_FFTProcExecutePSDEx(there, frame.data(), power.data(), spectrum);
            ORVA_CreatePreEmphAdjust(adjustment.data(), length, 0.97);
            ORVA_PSDtoDB(length, power.data(), decibels.data(), adjustment.data(), 1.0, 120.0);
            ORVA_ComplexVectorMultiply(spectrum, spectrum, product, length / 2 + 1);
            ORVA_IFFTProcExecuteEx(back, product, frame.data(), true);
            ORVA_FFTProcDestroy(nullptr);
            EXPECT_EQ(support::end(), Counts{}) << "N " << length;
        }
        ORVA_DestroyComplexVector(product);
        ORVA_DestroyComplexVector(spectrum);
        ORVA_FFTProcDestroy(back);
        ORVA_FFTProcDestroy(there);
    }
}

TEST(SpectrumResources, PowerWithoutAWorkArrayAllocatesAndFreesOne)
{
    ORVA_FFT *fft = ORVA_FFTProcCreate(1024);
    std::vector<float> frame(1024), power(516);
    support::begin();
    EXPECT_EQ(ORVA_FFTProcExecutePSDEx(fft, frame.data(), power.data(), nullptr), 513);
    EXPECT_EQ(support::end(), Counts{.heap = 2});
    ORVA_FFTProcDestroy(fft);
}
