// The command lapped: silences what is faint in a sound, each coefficient of its lapped transform by itself (a spectral
// gate), and measures how well the transform without the gate gives the sound back.
#include "channel_blocks.h"
#include "command.h"
#include "comparison.h"
#include "failure.h"
#include "messages.h"
#include "shared_options.h"

#include <kett/KTvector.h>
#include <orva/ORVAfmclt.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>

namespace orva
{
namespace
{

const double range = 100; // dB of the picture

struct Options : SoundOptions {
    PictureOptions picture;
    int32_t block = 512;
    float gate = -60; // dB, a sine of full scale having 0
};

struct DestroyTransform {
    void operator()(ORVA_FMCLT *transform) const
    {
        ORVA_FMCLTProcDestroy(transform);
    }
};

// What a channel keeps from one block to the next: of the way there, and of both ways back.
struct Memory {
    std::vector<float> history, plain, gated;
};

struct Lapping {
    Lapping(const Options &options, size_t channels)
        : M(static_cast<size_t>(options.block)), gate(options.gate), picture(options.picture),
          transform(ORVA_FMCLTProcCreate(options.block)), window(2 * (M + 1)), real(M), imag(M), last(M),
          levels(M), shown(2 * M + 1),
          each(channels, {std::vector<float>(M), std::vector<float>(M), std::vector<float>(M)})
    {
        if (transform == nullptr)
            fail("out of memory");
        ORVA_FMCLTFreqWindow(window.data(), options.block);
    }

    size_t M; // samples, and coefficients, of a block
    float gate;
    Comparison picture;
    std::unique_ptr<ORVA_FMCLT, DestroyTransform> transform; // serves all channels in turn
    std::vector<float> window, real, imag;
    std::vector<float> last;   // the block before the present one
    std::vector<float> levels; // dB
    std::vector<float> shown;  // for the picture, at every half coefficient
    std::vector<Memory> each;
    double passed = 0, all = 0; // coefficients
    double error = 0;           // sum of squares, without the gate
};

// Coefficient k stands for (k + 1/2) steps of frequency, and reaches half a step to either side.
std::span<const float> atHalfSteps(Lapping &work)
{
    const size_t M = work.M;
    for (size_t k = 0; k < M; ++k)
        work.shown[2 * k + 1] = work.levels[k];
    for (size_t k = 0; k <= M; ++k)
        work.shown[2 * k] = std::max(work.levels[k > 0 ? k - 1 : 0], work.levels[k < M ? k : M - 1]);
    return work.shown;
}

void closeGate(Lapping &work)
{
    const double sine = std::sqrt(8.0 * static_cast<double>(work.M)) / std::numbers::pi; // of full scale
    for (size_t k = 0; k < work.M; ++k)
        work.levels[k] = static_cast<float>(
            20 * std::log10(std::hypot(static_cast<double>(work.real[k]), static_cast<double>(work.imag[k])) /
                            sine));
    if (work.picture.isDrawn())
        work.picture.before(atHalfSteps(work));
    for (size_t k = 0; k < work.M; ++k) {
        if (work.levels[k] >= work.gate) {
            ++work.passed;
            continue;
        }
        work.real[k] = work.imag[k] = 0;
        work.levels[k] = -HUGE_VALF;
    }
    work.all += static_cast<double>(work.M);
    if (work.picture.isDrawn())
        work.picture.after(atHalfSteps(work));
}

// Puts the gated block before it in the place of a block.
void lap(Lapping &work, size_t channel, float *samples)
{
    Memory &memory = work.each[channel];
    ORVA_FMCLT *transform = work.transform.get();
    float *real = work.real.data();
    float *imag = work.imag.data();
    work.last = memory.history;
    ORVA_FMCLTDirect(transform, real, imag, samples, memory.history.data(), work.window.data());
    ORVA_FMCLTInverse(transform, real, imag, samples, memory.plain.data(), work.window.data());
    for (size_t i = 0; i < work.M; ++i)
        work.last[i] -= samples[i];
    work.error += FVectorSumOfSquares(work.last.data(), static_cast<int32_t>(work.M));
    closeGate(work);
    ORVA_FMCLTInverse(transform, real, imag, samples, memory.gated.data(), work.window.data());
}

void lapAll(Lapping &work, SoundInput &input, SoundOutput &output)
{
    enum { blockFrames = 4096 };
    const auto M = static_cast<int32_t>(work.M);
    ChannelBlocks blocks(output, input.info.channels,
                         {M, M, [&work](size_t channel, float *samples) { lap(work, channel, samples); },
                          [&work] { work.picture.next(); }});
    std::vector<float> block(static_cast<size_t>(blockFrames) * static_cast<size_t>(input.info.channels));
    while (const int64_t count = readSound(input, block.data(), blockFrames)) {
        blocks.push(block.data(), count);
        showProgress(input);
    }
    endReading(input);
    blocks.end();
}

void run(const Options &options)
{
    SoundInput input = openSound(options.input, options.how.raw);
    const int rate = input.info.samplerate;
    Lapping work(options, static_cast<size_t>(input.info.channels));
    work.picture.begin(rate, 0.25 * rate / options.block, work.shown.size());
    SoundOutput output(options.output, options.how, input, rate, input.length);
    lapAll(work, input, output);
    const double seconds = static_cast<double>(input.position) / rate;
    char text[160];
    std::snprintf(text, sizeof text,
                  "Lapped transform in blocks of %d, gate at %g dB re full-scale sine; %d Hz", options.block,
                  static_cast<double>(options.gate), rate);
    work.picture.save(input.name.substr(input.name.rfind('/') + 1), text, seconds, 0,
                      static_cast<double>(options.block) / rate, range);
    output.finish();
    noteDamage(input);
    if (output.isStandardOutput())
        return;
    std::snprintf(text, sizeof text,
                  ": %.2f s, through the gate: %.1f %% of the coefficients; error without it: %.0f dB",
                  seconds, 100 * work.passed / work.all, 10 * std::log10(2 * work.error / work.all));
    say(options.output + text);
}

} // namespace

void addLapped(CLI::App &program)
{
    const auto [command, options] =
        addCommand(program, "lapped", "Silence what is faint in a sound, each frequency by itself", run);
    addInputAndOutput(command, options);
    addNumber(command, {"--block", "N", "Samples, and frequencies, of a block (512)"}, options.block, 1,
              65536);
    addNumber(
        command,
        {"--gate", "DB", "Level from which on a coefficient passes, a sine of full scale having 0 (-60)"},
        options.gate, -300.0, 300.0);
    addPictureAsked(command, options.picture, "the levels before and after the gate");
    addOutputOptions(command, options.how);
    addNotes(
        command,
        "A gate for each coefficient of the lapped transform. The error is that of the transform itself: all "
        "of a\n"
        "sound comes back where 4 divides the block, else an error of the highest frequencies stays.\n\n"
        "Examples:\n"
        "  $ orva lapped voice.wav gated.wav --gate -50\n"
        "  $ orva lapped voice.wav gated.flac --block 1024 --gate -60 --picture gated.png");
}

} // namespace orva
