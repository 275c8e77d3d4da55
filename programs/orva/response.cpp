// The command response: what a filter does to each frequency, as a table and as a picture.
#include "command.h"
#include "drawing/picture.h"
#include "filter_from.h"
#include "frequency_response.h"
#include "shared_options.h"

#include <cmath>
#include <cstdio>
#include <optional>

namespace orva
{
namespace
{

const double lostDb = 110; // below the greatest gain: phase and delay are rounding there

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

// Without the sign of a rounding.
double cleared(double value, double unit)
{
    return std::fabs(value) < unit / 2 ? 0 : value;
}

void printRow(const ResponseAt &point, double greatest)
{
    std::printf("%10.1f ", point.hertz);
    if (point.gainDb > -200)
        std::printf("%10.2f", cleared(point.gainDb, 0.01));
    else
        std::printf("below -200");
    if (point.gainDb > greatest - lostDb)
        std::printf(" %10.1f %12.2f\n", cleared(point.phaseDegrees, 0.1), cleared(point.delaySamples, 0.01));
    else
        std::puts("          -            -");
}

// At 1, 2 and 5 times each power of ten.
void print(const std::vector<float> &answer, int rate, const std::vector<ResponseAt> &curve)
{
    const double greatest = greatestGain(curve);
    const auto points = halfPowerPoints(answer, rate, curve);
    std::string list;
    for (const double hertz : points) {
        char text[32];
        std::snprintf(text, sizeof text, "%s%.1f Hz", list.empty() ? "" : ", ", hertz);
        list += text;
    }
    std::printf("greatest gain: %.2f dB; 3 dB below it: %s\n", cleared(greatest, 0.01),
                list.empty() ? "nowhere" : list.c_str());
    std::puts("        Hz    gain dB    phase °  delay, samples");
    printRow(responseAt(answer, rate, 0), greatest);
    for (int decade = 1; decade <= rate; decade *= 10) {
        for (const int digit : {1, 2, 5}) {
            const double hertz = digit * decade;
            if (hertz >= rate / 4800.0 && hertz <= rate / 2.0)
                printRow(responseAt(answer, rate, hertz), greatest);
        }
    }
}

struct Curves {
    std::vector<double> hertz, gain, phase, delay;
};

// Lines that break off where there is nothing to draw, and where the phase turns over.
Curves linesOf(const std::vector<ResponseAt> &curve, double greatest)
{
    Curves lines;
    const auto add = [&](double hertz, double gain, double phase, double delay) {
        lines.hertz.push_back(hertz);
        lines.gain.push_back(gain);
        lines.phase.push_back(phase);
        lines.delay.push_back(delay);
    };
    for (size_t i = 0; i < curve.size(); ++i) {
        const ResponseAt &point = curve[i];
        const bool lost = !(point.gainDb > greatest - lostDb);
        if (i > 0 && std::fabs(point.phaseDegrees - curve[i - 1].phaseDegrees) > 180)
            add(point.hertz, point.gainDb, NAN, lost ? NAN : point.delaySamples);
        add(point.hertz, point.gainDb, lost ? NAN : point.phaseDegrees, lost ? NAN : point.delaySamples);
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

void draw(const Options &options, const std::vector<ResponseAt> &curve, PictureFile &file)
{
    const double greatest = greatestGain(curve);
    const double top = 10 * std::ceil(std::max(greatest, -200.0) / 10);
    const Curves lines = linesOf(curve, greatest);
    const Axis hertz = axisFrequency(options.rate / 4800.0, options.rate / 2.0, true);
    Picture picture(file, {.heights = {220, 220, 220}}, "Response of the filter",
                    options.text + ", at " + std::to_string(options.rate) + " Hz");
    picture.panel(0, hertz, axisLinear(top - 80, top, "Gain (dB)"));
    picture.panel(1, hertz, axisPhase());
    picture.panel(2, hertz, delayAxis(lines.delay));
    picture.curve(0, lines.hertz, lines.gain);
    picture.curve(1, lines.hertz, lines.phase);
    picture.curve(2, lines.hertz, lines.delay);
    picture.save();
}

void run(const Options &options)
{
    std::optional<PictureFile> picture;
    if (!options.picture.path.empty())
        picture.emplace(options.picture);
    const auto answer = answerOf(options.text, options.rate);
    const auto curve = responseCurve(answer, options.rate, 445); // one for two columns of the picture
    if (picture)
        draw(options, curve, *picture);
    print(answer, options.rate, curve);
}

} // namespace

void addResponse(CLI::App &program)
{
    CLI::App *command =
        program.add_subcommand("response", "Tell and draw what a filter does to each frequency");
    auto options = std::make_shared<Options>();
    command->add_option("text", options->text, "The filter, as 'orva filter --help' tells")
        ->required()
        ->type_name("TEXT");
    command->add_option("picture", options->picture.path, "PNG, SVG or PDF of gain, phase and group delay")
        ->type_name("PICTURE");
    addPictureOptions(*command, options->picture);
    addRateOption(*command, options->rate, "The sampling rate (48000)");
    command->footer(
        "Measured with a single 1 as input. What lies 110 dB below the greatest gain has no phase.\n\n"
        "Examples:\n"
        "  $ orva response \"type=bandpass; order=4; fpass1=300; fpass2=3400\" telephone.png --rate 16k\n"
        "  $ orva response \"numerator=[1 -1]; denominator=[1 -0.995]\"");
    command->callback([options] { run(*options); });
}

} // namespace orva
