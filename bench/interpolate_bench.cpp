// A spline and straight lines through 1000 points nearly one apart, asked at abscissae in no order and in ascending order,
// ten to an interval: ours, and GSL, in double, without and with its accelerator, which remembers the last interval. Times
// are for an abscissa. The estimate: for a point.
#include "cases.h"

#include <orva/ORVAinterpolate.h>
#include <orva/ORVAspline.h>

#include <gsl/gsl_spline.h>

#include <algorithm>
#include <cmath>

namespace
{

constexpr size_t points = 1000;
constexpr size_t queries = 10 * points;

using GslSpline = Owned<gsl_spline, gsl_spline_free>;
using Accelerator = Owned<gsl_interp_accel, gsl_interp_accel_free>;

struct Curve {
    std::vector<float> x, y, y2;
};

Curve makeCurve()
{
    const std::vector<float> jitter = noise(points);
    Curve curve;
    for (size_t i = 0; i < points; ++i) {
        curve.x.push_back(static_cast<float>(i) + 0.4f * jitter[i]);
        curve.y.push_back(std::sin(0.3f * static_cast<float>(i)));
    }
    curve.y2.resize(points);
    ORVASPLINE_Estimate(curve.x.data(), curve.y.data(), points, 1e30f, 1e30f, curve.y2.data());
    return curve;
}

std::vector<float> makeQueries(bool areAscending)
{
    std::vector<float> xq = noise(queries);
    for (float &x : xq)
        x = (0.5f * x + 0.5f) * static_cast<float>(points - 2) + 0.5f;
    if (areAscending)
        std::ranges::sort(xq);
    return xq;
}

GslSpline makeGsl(const Curve &curve, const gsl_interp_type *type)
{
    const std::vector<double> x(curve.x.begin(), curve.x.end());
    const std::vector<double> y(curve.y.begin(), curve.y.end());
    GslSpline spline(gsl_spline_alloc(type, points));
    gsl_spline_init(spline.get(), x.data(), y.data(), points);
    return spline;
}

template <class Evaluate> void add(const std::string &name, bool areAscending, Evaluate evaluate)
{
    addCase(name, queries, [=] {
        return [=, curve = makeCurve(), xq = makeQueries(areAscending)] {
            for (const float x : xq)
                benchmark::DoNotOptimize(evaluate(curve, x));
        };
    });
}

void addGsl(const std::string &name, bool areAscending, const gsl_interp_type *type, bool hasAccelerator)
{
    addCase(name, queries, [=] {
        return [xq = makeQueries(areAscending), spline = makeGsl(makeCurve(), type),
                accelerator = Accelerator(hasAccelerator ? gsl_interp_accel_alloc() : nullptr)] {
            for (const float x : xq)
                benchmark::DoNotOptimize(
                    gsl_spline_eval(spline.get(), static_cast<double>(x), accelerator.get()));
        };
    });
}

void addOrder(const std::string &order, bool areAscending)
{
    add("spline, " + order + "/orva", areAscending, [](const Curve &curve, float x) {
        return ORVASPLINE_Interpolate(curve.x.data(), curve.y.data(), curve.y2.data(), points, x);
    });
    addGsl("spline, " + order + "/gsl", areAscending, gsl_interp_cspline, false);
    addGsl("spline, " + order + "/gsl accelerated", areAscending, gsl_interp_cspline, true);
    add("line, " + order + "/orva", areAscending, [](const Curve &curve, float x) {
        return ORVAINTERPOLATE_Linear(curve.x.data(), curve.y.data(), points, x);
    });
    addGsl("line, " + order + "/gsl", areAscending, gsl_interp_linear, false);
    addGsl("line, " + order + "/gsl accelerated", areAscending, gsl_interp_linear, true);
}

const bool registered = [] {
    addOrder("no order", false);
    addOrder("ascending", true);
    addCase("estimate/orva", points, [] {
        return [curve = makeCurve()]() mutable {
            ORVASPLINE_Estimate(curve.x.data(), curve.y.data(), points, 1e30f, 1e30f, curve.y2.data());
        };
    });
    addCase("estimate/gsl", points, [] {
        const Curve curve = makeCurve();
        return [x = std::vector<double>(curve.x.begin(), curve.x.end()),
                y = std::vector<double>(curve.y.begin(), curve.y.end()),
                spline = makeGsl(curve, gsl_interp_cspline)] {
            gsl_spline_init(spline.get(), x.data(), y.data(), points);
        };
    });
    return true;
}();

} // namespace
