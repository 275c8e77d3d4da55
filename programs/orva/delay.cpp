// The command delay: by how much one sound lags another.
#include "command.h"
#include "drawing/picture.h"
#include "failure.h"
#include "messages.h"
#include "progress.h"
#include "shared_options.h"

#include <kett/KTvector.h>
#include <orva/ORVAxcorr.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <optional>

namespace orva
{
namespace
{

struct Options {
    std::string first, second;
    PictureOptions picture;
    int32_t frame = 16384; // samples that are compared at a time
    RawFormat raw;
};

struct DestroyCorrelator {
    void operator()(ORVA_XCORR *correlator) const
    {
        ORVA_XcorrProcDestroy(correlator);
    }
};

struct Search {
    std::vector<float> x, y;    // a frame of each sound
    std::vector<float> r, mean; // their correlation, lag t at t + frame - 1, and the mean of it
    std::vector<int64_t> found; // how many frames peak at each lag
    int64_t heard = 0;          // frames that are not silent
    double coefficient = 0;
};

// Takes a channel, 0 for the first, out of a frame, which ends in zeros where the sound does.
int64_t readChannels(SoundInput &input, std::vector<float> &all, std::vector<float> *const (&to)[2])
{
    const auto channels = static_cast<size_t>(input.info.channels);
    all.resize(to[0]->size() * channels);
    const int64_t got = readSound(input, all.data(), static_cast<int64_t>(to[0]->size()));
    for (size_t channel = 0; channel < 2; ++channel)
        for (size_t i = 0; to[channel] != nullptr && i < to[channel]->size(); ++i)
            (*to[channel])[i] = static_cast<int64_t>(i) < got ? all[i * channels + channel] : 0;
    return got;
}

// Below -60 dB re full scale there is nothing to compare.
bool isHeard(const std::vector<float> &frame)
{
    const auto length = static_cast<int32_t>(frame.size());
    return FVectorSumOfSquares(frame.data(), length) >= 1e-6 * length;
}

void compareFrames(Search &search, ORVA_XCORR *correlator)
{
    const auto frame = static_cast<int32_t>(search.x.size());
    ++search.heard;
    ORVA_XcorrPhatProcess(correlator, search.y.data(), search.x.data(),
                          search.r.data()); // the later one first
    ++search.found[static_cast<size_t>(
        FVectorArgAbsMax(search.r.data(), static_cast<int32_t>(search.r.size()), nullptr))];
    for (size_t i = 0; i < search.r.size(); ++i)
        search.mean[i] += (search.r[i] - search.mean[i]) / static_cast<float>(search.heard);
    search.coefficient =
        std::max(search.coefficient, ORVA_XcorrCoef(search.y.data(), frame, search.x.data(), frame, nullptr));
}

void compare(Search &search, SoundInput &first, SoundInput *second)
{
    const auto frame = static_cast<int32_t>(search.x.size());
    const std::unique_ptr<ORVA_XCORR, DestroyCorrelator> correlator(ORVA_XcorrProcCreate(frame, frame));
    if (correlator == nullptr)
        fail("out of memory");
    std::vector<float> all;
    while (true) {
        const bool ended = second == nullptr ? readChannels(first, all, {&search.x, &search.y}) == 0
                                             : readChannels(first, all, {&search.x, nullptr}) == 0 ||
                                                   readChannels(*second, all, {&search.y, nullptr}) == 0;
        if (ended)
            break;
        showProgress(first);
        if (isHeard(search.x) && isHeard(search.y))
            compareFrames(search, correlator.get());
    }
    clearProgress();
    if (search.heard == 0)
        fail((second != nullptr ? second->name : first.name) + ": no frame in which both sounds are heard");
}

void draw(const Search &search, const std::string &title, int32_t lag, int rate, PictureFile &file)
{
    const double ms = 1000.0 / rate;
    const auto zero = static_cast<int32_t>(search.x.size()) - 1;
    const int32_t reach = (zero + 1) / 16;
    char subtitle[128];
    std::snprintf(subtitle, sizeof subtitle, "lag %d samples, %.3f ms at %d Hz", lag, lag * ms, rate);
    Picture picture(file, {.heights = {300}}, title, subtitle);
    picture.panel(0, axisLinear((lag - reach) * ms, (lag + reach) * ms, "Lag (ms)"),
                  axisLinear(-0.2, 1, "Correlation, phase transform"));
    picture.samples(0, -zero * ms, ms, search.mean);
    picture.save();
}

void run(const Options &options)
{
    if (options.first == "-" && options.second == "-")
        failUse("standard input cannot be read twice");
    std::optional<PictureFile> picture;
    if (!options.picture.path.empty())
        picture.emplace(options.picture);
    SoundInput first = openSound(options.first, options.raw);
    std::optional<SoundInput> second;
    if (!options.second.empty())
        second = openSound(options.second, options.raw);
    if (!second && first.info.channels < 2)
        fail(first.name + ": has 1 channel; name a second sound");
    if (second && second->info.samplerate != first.info.samplerate)
        fail(second->name + ": has another rate, " + std::to_string(second->info.samplerate) + " and not " +
             std::to_string(first.info.samplerate) + " Hz");

    const auto frame = static_cast<size_t>(options.frame);
    const size_t lags = 2 * frame - 1;
    Search search{std::vector<float>(frame), std::vector<float>(frame), std::vector<float>(lags),
                  std::vector<float>(lags), std::vector<int64_t>(lags)};
    compare(search, first, second ? &*second : nullptr);
    const auto best = static_cast<size_t>(std::max_element(search.found.begin(), search.found.end()) -
                                          search.found.begin());
    const auto lag = static_cast<int32_t>(best) - (options.frame - 1);
    const std::string name = second ? second->name : first.name;
    if (picture)
        draw(search, name.substr(name.rfind('/') + 1), lag, first.info.samplerate, *picture);
    char text[192];
    std::snprintf(
        text, sizeof text, ": lag %d samples, %.3f ms, in %lld of %lld frames; peak %.2f, coefficient %.2f",
        lag, lag * 1000.0 / first.info.samplerate, static_cast<long long>(search.found[best]),
        static_cast<long long>(search.heard), static_cast<double>(search.mean[best]), search.coefficient);
    say(name + text);
    noteDamage(first);
    if (second)
        noteDamage(*second);
}

} // namespace

void addDelay(CLI::App &program)
{
    const auto [command, options] =
        addCommand(program, "delay", "Find by how much one sound lags another", run);
    addText(command,
            {"first", "FILE", "Sound file; alone, its first two channels are compared", Need::required},
            options.first);
    addText(command, {"second", "FILE", "The other; of each the first channel is taken"}, options.second);
    addNumber(command,
              {"--frame", "N", "Samples compared at a time, four times the longest delay or more (16384)"},
              options.frame, 64, 1 << 24);
    addPictureAsked(command, options.picture, "the correlation");
    addInputOptions(command, options.raw);
    addNotes(command, "A positive lag means that the second sound is the later one. Each frame that is not "
                      "silent has the lag at which\n"
                      "its correlation with phase transform peaks; the answer is the commonest, and how many "
                      "frames agree is how sure it\n"
                      "is. Peak and picture are the mean of all frames; the coefficient is the largest.\n\n"
                      "Examples:\n"
                      "  $ orva twice voice.wav twice.wav && orva delay twice.wav --picture delay.png\n"
                      "  $ orva delay voice.wav voice.wav --frame 4096");
}

} // namespace orva
