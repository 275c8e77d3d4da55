// A wisdom store for tests of the engine, and the wisdom that FFTW gathers.
#pragma once

#include "fft/ORVAfft_internal.h"
#include "support/environment.h"
#include "support/folder.h"

#include <kett/KTenv.h>

#include <fftw3.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace store
{

// A folder for a store, not announced to the library yet.
struct Store {
    Store()
    {
        support::unsetVariable("KT_DATA_PATH");
        KTENV_SetEnvValue("KT_DATA_PATH", nullptr);
    }

    void announce() const
    {
        KTENV_SetEnvValue("KT_DATA_PATH", folder.path.string().c_str());
    }

    bool exists() const
    {
        return std::filesystem::exists(path);
    }

    // Nothing in the folder, or nothing but the store.
    bool isTidy() const
    {
        const auto entries = folder.entries();
        return entries.empty() || entries == std::vector{path.filename().string()};
    }

    support::Folder folder;
    std::filesystem::path path = folder.path / "ruko.optimization";
};

inline std::string wisdom()
{
    char *text = fftwf_export_wisdom_to_string();
    std::string copy = text;
    std::free(text);
    return copy;
}

// Plans as the engine does, forward and then inverse.
inline void learn(int length)
{
    float *real = fftwf_alloc_real(static_cast<size_t>(length));
    fftwf_complex *bins = fftwf_alloc_complex(static_cast<size_t>(length));
    fftwf_destroy_plan(fftwf_plan_dft_r2c_1d(length, real, bins, FFTW_ESTIMATE));
    fftwf_destroy_plan(fftwf_plan_dft_c2r_1d(length, bins, real, FFTW_ESTIMATE));
    fftwf_free(bins);
    fftwf_free(real);
}

// Has the engine make a plan each way, and throws both away.
inline void plan(int32_t length)
{
    ORVA_FFTProcDestroy(orva::__FFTW_CreatePlan(length, false));
    ORVA_FFTProcDestroy(orva::__FFTW_CreatePlan(length, true));
}

// The wisdom that planning these lengths leaves, from none before to none after.
inline std::string wisdomOf(const std::vector<int> &lengths)
{
    fftwf_forget_wisdom();
    for (const int length : lengths)
        learn(length);
    std::string text = wisdom();
    fftwf_forget_wisdom();
    return text;
}

} // namespace store
