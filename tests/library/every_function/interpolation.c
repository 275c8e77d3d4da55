#include "host.h"

void use_interpolation(void)
{
    const float x[] = {0, 1, 2}, y[] = {0, 6, 0};
    float y2[3] = {9, 9, 9};
    ORVASPLINE_Estimate(x, y, 3, 1e30f, 1e30f, y2);
    check(y2[0] == 0 && near((double) y2[1], -18, 1e-4) && y2[2] == 0,
          "second derivatives of a natural spline");
    check(near((double) ORVASPLINE_Interpolate(x, y, y2, 3, 0.5f), 4.125, 1e-5),
          "the spline between two points");
    check(ORVAINTERPOLATE_Linear(x, y, 3, 0.5f) == 3, "the straight line there");
}
