// A host that uses FFTW itself, beside the library.
#include "host.h"

#include <fftw3.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <set>
#include <sstream>
#include <vector>

using namespace host;

TEST(HostWithFFTW, ItsPlansAndItsWisdomSurvive)
{
    constexpr int length = 240;
    struct Free {
        void operator()(void *block) const
        {
            fftwf_free(block);
        }
    };
    const std::unique_ptr<float, Free> input(fftwf_alloc_real(length));
    const std::unique_ptr<fftwf_complex, Free> output(fftwf_alloc_complex(length));
    const auto plan = [&] { return fftwf_plan_dft_r2c_1d(length, input.get(), output.get(), FFTW_MEASURE); };
    const auto bytesOfTransform = [&](fftwf_plan transform) {
        for (int i = 0; i < length; ++i)
            input.get()[i] = static_cast<float>(i % 7) - 3.0f;
        fftwf_execute(transform);
        std::vector<char> bytes(sizeof(fftwf_complex) * (length / 2 + 1));
        std::memcpy(bytes.data(), output.get(), bytes.size());
        return bytes;
    };
    const auto entriesOfWisdom = [] {
        char *const text = fftwf_export_wisdom_to_string();
        std::set<std::string> entries;
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);)
            entries.insert(line);
        free(text);
        return entries;
    };

    const fftwf_plan before = plan();
    const auto expected = bytesOfTransform(before);
    const auto learned = entriesOfWisdom();
    ASSERT_GT(learned.size(), 2u);
    fftwf_plan between = nullptr;
    {
        const DataFolder folder;
        const Loaded library;
        between = plan();
        startPreparation(library);
        library.call<bool>("ORVA_OptimizeFFT", true);
    }
    ASSERT_TRUE(goes("liborva.so"));
    EXPECT_EQ(bytesOfTransform(before), expected);
    EXPECT_EQ(bytesOfTransform(between), expected);
    const auto afterwards = entriesOfWisdom();
    EXPECT_TRUE(std::includes(afterwards.begin(), afterwards.end(), learned.begin(), learned.end()));
    fftwf_destroy_plan(before);
    fftwf_destroy_plan(between);
    const fftwf_plan after = plan();
    EXPECT_EQ(bytesOfTransform(after), expected);
    fftwf_destroy_plan(after);
}
