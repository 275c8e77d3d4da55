"""Four low-passes of order 5 as they answer to a single 1, whole and in their passband."""
from figures import FLOATS, axes, c_char_p, c_int32, c_uint32, c_void_p, function, numpy, save, zeros

create_filter = function("ORVA_CreateFilter", c_void_p, c_char_p)
run_filter = function("ORVA_Filter", c_int32, c_void_p, FLOATS, FLOATS, c_uint32)
destroy_filter = function("ORVA_DestroyFilter", c_int32, c_void_p)

RATE, LENGTH = 48000, 65536
EDGES = "order=5; Ap=1; fpass=3400; fs=48000"

figure, plots = axes(1, 2, gridspec_kw={"width_ratios": [3, 2]})
hertz = numpy.arange(LENGTH // 2 + 1) * RATE / LENGTH
for label, text in (("butterworth", "approximation=butterworth"),
                    ("chebyshev", "approximation=chebyshev"),
                    ("invchebyshev, As 60", "approximation=invchebyshev; As=60"),
                    ("ellip, stop edge 5000", "approximation=ellip; As=50; fstop=5000")):
    answer = zeros(LENGTH)
    answer[0] = 1
    design = create_filter(f"{text}; {EDGES}".encode())
    run_filter(design, answer, answer, LENGTH)
    destroy_filter(design)
    gain = 20 * numpy.log10(numpy.abs(numpy.fft.rfft(answer.astype(float))) + 1e-9)
    plots[0].plot(hertz / 1000, gain, label=label)
    plots[1].plot(hertz / 1000, gain)
plots[0].set(title="Low-passes of order 5 with Ap 1", xlabel="Frequency (kHz)", ylabel="Gain (dB)", xlim=(0, 16),
             ylim=(-100, 5))
plots[0].legend(loc="upper right")
plots[1].set(title="and their passbands", xlabel="Frequency (kHz)", xlim=(0, 3.8), ylim=(-1.6, 0.2))
save(figure, "filter")
