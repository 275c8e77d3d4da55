// Interpolation, measures, scales.
#include "walk.h"

#include <orva/ORVAinterpolate.h>
#include <orva/ORVAmisc.h>
#include <orva/ORVAspline.h>
#include <orva/ORVAutil.h>

#include <cmath>

namespace arguments
{

namespace
{

int32_t length(Walk &walk)
{
    return walk.pick({INT32_MIN, -2, -1, 0, 1, 2, 3, 5, 64, 1000});
}

size_t countOf(int32_t length)
{
    return length > 0 ? static_cast<size_t>(length) : 0;
}

Walk::Use arrayOf(int32_t length)
{
    return length > 0 ? Walk::neverNull : Walk::any;
}

int32_t points(Walk &walk)
{
    return walk.pick({INT32_MIN, -1, 0, 1, 2, 3, 50});
}

template <double function(double)> void scale(Walk &walk)
{
    const double value = walk.pick({1000.0, 0.0, -0.0, 1.0, -1.0, 24.0, -700.0, -701.0, std::nan(""),
                                    HUGE_VAL, -HUGE_VAL, 5e-324, 1.7e308, -1.7e308});
    const double result = walk.call([&] { return function(value); });
    walk.expect(!std::isnan(value) || std::isnan(result) || result == function(1.0), "not-a-number");
}

} // namespace

const Row measures[] = {
    {"ORVASPLINE_Estimate",
     [](Walk &walk) {
         const int32_t n = points(walk);
         const Walk::Use use = n >= 2 ? Walk::neverNull : Walk::any;
         const float *const x = walk.in<float>(countOf(n), use);
         const float *const y = walk.in<float>(countOf(n), use);
         const float first = walk.real<float>();
         const float last = walk.real<float>();
         float *const y2 = walk.out<float>(countOf(n), use);
         walk.call([&] { ORVASPLINE_Estimate(x, y, n, first, last, y2); });
         walk.expect(walk.messages() == (n < 2 ? 1 : 0), "a message for too few points");
         walk.expect(n >= 2 || walk.isUntouched(y2), "a refusal writes nothing");
     }},
    {"ORVASPLINE_Interpolate",
     [](Walk &walk) {
         const int32_t n = points(walk);
         const float *const x = walk.in<float>(countOf(n), arrayOf(n));
         const float *const y = walk.in<float>(countOf(n), arrayOf(n));
         const float *const y2 = walk.in<float>(countOf(n), arrayOf(n));
         const float at = walk.real<float>();
         const float value = walk.call([&] { return ORVASPLINE_Interpolate(x, y, y2, n, at); });
         walk.expect((n > 0 && !std::isnan(at)) || std::isnan(value), "not-a-number");
     }},
    {"ORVAINTERPOLATE_Linear",
     [](Walk &walk) {
         const int32_t n = points(walk);
         const float *const x = walk.in<float>(countOf(n), arrayOf(n));
         const float *const y = walk.in<float>(countOf(n), arrayOf(n));
         const float at = walk.real<float>();
         const float value = walk.call([&] { return ORVAINTERPOLATE_Linear(x, y, n, at); });
         walk.expect((n > 0 && !std::isnan(at)) || std::isnan(value), "not-a-number");
     }},

    {"ORVA_CalcEnergy",
     [](Walk &walk) {
         const int32_t n = length(walk);
         const float *const input = walk.in<float>(countOf(n), arrayOf(n));
         const float energy = walk.call([&] { return ORVA_CalcEnergy(input, n); });
         walk.expect(std::isfinite(energy) && (n > 0 || energy == 0.0f), "decibels");
     }},
    {"ORVA_CalcZeroCrossRate",
     [](Walk &walk) {
         const int32_t n = length(walk);
         const float *const input = walk.in<float>(countOf(n), arrayOf(n));
         const float rate = walk.call([&] { return ORVA_CalcZeroCrossRate(input, n); });
         walk.expect(n == 0 ? std::isnan(rate) : rate >= 0.0f && rate < 1.0f, "the rate");
     }},
    {"ORVA_RemoveDC",
     [](Walk &walk) {
         const int32_t n = length(walk);
         const float *const input = walk.in<float>(countOf(n), arrayOf(n));
         float *const output = walk.out<float>(countOf(n), arrayOf(n));
         walk.call([&] { ORVA_RemoveDC(input, output, n); });
     }},
    {"ORVAUTIL_Freq2Mels", scale<ORVAUTIL_Freq2Mels>},
    {"ORVAUTIL_Mels2Freq", scale<ORVAUTIL_Mels2Freq>},
    {"ORVAUTIL_Freq2Bark", scale<ORVAUTIL_Freq2Bark>},
    {"ORVAUTIL_Bark2Freq", scale<ORVAUTIL_Bark2Freq>},
    {},
};

} // namespace arguments
