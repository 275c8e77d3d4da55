// The natural logarithm in single precision of the Cephes library (S. L. Moshier), four lanes at a time. Its
// bits are part of the results.
//
//     x = m 2^e, m in [sqrt(1/2), sqrt(2)),  u = m - 1
//     ln(x) = u - u^2 / 2 + u^3 P(u) + e ln(2),  ln(2) = q1 + q2
#pragma once

#include <bit>
#include <cstdint>

// Four floats that are operated on lane by lane, each operation rounded as it is for one float. Written so
// and not as a loop, because compilers leave a loop over these selections in scalar code.
using Float4 [[gnu::vector_size(16)]] = float;
using Bits4 [[gnu::vector_size(16)]] = uint32_t;
using Int4 [[gnu::vector_size(16)]] = int32_t;

inline constexpr float _ps_min_norm_pos = 1.1754943508222875e-38f;
inline constexpr uint32_t _ps_inv_mant_mask = 0x807FFFFF;
inline constexpr float _ps_0p5 = 0.5f;
inline constexpr float _ps_cephes_SQRTHF = 0.7071067690849304f;
inline constexpr float _ps_cephes_log_p0 = 0.07037683576345444f;
inline constexpr float _ps_cephes_log_p1 = -0.11514610052108765f;
inline constexpr float _ps_cephes_log_p2 = 0.11676998436450958f;
inline constexpr float _ps_cephes_log_p3 = -0.12420140951871872f;
inline constexpr float _ps_cephes_log_p4 = 0.14249323308467865f;
inline constexpr float _ps_cephes_log_p5 = -0.16668057441711426f;
inline constexpr float _ps_cephes_log_p6 = 0.2000071406364441f;
inline constexpr float _ps_cephes_log_p7 = -0.24999994039535522f;
inline constexpr float _ps_cephes_log_p8 = 0.3333333134651184f;
inline constexpr float _ps_cephes_log_q1 = -0.00021219444170128554f;
inline constexpr float _ps_cephes_log_q2 = 0.693359375f;

inline Float4 allLanes(float x)
{
    return Float4{x, x, x, x};
}

// For x above zero. Below the smallest normal number it is the logarithm of that; infinity counts as 2^128.
inline Float4 fastLog(Float4 x)
{
    x = x > _ps_min_norm_pos ? x : allLanes(_ps_min_norm_pos);
    const auto bits = std::bit_cast<Bits4>(x);
    const Int4 exponent = std::bit_cast<Int4>(bits >> 23) - 127;
    const auto m = std::bit_cast<Float4>((bits & _ps_inv_mant_mask) | std::bit_cast<uint32_t>(_ps_0p5));
    Float4 e = __builtin_convertvector(exponent, Float4) + 1.0f;

    const auto lower = m < _ps_cephes_SQRTHF;
    e = lower ? e - 1.0f : e;
    const Float4 u = lower ? (m - 1.0f) + m : m - 1.0f;
    const Float4 z = u * u;

    Float4 y = allLanes(_ps_cephes_log_p0);
    y = y * u + _ps_cephes_log_p1;
    y = y * u + _ps_cephes_log_p2;
    y = y * u + _ps_cephes_log_p3;
    y = y * u + _ps_cephes_log_p4;
    y = y * u + _ps_cephes_log_p5;
    y = y * u + _ps_cephes_log_p6;
    y = y * u + _ps_cephes_log_p7;
    y = y * u + _ps_cephes_log_p8;
    y = y * u * z;
    return (((e * _ps_cephes_log_q1 + y) - 0.5f * z) + u) + e * _ps_cephes_log_q2;
}
