// The command spectrogram: the levels of a sound over time and frequency, as a picture.
#include "command.h"
#include "drawing/picture.h"
#include "failure.h"
#include "messages.h"
#include "progress.h"
#include "shared_options.h"
#include "sound_frames.h"
#include "spectrum.h"

#include <orva/ORVAwinfnc.h>

#include <cinttypes>
#include <cmath>
#include <cstdio>

namespace orva
{
namespace
{

enum { mostPanels = 32 };

struct Options {
    std::string input, window = "Hanning", channel = "all", scale = "linear";
    PictureOptions picture;
    RawFormat raw;
    int32_t frame = 1024, hop = 0; // samples; 0: a quarter of a frame
    double range = 90, from = 0, to = HUGE_VAL;
};

// The channels to be shown, 0 for the first.
std::vector<int> channelsOf(const SoundInput &input, const std::string &asked)
{
    const int all = input.info.channels;
    std::vector<int> channels;
    if (asked == "all") {
        if (all > mostPanels)
            fail(input.name + ": has " + std::to_string(all) + " channels; name one by --channel");
        for (int i = 0; i < all; ++i)
            channels.push_back(i);
        return channels;
    }
    const int channel = std::stoi(asked);
    if (channel > all)
        fail(input.name + ": has " + std::to_string(all) + " channel" + (all > 1 ? "s" : "") +
             ", so there is no channel " + asked);
    return {channel - 1};
}

PictureLayout layoutFor(size_t panels)
{
    return {.heights = std::vector<double>(panels, panels == 1   ? 400
                                                   : panels == 2 ? 260
                                                                 : 180),
            .colorBar = true};
}

Axis frequencyAxis(const std::string &scale, double top)
{
    return scale == "mel" ? axisMel(top) : scale == "bark" ? axisBark(top) : axisFrequency(0, top, false);
}

struct Shown {
    std::vector<int> channels;
    std::vector<LevelGrid> levels; // of each
    int64_t frames = 0;
    float loudest = -HUGE_VALF;
};

Shown measured(SoundInput &input, const Options &options, const FrameRange &range, const PictureFile &file)
{
    const double rate = input.info.samplerate;
    Shown shown;
    shown.channels = channelsOf(input, options.channel);
    Spectrum spectrum(range.size, options.window);
    const GridSize size = gridSizeOf(file, layoutFor(shown.channels.size()));
    shown.levels.assign(shown.channels.size(), LevelGrid(size, frequencyAxis(options.scale, rate / 2),
                                                         rate / range.size, std::ssize(spectrum.power())));
    SoundFrames frames(input, range);
    while (frames.next()) {
        for (size_t i = 0; i < shown.channels.size(); ++i) {
            frames.copy(shown.channels[i], spectrum.frame().data());
            spectrum.transform();
            shown.levels[i].add(spectrum.levels(options.range));
        }
        showProgress(std::min(input.position, range.to), std::min(input.length, range.to));
    }
    endReading(input);
    if (frames.count() == 0)
        fail(input.name + ": ends before --from");
    shown.frames = frames.count();
    for (const LevelGrid &levels : shown.levels)
        shown.loudest = std::max(shown.loudest, levels.loudest());
    return shown;
}

void draw(const SoundInput &input, const Options &options, const FrameRange &range, const Shown &shown,
          PictureFile &file)
{
    const double rate = input.info.samplerate;
    const int channels = input.info.channels;
    const double end = static_cast<double>(std::min(input.position, range.to)) / rate;
    const Axis time = axisTime(static_cast<double>(range.from) / rate, end);
    std::string subtitle = std::string(ORVA_GetWindowName(windowNamed(options.window))) + " window of " +
                           std::to_string(range.size) + " samples every " + std::to_string(range.hop) +
                           " samples, " + std::to_string(input.info.samplerate) + " Hz";
    if (channels > 1 && shown.channels.size() == 1)
        subtitle += ", channel " + options.channel + " of " + std::to_string(channels);
    Picture picture(file, layoutFor(shown.channels.size()), input.name.substr(input.name.rfind('/') + 1),
                    subtitle);
    for (size_t i = 0; i < shown.channels.size(); ++i) {
        const Axis hertz = frequencyAxis(options.scale, rate / 2);
        picture.panel(i, time, shown.channels.size() > 1 ? axisOfChannel(hertz, i) : hertz);
        picture.image(i, shown.levels[i], time.first - 0.5 * range.hop / rate, range.hop / rate,
                      -options.range, 0, "dB re full-scale sine");
    }
    picture.save();
}

// The sound's name with another ending, in the current folder.
std::string pictureNameFor(const std::string &sound)
{
    const std::string name = sound.substr(sound.rfind('/') + 1);
    const size_t dot = name.rfind('.');
    return (dot == std::string::npos || dot == 0 ? name : name.substr(0, dot)) + ".png";
}

void run(const Options &asked)
{
    Options options = asked;
    if (!(options.from < options.to))
        failUse("--to must be after --from");
    if (options.picture.path.empty()) {
        if (options.input == "-")
            failUse("the picture of standard input needs a name");
        options.picture.path = pictureNameFor(options.input);
    }
    windowNamed(options.window);
    SoundInput input = openSound(options.input, options.raw);
    PictureFile file(options.picture);
    const double rate = input.info.samplerate;
    FrameRange range;
    range.size = options.frame;
    range.hop = options.hop > 0 ? options.hop : (options.frame + 3) / 4;
    range.from = std::llround(options.from * rate);
    if (options.to * rate < 9e15)
        range.to = std::max<int64_t>(std::llround(options.to * rate), range.from + 1);
    const Shown shown = measured(input, options, range, file);
    draw(input, options, range, shown, file);
    noteDamage(input);
    if (file.isStandardOutput())
        return;
    char text[192];
    const double seconds = static_cast<double>(std::min(input.position, range.to) - range.from) / rate;
    std::snprintf(text, sizeof text, ": %.2f s, 0 to %g Hz, frames: %" PRId64, seconds, rate / 2,
                  shown.frames);
    std::string line = options.picture.path + text;
    if (static_cast<double>(shown.loudest) > -options.range)
        std::snprintf(text, sizeof text, ", loudest point: %.1f dB", static_cast<double>(shown.loudest));
    else
        std::snprintf(text, sizeof text, ", nothing above %g dB", -options.range);
    say(line + text);
}

} // namespace

void addSpectrogram(CLI::App &program)
{
    const auto [command, options] =
        addCommand(program, "spectrogram", "Draw the levels of a sound over time and frequency", run);
    addInput(command, options.input);
    addText(
        command,
        {"picture", "PICTURE",
         "PNG, SVG or PDF; - is a PNG on standard output; else the sound's name with .png, in this folder"},
        options.picture.path);
    addChannelOption(command, options.channel);
    addTimeOption(command, "--from", options.from, "Where to begin, in seconds or as minutes:seconds");
    addTimeOption(command, "--to", options.to, "Where to end");
    addChoice(command, {"--scale", "NAME", "Frequency axis: linear (default), mel or bark"}, options.scale,
              {"linear", "mel", "bark"});
    addNumber(command, {"--range", "DB", "Decibels shown below a sine of full scale (90)"}, options.range,
              1.0, 1000.0);
    addNumber(command, {"--frame", "N", "Samples that are transformed at a time (1024)"}, options.frame, 2,
              1 << 20);
    addNumber(command, {"--hop", "N", "Samples from one frame to the next (a quarter of a frame)"},
              options.hop, 1, INT32_MAX);
    addText(command, {"--window", "NAME", "Window of a frame, as the library names it (Hanning)"},
            options.window);
    addPictureOptions(command, options.picture);
    addInputOptions(command, options.raw);
    addNotes(command,
             "Frames are centred on every hop-th sample. Of all that falls on one point of the picture, the "
             "loudest shows.\n\n"
             "Examples:\n"
             "  $ orva spectrogram voice.wav\n"
             "  $ orva spectrogram voice.wav vowel.pdf --from 0.2 --to 0.5 --scale mel --size 12x8\n"
             "  $ orva resample voice.wav - --rate 8k | orva spectrogram - narrow.svg --range 70");
}

} // namespace orva
