// No result rests on the x87 registers: the bits are the same whatever precision the calling thread has given these.
#include "support/bits.h"

#include <orva/orva.h>

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace
{

void controlX87(uint16_t word)
{
    __asm__ volatile("fldcw %0" : : "m"(word));
}

// Whatever passes through the mathematics library: scales, windows, filters designed from text.
std::vector<double> results()
{
    std::vector<double> all;
    for (double x = 20.0; x < 20000.0; x *= 1.01)
        for (const auto scale :
             {ORVAUTIL_Freq2Mels, ORVAUTIL_Mels2Freq, ORVAUTIL_Freq2Bark, ORVAUTIL_Bark2Freq})
            all.push_back(scale(x / 100.0));
    for (int32_t type = 0; type <= 10; ++type) {
        std::array<float, 101> window;
        EXPECT_TRUE(ORVA_CreateWindow(type, window.data(), window.size())) << type;
        all.insert(all.end(), window.begin(), window.end());
    }
    for (const char *approximation : {"butterworth", "chebyshev1", "chebyshev2", "cauer"}) {
        _ORVA_FILTER *filter =
            ORVA_CreateFilter("approximation=%s; order=5; fpass=%f; fstop=%f; Ap=%f; As=%f", approximation,
                              0.1, 0.15, 0.7, 43.3);
        EXPECT_NE(filter, nullptr) << approximation;
        std::array<float, 64> input = {1.0f}, output = {};
        ORVA_Filter(filter, input.data(), output.data(), 64);
        all.insert(all.end(), output.begin(), output.end());
        ORVA_DestroyFilter(filter);
    }
    return all;
}

} // namespace

TEST(X87, TheControlWordChangesNoBit)
{
    constexpr uint16_t extended = 0x037f, toDouble = 0x027f, toSingle = 0x007f; // what they round to
    controlX87(extended);
    const auto expected = results();
    for (const uint16_t word : {toDouble, toSingle}) {
        controlX87(word);
        const auto actual = results();
        controlX87(extended);
        EXPECT_TRUE(support::sameBits(actual, expected)) << word;
    }
}
