// Splines and straight lines.
#include "families.h"
#include "numbers.h"

#include <orva/ORVAinterpolate.h>
#include <orva/ORVAspline.h>

namespace bits
{
namespace
{

// Points in rising order, now and then two of the same place.
std::vector<float> rising(Numbers &numbers, size_t count)
{
    std::vector<float> x(count);
    int32_t at = numbers.integer(-1000, 0);
    for (float &place : x) {
        place = static_cast<float>(at) * 0x1p-5f;
        at += numbers.integer(0, 50) == 0 ? 0 : numbers.integer(1, 40);
    }
    return x;
}

float slope(Numbers &numbers)
{
    return numbers.coin() ? 1e30f : 4.0f * numbers.sample();
}

} // namespace

void interpolation(Digest &results)
{
    Numbers numbers(18);
    for (int32_t round = 0; round < 1500; ++round) {
        const size_t points = round % 10 == 0 ? numbers.size(90, 800) : numbers.size(2, 60);
        const auto count = static_cast<int32_t>(points);
        const auto x = rising(numbers, points);
        const auto y = numbers.vector(points, round % 20 == 0 ? &Numbers::mixed : &Numbers::finite);
        std::vector<float> second(points);
        const float first = slope(numbers), last = slope(numbers);
        ORVASPLINE_Estimate(x.data(), y.data(), count, first, last, second.data());
        results.add(second);
        for (int32_t i = 0; i < 400; ++i) {
            const float at = numbers.integer(0, 20) == 0 ? numbers.mixed() : 40.0f * numbers.sample();
            results.add(ORVASPLINE_Interpolate(x.data(), y.data(), second.data(), count, at));
            results.add(ORVAINTERPOLATE_Linear(x.data(), y.data(), count, at));
        }
    }
}

} // namespace bits
