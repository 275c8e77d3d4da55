"""The voice before and after time scaling at changing speeds, with the place that the cursor tells."""
from figures import (BLUE, FLOATS, GREY, ORANGE, axes, c_float, c_int32, c_int64, c_void_p, function, numpy, recording,
                     save, zeros)

create = function("ORVA_SolafsCreate", c_void_p, c_int32, c_int32, c_int32)
push = function("ORVA_SolafsInputData", c_int32, c_void_p, c_int32, FLOATS, c_int32, c_float)
pull = function("ORVA_SolafsOutputData", c_int32, c_void_p, c_int32, FLOATS, c_int32)
heard = function("ORVA_SolafsTranslateCursorPosition", c_int64, c_void_p, c_int64)
destroy = function("ORVA_SolafsDestroy", None, c_void_p)

RATE, BLOCK, TAIL = 48000, 480, 7 * 960 // 2
voice = recording()
silent = numpy.append(voice, numpy.zeros(TAIL, numpy.float32))
record = create(20, RATE, 1)
parts, room = [], zeros(RATE)
for start in range(0, len(silent), BLOCK):
    speed = 1.0 if start < 0.4 * RATE else 0.6 if start < RATE else 2.0
    block = numpy.ascontiguousarray(silent[start:start + BLOCK])
    push(record, 0, block, len(block), speed)
    parts.append(room[:pull(record, 0, room, RATE)].copy())
scaled = numpy.concatenate(parts)

figure, plots = axes(2, 1, height=4.4, sharex=True)
for plot, samples in zip(plots, (voice, scaled)):
    times = numpy.arange(len(samples)) / RATE
    plot.plot(times[::8], samples[::8], linewidth=0.6)
    plot.set(ylabel="Sample", ylim=(-0.8, 0.8))
plots[0].set(title="Input")
plots[1].set(title="Output at a speed of 1, 0.6 and 2", xlabel="Time (s)")
cursor = plots[1].twinx()
positions = numpy.arange(0, len(scaled), 480)
cursor.plot(positions / RATE, [heard(record, int(p)) / RATE for p in positions], color=ORANGE)
cursor.set(ylim=(0, 1.6))
cursor.set_ylabel("Heard (s of input)", color=ORANGE)
cursor.grid(False)
for place in (0.4, 1.0):
    plots[0].axvline(place, color=GREY, linewidth=1, linestyle="--")
    plots[1].axvline(next(p for p in positions if heard(record, int(p)) >= place * RATE) / RATE, color=GREY,
                     linewidth=1, linestyle="--")
destroy(record)
save(figure, "solafs")
