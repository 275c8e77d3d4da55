// The fast logarithm by its steps, for one float.
#pragma once

#include <bit>
#include <cstdint>
#include <initializer_list>

namespace reference
{

inline float fastLog(float x)
{
    const float smallestNormal = 1.1754943508222875e-38f;
    x = x > smallestNormal ? x : smallestNormal;
    const auto bits = std::bit_cast<uint32_t>(x);
    float e = static_cast<float>(static_cast<int32_t>((bits & 0x7F800000) >> 23) - 127) + 1.0f;
    const float m = std::bit_cast<float>((bits & 0x807FFFFF) | 0x3F000000);
    float u = m - 1.0f;
    if (m < 0.7071067690849304f) {
        e = e - 1.0f;
        u = u + m;
    }
    const float z = u * u;
    float y = 0.07037683576345444f;
    for (float p : {-0.11514610052108765f, 0.11676998436450958f, -0.12420140951871872f, 0.14249323308467865f,
                    -0.16668057441711426f, 0.2000071406364441f, -0.24999994039535522f, 0.3333333134651184f})
        y = y * u + p;
    y = y * u * z;
    return (((e * -0.00021219444170128554f + y) - 0.5f * z) + u) + e * 0.693359375f;
}

} // namespace reference
