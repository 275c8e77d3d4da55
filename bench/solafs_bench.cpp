// One second of speech at 44.1 kHz, in blocks of 1024 samples: ours at each level, the definition in its plainest
// form; SoundTouch, whose overlap-add is of the same kind, at its own settings and with its quick seek; and Rubber
// Band, which works on spectra.
// Times are for a sample of output.
#include "cases.h"
#include "solafs/ORVAsolafs_internal.h"
#include "solafs/plain_scaler.h"
#include "solafs/signals.h"

#include <rubberband/RubberBandStretcher.h>
#include <soundtouch/SoundTouch.h>

#include <algorithm>
#include <chrono>

namespace
{

using Samples = std::vector<float>;

constexpr int32_t rate = 44100;
constexpr size_t blockLength = 1024;
constexpr int32_t room = 8192; // more than a block gives

// ORVA_SolafsDestroy() would keep the memory.
void freeScaler(ORVA_SOLAFS *solafs)
{
    KTMEM_DisposeMemDescr(solafs->memDescr);
}

using Scaler = Owned<ORVA_SOLAFS, freeScaler>;

double seconds()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

template <class Use> void forEachBlock(const Samples &samples, Use use)
{
    for (size_t first = 0; first < samples.size(); first += blockLength)
        use(&samples[first], std::min(blockLength, samples.size() - first));
}

int64_t stretch(const Samples &samples, float speed)
{
    const Scaler solafs(ORVA_SolafsCreate(20, rate, 1));
    Samples output(room);
    int64_t frames = 0;
    forEachBlock(samples, [&](const float *block, size_t count) {
        ORVA_SolafsInputData(solafs.get(), 0, block, static_cast<int32_t>(count), speed);
        frames += ORVA_SolafsOutputData(solafs.get(), 0, output.data(), room);
    });
    return frames;
}

int64_t stretchPlainly(const Samples &samples, float speed)
{
    PlainScaler scaler(20, rate);
    int64_t frames = 0;
    forEachBlock(samples, [&](const float *block, size_t count) {
        scaler.input({block, block + count}, speed);
        frames += std::ssize(scaler.output(room));
    });
    return frames;
}

template <bool seeksQuickly> int64_t stretchBySoundTouch(const Samples &samples, float speed)
{
    soundtouch::SoundTouch scaler;
    scaler.setSetting(SETTING_USE_QUICKSEEK, seeksQuickly ? 1 : 0);
    scaler.setSampleRate(rate);
    scaler.setChannels(1);
    scaler.setTempo(static_cast<double>(speed));
    Samples output(room);
    int64_t frames = 0;
    forEachBlock(samples, [&](const float *block, size_t count) {
        scaler.putSamples(block, static_cast<uint32_t>(count));
        frames += scaler.receiveSamples(output.data(), room);
    });
    return frames;
}

int64_t stretchByRubberBand(const Samples &samples, float speed)
{
    using RubberBand::RubberBandStretcher;
    RubberBandStretcher scaler(rate, 1, RubberBandStretcher::OptionProcessRealTime,
                               1.0 / static_cast<double>(speed));
    Samples output(room);
    int64_t frames = 0;
    forEachBlock(samples, [&](const float *block, size_t count) {
        scaler.process(&block, count, false);
        float *const to = output.data();
        const int available = std::clamp(scaler.available(), 0, room);
        frames += static_cast<int64_t>(scaler.retrieve(&to, static_cast<size_t>(available)));
    });
    return frames;
}

// The time of all searches of a run: each is made once more, alone, on the record as its hop has left it.
double searchSeconds(const Samples &samples, float speed)
{
    const Scaler solafs(ORVA_SolafsCreate(20, rate, 1));
    Samples output(static_cast<size_t>(solafs->hop));
    double sum = 0.0;
    forEachBlock(samples, [&](const float *block, size_t count) {
        ORVA_SolafsInputData(solafs.get(), 0, block, static_cast<int32_t>(count), speed);
        int32_t skew = solafs->skew;
        while (ORVA_SolafsOutputData(solafs.get(), 0, output.data(), 0) > 0) {
            const int32_t predicted = skew + solafs->lastAnalysisA - solafs->outputPosition;
            skew = solafs->skew;
            if (predicted >= 0 && predicted <= solafs->maxSkew)
                continue; // no search in this hop
            const double start = seconds();
            orva::findSkew(solafs.get(), solafs->lastAnalysisA);
            sum += seconds() - start;
            solafs->skew = skew;
        }
    });
    return sum;
}

double searchShare(const Samples &samples, float speed)
{
    double whole = 1.0;
    double searches = 1.0;
    for (int round = 0; round < 20; ++round) {
        const double start = seconds();
        stretch(samples, speed);
        whole = std::min(whole, seconds() - start);
        searches = std::min(searches, searchSeconds(samples, speed));
    }
    return searches / whole;
}

using Run = int64_t (*)(const Samples &samples, float speed);

void add(const std::string &name, float speed, Run run)
{
    addStream(name, [=] { return [=, samples = voice(rate)] { return run(samples, speed); }; });
}

void addOurs(const std::string &name, float speed)
{
    const auto make = [=] { return [=, samples = voice(rate)] { return stretch(samples, speed); }; };
    addStreamLevels(name, make, [=](benchmark::State &state, double samples) {
        state.counters["x real time"] = aSecond(samples / rate);
        state.counters["search share"] = searchShare(voice(rate), speed);
    });
}

const bool registered = [] {
    for (const char *speed : {"0.7", "1.0", "1.5"}) {
        const std::string name = std::string("speed ") + speed;
        addOurs(name, std::stof(speed));
        add(name + "/definition", std::stof(speed), stretchPlainly);
        add(name + "/soundtouch", std::stof(speed), stretchBySoundTouch<false>);
        add(name + "/soundtouch quick", std::stof(speed), stretchBySoundTouch<true>);
        add(name + "/rubberband", std::stof(speed), stretchByRubberBand);
    }
    return true;
}();

} // namespace
