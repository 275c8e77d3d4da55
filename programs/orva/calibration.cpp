#include "calibration.h"

#include "failure.h"

#include <kett/KTstring.h>
#include <orva/ORVAinterpolate.h>
#include <orva/ORVAspline.h>

#include <algorithm>
#include <cmath>

namespace orva
{
namespace
{

enum { mostPoints = 256 };

// Within the points.
float placeOf(const Calibration &curve, double hertz)
{
    return std::clamp(static_cast<float>(std::log10(hertz)), curve.x.front(), curve.x.back());
}

} // namespace

Calibration calibrationFrom(const std::string &text)
{
    const std::string config = "points=[" + text + "]"; // what libkett reads a matrix from
    int32_t rows = 0;
    int32_t columns = 0;
    const bool clean = text.find_first_not_of("0123456789+-.eE,; \t\n") == std::string::npos;
    if (clean)
        KTSTRING_GetMatrixSizeFromString(config.c_str(), "points", &rows, &columns);
    if (columns != 2 || rows < 2 || rows > mostPoints)
        failUse("points '" + text + "' are not 2 to 256 pairs like \"100 3; 1000 0; 5000 -2\"");
    std::vector<double> values(2 * static_cast<size_t>(rows));
    KTSTRING_GetDoubleMatrixValuesFromString(config.c_str(), "points", values.data(), rows, 2);
    Calibration curve;
    for (size_t i = 0; i < values.size(); i += 2) {
        curve.hertz.push_back(values[i]);
        curve.decibels.push_back(values[i + 1]);
        curve.x.push_back(static_cast<float>(std::log10(values[i])));
        curve.y.push_back(static_cast<float>(values[i + 1]));
        const size_t last = curve.x.size() - 1;
        if (!(values[i] > 0) || (last > 0 && !(curve.x[last] > curve.x[last - 1])))
            failUse("points '" + text + "': the frequencies must be above 0 and rise from point to point");
    }
    curve.bends.resize(curve.x.size());
    ORVASPLINE_Estimate(curve.x.data(), curve.y.data(), rows, 1e30F, 1e30F, curve.bends.data());
    return curve;
}

float splineAt(const Calibration &curve, double hertz)
{
    return ORVASPLINE_Interpolate(curve.x.data(), curve.y.data(), curve.bends.data(),
                                  static_cast<int32_t>(curve.x.size()), placeOf(curve, hertz));
}

float lineAt(const Calibration &curve, double hertz)
{
    return ORVAINTERPOLATE_Linear(curve.x.data(), curve.y.data(), static_cast<int32_t>(curve.x.size()),
                                  placeOf(curve, hertz));
}

} // namespace orva
