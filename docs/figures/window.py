"""The spectra of four windows, as a sine between two bins sees them."""
from figures import FLOATS, GREY, axes, c_bool, c_char_p, c_double, c_int32, c_uint32, function, numpy, save, zeros

create_window = function("ORVA_CreateWindow", c_bool, c_int32, FLOATS, c_uint32)
window_type = function("ORVA_GetWindowType", c_int32, c_char_p)
mean = function("ORVA_GetWindowNormFactor", c_double, FLOATS, c_int32)

LENGTH, FINENESS = 64, 64

figure, plots = axes(1, 2, gridspec_kw={"width_ratios": [2, 3]})
for name in ("Rectangular", "Hanning", "Blackman-Harris", "Flat-Top"):
    window = zeros(LENGTH)
    create_window(window_type(name.encode()), window, LENGTH)
    spectrum = numpy.abs(numpy.fft.rfft(window.astype(float), LENGTH * FINENESS))
    spectrum /= LENGTH * mean(window, LENGTH)
    bins = numpy.arange(len(spectrum)) / FINENESS
    plots[0].plot(window)
    plots[1].plot(bins, 20 * numpy.log10(numpy.maximum(spectrum, 1e-9)), label=name)
plots[0].set(title="Four windows of 64 samples", xlabel="Sample")
plots[1].set(title="and what each lets through", xlabel="Distance in bins", ylabel="Level (dB)", xlim=(0, 16),
             ylim=(-130, 5))
plots[1].legend(loc="upper right")
save(figure, "window")
