#include <kett/KTutils.h>

#include "kernels/kernels.h"
#include "platform/clock.h"

void KTUTILS_sleep_msec(int32_t milliseconds)
{
    if (milliseconds > 0)
        kett::sleepFor(milliseconds);
}

void KTUTILS_ConvertIEEEFloatToWord16(const float *input, int16_t *output, int32_t count)
{
    kett::wide::toWord16(input, output, count);
}

void KTUTILS_ConvertWord16ToIEEEFloat(const int16_t *input, float *output, int32_t count)
{
    kett::wide::fromWord16(input, output, count);
}
