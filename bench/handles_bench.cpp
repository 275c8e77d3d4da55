// What a handle costs: its creation and destruction, and the bytes that it holds. Beside it the bare plans of FFTW, which
// those of transforms hold, and the handles of peers. Times are for one handle.
#include "cases.h"
#include "solafs/ORVAsolafs_internal.h"

#include <orva/orva.h>

#include <soxr.h>

#include <malloc.h>

namespace
{

// In use, by the allocator's own account.
double bytesInUse()
{
    const auto info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

// create() gives an owner. The first handle is not counted: what it finds out once for all stays.
template <class Create> void add(const std::string &name, Create create)
{
    const auto count = [=](benchmark::State &state, double) {
        const double before = bytesInUse();
        const auto handle = create();
        state.counters["bytes"] = bytesInUse() - before;
    };
    addCase(
        name, 1, [=] { return [=] { benchmark::DoNotOptimize(create()); }; }, count);
}

void freeScaler(ORVA_SOLAFS *solafs)
{
    KTMEM_DisposeMemDescr(solafs->memDescr); // which ORVA_SolafsDestroy() would keep
}

using Transform = Owned<ORVA_FFT, ORVA_FFTProcDestroy>;
using Filter = Owned<_ORVA_FILTER, ORVA_DestroyFilter>;
using Resampler = Owned<ORVA_RESAMPLER, ORVA_ResampleDestroy>;
using Correlation = Owned<ORVA_XCORR, ORVA_XcorrProcDestroy>;
using Scaler = Owned<ORVA_SOLAFS, freeScaler>;
using Lapped = Owned<ORVA_FMCLT, ORVA_FMCLTProcDestroy>;
using Suppressor = Owned<ORVA_NOISESUP, ORVA_DestroyNoiseSup>;
using Soxr = Owned<soxr, soxr_delete>;

Plan barePlan()
{
    AlignedFloats input = alignedFloats(1024), output = alignedFloats(1026);
    return Plan(fftwf_plan_dft_r2c_1d(1024, input.get(), complexOf(output.get()), FFTW_ESTIMATE));
}

void addPlans()
{
    const auto transform = [] { return Transform(ORVA_FFTProcCreate(1024)); };
    add("transform, N 1024/orva", transform);
    add("transform, N 1024/bare", barePlan);
    // As in a process that has neither a store nor had a plan of this length.
    add("transform, N 1024, unknown to FFTW/orva", [=] {
        fftwf_forget_wisdom();
        return transform();
    });
    add("transform, N 1024, unknown to FFTW/bare", [] {
        fftwf_forget_wisdom();
        return barePlan();
    });
    add("correlation, L 1024/orva", [] { return Correlation(ORVA_XcorrProcCreate(1024, 1024)); });
    add("lapped transform, M 1024/orva", [] { return Lapped(ORVA_FMCLTProcCreate(1024)); });
}

void addFilters()
{
    add("biquads, 10 sections, 2 channels/orva", [] {
        std::vector<double> sections;
        for (int i = 0; i < 10; ++i)
            sections.insert(sections.end(), {-0.94, 0.33, 0.3, 0.2, 0.1});
        return Filter(ORVA_CreateFilterFromBiquads(2, 10, sections.data()));
    });
    add("direct form, order 8, 2 channels/orva", [] {
        const std::vector<double> b(9, 0.3), a = {1, 0.03, 0.03, 0.03, 0.03, 0.03, 0.03, 0.03, 0.03};
        return Filter(ORVA_CreateFilterFromCoefs(2, 9, b.data(), 9, a.data()));
    });
    add("elliptic of order 8, from text/orva", [] {
        return Filter(
            ORVA_CreateFilter("approximation=ellip; order=8; Ap=1; As=60; fpass=6000; fstop=7200; fs=48000"));
    });
}

void addConverters()
{
    for (const auto &[input, output] : {std::pair{44100, 48000}, {48000, 16000}}) {
        const std::string name = std::to_string(input) + " to " + std::to_string(output);
        add(name + ", order 30/orva",
            [=] { return Resampler(ORVA_ResampleInit(input, output, "order=30")); });
        add(name + ", order 30/soxr", [=] {
            const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_HQ, 0);
            return Soxr(soxr_create(input, output, 1, nullptr, nullptr, &quality, nullptr));
        });
        add(name + ", hold/orva", [=] { return Resampler(ORVA_ResampleInit(input, output, "type=zoh")); });
    }
}

const bool registered = [] {
    addPlans();
    addFilters();
    addConverters();
    add("time scaling, 20 ms at 44100 Hz/orva", [] { return Scaler(ORVA_SolafsCreate(20, 44100, 1)); });
    add("noise suppressor, 16000 Hz/orva", [] { return Suppressor(ORVA_CreateNoiseSupEx(16000, 2)); });
    return true;
}();

} // namespace
