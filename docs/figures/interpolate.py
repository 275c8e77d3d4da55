"""One table of points, drawn as lines, as a natural spline and as one with given slopes, and beyond its ends."""
from figures import BLUE, FLOATS, GREEN, GREY, ORANGE, axes, c_float, c_int32, function, numpy, save, zeros

estimate = function("ORVASPLINE_Estimate", None, FLOATS, FLOATS, c_int32, c_float, c_float, FLOATS)
spline = function("ORVASPLINE_Interpolate", c_float, FLOATS, FLOATS, FLOATS, c_int32, c_float)
linear = function("ORVAINTERPOLATE_Linear", c_float, FLOATS, FLOATS, c_int32, c_float)

NATURAL = 1e30                          # as a slope
points = ((0, 0), (1, 2), (2, 2.5), (4, 1), (5, 3), (6, 3))
x, y, y2 = (zeros(len(points)) for _ in range(3))
x[:], y[:] = zip(*points)
places = numpy.linspace(-0.8, 6.8, 500)
figure, plot = axes()
plot.axvspan(-0.8, 0, color="#f3f4f6")
plot.axvspan(6, 6.8, color="#f3f4f6")
plot.plot(places, [linear(x, y, len(x), p) for p in places], color=GREY, label="straight lines")
for slope, colour, label in ((NATURAL, BLUE, "spline, natural ends"), (0, ORANGE, "spline, slope 0 at both ends")):
    estimate(x, y, len(x), slope, slope, y2)
    plot.plot(places, [spline(x, y, y2, len(x), p) for p in places], color=colour, label=label)
plot.plot(x, y, "o", color=GREEN, label="points")
plot.set(xlabel="x", ylabel="y", xlim=(-0.8, 6.8), ylim=(-2, 6))
plot.legend(loc="upper left", ncols=2)
save(figure, "interpolate")
