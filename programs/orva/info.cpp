// The command info: what is in sound files, a line a file.
#include "command.h"
#include "failure.h"
#include "json_text.h"
#include "messages.h"
#include "shared_options.h"

#include <cinttypes>
#include <cmath>

namespace orva
{
namespace
{

struct Levels {
    double sum = 0, squares = 0, peak = 0;
    int64_t clipped = 0;
};

struct Contents {
    SF_INFO info{};
    int64_t frames = 0;
    int64_t notFinite = 0;
    std::vector<Levels> channels;
    Levels all;
};

// A sample is clipped that has the greatest or the least value of its format.
Contents measured(SoundInput &input)
{
    enum { blockFrames = 4096 };
    Contents contents{input.info, 0, 0, std::vector<Levels>(static_cast<size_t>(input.info.channels)), {}};
    std::vector<float> block(blockFrames * contents.channels.size());
    const int bits = integerBits(input.info.format);
    const double least = -1;
    const double most = bits > 0 ? 1 - std::ldexp(1.0, 1 - std::min(bits, 24)) : 1;
    while (const int64_t count = readSound(input, block.data(), blockFrames)) {
        const float *sample = block.data();
        for (int64_t i = 0; i < count; ++i) {
            for (Levels &levels : contents.channels) {
                const auto value = static_cast<double>(*sample++);
                levels.sum += value;
                levels.squares += value * value;
                levels.peak = std::max(levels.peak, std::fabs(value));
                levels.clipped += static_cast<int64_t>(value <= least || value >= most);
            }
        }
        showProgress(input);
    }
    contents.frames = input.position;
    contents.notFinite = input.notFinite;
    for (const Levels &levels : contents.channels) {
        contents.all.sum += levels.sum;
        contents.all.squares += levels.squares;
        contents.all.peak = std::max(contents.all.peak, levels.peak);
        contents.all.clipped += levels.clipped;
    }
    return contents;
}

double rms(const Levels &levels, int64_t samples)
{
    return std::sqrt(levels.squares / static_cast<double>(samples));
}

std::string decibels(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.1f dB", 20 * std::log10(value));
    return value > 0 ? text : "none";
}

std::string inWords(const std::string &name, const Contents &contents)
{
    const int64_t samples = contents.frames * contents.info.channels;
    char numbers[160];
    std::snprintf(numbers, sizeof numbers, "%d Hz, %d channel%s, %.3f s (%" PRId64 " frames)",
                  contents.info.samplerate, contents.info.channels, contents.info.channels > 1 ? "s" : "",
                  static_cast<double>(contents.frames) / contents.info.samplerate, contents.frames);
    const double dc = contents.all.sum / static_cast<double>(samples);
    char rest[96];
    std::snprintf(rest, sizeof rest, "DC %.5f, clipped %" PRId64, std::fabs(dc) < 5e-6 ? 0 : dc, // no -0
                  contents.all.clipped);
    return name + ": " + numbers + ", " + formatName(contents.info.format) + ", peak " +
           decibels(contents.all.peak) + ", rms " + decibels(rms(contents.all, samples)) + ", " + rest;
}

std::string levelsInJson(const Levels &levels, int64_t samples)
{
    char text[256];
    std::snprintf(text, sizeof text, "\"peak\":%.9g,\"rms\":%.9g,\"dc\":%.9g,\"clipped\":%" PRId64,
                  levels.peak, rms(levels, samples), levels.sum / static_cast<double>(samples),
                  levels.clipped);
    return text;
}

std::string inJson(const std::string &name, const Contents &contents)
{
    std::string text = "{\"file\":" + jsonText(name) +
                       ",\"rate\":" + std::to_string(contents.info.samplerate) +
                       ",\"channels\":" + std::to_string(contents.info.channels) +
                       ",\"frames\":" + std::to_string(contents.frames) +
                       ",\"format\":" + jsonText(formatName(contents.info.format)) +
                       ",\"notFinite\":" + std::to_string(contents.notFinite) + "," +
                       levelsInJson(contents.all, contents.frames * contents.info.channels) + ",\"each\":[";
    for (size_t i = 0; i < contents.channels.size(); ++i)
        text += (i > 0 ? ",{" : "{") + levelsInJson(contents.channels[i], contents.frames) + "}";
    return text + "]}";
}

struct Options {
    std::vector<std::string> files;
    RawFormat raw;
    bool json = false;
};

void run(const Options &options)
{
    bool all = true;
    for (const auto &path : options.files) {
        try {
            SoundInput input = openSound(path, options.raw);
            const Contents contents = measured(input);
            endReading(input);
            say(options.json ? inJson(input.name, contents) : inWords(input.name, contents));
            noteDamage(input);
        } catch (const Failure &failure) {
            if (failure.status != didNotWork)
                throw;
            note("orva info: " + failure.text);
            all = false;
        }
    }
    if (!all)
        fail("");
}

} // namespace

void addInfo(CLI::App &program)
{
    const auto [command, options] =
        addCommand(program, "info", "Tell rate, length, level and more of sound files, a line a file", run);
    addTexts(command, {"files", "FILE", "Sound files; - is standard input", Need::required}, options.files);
    addFlag(command, "--json",
            "Write each line as a JSON object, levels as parts of full scale, with those of each channel",
            options.json);
    addInputOptions(command, options.raw);
    addNotes(command,
             "Peak, rms and DC are of all channels together, 0 dB is full scale; clipped are samples "
             "that have the\n"
             "greatest or the least value of their format.\n\n"
             "Examples:\n"
             "  $ orva info voice.wav\n"
             "  $ orva info --json voice.wav\n"
             "  $ orva info - <voice.wav");
}

} // namespace orva
