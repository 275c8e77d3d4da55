// The processors beside FFTW called alone on plans of the same kind, and KISS FFT; powers and decibels beside plain loops,
// and decibels beside SLEEF's logarithm alone, by vectors of each width; products beside a copy. Times
// are for a sample of the transform, or for a product.
#include "cases.h"
#include "widths.h"

#include <orva/ORVAcomplex.h>

#include <kiss_fftr.h>

#include <algorithm>
#include <cmath>

namespace
{

using Processor = Owned<ORVA_FFT, ORVA_FFTProcDestroy>;
using KissPlan = Owned<std::remove_pointer_t<kiss_fftr_cfg>, std::free>;

// The arrays lie at the same distances in every case, a third of a page apart from whole pages: stores that stand whole
// pages from the loads after them hold those up, so that cases would differ by where their memory happens to lie.
struct Transform {
    explicit Transform(size_t N)
        : block(alignedFloats(3 * apart(2 * N + 8))), samples(block.get()),
          spectrum(samples + apart(2 * N + 8)), result(spectrum + apart(2 * N + 8))
    {
        const auto values = noise(N);
        std::copy(values.begin(), values.end(), samples);
    }

    static size_t apart(size_t floats)
    {
        return (floats + 1023) / 1024 * 1024 + 336;
    }

    ORVA_COMPLEX *bins() const
    {
        return reinterpret_cast<ORVA_COMPLEX *>(spectrum);
    }

    AlignedFloats block;
    float *samples, *spectrum, *result;
};

Plan forwardPlan(size_t N, const Transform &t)
{
    return Plan(fftwf_plan_dft_r2c_1d(static_cast<int>(N), t.samples, complexOf(t.spectrum), FFTW_ESTIMATE));
}

void addForward(size_t N)
{
    const std::string name = "forward, N " + std::to_string(N);
    addCase(name + "/orva", N, [=] {
        return [t = Transform(N), fft = Processor(ORVA_FFTProcCreate(static_cast<int32_t>(N)))] {
            ORVA_FFTProcExecute(fft.get(), t.samples, t.bins());
        };
    });
    addCase(name + "/bare", N, [=] {
        Transform t(N);
        Plan plan = forwardPlan(N, t);
        return [t = std::move(t), plan = std::move(plan)] {
            fftwf_execute_dft_r2c(plan.get(), t.samples, complexOf(t.spectrum));
        };
    });
    addCase(name + "/kiss", N, [=] {
        return
            [t = Transform(N), plan = KissPlan(kiss_fftr_alloc(static_cast<int>(N), 0, nullptr, nullptr))] {
                kiss_fftr(plan.get(), t.samples, reinterpret_cast<kiss_fft_cpx *>(t.spectrum));
            };
    });
}

// The spectrum is spoiled by each run, which changes its values and not the time.
void addInverse(size_t N)
{
    const std::string name = "inverse, N " + std::to_string(N);
    addCase(name + "/orva", N, [=] {
        return [t = Transform(N), fft = Processor(ORVA_IFFTProcCreate(static_cast<int32_t>(N)))] {
            ORVA_IFFTProcExecuteEx(fft.get(), t.bins(), t.result, true);
        };
    });
    addCase(name + "/bare", N, [=] {
        Transform t(N);
        Plan plan(fftwf_plan_dft_c2r_1d(static_cast<int>(N), complexOf(t.spectrum), t.result, FFTW_ESTIMATE));
        return [t = std::move(t), plan = std::move(plan)] {
            fftwf_execute_dft_c2r(plan.get(), complexOf(t.spectrum), t.result);
        };
    });
}

void addPower(size_t N)
{
    const std::string name = "power, N " + std::to_string(N);
    addLevels(name, N, [=] {
        return [t = Transform(N), fft = Processor(ORVA_FFTProcCreate(static_cast<int32_t>(N)))] {
            ORVA_FFTProcExecutePSDEx(fft.get(), t.samples, t.result, t.bins());
        };
    });
    addCase(name + "/bare", N, [=] {
        Transform t(N);
        Plan plan = forwardPlan(N, t);
        return [t = std::move(t), plan = std::move(plan)] {
            fftwf_execute_dft_r2c(plan.get(), t.samples, complexOf(t.spectrum));
        };
    });
    addCase(name + "/plain", N, [=] {
        Transform t(N);
        Plan plan = forwardPlan(N, t);
        return [N, t = std::move(t), plan = std::move(plan)] {
            fftwf_execute_dft_r2c(plan.get(), t.samples, complexOf(t.spectrum));
            for (size_t k = 0; k <= N / 2; ++k)
                t.result[k] = t.bins()[k].re * t.bins()[k].re + t.bins()[k].im * t.bins()[k].im;
        };
    });
}

void addDecibels(size_t N)
{
    const std::string name = "decibels, N " + std::to_string(N);
    const auto powers = [](size_t count) {
        Transform t(count);
        for (size_t i = 0; i < count; ++i)
            t.samples[i] = t.samples[i] * t.samples[i];
        return t;
    };
    addLevels(name, N, [=] {
        return [N, t = powers(N)] {
            ORVA_PSDtoDB(static_cast<int32_t>(N), t.samples, t.result, nullptr, 1.0, 120.0);
        };
    });
    addCase(name + "/plain", N, [=] {
        return [N, t = powers(N)] {
            const float scale = 4.0f / (static_cast<float>(N) * static_cast<float>(N));
            for (size_t k = 0; k <= N / 2; ++k)
                t.result[k] = std::max(10.0f * std::log10(t.samples[k] * scale), -120.0f);
        };
    });
    const auto addLogarithms = [&](const std::string &level, const Width &width) {
        addCase(name + "/sleef " + level, N, [=, &width] {
            return
                [N, t = powers(N), &width] { width.logarithms(t.samples, t.result, (N / 2 + 16) / 16 * 16); };
        });
    };
    addLogarithms("baseline", baseline::width);
#ifdef __x86_64__
    if (orva::isAvailable(orva::Level::avx2))
        addLogarithms("avx2", avx2::width);
    if (orva::isAvailable(orva::Level::avx512))
        addLogarithms("avx512", avx512::width);
#endif
}

// The copy is of as many bytes as the result has. The traffic is that of the products, with next to no arithmetic.
void addProducts(size_t count)
{
    const std::string name = "products, " + std::to_string(count);
    addLevels(name, count, [=] {
        return [count, a = Transform(2 * count), b = Transform(2 * count)] {
            ORVA_ComplexVectorMultiply(a.bins(), b.bins(), reinterpret_cast<ORVA_COMPLEX *>(a.result),
                                       static_cast<int32_t>(count));
        };
    });
    addCopy(name + "/copy", count, 2 * count);
    addCase(name + "/traffic", count, [=] {
        return [count, a = Transform(2 * count), b = Transform(2 * count)] {
            using Four [[gnu::vector_size(16)]] = float;
            for (size_t i = 0; i < 2 * count; i += 4) {
                Four x, y;
                std::memcpy(&x, a.spectrum + i, sizeof x);
                std::memcpy(&y, b.spectrum + i, sizeof y);
                x += y;
                std::memcpy(a.result + i, &x, sizeof x);
            }
        };
    });
}

const bool registered = [] {
    for (size_t N : {64, 256, 480, 1024, 4096, 8192, 65536}) {
        addForward(N);
        addInverse(N);
        addPower(N);
        addDecibels(N);
    }
    addProducts(2048);
    return true;
}();

} // namespace
