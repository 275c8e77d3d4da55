// The command stretch: a sound faster or slower at the same pitch.
#include "command.h"
#include "drawing/outline.h"
#include "failure.h"
#include "messages.h"
#include "schedule.h"
#include "shared_options.h"

#include <orva/ORVAsolafs.h>

#include <cinttypes>
#include <cstdio>
#include <optional>

namespace orva
{
namespace
{

enum { frameMs = 20 };

// The energies of the search begin at 1, which is next to nothing for samples of 16 bits and drowns those within 1.0.
// A power of two rounds nothing on the way there and back.
const float sampleScale = 32768;

struct Options : SoundOptions {
    std::string speed, map;
    PictureOptions picture;
};

struct DestroyScaler {
    void operator()(ORVA_SOLAFS *scaler) const
    {
        ORVA_SolafsDestroy(scaler);
    }
};

struct Stretching {
    std::vector<std::unique_ptr<ORVA_SOLAFS, DestroyScaler>>
        scalers; // one a channel; all give as many frames
    std::vector<float> in, out;
    bool drawn = false;
    Outline before, after; // of what went in and what came out, if they are to be drawn
    int64_t taken = 0, given = 0;
};

void begin(Stretching &work, const SoundInput &input)
{
    const int rate = input.info.samplerate;
    const auto channels = static_cast<size_t>(input.info.channels);
    if (rate < 400 || rate > 1000000)
        fail(input.name + ": the rate must be from 400 to 1000000 Hz");
    for (size_t c = 0; c < channels; ++c) {
        work.scalers.emplace_back(ORVA_SolafsCreate(frameMs, rate, input.info.channels));
        if (work.scalers.back() == nullptr)
            throw std::bad_alloc();
    }
    work.in.resize(static_cast<size_t>(rate / 10) * channels);
    work.out.resize(work.in.size() * 20); // more than a block gives at the lowest speed
}

// Pushes frames at one speed and writes what comes out.
void push(Stretching &work, float *frames, int64_t count, float speed, SoundOutput &output)
{
    const auto channels = static_cast<int>(work.scalers.size());
    const auto room = static_cast<int32_t>(work.out.size() / work.scalers.size());
    for (int64_t i = 0; i < count * channels; ++i)
        frames[i] *= sampleScale;
    int32_t taken = 0;
    int32_t written = 0;
    for (int c = 0; c < channels; ++c) {
        ORVA_SOLAFS *scaler = work.scalers[static_cast<size_t>(c)].get();
        taken = ORVA_SolafsInputData(scaler, c, frames, static_cast<int32_t>(count), speed);
        written = ORVA_SolafsOutputData(scaler, c, work.out.data(), room);
    }
    if (taken != count)
        fail("the sound is too long, 2147483647 frames are the most");
    for (int64_t i = 0; i < int64_t{written} * channels; ++i)
        work.out[static_cast<size_t>(i)] /= sampleScale;
    if (work.drawn)
        work.after.add(work.out.data(), written, channels);
    output.write(work.out.data(), written);
    work.taken += count;
    work.given += written;
}

// The sound, and after it the silence that brings out its tail.
void stretch(Stretching &work, SoundInput &input, const Schedule &speeds, SoundOutput &output)
{
    const int rate = input.info.samplerate;
    const int64_t block = rate / 10;
    int64_t tail = 7 * (static_cast<int64_t>(frameMs) * rate / 1000 / 8 * 8) / 2;
    for (bool ended = false; !ended || tail > 0;) {
        int64_t count = ended ? std::min(block, tail) : block;
        const float speed = speedAt(speeds, work.taken, rate, count);
        if (ended) {
            std::fill(work.in.begin(), work.in.end(), 0.0F);
            tail -= count;
        } else {
            const int64_t got = readSound(input, work.in.data(), count);
            ended = got < count;
            count = got;
            if (work.drawn)
                work.before.add(work.in.data(), count, input.info.channels);
        }
        push(work, work.in.data(), count, speed, output);
        showProgress(input);
    }
    endReading(input);
}

double heardAt(const Stretching &work, int64_t position, int rate)
{
    return static_cast<double>(ORVA_SolafsTranslateCursorPosition(work.scalers[0].get(), position)) / rate;
}

// Each hundredth of a second of the output, and the second of the input that is heard there.
void writeMap(const Stretching &work, int rate, const std::string &path)
{
    Replacement file(path);
    std::string text = "output_seconds,input_seconds\n";
    const auto flush = [&] {
        writeAll(file.descriptor(), text, path);
        text.clear();
    };
    for (int64_t i = 0; i * rate / 100 <= work.given; ++i) {
        char line[64];
        std::snprintf(line, sizeof line, "%" PRId64 ".%02d,%.4f\n", i / 100, static_cast<int>(i % 100),
                      heardAt(work, i * rate / 100, rate));
        text += line;
        if (text.size() > 65536)
            flush();
    }
    flush();
    file.commit();
}

void draw(const Stretching &work, const SoundInput &input, const std::string &speed, PictureFile &file)
{
    const int rate = input.info.samplerate;
    const double from = static_cast<double>(input.position) / rate;
    const double to = static_cast<double>(work.given) / rate;
    const double seconds = std::max(from, to); // the same scale for both, so that the stretching is seen
    Picture picture(file, {.heights = {220, 220}}, input.name.substr(input.name.rfind('/') + 1),
                    "Speed " + speed + "; a numbered line stands where the same is heard, " +
                        std::to_string(rate) + " Hz");
    work.before.draw(picture, 0, rate, seconds, "Input");
    work.after.draw(picture, 1, rate, seconds, "Output");
    for (int mark = 1; mark <= 3; ++mark) {
        picture.cursor(0, heardAt(work, work.given * mark / 4, rate), std::to_string(mark));
        picture.cursor(1, to * mark / 4, std::to_string(mark));
    }
    picture.save();
}

void run(const Options &options)
{
    const Schedule speeds = scheduleFrom(options.speed);
    SoundInput input = openSound(options.input, options.how.raw);
    const int rate = input.info.samplerate;
    const auto work = std::make_unique<Stretching>();
    std::optional<PictureFile> picture;
    if (!options.picture.path.empty())
        picture.emplace(options.picture);
    work->drawn = picture.has_value();
    begin(*work, input);
    const double length = speeds.size() == 1 ? 1 / static_cast<double>(speeds[0].speed) : 0;
    SoundOutput output(options.output, options.how, input, rate, -1, length);
    stretch(*work, input, speeds, output);
    if (!options.map.empty())
        writeMap(*work, rate, options.map);
    if (picture)
        draw(*work, input, options.speed, *picture);
    output.finish();
    noteDamage(input);
    if (output.isStandardOutput())
        return;
    char text[128];
    std::snprintf(text, sizeof text, ": %.2f s became %.2f s; its middle is what stood at %.2f s",
                  static_cast<double>(input.position) / rate, static_cast<double>(work->given) / rate,
                  heardAt(*work, work->given / 2, rate));
    say(options.output + text);
}

} // namespace

void addStretch(CLI::App &program)
{
    const auto [command, options] =
        addCommand(program, "stretch", "Play a sound faster or slower at the same pitch", run);
    addInputAndOutput(command, options);
    addText(command,
            {"-s,--speed", "SPEED",
             "0.1 to 3; or several, each after the second of the input from which on it holds, and a colon",
             Need::required},
            options.speed);
    addText(command,
            {"--map", "FILE", "CSV of the place in the input that is heard at each place of the output"},
            options.map);
    addPictureAsked(command, options.picture, "both outlines, with places that correspond");
    addOutputOptions(command, options.how);
    addNotes(command,
             "Examples:\n"
             "  $ orva stretch voice.wav slow.wav --speed 0.7 --picture slow.png\n"
             "  $ orva stretch voice.wav change.flac --speed \"1.5 0.4:0.6 0.9:2\" --map change.csv");
}

} // namespace orva
