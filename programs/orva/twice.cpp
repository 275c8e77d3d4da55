// The command twice: a sound and beside it the same, late and in noise, to try what orva delay finds.
#include "command.h"
#include "failure.h"
#include "messages.h"
#include "shared_options.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace orva
{
namespace
{

enum { blockFrames = 4096 };

struct Options : SoundOptions {
    int delay = 480;
    double noise = 20;
};

// White noise of mean power 1, the same in every run: a linear congruential generator, uniformly distributed.
float noise(uint32_t &state)
{
    state = state * 1664525U + 1013904223U;
    return static_cast<float>((state / 2147483648.0 - 1.0) * std::sqrt(3.0));
}

// The first channel of a sound.
struct FirstChannel {
    explicit FirstChannel(const std::string &path)
        : input(openSound(path, {})),
          block(static_cast<size_t>(blockFrames) * static_cast<size_t>(input.info.channels))
    {
    }

    // Up to blockFrames samples, and zeros up to `count`.
    int64_t read(float *samples, int64_t count)
    {
        const int64_t got = readSound(input, block.data(), count);
        const auto channels = static_cast<size_t>(input.info.channels);
        for (int64_t i = 0; i < count; ++i)
            samples[i] = i < got ? block[static_cast<size_t>(i) * channels] : 0;
        return got;
    }

    SoundInput input;
    std::vector<float> block;
};

// The mean power of the whole, and its length.
double power(const std::string &path, int64_t &length)
{
    FirstChannel sound(path);
    float block[blockFrames];
    double sum = 0;
    while (const int64_t count = sound.read(block, blockFrames)) {
        for (int64_t i = 0; i < count; ++i)
            sum += static_cast<double>(block[i]) * static_cast<double>(block[i]);
    }
    length = sound.input.position;
    return sum / static_cast<double>(length);
}

void run(const Options &options)
{
    if (options.input == "-")
        failUse("standard input cannot be read twice");
    int64_t length = 0;
    const auto level =
        static_cast<float>(std::sqrt(power(options.input, length) * std::pow(10, -options.noise / 10)));
    FirstChannel now(options.input);
    FirstChannel then(options.input);
    SoundInput like = openSound(options.input, {});
    like.info.channels = 2;
    SoundOutput output(options.output, options.how, like, like.info.samplerate, length + options.delay);
    uint32_t state = 1;
    int64_t silence = options.delay; // of the second channel, still to come
    for (int64_t left = length + options.delay; left > 0; left -= blockFrames) {
        float first[blockFrames];
        float second[blockFrames] = {};
        float both[2 * blockFrames];
        const int64_t quiet = std::min<int64_t>(silence, blockFrames);
        now.read(first, blockFrames);
        then.read(second + quiet, blockFrames - quiet);
        silence -= quiet;
        for (size_t i = 0; i < blockFrames; ++i) {
            both[2 * i] = first[i];
            both[2 * i + 1] = second[i] + level * noise(state);
        }
        output.write(both, std::min<int64_t>(left, blockFrames));
    }
    output.finish();
    noteDamage(now.input);
    if (output.isStandardOutput())
        return;
    char text[128];
    std::snprintf(text, sizeof text,
                  ": the sound, and beside it the same %d samples later with noise at %g dB", options.delay,
                  -options.noise);
    say(options.output + text);
}

} // namespace

void addTwice(CLI::App &program)
{
    const auto [command, options] =
        addCommand(program, "twice", "Write a sound beside itself, late and in noise", run);
    addText(command, {"input", "FILE", "Sound file, of which the first channel is taken", Need::required},
            options.input);
    addOutput(command, options.output);
    addNumber(command, {"--delay", "N", "Samples by which the second channel is late (480)"}, options.delay,
              0, 1 << 24);
    addNumber(command, {"--noise", "DB", "Decibels by which noise in it lies below the sound (20)"},
              options.noise, -200.0, 200.0);
    addOutputOptions(command, options.how);
    addNotes(command, "Examples:\n"
                      "  $ orva twice voice.wav twice.wav --delay 480 --noise 20\n"
                      "  $ orva twice voice.wav - --delay 137 | orva delay -");
}

} // namespace orva
