// The constants of the natural logarithm in single precision of the Cephes library (S. L. Moshier). Its bits are part of
// the results.
//
//     x = m 2^e, m in [sqrt(1/2), sqrt(2)),  u = m - 1
//     ln(x) = u - u^2 / 2 + u^3 P(u) + e ln(2),  ln(2) = q1 + q2
#pragma once

#include <cstdint>

namespace orva
{

constexpr float _ps_min_norm_pos = 1.1754943508222875e-38f;
constexpr uint32_t _ps_inv_mant_mask = 0x807FFFFF;
constexpr float _ps_0p5 = 0.5f;
constexpr float _ps_cephes_SQRTHF = 0.7071067690849304f;
constexpr float _ps_cephes_log_p0 = 0.07037683576345444f;
constexpr float _ps_cephes_log_p1 = -0.11514610052108765f;
constexpr float _ps_cephes_log_p2 = 0.11676998436450958f;
constexpr float _ps_cephes_log_p3 = -0.12420140951871872f;
constexpr float _ps_cephes_log_p4 = 0.14249323308467865f;
constexpr float _ps_cephes_log_p5 = -0.16668057441711426f;
constexpr float _ps_cephes_log_p6 = 0.2000071406364441f;
constexpr float _ps_cephes_log_p7 = -0.24999994039535522f;
constexpr float _ps_cephes_log_p8 = 0.3333333134651184f;
constexpr float _ps_cephes_log_q1 = -0.00021219444170128554f;
constexpr float _ps_cephes_log_q2 = 0.693359375f;

// From the natural logarithm to decibels, one product after the other.
constexpr float decimalPerNatural = 0.4342944622039795f;
constexpr float decibelsPerDecimal = 10.0f;

} // namespace orva
