// The zero-order hold: each output repeats the newest input, and an elliptic filter runs at the higher rate,
// behind the hold on the way up and before the dropping on the way down.
#include "resample/ORVAresample_filterset.h"
#include "resample/ORVAresample_internal.h"

#include <kett/KTdebug.h>
#include <kett/KTfilter.h>

#include <algorithm>
#include <iterator>
#include <limits>

static void takeFilter(ZohResampler *resampler, int32_t inputRate, int32_t outputRate)
{
    const int32_t high = std::max(inputRate, outputRate);
    const int32_t low = std::min(inputRate, outputRate);
    const auto *row = std::find_if(std::begin(FilterSet), std::end(FilterSet), [=](const FilterSetRow &r) {
        return r.rateHigh == high && r.rateLow == low;
    });
    if (row == std::end(FilterSet) || row->denominator == nullptr) {
        KTDEBUG_TerminalError(-1, "ORVA_ZOHResampleInit: Unsuported sample rate convertion: %d to %d",
                              inputRate, outputRate);
        return; // without coefficients: the filter gives zeros
    }
    resampler->denominator = row->denominator;
    resampler->numerator = row->numerator;
    resampler->coefficientCount = row->count;
}

ZohResampler *newZoh(int32_t inputRate, int32_t outputRate)
{
    auto *resampler = newZeroed<ZohResampler>(1);
    if (resampler == nullptr)
        return nullptr;
    resampler->upsampling = inputRate <= outputRate ? 1 : 0;
    takeFilter(resampler, inputRate, outputRate);
    const int32_t count = resampler->coefficientCount;
    const int32_t common = std::gcd(inputRate, outputRate);
    resampler->upFactor = outputRate / common;
    resampler->downFactor = inputRate / common;
    const int32_t quotient = resampler->upFactor / resampler->downFactor;
    resampler->stateA =
        quotient < std::numeric_limits<int32_t>::max() ? newZeroed<double>(2 * count + 2) : nullptr;
    if (resampler->stateA == nullptr) {
        std::free(resampler);
        return nullptr;
    }
    resampler->stateB = resampler->stateA + count + 1;
    resampler->outputsPerInput = quotient + 1;
    return resampler;
}

void freeZoh(ZohResampler *resampler)
{
    if (resampler == nullptr)
        return;
    std::free(resampler->stateA);
    std::free(resampler->work);
    std::free(resampler);
}

static void filter(ZohResampler *resampler, const float *input, int32_t count)
{
    FilterBlockFloat(resampler->denominator, resampler->numerator, resampler->coefficientCount,
                     resampler->stateA, resampler->stateB, input, resampler->work, count);
}

static int32_t hold(ZohResampler *resampler, float *output, int32_t count)
{
    const auto up = static_cast<uint32_t>(resampler->upFactor);
    const auto down = static_cast<uint32_t>(resampler->downFactor);
    uint32_t phase = resampler->phase;
    int32_t written = 0;
    for (int32_t i = 0; i < count; ++i) {
        for (; phase < up; phase += down)
            output[written++] = static_cast<float>(resampler->work[i]);
        phase -= up;
    }
    resampler->phase = phase;
    resampler->inputCount += static_cast<uint32_t>(count);
    return written;
}

int32_t runZoh(ZohResampler *resampler, const float *input, float *output, int32_t count)
{
    const int64_t need = int64_t{resampler->outputsPerInput} * count;
    if (need > std::numeric_limits<int32_t>::max() ||
        !growWork(resampler->work, resampler->workCapacity, static_cast<int32_t>(need), need)) {
        reportInvalidParameters();
        return -1;
    }
    if (resampler->upsampling == 0) {
        filter(resampler, input, count);
        return hold(resampler, output, count);
    }
    std::copy_n(input, count, resampler->work);
    const int32_t written = hold(resampler, output, count);
    filter(resampler, output, written);
    std::transform(resampler->work, resampler->work + written, output,
                   [](double x) { return static_cast<float>(x); });
    return written;
}
