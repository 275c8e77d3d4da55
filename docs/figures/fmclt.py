"""The lapped coefficients of the voice, and what error reconstruction leaves for each block length."""
from figures import BLUE, FLOATS, ORANGE, axes, c_int32, c_void_p, function, numpy, recording, save, zeros

create = function("ORVA_FMCLTProcCreate", c_void_p, c_int32)
destroy = function("ORVA_FMCLTProcDestroy", c_int32, c_void_p)
twiddles = function("ORVA_FMCLTFreqWindow", None, FLOATS, c_int32)
direct = function("ORVA_FMCLTDirect", None, c_void_p, FLOATS, FLOATS, FLOATS, FLOATS, FLOATS)
inverse = function("ORVA_FMCLTInverse", None, c_void_p, FLOATS, FLOATS, FLOATS, FLOATS, FLOATS)

RATE = 48000


def through(samples, length):
    """Coefficients and reconstruction, one block late."""
    blocks = numpy.append(samples, numpy.zeros(-len(samples) % length + length, numpy.float32)).reshape(-1, length)
    window, real, imag, history, overlap, output = (zeros(n) for n in (2 * (length + 1), *[length] * 5))
    block, coefficients, returned = zeros(length), [], []
    fmclt = create(length)
    twiddles(window, length)
    for row in blocks:
        block[:] = row
        direct(fmclt, real, imag, block, history, window)
        coefficients.append(real + 1j * imag)
        inverse(fmclt, real, imag, output, overlap, window)
        returned.append(output.copy())
    destroy(fmclt)
    return numpy.array(coefficients), numpy.concatenate(returned)[length:][:len(samples)]


voice = recording()
M = 512
coefficients, _ = through(voice, M)
levels = 20 * numpy.log10(numpy.abs(coefficients) * numpy.pi / numpy.sqrt(8 * M) + 1e-9)   # a sine of full scale: 0 dB
figure, plots = axes(1, 2, height=3.8, gridspec_kw={"width_ratios": [3, 2]})
image = plots[0].imshow(levels.T, origin="lower", aspect="auto", cmap="magma", vmin=-90, vmax=0,
                        extent=(-M / 2 / RATE, (len(levels) - 0.5) * M / RATE, 0, RATE / 2000))
plots[0].set(title=f"Coefficients of a voice, M = {M}", xlabel="Time (s)", ylabel="Frequency (kHz)",
             xlim=(0, len(voice) / RATE))
plots[0].grid(False)
figure.colorbar(image, ax=plots[0], label="Level (dB)", pad=0.02)

noise = numpy.random.default_rng(1).uniform(-1, 1, 8192).astype(numpy.float32)
for lengths, colour, label in ((range(4, 65, 4), BLUE, "4 divides M"),
                               ([m for m in range(1, 65) if m % 4], ORANGE, "it does not")):
    errors = []
    for length in lengths:
        returned = through(noise, length)[1].astype(float)
        errors.append(10 * numpy.log10(((returned - noise) ** 2).sum() / (noise.astype(float) ** 2).sum()))
    plots[1].plot(list(lengths), errors, "o", color=colour, markersize=3, label=label)
plots[1].set(title="Error of white noise", xlabel="Block length M", ylabel="Error (dB re signal)", ylim=(-160, 0))
plots[1].legend(loc="center right")
save(figure, "fmclt")
