// The command denoise: a sound through the noise suppressor.
#include "channel_blocks.h"
#include "command.h"
#include "comparison.h"
#include "conversion.h"
#include "failure.h"
#include "messages.h"
#include "shared_options.h"
#include "spectrum.h"

#include <kett/KTvector.h>
#include <orva/ORVAnoisesup.h>

#include <algorithm>
#include <cinttypes>
#include <cmath>
#include <cstdio>

namespace orva
{
namespace
{

const double range = 100; // dB of the picture

struct Options : SoundOptions {
    PictureOptions picture;
    int rate = 0; // 0: one that suits the sound
    int32_t policy = 2;
};

struct DestroySuppressor {
    void operator()(ORVA_NOISESUP *suppressor) const
    {
        ORVA_DestroyNoiseSup(suppressor);
    }
};

struct Suppression {
    Suppression(const Options &options, int rate, size_t channels)
        : frame(rate / 100), spectrum(4 * frame),
          pastIn(channels, std::vector<float>(4 * static_cast<size_t>(frame))), pastOut(pastIn),
          picture(options.picture)
    {
        for (size_t channel = 0; channel < channels; ++channel) {
            each.emplace_back(ORVA_CreateNoiseSupEx(rate, options.policy));
            if (each.back() == nullptr)
                fail("out of memory");
        }
        picture.begin(rate, static_cast<double>(rate) / (4 * frame), spectrum.bins());
    }

    int32_t frame;
    std::vector<std::unique_ptr<ORVA_NOISESUP, DestroySuppressor>> each;
    Spectrum spectrum;                               // of four frames, in whose middle they speak for one
    std::vector<std::vector<float>> pastIn, pastOut; // of each channel, as long as the spectrum's frame
    Comparison picture;
    double in = 0, out = 0; // sums of squares
    float peak = 0;
    int64_t cut = 0; // samples that the suppressor cannot take as they are
};

std::span<const float> levelsAfter(Suppression &work, std::vector<float> &past, const float *samples)
{
    work.spectrum.follow(past, {samples, static_cast<size_t>(work.frame)});
    return work.spectrum.levels(range);
}

void suppress(Suppression &work, size_t channel, float *samples)
{
    for (int32_t i = 0; i < work.frame; ++i) {
        work.peak = std::max(work.peak, std::fabs(samples[i]));
        work.cut += static_cast<int64_t>(std::fabs(samples[i]) > 1);
    }
    if (work.picture.isDrawn())
        work.picture.before(levelsAfter(work, work.pastIn[channel], samples));
    work.in += FVectorSumOfSquares(samples, work.frame);
    ORVA_DoNoiseSup(work.each[channel].get(), samples, samples);
    work.out += FVectorSumOfSquares(samples, work.frame);
    if (work.picture.isDrawn())
        work.picture.after(levelsAfter(work, work.pastOut[channel], samples));
}

// Sends the sound through, at its rate or converted to another.
int64_t suppressAll(Suppression &work, SoundInput &input, SoundOutput &output, int rate)
{
    const int64_t delay = int64_t{work.frame} * 3 / 5; // the suppressor's, 6 ms
    ChannelBlocks blocks(output, input.info.channels,
                         {work.frame, delay,
                          [&work](size_t channel, float *samples) { suppress(work, channel, samples); },
                          [&work] { work.picture.next(); }});
    if (input.info.samplerate != rate) {
        auto converters = makeConverters(input, {.rate = rate});
        convert(
            converters, input, [&](const float *frames, int64_t count) { blocks.push(frames, count); }, rate,
            true);
    } else {
        std::vector<float> block(static_cast<size_t>(work.frame) * static_cast<size_t>(input.info.channels));
        while (const int64_t count = readSound(input, block.data(), work.frame)) {
            blocks.push(block.data(), count);
            showProgress(input);
        }
    }
    endReading(input);
    blocks.end();
    work.picture.repeat(); // the last frames speak for what lies after their middle, too
    return output.framesWritten();
}

void tellWhatIsCut(const Suppression &work, const SoundInput &input)
{
    if (work.cut == 0)
        return;
    const double db = std::ceil(200 * std::log10(static_cast<double>(work.peak))) / 10;
    char text[128];
    std::snprintf(text, sizeof text,
                  ": %" PRId64
                  " sample%s cut at full scale on the way in; a sound %.1f dB softer would avoid it",
                  work.cut, work.cut > 1 ? "s are" : " is", std::max(db, 0.1));
    note(input.name + text);
}

// What came of it, in words that hide nothing.
std::string told(const Suppression &work)
{
    if (work.in == 0)
        return "silence stayed silence";
    if (work.out == 0)
        return "all of it was taken out";
    char text[192];
    std::snprintf(text, sizeof text,
                  "%.3f dB of the level taken out: the suppressor adapts without its analysis step, so what "
                  "remains of a hiss is what went in",
                  10 * std::log10(work.in / work.out));
    return text;
}

void run(const Options &options)
{
    if (options.rate != 0 && options.rate != 8000 && options.rate != 16000 && options.rate != 32000)
        failUse("--rate is 8000, 16000 or 32000");
    SoundInput input = openSound(options.input, options.how.raw);
    const int rate = options.rate != 0 ? options.rate : input.info.samplerate == 8000 ? 8000 : 16000;
    Suppression work(options, rate, static_cast<size_t>(input.info.channels));
    SoundOutput output(options.output, options.how, input, rate,
                       input.length < 0 ? -1 : framesAt(input.length, input.info.samplerate, rate));
    if (rate == 32000)
        note("at 32000 Hz silence comes out");
    const auto seconds = static_cast<double>(suppressAll(work, input, output, rate)) / rate;
    const double hop = static_cast<double>(work.frame) / rate;
    work.picture.save(input.name.substr(input.name.rfind('/') + 1),
                      "Noise suppressor, policy " + std::to_string(options.policy) + ", at " +
                          std::to_string(rate) + " Hz",
                      seconds, -hop, hop, range);
    output.finish();
    noteDamage(input);
    tellWhatIsCut(work, input);
    if (output.isStandardOutput()) {
        note(told(work));
        return;
    }
    char text[64];
    std::snprintf(text, sizeof text, ": %.2f s at %d Hz, ", seconds, rate);
    say(options.output + text + told(work));
}

} // namespace

void addDenoise(CLI::App &program)
{
    const auto [command, options] =
        addCommand(program, "denoise", "Send a sound through the noise suppressor", run);
    addInputAndOutput(command, options);
    addNumber(command, {"--policy", "N", "From 0, mild, to 3, strong (2)"}, options.policy, 0, 3);
    addRateOption(command, options.rate, "8000, 16000 or 32000; the sound is converted to it first");
    addPictureAsked(command, options.picture, "what goes in and what comes out");
    addOutputOptions(command, options.how);
    addNotes(command, "The suppressor adapts without its analysis step and learns no noise: it takes next to "
                      "nothing out, and\n"
                      "what remains of a hiss is what went in. 8000 and 16000 Hz stay, other rates become "
                      "16000 Hz; at 32000 Hz\n"
                      "silence comes out.\n\n"
                      "Examples:\n"
                      "  $ orva denoise voice.wav denoised.wav\n"
                      "  $ orva denoise voice.wav denoised.flac --rate 8k --policy 3 --picture denoised.png");
}

} // namespace orva
