"""A frame of the voice in decibels, with and without pre-emphasis, and the error of the fast logarithm."""
from figures import (BLUE, FLOATS, axes, c_bool, c_double, c_int32, c_uint32, c_void_p, function, numpy, recording,
                     save, zeros)

create_window = function("ORVA_CreateWindow", c_bool, c_int32, FLOATS, c_uint32)
mean = function("ORVA_GetWindowNormFactor", c_double, FLOATS, c_int32)
create = function("ORVA_FFTProcCreate", c_void_p, c_int32)
power_spectrum = function("ORVA_FFTProcExecutePSDEx", c_int32, c_void_p, FLOATS, FLOATS, c_void_p)
destroy = function("ORVA_FFTProcDestroy", c_bool, c_void_p)
pre_emphasis = function("ORVA_CreatePreEmphAdjust", c_bool, FLOATS, c_int32, c_double)
decibels = function("ORVA_PSDtoDB", c_bool, c_int32, FLOATS, FLOATS, c_void_p, c_double, c_double)

LENGTH, RATE, START = 4096, 48000, 44000   # in the second word
window, frame = zeros(LENGTH), zeros(LENGTH)
create_window(3, window, LENGTH)
frame[:] = recording()[START:START + LENGTH] * window
power, plain, emphasised, adjustment = (zeros(LENGTH // 2 + 4) for _ in range(4))
fft = create(LENGTH)
bins = power_spectrum(fft, frame, power, None)
destroy(fft)
norm = mean(window, LENGTH) ** 4
pre_emphasis(adjustment, LENGTH, 0.97)
decibels(LENGTH, power, plain, None, norm, 120)
decibels(LENGTH, power, emphasised, adjustment.ctypes.data, norm, 120)

figure, plots = axes(1, 2, gridspec_kw={"width_ratios": [3, 2]})
kilohertz = numpy.arange(bins) * RATE / LENGTH / 1000
plots[0].plot(kilohertz, plain[:bins], label="as it is", linewidth=1)
plots[0].plot(kilohertz, emphasised[:bins], label="through pre-emphasis", linewidth=1)
plots[0].set(title="A frame of a voice", xlabel="Frequency (kHz)", ylabel="Level (dB)", xlim=(0, 8), ylim=(-120, 0))
plots[0].legend(loc="upper right")

COUNT = 1 << 16
values, found = zeros(COUNT // 2 + 4), zeros(COUNT // 2 + 4)
values[:] = 10 ** numpy.random.default_rng(1).uniform(-3, 9, len(values))
decibels(COUNT, values, found, None, 1, 300)
exact = 10 * numpy.log10(values.astype(float) * float(numpy.float32(1) / numpy.float32(COUNT // 2) ** 2))
bulk = slice(0, COUNT // 2)
plots[1].plot(exact[bulk], (found[bulk] - exact[bulk]) * 1e5, ".", color=BLUE, markersize=0.6)
plots[1].set(title="Error of the fast logarithm", xlabel="Level (dB)", ylabel="Error (1e-5 dB)", ylim=(-2.5, 2.5))
save(figure, "fft")
