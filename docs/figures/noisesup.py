"""What the suppressor does to a voice in noise: its gain at each frequency, and the level of frames at two rates."""
from figures import (BLUE, FLOATS, GREY, ORANGE, RED, axes, c_bool, c_char_p, c_int32, c_void_p, function, numpy,
                     recording, save, zeros)

create = function("ORVA_CreateNoiseSupEx", c_void_p, c_int32, c_int32)
frame_size = function("ORVA_NoiseSupBufferSize", c_int32, c_void_p)
suppress = function("ORVA_DoNoiseSup", c_int32, c_void_p, FLOATS, FLOATS)
destroy = function("ORVA_DestroyNoiseSup", c_bool, c_void_p)
convert_init = function("ORVA_ResampleInit", c_void_p, c_int32, c_int32, c_char_p)
convert = function("ORVA_Resample", c_int32, c_void_p, FLOATS, FLOATS, c_int32)
convert_end = function("ORVA_ResampleDestroy", c_int32, c_void_p)

RATE, SEGMENT = 16000, 512
FRAMES_A_SECOND = 50
DELAY = 96                              # samples at that rate by which the output is late


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
    """The recording at another rate, in white noise at -40 dB."""
    converter, output = convert_init(48000, rate, None), zeros(48000 * 2)
    count = convert(converter, recording(), output, len(recording()))
    convert_end(converter)
    noise = 0.01 * numpy.random.default_rng(1).standard_normal(count)
    return (output[:count] + noise).astype(numpy.float32)


def levels(samples, rate):
    """In dB, of frames of 20 ms."""
    length = rate // FRAMES_A_SECOND
    frames = samples[:len(samples) // length * length].reshape(-1, length).astype(float)
    return 10 * numpy.log10((frames ** 2).mean(axis=1) + 1e-10)


def power(samples):
    """The mean spectrum of segments."""
    segments = samples[:len(samples) // SEGMENT * SEGMENT].reshape(-1, SEGMENT).astype(float)
    return (numpy.abs(numpy.fft.rfft(segments * numpy.hanning(SEGMENT), axis=1)) ** 2).mean(axis=0)


figure, plots = axes(1, 2)
noise = (0.05 * numpy.random.default_rng(2).standard_normal(30 * RATE)).astype(numpy.float32)
for policy, colour, width in ((0, BLUE, 4), (3, ORANGE, 1.4)):
    output = suppressed(noise, RATE, policy)
    gain = 10 * numpy.log10(power(output[DELAY:]) / power(noise[:len(output) - DELAY]))
    plots[0].plot(numpy.arange(len(gain))[1:-1] * RATE / SEGMENT / 1000, gain[1:-1], color=colour,
                  linewidth=width, label=f"policy {policy}")
plots[0].set(title="Gain for white noise, 16000 Hz", xlabel="Frequency (kHz)", ylabel="Gain (dB)", ylim=(-0.1, 0.1))
plots[0].legend()


def plot_levels(samples, rate, **look):
    values = levels(samples, rate)
    plots[1].plot(numpy.arange(len(values)) / FRAMES_A_SECOND, values, **look)


plot_levels(voice_at(RATE), RATE, color=GREY, linewidth=4, label="in")
for rate, colour in ((16000, ORANGE), (32000, RED)):
    plot_levels(suppressed(voice_at(rate), rate, 3), rate, color=colour, label=f"out, {rate} Hz")
plots[1].set(title="A voice in noise, policy 3", xlabel="Time (s)", ylabel="Level of frames (dB)", ylim=(-105, 0))
plots[1].legend(loc="center right")
save(figure, "noisesup")
