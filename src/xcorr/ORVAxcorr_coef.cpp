#include <orva/ORVAxcorr.h>

#include <kett/KTdebug.h>
#include <kett/KTmem.h>
#include <kett/KTvector.h>

#include <algorithm>
#include <cmath>

namespace orva
{
namespace
{

// The steps that follow the refusals. False when memory is out; nothing is then written.
bool correlateOnce(ORVA_XCORR *xcorr, KT_MEM *memory, const float *x, int32_t lengthX, const float *y,
                   int32_t lengthY, int32_t *lag, double &coefficient)
{
    const int32_t count = ORVA_XcorrVectorLength(xcorr);
    float *copyX = KTMEM_NewFloatVector(memory, lengthX);
    float *copyY = KTMEM_NewFloatVector(memory, lengthY);
    // Where both vectors are empty there is no lag at all.
    float *result = KTMEM_NewFloatVector(memory, std::max(count, 0));
    if (xcorr == nullptr || copyX == nullptr || copyY == nullptr || result == nullptr)
        return false;
    std::copy_n(x, lengthX, copyX);
    std::copy_n(y, lengthY, copyY);
    const double powerX = FVectorSumOfSquares(copyX, lengthX) / static_cast<double>(lengthX);
    const double powerY = FVectorSumOfSquares(copyY, lengthY) / static_cast<double>(lengthY);
    if (ORVA_XcorrProcExecute(xcorr, copyX, copyY, result) != count)
        return false;
    float peak = 0.0f;
    if (lag != nullptr)
        *lag = FVectorArgAbsMax(result, count, &peak) - (std::max(lengthX, lengthY) - 1);
    else
        peak = FVectorAbsMax(result, count);
    coefficient = static_cast<double>(peak) / std::sqrt(powerY * powerX);
    return true;
}

} // namespace
} // namespace orva

using namespace orva;

double ORVA_XcorrCoef(const float *x, int32_t lengthX, const float *y, int32_t lengthY, int32_t *lag)
{
    if (x == nullptr) {
        KTDEBUG_Error(-1, "ORVA_XcorrCoef: Invalid vector x\n");
        return -1.0;
    }
    if (y == nullptr) {
        KTDEBUG_Error(-1, "ORVA_XcorrCoef: Invalid vector y\n");
        return -1.0;
    }
    double coefficient = -1.0;
    KT_MEM *memory = KTMEM_CreateMemDescrEx("ORVA_XcorCoef local mem", 1024, 0);
    ORVA_XCORR *xcorr = ORVA_XcorrProcCreate(lengthX, lengthY);
    if (!correlateOnce(xcorr, memory, x, lengthX, y, lengthY, lag, coefficient))
        coefficient = -1.0;
    ORVA_XcorrProcDestroy(xcorr);
    KTMEM_DisposeMemDescr(memory);
    return coefficient;
}
