// The command curve: a calibration curve through a few points, and the mean spectrum of a sound without and with it.
#include "calibration.h"
#include "command.h"
#include "drawing/picture.h"
#include "failure.h"
#include "messages.h"
#include "shared_options.h"
#include "sound_frames.h"
#include "spectrum.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <optional>

namespace orva
{
namespace
{

const int32_t frameSize = 4096;
const size_t bins = frameSize / 2 + 1;

struct Options {
    std::string input, points;
    PictureOptions picture;
    RawFormat raw;
};

struct CalibratedSpectrum {
    double binHertz = 0;
    alignas(16) float gain[bins + 3] = {}; // a factor, which the measuring of levels takes by fours
    std::vector<float> before, after;      // levels in dB
    double change = 0;                     // of the level of the sound, in dB
};

// The mean power of all frames of all channels.
void average(SoundInput &input, Spectrum &spectrum)
{
    std::vector<double> sum(bins);
    SoundFrames frames(input, {.size = frameSize, .hop = frameSize / 2});
    while (frames.next()) {
        for (int channel = 0; channel < input.info.channels; ++channel) {
            frames.copy(channel, spectrum.frame().data());
            const auto power = spectrum.transform();
            for (size_t k = 0; k < bins; ++k)
                sum[k] += static_cast<double>(power[k]);
        }
        showProgress(input);
    }
    endReading(input);
    const auto count = static_cast<double>(frames.count() * input.info.channels);
    for (size_t k = 0; k < bins; ++k)
        spectrum.power()[k] = static_cast<float>(sum[k] / count);
}

void calibrate(CalibratedSpectrum &result, const Calibration &curve, Spectrum &spectrum)
{
    const auto power = spectrum.power();
    const auto levels = [&](const float *gain) {
        const auto measured = spectrum.levels(300, gain);
        return std::vector<float>(measured.begin(), measured.end());
    };
    double before = 0;
    double after = 0;
    for (size_t k = 0; k < bins; ++k) {
        result.gain[k] = std::pow(10.0F, splineAt(curve, static_cast<double>(k) * result.binHertz) / 20);
        before += static_cast<double>(power[k]);
        after += static_cast<double>(power[k] * result.gain[k] * result.gain[k]);
    }
    result.change = before > 0 ? 10 * std::log10(after / before) : 0;
    result.before = levels(nullptr);
    result.after = levels(result.gain);
}

struct Lines {
    std::vector<double> hertz, spline, straight;
    double least = HUGE_VAL, most = -HUGE_VAL;
};

// Evenly on a logarithmic axis, and at the points themselves, so that the lines meet them.
Lines linesOf(const Calibration &curve, double from, double to)
{
    const int places = 900;
    Lines lines;
    lines.hertz = curve.hertz;
    for (int i = 0; i <= places; ++i)
        lines.hertz.push_back(from * std::pow(to / from, static_cast<double>(i) / places));
    std::sort(lines.hertz.begin(), lines.hertz.end());
    for (const double hertz : lines.hertz) {
        lines.spline.push_back(static_cast<double>(splineAt(curve, hertz)));
        lines.straight.push_back(static_cast<double>(lineAt(curve, hertz)));
        lines.least = std::min(lines.least, lines.spline.back());
        lines.most = std::max(lines.most, lines.spline.back());
    }
    return lines;
}

void draw(PictureFile &file, const SoundInput &input, const Calibration &curve, const Lines &lines,
          const CalibratedSpectrum &sound)
{
    const int rate = input.info.samplerate;
    const Axis frequency = axisFrequency(lines.hertz.front(), lines.hertz.back(), true);
    Picture picture(file, {.heights = {240, 240}, .legend = true},
                    input.name.substr(input.name.rfind('/') + 1),
                    "Calibration, and mean spectrum without and with it; " + std::to_string(rate) + " Hz");
    picture.panel(0, frequency,
                  axisLinear(std::floor(lines.least) - 1, std::ceil(lines.most) + 1, "Gain (dB)"));
    picture.curve(0, lines.hertz, lines.spline, "spline");
    picture.curve(0, lines.hertz, lines.straight, "straight lines");
    picture.points(0, curve.hertz, curve.decibels, Mark::dot, "points");
    picture.panel(1, frequency, axisLinear(-120, 0, "Level (dB re full-scale sine)"));
    picture.samples(1, 0, sound.binHertz, sound.before, "as recorded");
    picture.samples(1, 0, sound.binHertz, sound.after, "calibrated");
    picture.save();
}

void run(const Options &options)
{
    const Calibration curve = calibrationFrom(options.points);
    SoundInput input = openSound(options.input, options.raw);
    std::optional<PictureFile> picture;
    if (!options.picture.path.empty())
        picture.emplace(options.picture);
    Spectrum spectrum(frameSize);
    average(input, spectrum);
    const auto sound = std::make_unique<CalibratedSpectrum>();
    sound->binHertz = static_cast<double>(input.info.samplerate) / frameSize;
    calibrate(*sound, curve, spectrum);
    const double half = input.info.samplerate / 2.0;
    const Lines lines =
        linesOf(curve, std::min({20.0, curve.hertz.front(), half / 100}), std::max(half, curve.hertz.back()));
    if (picture)
        draw(*picture, input, curve, lines, *sound);
    noteDamage(input);
    if (options.picture.path == "-")
        return;
    char text[160];
    std::snprintf(text, sizeof text,
                  ": %d points, gain %.1f to %.1f dB; it changes the level of the sound by %.1f dB",
                  static_cast<int>(curve.hertz.size()), lines.least, lines.most, sound->change);
    say(input.name + text);
}

} // namespace

void addCurve(CLI::App &program)
{
    const auto [command, options] = addCommand(
        program, "curve", "Draw a calibration, and the spectrum of a sound without and with it", run);
    addInput(command, options.input);
    addText(
        command,
        {"points", "POINTS", "The calibration: \"HZ DB; HZ DB; ...\", from 2 to 256 points", Need::required},
        options.points);
    addText(command, {"picture", "PICTURE", "PNG, SVG or PDF of the curve and both spectra"},
            options.picture.path);
    addPictureOptions(command, options.picture);
    addInputOptions(command, options.raw);
    addNotes(command,
             "Through the points runs a cubic spline over the logarithm of the frequency, natural at "
             "both ends. Outside\n"
             "of them it would run away; the gain at the end stays.\n\n"
             "Examples:\n"
             "  $ orva curve voice.wav \"50 9; 200 2; 1000 0; 5000 -4; 10000 3; 20000 6\" curve.png\n"
             "  $ orva curve voice.wav \"100 0; 10000 -6\"");
}

} // namespace orva
