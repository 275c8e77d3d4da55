"""Energy and zero crossings of the voice, the two scales beside each other, and the gain of the high-pass filter."""
from figures import (BLUE, FLOATS, GREY, ORANGE, axes, c_double, c_float, c_int32, function, numpy, recording, save,
                     zeros)

energy = function("ORVA_CalcEnergy", c_float, FLOATS, c_int32)
crossings = function("ORVA_CalcZeroCrossRate", c_float, FLOATS, c_int32)
remove_dc = function("ORVA_RemoveDC", None, FLOATS, FLOATS, c_int32)
mels = function("ORVAUTIL_Freq2Mels", c_double, c_double)
bark = function("ORVAUTIL_Freq2Bark", c_double, c_double)
hertz_of = function("ORVAUTIL_Bark2Freq", c_double, c_double)

RATE, FRAME = 48000, 480
voice = recording()
frames = [voice[n:n + FRAME] for n in range(0, len(voice) - FRAME + 1, FRAME)]
times = numpy.arange(len(frames)) * FRAME / RATE
levels = numpy.array([energy(frame, FRAME) for frame in frames])
levels[levels == 0] = numpy.nan                                   # silence gives 0, too
figure, plots = axes(2, 2, height=5.4)
plots[0, 0].plot(times, levels)
plots[0, 0].set(title="Frame energy of a voice", xlabel="Time (s)", ylabel="Energy (dB)", ylim=(-100, 0))
plots[0, 1].plot(times, [RATE / 1000 * crossings(frame, FRAME) for frame in frames])
plots[0, 1].set(title="Its zero crossings", xlabel="Time (s)", ylabel="Crossings (1/ms)", ylim=(0, None))

hertz = numpy.linspace(0, 20000, 1000)
plots[1, 0].plot(hertz / 1000, [mels(f) / 100 for f in hertz], color=GREY, label="mel / 100")
plots[1, 0].plot(hertz / 1000, [bark(f) for f in hertz], color=BLUE, label="hertz to Bark")
values = numpy.linspace(0, 26, 1000)
plots[1, 0].plot([hertz_of(b) / 1000 for b in values], values, color=ORANGE, label="Bark to hertz")
plots[1, 0].set(title="The scales", xlabel="Frequency (kHz)", ylabel="Bark", xlim=(0, 20), ylim=(0, 40))
plots[1, 0].legend(loc="upper left")

impulse, answer = zeros(1 << 16), zeros(1 << 16)
impulse[0] = 1
remove_dc(impulse, answer, len(impulse))
gain = 20 * numpy.log10(numpy.abs(numpy.fft.rfft(answer.astype(float))))
places = numpy.arange(len(gain)) / len(impulse)
plots[1, 1].semilogx(places[1:], gain[1:])
plots[1, 1].axhline(gain[0], color=GREY, linestyle="--", linewidth=1)
plots[1, 1].text(1.2e-2, gain[0] + 1, f"at 0 Hz: {gain[0]:.1f} dB", color="#505050")
plots[1, 1].set(title="Gain of ORVA_RemoveDC", xlabel="Frequency (of the sampling rate)", ylabel="Gain (dB)",
                xlim=(1e-4, 0.5), ylim=(-45, 5))
save(figure, "measures")
