"""What the suppressor does to a voice in noise: its gain at each frequency, and the level of frames at two rates."""
from figures import (BLUE, FLOATS, GREY, ORANGE, RED, axes, c_bool, c_char_p, c_int32, c_void_p, function, numpy, recording,
                     save, zeros)

create = function("ORVA_CreateNoiseSupEx", c_void_p, c_int32, c_int32)
frame_size = function("ORVA_NoiseSupBufferSize", c_int32, c_void_p)
suppress = function("ORVA_DoNoiseSup", c_int32, c_void_p, FLOATS, FLOATS)
destroy = function("ORVA_DestroyNoiseSup", c_bool, c_void_p)
convert_init = function("ORVA_ResampleInit", c_void_p, c_int32, c_int32, c_char_p)
convert = function("ORVA_Resample", c_int32, c_void_p, FLOATS, FLOATS, c_int32)
convert_end = function("ORVA_ResampleDestroy", c_int32, c_void_p)


def suppressed(samples, rate, policy):
    suppressor = create(rate, policy)
    frame = frame_size(suppressor)
    block, output = zeros(frame), []
    for start in range(0, len(samples) // frame * frame, frame):
        block[:] = samples[start:start + frame]
        suppress(suppressor, block, block)
        output.append(block.copy())
    destroy(suppressor)
    return numpy.concatenate(output)


def voice_at(rate):
    converter, output = convert_init(48000, rate, None), zeros(48000 * 2)
    count = convert(converter, recording(), output, len(recording()))
    convert_end(converter)
    noise = 0.01 * numpy.random.default_rng(1).standard_normal(count)
    return (output[:count] + noise).astype(numpy.float32)


def levels(samples, rate):
    frames = samples[:len(samples) // (rate // 50) * (rate // 50)].reshape(-1, rate // 50).astype(float)
    return 10 * numpy.log10((frames ** 2).mean(axis=1) + 1e-10)


figure, plots = axes(1, 2)
RATE, SEGMENT = 16000, 512
noise = (0.05 * numpy.random.default_rng(2).standard_normal(30 * RATE)).astype(numpy.float32)
window = numpy.hanning(SEGMENT)


def power(samples):
    segments = samples[:len(samples) // SEGMENT * SEGMENT].reshape(-1, SEGMENT).astype(float) * window
    return (numpy.abs(numpy.fft.rfft(segments, axis=1)) ** 2).mean(axis=0)


for policy, colour, width in ((0, BLUE, 4), (3, ORANGE, 1.4)):
    output = suppressed(noise, RATE, policy)
    gain = 10 * numpy.log10(power(output[96:]) / power(noise[:len(output) - 96]))    # it comes 96 samples late
    plots[0].plot(numpy.arange(len(gain))[1:-1] * RATE / SEGMENT / 1000, gain[1:-1], color=colour,
                  linewidth=width, label=f"policy {policy}")
plots[0].set(title="Gain for white noise, 16000 Hz", xlabel="Frequency (kHz)", ylabel="Gain (dB)", ylim=(-0.1, 0.1))
plots[0].legend()

for rate, colour in ((16000, ORANGE), (32000, RED)):
    samples = voice_at(rate)
    output = levels(suppressed(samples, rate, 3), rate)
    if rate == 16000:
        plots[1].plot(numpy.arange(len(levels(samples, rate))) / 50, levels(samples, rate), color=GREY, linewidth=4,
                      label="in")
    plots[1].plot(numpy.arange(len(output)) / 50, output, color=colour, label=f"out, {rate} Hz")
plots[1].set(title="A voice in noise, policy 3", xlabel="Time (s)", ylabel="Level of frames (dB)", ylim=(-105, 0))
plots[1].legend(loc="center right")
save(figure, "noisesup")
