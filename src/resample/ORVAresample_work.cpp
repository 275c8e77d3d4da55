#include "resample/ORVAresample_work.h"

#include <kett/KTdebug.h>

#include <cstddef>
#include <cstdlib>

namespace orva
{

void reportInvalidParameters()
{
    KTDEBUG_Error(-1, "ORVA_ResampleInit: Parametros invalidos");
}

bool growWork(double *&work, int32_t &workCapacity, int32_t capacity, int64_t count)
{
    if (work != nullptr && workCapacity >= capacity)
        return true;
    auto *grown = static_cast<double *>(std::realloc(work, static_cast<size_t>(count) * sizeof(double)));
    if (grown == nullptr)
        return false;
    work = grown;
    workCapacity = capacity;
    return true;
}

} // namespace orva
