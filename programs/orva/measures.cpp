// The command measures: energy, zero crossings and a mel spectrum of each frame.
#include "command.h"
#include "drawing/outline.h"
#include "failure.h"
#include "mel_bands.h"
#include "messages.h"
#include "number_table.h"
#include "shared_options.h"
#include "sound_frames.h"
#include "spectrum.h"

#include <orva/ORVAmisc.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <optional>

namespace orva
{
namespace
{

const double range = 80;     // dB of the picture
const double faintest = 200; // dB below full scale: no level is lower
enum { mostChannels = 16 };  // of a picture

struct Options {
    std::string input, table;
    PictureOptions picture;
    int32_t size = 1024, hop = 256, bands = 40;
    RawFormat raw;
};

// What a picture needs to know of a channel.
struct Drawn {
    LevelGrid levels;
    Outline energy, crossings;
};

struct Measuring {
    Measuring(const Options &options, double hertz)
        : rate(hertz), frame(static_cast<size_t>(options.size)), spectrum(options.size),
          bands(melBands(options.bands, hertz, options.size))
    {
    }

    double rate;
    std::vector<float> frame;
    Spectrum spectrum;
    std::vector<MelBand> bands;
    std::vector<double> row;
    std::optional<NumberTable> table;
    std::vector<Drawn> drawn; // each channel
    float loudest = -HUGE_VALF, most = 0;
};

std::vector<Column> columnsOf(const std::vector<MelBand> &bands)
{
    std::vector<Column> columns{
        {"seconds", 5}, {"channel", 0}, {"energy_db", 2}, {"crossings_per_second", 1}};
    for (const MelBand &band : bands)
        columns.push_back({"mel_" + std::to_string(std::lround(band.hertz)) + "_hz_db", 2});
    return columns;
}

void measureFrame(Measuring &work, const SoundFrames &frames, size_t channel, double seconds)
{
    std::vector<float> &frame = work.frame;
    frames.copy(static_cast<int>(channel), frame.data());
    const auto size = static_cast<int32_t>(frame.size());
    const float told = ORVA_CalcEnergy(frame.data(), size);
    const float energy = told != 0 ? told : -HUGE_VALF; // 0 is what a frame without any has
    const float crossings = ORVA_CalcZeroCrossRate(frame.data(), size) * static_cast<float>(work.rate);
    work.loudest = std::max(work.loudest, energy);
    work.most = std::max(work.most, crossings);
    std::copy(frame.begin(), frame.end(), work.spectrum.frame().begin());
    work.spectrum.transform();
    const auto levels = work.spectrum.levels(faintest);
    if (work.table) {
        work.row = {seconds, static_cast<double>(channel + 1), static_cast<double>(energy),
                    static_cast<double>(crossings)};
        for (const MelBand &band : work.bands)
            work.row.push_back(static_cast<double>(levelOf(band, levels)));
        work.table->add(work.row);
    }
    if (!work.drawn.empty()) {
        Drawn &drawn = work.drawn[channel];
        const float perMs = crossings / 1000;
        drawn.levels.add(levels);
        drawn.energy.add(&energy, 1, 1);
        drawn.crossings.add(&perMs, 1, 1);
    }
}

// A stretch of frames is drawn from its least to its greatest value; one that has none is left out.
void drawOutline(Picture &picture, size_t panel, const Outline &outline, double hop, const std::string &name)
{
    std::vector<double> x;
    std::vector<double> y;
    for (size_t i = 0; i < outline.most.size(); ++i) {
        const auto most = static_cast<double>(outline.most[i]);
        const auto least = static_cast<double>(outline.least[i]);
        x.insert(x.end(), 2, static_cast<double>(i) * static_cast<double>(outline.stretch()) * hop);
        y.push_back(std::isfinite(least) ? least : most);
        y.push_back(most);
    }
    picture.curve(panel, x, y, name);
}

PictureLayout layoutFor(size_t channels)
{
    return {std::vector<double>(channels + 2, 200), true, channels > 1};
}

void draw(const Measuring &work, const SoundInput &input, const Options &options, PictureFile &file)
{
    const size_t channels = work.drawn.size();
    const double hop = options.hop / work.rate;
    const Axis time = axisTime(0, static_cast<double>(input.position) / work.rate);
    char subtitle[128];
    std::snprintf(subtitle, sizeof subtitle, "Frames of %d samples, Hann window, every %d samples; %g Hz",
                  options.size, options.hop, work.rate);
    Picture picture(file, layoutFor(channels), input.name.substr(input.name.rfind('/') + 1), subtitle);
    for (size_t channel = 0; channel < channels; ++channel) {
        const Axis hertz = axisMel(work.rate / 2);
        picture.panel(channel, time, channels > 1 ? axisOfChannel(hertz, channel) : hertz);
        picture.image(channel, work.drawn[channel].levels, -hop / 2, hop, -range, 0, "dB re full-scale sine");
    }
    const double most = std::max(std::ceil(static_cast<double>(work.most) / 1000), 1.0);
    picture.panel(channels, time,
                  axisLevel(static_cast<double>(work.loudest), range, "Energy (dB re 0.32768)"));
    picture.panel(channels + 1, time, axisLinear(0, most, "Zero crossings (1/ms)"));
    for (size_t channel = 0; channel < channels; ++channel) {
        const std::string name = channels > 1 ? "channel " + std::to_string(channel + 1) : "";
        drawOutline(picture, channels, work.drawn[channel].energy, hop, name);
        drawOutline(picture, channels + 1, work.drawn[channel].crossings, hop, name);
    }
    picture.save();
}

void tell(const Measuring &work, const SoundFrames &frames, const SoundInput &input)
{
    char text[160];
    const auto count = frames.count();
    std::snprintf(text, sizeof text, ": %.2f s, %lld frame%s, energy up to ",
                  static_cast<double>(input.position) / work.rate, static_cast<long long>(count),
                  count > 1 ? "s" : "");
    std::string line = input.name + text;
    std::snprintf(text, sizeof text, "%.1f dB", static_cast<double>(work.loudest));
    line += std::isfinite(work.loudest) ? text : "nothing";
    std::snprintf(text, sizeof text, ", zero crossings up to %.1f per ms",
                  static_cast<double>(work.most) / 1000);
    say(line + text);
}

void run(const Options &asked)
{
    Options options = asked;
    if (options.table.empty() && options.picture.path.empty())
        options.table = "-";
    SoundInput input = openSound(options.input, options.raw);
    const auto channels = static_cast<size_t>(input.info.channels);
    std::optional<PictureFile> picture;
    if (!options.picture.path.empty())
        picture.emplace(options.picture);
    if (picture && channels > mostChannels)
        fail(input.name + ": has " + std::to_string(channels) + " channels, and a picture room for 16");
    Measuring work(options, input.info.samplerate);
    if (!options.table.empty())
        work.table.emplace(options.table, columnsOf(work.bands));
    for (size_t channel = 0; picture && channel < channels; ++channel)
        work.drawn.push_back(
            {LevelGrid(gridSizeOf(*picture, layoutFor(channels), channel), axisMel(work.rate / 2),
                       work.rate / options.size, static_cast<int64_t>(work.spectrum.bins())),
             {},
             {}});
    SoundFrames frames(input, {.size = options.size, .hop = options.hop});
    while (frames.next()) {
        const double seconds = static_cast<double>(frames.count() - 1) * options.hop / work.rate;
        for (size_t channel = 0; channel < channels; ++channel)
            measureFrame(work, frames, channel, seconds);
        showProgress(input);
    }
    endReading(input);
    if (work.table)
        work.table->finish();
    if (picture)
        draw(work, input, options, *picture);
    noteDamage(input);
    if (options.table != "-")
        tell(work, frames, input);
}

} // namespace

void addMeasures(CLI::App &program)
{
    const auto [command, options] = addCommand(
        program, "measures", "Tell energy, zero crossings and a mel spectrum of each frame of a sound", run);
    addInput(command, options.input);
    addText(command,
            {"table", "TABLE",
             "File whose name ends in .csv, or in .npy for an array of NumPy; - is CSV on standard output"},
            options.table);
    addNumber(command, {"--frame", "N", "Samples of a frame (1024)"}, options.size, 3, 1 << 20);
    addNumber(command, {"--hop", "N", "Samples from one frame to the next (256)"}, options.hop, 1, 1 << 30);
    addNumber(command, {"--mels", "N", "Bands of the mel spectrum, 0 for none (40)"}, options.bands, 0, 4096);
    addPictureAsked(command, options.picture, "the spectrum over a mel axis, energy and zero crossings");
    addInputOptions(command, options.raw);
    addNotes(command,
             "A row of the table for each frame and channel: the second on which the frame is "
             "centred, the channel,\n"
             "energy in dB, of which 0 is a variance of 0.32768 and -inf none at all, zero crossings "
             "a second, and for\n"
             "each band, all equally wide in mels, the loudest level in it in dB below a sine of full "
             "scale. Without\n"
             "TABLE and PICTURE the table goes to standard output.\n\n"
             "Examples:\n"
             "  $ orva measures voice.wav --mels 0\n"
             "  $ orva measures voice.wav voice.npy --frame 512 --hop 128 --mels 24\n"
             "  $ orva measures voice.wav voice.csv --picture voice.png");
}

} // namespace orva
