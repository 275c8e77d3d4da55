// What the resample program writes, and what it refuses.
#include "long_sounds.h"
#include "program.h"
#include "refusals.h"
#include "sounds.h"
#include "support/bits.h"
#include "support/recording.h"

#include <orva/ORVAresample.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

namespace
{

using Samples = std::vector<float>;

struct Resampled {
    SF_INFO info;
    Samples samples;
    std::string line;
};

Resampled resampled(const std::string &input, const std::vector<std::string> &how,
                    const support::Folder &folder)
{
    std::vector<std::string> arguments{input, "out.wav"};
    arguments.insert(arguments.end(), how.begin(), how.end());
    const support::Outcome outcome = runProgram("resample", arguments, folder);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    Resampled result{{}, {}, outcome.out};
    result.samples = support::readSamples(folder / "out.wav", result.info);
    return result;
}

int64_t lengthAt(int64_t frames, int from, int to)
{
    return (frames * to + from - 1) / from;
}

// One channel through the library in one block, flushed to the length of the input.
Samples converted(const Samples &input, int from, int to, const std::string &config)
{
    const std::unique_ptr<ORVA_RESAMPLER, int32_t (*)(ORVA_RESAMPLER *)> converter(
        ORVA_ResampleInit(from, to, config.c_str()), ORVA_ResampleDestroy);
    const int64_t total = lengthAt(std::ssize(input), from, to);
    Samples output(static_cast<size_t>(total) + 1);
    const int32_t written =
        ORVA_Resample(converter.get(), input.data(), output.data(), static_cast<int32_t>(input.size()));
    if (total > written) {
        const auto left = static_cast<int32_t>(total - written);
        EXPECT_EQ(ORVA_ResampleFlushBuffersEx(converter.get(), output.data() + written, left), left);
    }
    output.resize(static_cast<size_t>(total));
    return output;
}

} // namespace

TEST(ResampleProgram, WritesWhatTheLibraryMakesOfTheVoice)
{
    const support::Folder folder;
    std::filesystem::create_symlink(support::recordingPath(), folder.path / "voice.wav");
    Samples voice = support::recording();
    writeSound(folder / "floats.wav", voice);
    for (const auto &[rate, config] : {std::pair{"44100", ""},
                                       {"16000", "order=10"},
                                       {"96000", "type=zoh"},
                                       {"8000", "type=zoh"},
                                       {"11025", "delaycompensation=no order=5"}}) {
        const Resampled result = resampled("floats.wav", {rate, config}, folder);
        EXPECT_EQ(result.info.samplerate, std::stoi(rate));
        EXPECT_TRUE(support::sameBits(result.samples, converted(voice, 48000, std::stoi(rate), config)))
            << rate << ", " << config;
        EXPECT_EQ(result.line, "out.wav: " + std::to_string(voice.size()) + " frames at 48000 Hz became " +
                                   std::to_string(result.samples.size()) + " at " + rate + " Hz\n");
    }
    const Resampled stored = resampled("voice.wav", {"44100"}, folder);
    EXPECT_EQ(stored.info.format & SF_FORMAT_SUBMASK, SF_FORMAT_PCM_16); // as the recording is stored
}

TEST(ResampleProgram, IsExactlyAsLongAsTheInput)
{
    const support::Folder folder;
    const struct {
        int from, to;
    } rates[] = {{48000, 44100}, {8000, 48000}, {48000, 8000}, {1, 100}, {1000, 1}, {7, 5}, {8000, 8000}};
    for (const size_t frames : {1, 2, 9000})
        for (const auto &[from, to] : rates) {
            writeSound(folder / "in.wav", Samples(frames, 0.25f), {.rate = from});
            const Resampled result = resampled("in.wav", {std::to_string(to), "order=12"}, folder);
            EXPECT_EQ(std::ssize(result.samples), lengthAt(static_cast<int64_t>(frames), from, to))
                << frames << " frames, " << from << " to " << to;
        }
}

TEST(ResampleProgram, EveryChannelIsConvertedAsIfAlone)
{
    const support::Folder folder;
    const std::vector<Samples> channels{sine(220, 0.5, 9000), sine(555, 0.4, 9000), sine(70, 0.7, 9000)};
    Samples all;
    for (size_t i = 0; i < 9000; ++i)
        for (const auto &channel : channels)
            all.push_back(channel[i]);
    writeSound(folder / "three.wav", all, {.channels = 3});
    for (const char *config : {"order=20", "type=zoh"}) {
        const Resampled result = resampled("three.wav", {"44100", config}, folder);
        ASSERT_EQ(result.info.channels, 3);
        for (size_t c = 0; c < 3; ++c) {
            Samples one;
            for (size_t i = c; i < result.samples.size(); i += 3)
                one.push_back(result.samples[i]);
            EXPECT_TRUE(support::sameBits(one, converted(channels[c], 48000, 44100, config))) << c;
        }
    }
}

TEST(ResampleProgram, LongFilesRunInConstantMemory)
{
    // The samples alone are 9600 kB.
    expectConstantMemory("resample", {"in.wav", "out.wav", "16000", "order=1"}, 300, 2000);
}

TEST(ResampleProgram, RefusesInOneLineAndWritesNothing)
{
    const auto prepare = [](const support::Folder &folder) {
        writeSound(folder / "in.wav", {0.5f, 0.25f, 0.125f}, {.rate = 44100});
    };
    const std::string usage = "usage: resample SOUND OUTPUT.wav RATE [CONFIGURATION]";
    const auto noRate = [](const std::string &text) { return "rate: " + text + " is not from 1 to 1000000"; };
    const std::vector<Refusal> cases = {
        {{}, usage},
        {{"in.wav", "old.wav"}, usage},
        {{"in.wav", "old.wav", "8000", "order=1", "more"}, usage},
        {{"missing.wav", "old.wav", "8000"}, "missing.wav: No such file or directory"},
        {{"in.wav", "new.mp3", "8000"}, "new.mp3: the name of this file must end in .wav"},
        {{"in.wav", "old.wav", "0"}, noRate("0")},
        {{"in.wav", "old.wav", "-8000"}, noRate("-8000")},
        {{"in.wav", "old.wav", "1000001"}, noRate("1000001")},
        {{"in.wav", "old.wav", "-4294959296"}, noRate("-4294959296")}, // 8000 in 32 bits
        {{"in.wav", "old.wav", "99999999999999999999"}, noRate("99999999999999999999")},
        {{"in.wav", "old.wav", "8000Hz"}, noRate("8000Hz")},
        {{"in.wav", "old.wav", ""}, noRate("")},
        {{"in.wav", "old.wav", "8000", "order=0"},
         "configuration: order=0 is not a whole number from 1 to 1048576"},
        {{"in.wav", "old.wav", "8000", "type=linear"},
         "configuration: type=linear is not polyphase, poly or zoh"},
        {{"in.wav", "old.wav", "8000", "type=\"poly zoh\""},
         "configuration: type=poly zoh is not polyphase, poly or zoh"},
        {{"in.wav", "old.wav", "8000", "type=pol"}, "configuration: type=pol is not polyphase, poly or zoh"},
        {{"in.wav", "old.wav", "8000", "delaycompensation=2"},
         "configuration: delaycompensation=2 is not yes or no"},
        {{"in.wav", "old.wav", "8000", "taps=7"},
         "configuration: unknown key \"taps\"; the keys are type, order, delaycompensation"},
        {{"in.wav", "old.wav", "8000", std::string(257, ' ')}, "configuration: longer than 256 bytes"},
        {{"in.wav", "old.wav", "44100", "type=zoh"},
         "ORVA_ZOHResampleInit: Unsuported sample rate convertion: 44100 to 44100"},
        {{"in.wav", "old.wav", "999999", "order=1048576"}, "ORVA_ResampleInit: Parametros invalidos"},
    };
    expectRefusals("resample", cases, prepare);
}

TEST(ResampleProgram, NotesDamagedInputAndGoesOn)
{
    const support::Folder folder;
    Samples samples = sine(440, 0.5, 9000);
    samples[4000] = std::nanf("");
    writeSound(folder / "in.wav", samples);
    const auto outcome = runProgram("resample", {"in.wav", "out.wav", "44100"}, folder);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "in.wav: 1 samples are not finite; they were taken as 0\n");
}
