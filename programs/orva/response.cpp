// The command response: what a filter does to each frequency, as a table and as a picture.
#include "command.h"
#include "drawing/picture.h"
#include "filter_from.h"
#include "frequency_response.h"
#include "response_table.h"
#include "shared_options.h"

#include <cmath>
#include <optional>

namespace orva
{
namespace
{

enum { curvePoints = 3553 }; // four for each column of the picture

struct Options {
    std::string text;
    PictureOptions picture;
    int rate = 48000;
};

double greatestGain(const std::vector<ResponseAt> &curve)
{
    double greatest = -HUGE_VAL;
    for (const ResponseAt &point : curve)
        greatest = std::max(greatest, point.gainDb);
    return greatest;
}

struct Lines {
    std::vector<double> hertz, gain, phase, delay;

    void add(const ResponseAt &point, double degrees)
    {
        hertz.push_back(point.hertz);
        gain.push_back(point.gainDb);
        phase.push_back(degrees);
        delay.push_back(point.delaySamples);
    }
};

// The phase turns over at its ends and breaks off where it jumps. Which of the two it does follows from the group delay,
// which tells how far it goes from one point to the next.
Lines linesOf(const std::vector<ResponseAt> &curve, int rate)
{
    Lines lines;
    for (size_t i = 0; i < curve.size(); ++i) {
        const ResponseAt &point = curve[i];
        if (i > 0) {
            const ResponseAt &before = curve[i - 1];
            const double expected =
                -180 * (before.delaySamples + point.delaySamples) * (point.hertz - before.hertz) / rate;
            const double change = point.phaseDegrees - before.phaseDegrees;
            const double turned = 360 * std::round((expected - change) / 360);
            if (!(std::fabs(change + turned - expected) < 60)) {
                lines.add(point, NAN);
            } else if (turned != 0) {
                lines.add(point, point.phaseDegrees + turned);
                lines.add(point, NAN);
                lines.add(before, before.phaseDegrees - turned);
            }
        }
        lines.add(point, point.phaseDegrees);
    }
    return lines;
}

Axis delayAxis(const std::vector<double> &delay)
{
    double least = 0;
    double most = 1;
    for (const double samples : delay) {
        if (std::isfinite(samples)) {
            least = std::min(least, samples);
            most = std::max(most, samples);
        }
    }
    return axisLinear(least, most * 1.05, "Group delay (samples)");
}

// The unit circle and what lies around it, as far as three times its radius.
void drawPlane(Picture &picture, const PictureArea &area, const PolesAndZeros &all)
{
    double reach = 1;
    std::vector<double> x[2];
    std::vector<double> y[2];
    for (int i = 0; i < 2; ++i) {
        for (const auto &root : i == 0 ? all.zeros : all.poles) {
            x[i].push_back(root.real());
            y[i].push_back(root.imag());
            reach = std::max(reach, std::min(std::abs(root), 3.0));
        }
    }
    const double up = 1.12 * reach;
    const double across = up * area.width / area.height;
    picture.panel(3, axisLinear(-across, across, "Real part"), axisLinear(-up, up, "Imaginary part"));
    picture.circle(3, 1);
    picture.points(3, x[0], y[0], Mark::ring, "zeros");
    picture.points(3, x[1], y[1], Mark::cross, "poles");
}

void draw(const Options &options, const std::vector<Section> &sections, const std::vector<ResponseAt> &curve,
          PictureFile &file)
{
    const Lines lines = linesOf(curve, options.rate);
    const Axis hertz = axisFrequency(options.rate / 4800.0, options.rate / 2.0, true);
    const PictureLayout layout{.heights = {220, 220, 220, 400}, .legend = true};
    Picture picture(file, layout, "Response of the filter",
                    options.text + ", at " + std::to_string(options.rate) + " Hz");
    picture.panel(0, hertz, axisLevel(greatestGain(curve), 80, "Gain (dB)"));
    picture.panel(1, hertz, axisPhase());
    picture.panel(2, hertz, delayAxis(lines.delay));
    picture.curve(0, lines.hertz, lines.gain);
    picture.curve(1, lines.hertz, lines.phase);
    picture.curve(2, lines.hertz, lines.delay);
    drawPlane(picture, geometryOf(file, layout).areas[3], polesAndZerosOf(sections));
    picture.save();
}

void run(const Options &options)
{
    std::optional<PictureFile> picture;
    if (!options.picture.path.empty())
        picture.emplace(options.picture);
    answerOf(options.text, options.rate); // refuses what would not come to rest
    const auto sections = sectionsFrom(options.text, options.rate);
    const auto curve = responseCurve(sections, options.rate, curvePoints);
    if (picture)
        draw(options, sections, curve, *picture);
    if (!picture || !picture->isStandardOutput())
        printResponse(options.text, options.rate, sections, curve);
}

} // namespace

void addResponse(CLI::App &program)
{
    const auto [command, options] =
        addCommand(program, "response", "Tell and draw what a filter does to each frequency", run);
    addText(command, {"text", "TEXT", "The filter, as 'orva filter --help' tells", Need::required},
            options.text);
    addText(command, {"picture", "PICTURE", "PNG, SVG or PDF; - is a PNG on standard output, and no table"},
            options.picture.path);
    addPictureOptions(command, options.picture);
    addRateOption(command, options.rate, "The sampling rate (48000)");
    addNotes(
        command,
        "Computed from the filter's coefficients. The table has 0 Hz, 1, 2 and 5 times each power of ten, "
        "and the edges "
        "that\n"
        "TEXT names; a picture has gain, phase, group delay, poles and zeros. Of poles and zeros in pairs "
        "one is "
        "listed.\n\n"
        "Examples:\n"
        "  $ orva response \"type=bandpass; order=4; fpass1=300; fpass2=3400\" telephone.png --rate 16k\n"
        "  $ orva response \"numerator=[1 -1]; denominator=[1 -0.995]\" blocker.pdf --size 16x20\n"
        "  $ orva response \"approximation=ellip; As=60; fpass=3400; fstop=4000\"");
}

} // namespace orva
