// The command filter: a sound through a filter from one line of text.
#include "command.h"
#include "failure.h"
#include "filter_from.h"
#include "messages.h"
#include "shared_options.h"

#include <cmath>
#include <cstdio>

namespace orva
{
namespace
{

struct Options : SoundOptions {
    std::string text;
};

void run(const Options &options)
{
    enum { blockFrames = 4096 };
    SoundInput input = openSound(options.input, options.how.raw);
    const int rate = input.info.samplerate;
    const int channels = input.info.channels;
    answerOf(options.text, rate); // refuses what would not come to rest
    const Filter filter = filterFrom(options.text, rate, channels);
    SoundOutput output(options.output, options.how, input, rate, input.length);
    std::vector<float> block(static_cast<size_t>(blockFrames) * static_cast<size_t>(channels));
    while (const int64_t count = readSound(input, block.data(), blockFrames)) {
        ORVA_Filter(filter.get(), block.data(), block.data(), static_cast<uint32_t>(count * channels));
        output.write(block.data(), count);
        showProgress(input);
    }
    endReading(input);
    output.finish();
    noteDamage(input);
    if (output.isStandardOutput())
        return;
    const auto loudest = static_cast<double>(output.loudest());
    char text[96];
    std::snprintf(text, sizeof text, ": %.2f s, %d channel%s, loudest sample ",
                  static_cast<double>(input.position) / rate, channels, channels > 1 ? "s" : "");
    std::string line = options.output + text;
    std::snprintf(text, sizeof text, "%.1f dB", 20 * std::log10(loudest));
    line += loudest > 0 ? text : "0";
    say(line);
}

} // namespace

void addFilter(CLI::App &program)
{
    const auto [command, options] =
        addCommand(program, "filter", "Run a sound through a filter that a line of text tells", run);
    addInputAndOutput(command, options);
    addText(command, {"text", "TEXT", "The filter: a design with edges in Hz, or numbers", Need::required},
            options.text);
    addOutputOptions(command, options.how);
    addNotes(
        command,
        "Keys of TEXT, such as \"type=highpass; order=4; fpass=80\":\n"
        "  type            lowpass (default), highpass, bandpass, bandreject\n"
        "  approximation   butterworth (default), chebyshev, invchebyshev, ellip\n"
        "  order           or As with a stop edge, from which the order follows\n"
        "  fpass, fstop    edges in Hz; of a band fpass1, fpass2, fstop1, fstop2\n"
        "  Ap, As          attenuation in dB at the edges of what passes (3) and in what does not\n"
        "  gain            a factor\n"
        "or biquads=[a1 a2 b0 b1 b2; ...], or numerator=[...] with denominator=[...].\n\n"
        "Examples:\n"
        "  $ orva filter voice.wav telephone.wav \"type=bandpass; order=4; fpass1=300; fpass2=3400\"\n"
        "  $ orva filter voice.wav ring.flac \"biquads=[-1.9234 0.9409 0.03 0 -0.03]\"\n"
        "  $ orva filter voice.wav - \"type=hp; order=4; fpass=80\" | orva resample - clean.wav --rate 16k");
}

} // namespace orva
