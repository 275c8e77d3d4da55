// The zero-order hold: each output repeats the newest input, and an elliptic filter runs at the higher rate, after the
// hold on the way up and before the dropping on the way down.
#include "resample/ORVAresample_hold.h"

#include "common/memory.h"
#include "common/numbers.h"
#include "resample/ORVAresample_filterset.h"
#include "resample/ORVAresample_work.h"
#include "resample/kernels/ORVAresample_kernels.h"

#include <kett/KTdebug.h>
#include <kett/KTfilter.h>

#include <algorithm>
#include <iterator>
#include <limits>

namespace orva
{
namespace
{

void takeFilter(ZohResampler *resampler, int32_t inputRate, int32_t outputRate)
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

void filter(ZohResampler *resampler, const float *input, int32_t count)
{
    FilterBlockFloat(resampler->denominator, resampler->numerator, resampler->coefficientCount,
                     resampler->stateA, resampler->stateB, input, resampler->work, count);
}

int32_t hold(ZohResampler *resampler, float *output, int32_t count)
{
    resampler->inputCount += static_cast<uint32_t>(count);
    return kernels<ResampleKernels>().hold(resampler->work, count, output,
                                           static_cast<uint32_t>(resampler->upFactor),
                                           static_cast<uint32_t>(resampler->downFactor), &resampler->phase);
}

} // namespace

ZohResampler *newHold(int32_t inputRate, int32_t outputRate)
{
    auto resampler = ownZeroed<ZohResampler>(1);
    if (resampler == nullptr)
        return nullptr;
    resampler->upsampling = inputRate <= outputRate ? 1 : 0;
    takeFilter(resampler.get(), inputRate, outputRate);
    const int32_t common = greatestCommonDivisor(inputRate, outputRate);
    resampler->upFactor = outputRate / common;
    resampler->downFactor = inputRate / common;
    const int32_t quotient = resampler->upFactor / resampler->downFactor;
    if (quotient == std::numeric_limits<int32_t>::max())
        return nullptr;
    resampler->outputsPerInput = quotient + 1;
    const int32_t count = resampler->coefficientCount;
    resampler->stateA = newZeroed<double>(2 * static_cast<size_t>(count) + 2);
    if (resampler->stateA == nullptr)
        return nullptr;
    resampler->stateB = resampler->stateA + count + 1;
    return resampler.release();
}

void freeHold(ZohResampler *resampler)
{
    if (resampler == nullptr)
        return;
    std::free(resampler->stateA);
    std::free(resampler->work);
    std::free(resampler);
}

int32_t runHold(ZohResampler *resampler, const float *input, float *output, int32_t count)
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
    kernels<ResampleKernels>().widen(input, resampler->work, count);
    const int32_t written = hold(resampler, output, count);
    filter(resampler, output, written);
    kernels<ResampleKernels>().narrow(resampler->work, output, written);
    return written;
}

} // namespace orva
