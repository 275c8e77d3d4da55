"""What the resampler does to sines: a table in Markdown, for docs/resample.md, and two figures.

Every number is measured on the library's output: sines go in at the input rate, and of what comes out, transients
apart, the best sine of the same frequency is taken as signal and the rest as error. One line of the table is one
converter at one pair of rates; "Nyquist" means half the lower of the two rates.
"""
from figures import BLUE, FLOATS, GREEN, ORANGE, RED, axes, c_char_p, c_int32, c_void_p, function, numpy, save, zeros

init = function("ORVA_ResampleInit", c_void_p, c_int32, c_int32, c_char_p)
resample = function("ORVA_Resample", c_int32, c_void_p, FLOATS, FLOATS, c_int32)
destroy = function("ORVA_ResampleDestroy", c_int32, c_void_p)

PAIRS = ((44100, 48000), (48000, 44100), (48000, 16000), (16000, 48000))
CONVERTERS = {"order 10": "order=10", "order 30": "order=30", "order 64": "order=64", "hold": "type=zoh"}
COLOURS = dict(zip(CONVERTERS, (GREEN, BLUE, RED, ORANGE)))
AMPLITUDE, LENGTH = 0.5, 8192           # of a sine, and of the output that is measured
SETTLING = 3000                         # samples of output left out: the filters have long died away then


def output_of(config, rates, frequency):
    """LENGTH samples of what comes out for a sine."""
    count = (LENGTH + SETTLING) * rates[0] // rates[1] + 2
    sine = zeros(count)
    sine[:] = AMPLITUDE * numpy.sin(2 * numpy.pi * frequency / rates[0] * numpy.arange(count) + 0.5)
    result = zeros(count * (rates[1] // rates[0] + 1) + 1)
    converter = init(*rates, (config + "; delaycompensation=0").encode())
    written = resample(converter, sine, result, count)
    destroy(converter)
    return result[SETTLING:min(written, SETTLING + LENGTH)].astype(float)


def split(output, frequency, rate):
    """The best sine of a frequency in an output, as its complex amplitude, and what is left without it."""
    angle = 2 * numpy.pi * frequency / rate * numpy.arange(len(output))
    basis = numpy.column_stack((numpy.cos(angle), numpy.sin(angle)))
    parts = numpy.linalg.lstsq(basis, output, rcond=None)[0]
    return parts[0] - 1j * parts[1], output - basis @ parts


def decibels(ratio):
    return 20 * numpy.log10(numpy.maximum(ratio, 1e-12))


def gain(config, rates, frequency):
    return decibels(abs(split(output_of(config, rates, frequency), frequency, rates[1])[0]) / AMPLITUDE)


def snr(config, rates, frequency):
    amplitude, rest = split(output_of(config, rates, frequency), frequency, rates[1])
    return decibels(abs(amplitude) / numpy.sqrt(2) / rest.std())


def spectrum(samples):
    """Amplitudes at the frequencies of a transform, by a window whose side lobes lie 92 dB down."""
    n = numpy.arange(len(samples)) / len(samples)
    window = sum(a * numpy.cos(2 * numpy.pi * k * n) for k, a in enumerate((0.35875, -0.48829, 0.14128, -0.01168)))
    return 2 * abs(numpy.fft.rfft(samples * window)) / window.sum()


def image(config, rates, frequency):
    """The greatest other component that a sine leaves, in dB re the sine."""
    amplitude, rest = split(output_of(config, rates, frequency), frequency, rates[1])
    return decibels(spectrum(rest).max() / abs(amplitude))


def alias(config, rates, frequency):
    """What comes out for a sine that the output rate cannot hold, in dB re the sine."""
    return decibels(numpy.sqrt(2) * output_of(config, rates, frequency).std() / AMPLITUDE)


def measure(config, rates):
    """One line of the table."""
    nyquist = min(rates) / 2
    order = int(config.removeprefix("order=")) if config.startswith("order=") else None
    edge = 0.95 - 3 / order if order else 0.95      # where the transition of the window begins
    passband = [gain(config, rates, f * nyquist) for f in numpy.linspace(0.01, edge, 60)]
    ripple = max(passband) - min(passband)
    images = [image(config, rates, f * nyquist) for f in numpy.linspace(0.02, 0.9, 45)]
    highest = rates[0] / 2 / nyquist
    beyond = numpy.linspace(1.05, highest - 0.01, 60) if highest > 1 else ()
    aliases = [alias(config, rates, f * nyquist) for f in beyond]
    return (f"{edge * nyquist:.0f}", f"{ripple:.3f}" if order else f"{ripple:.1f}",
            f"{gain(config, rates, 0.9 * nyquist):.2f}".replace("-0.00", "0.00"), f"{-max(images):.0f}",
            f"{-max(aliases):.0f}" if aliases else "none", f"{snr(config, rates, 1000):.0f}",
            f"{snr(config, rates, 0.9 * nyquist):.0f}")


print("| Rates | Converter | Passband to (Hz) | Ripple (dB) | Gain at 0.9 (dB) | Images (dB) | Aliases (dB) | "
      "SNR at 1 kHz (dB) | SNR at 0.9 (dB) |")
print("|---|---|--:|--:|--:|--:|--:|--:|--:|")
for rates in PAIRS:
    for name, config in CONVERTERS.items():
        print(f"| {rates[0]} to {rates[1]} | {name} |", " | ".join(measure(config, rates)), "|")

rates = (48000, 16000)
frequencies = numpy.arange(20, 24000, 36.9)         # none that ends at zero frequency
figure, plot = axes()
for name, config in CONVERTERS.items():
    plot.plot(frequencies / 1000, [alias(config, rates, f) for f in frequencies], label=name, color=COLOURS[name],
              linewidth=1)
plot.set(xlabel="Frequency that goes in (kHz)", ylabel="Level that comes out (dB)", xlim=(0, 24), ylim=(-120, 5),
         title="48000 to 16000: above 8 kHz, all of it is aliases")
plot.legend()
save(figure, "resample")

rates, tone = (44100, 48000), 0.9 * 22050
figure, plots = axes(2, 1, height=4.4, sharex=True)
for plot, name in zip(plots, ("order 30", "hold")):
    levels = decibels(spectrum(output_of(CONVERTERS[name], rates, tone)) / AMPLITUDE)
    plot.plot(numpy.linspace(0, 24, len(levels)), levels, color=COLOURS[name], linewidth=1)
    plot.set(ylabel="Level (dB)", title=name.capitalize(), ylim=(-180, 10), xlim=(0, 24))
plots[1].set(xlabel="Frequency (kHz)")
save(figure, "resample_sine")
