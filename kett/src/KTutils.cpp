#include <kett/KTutils.h>

#include <cmath>

// Nearest, ties to even, in every rounding mode that the host may have set: the cut is exact, and so is what
// it leaves.
static int16_t rounded(float scaled)
{
    if (std::isnan(scaled))
        return 0;
    if (scaled >= 32767.0f)
        return 32767;
    if (scaled <= -32768.0f)
        return -32768;
    const auto cut = static_cast<int32_t>(scaled);
    const float rest = std::fabs(scaled - static_cast<float>(cut));
    const bool away = rest > 0.5f || (rest == 0.5f && (cut & 1) != 0);
    return static_cast<int16_t>(cut + (away ? (scaled < 0.0f ? -1 : 1) : 0));
}

void KTUTILS_ConvertIEEEFloatToWord16(const float *input, int16_t *output, int32_t count)
{
    for (int32_t i = 0; i < count; ++i)
        output[i] = rounded(input[i] * 32768.0f);
}

void KTUTILS_ConvertWord16ToIEEEFloat(const int16_t *input, float *output, int32_t count)
{
    for (int32_t i = 0; i < count; ++i)
        output[i] = static_cast<float>(input[i]) / 32768.0f;
}
