"""Plain and phase-transformed correlation of the voice and a noisy copy of it 480 samples later."""
from figures import FLOATS, axes, c_bool, c_int32, c_void_p, function, numpy, recording, save, zeros

create = function("ORVA_XcorrProcCreate", c_void_p, c_int32, c_int32)
plain = function("ORVA_XcorrProcExecute", c_int32, c_void_p, FLOATS, FLOATS, FLOATS)
phat = function("ORVA_XcorrPhatProcess", c_int32, c_void_p, FLOATS, FLOATS, FLOATS)
destroy = function("ORVA_XcorrProcDestroy", c_bool, c_void_p)

RATE, LENGTH, DELAY, START = 48000, 16384, 480, 4000
voice = recording()
early, late, r = zeros(LENGTH), zeros(LENGTH), zeros(2 * LENGTH - 1)
early[:] = voice[START:START + LENGTH]
late[:] = voice[START - DELAY:START - DELAY + LENGTH]
late += 0.1 * late.std() * numpy.random.default_rng(1).standard_normal(LENGTH).astype(numpy.float32)

milliseconds = numpy.arange(1 - LENGTH, LENGTH) * 1000 / RATE
xcorr = create(LENGTH, LENGTH)
figure, plots = axes(2, 1, height=4, sharex=True)
for plot, transform, title in ((plots[0], plain, "Plain"), (plots[1], phat, "Phase transform")):
    transform(xcorr, late, early, r)
    plot.plot(milliseconds, r, linewidth=1)
    plot.set(title=title, ylabel="Correlation", xlim=(-40, 60))
plots[1].set(xlabel="Lag (ms)")
destroy(xcorr)
save(figure, "xcorr")
