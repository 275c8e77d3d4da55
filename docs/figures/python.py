"""The package for Python at work on the recorded voice: what its guide shows, and the measures of its frames."""
import os
import sys

from figures import BUILD, BLUE, ORANGE, RECORDING, ROOT, axes, numpy, save

os.environ["ORVA_LIBRARY"] = str(BUILD / "src/liborva.so.3")
sys.path.insert(0, str(ROOT / "python"))

import orva

voice, fs = orva.read(RECORDING)
telephone = orva.Filter("type=bandpass; order=4; fpass1=300; fpass2=3400", fs=fs)(voice)
slower = orva.stretch(voice, fs, speed=0.6)

figure, plots = axes(1, 3, height=2.6, sharey=True, gridspec_kw={"width_ratios": [1, 1, 1 / 0.6]})
for plot, sound, title in zip(plots, (voice, telephone, slower), ("A voice", "on the telephone", "at 0.6 of its speed")):
    frequencies, times, decibels = orva.spectrogram(sound, fs, n=1024, hop=256)
    plot.pcolormesh(times, frequencies / 1000, decibels.T, vmin=-100, vmax=-20, cmap="magma", shading="nearest")
    plot.set(title=title, xlabel="Time (s)", ylim=(0, 8))
    plot.grid(False)
plots[0].set(ylabel="Frequency (kHz)")
save(figure, "python")

level = orva.energy_db(voice, frame=480, hop=240)
level[level == 0] = numpy.nan                            # silence
crossings = orva.zero_cross_rate(voice, frame=480, hop=240)
seconds = (numpy.arange(len(level)) * 240 + 240) / fs
figure, plots = axes(2, 1, height=3.2, sharex=True)
plots[0].plot(seconds, level, color=BLUE)
plots[0].set(title="Level of frames of 10 ms", ylabel="dB")
plots[1].plot(seconds, crossings, color=ORANGE)
plots[1].set(title="Zero crossings a sample", xlabel="Time (s)", xlim=(0, len(voice) / fs))
save(figure, "python_measures")
