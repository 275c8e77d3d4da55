// What orva resample writes and says.
#include "long_sounds.h"
#include "orva.h"
#include "support/bits.h"

#include <orva/ORVAresample.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
    std::vector<std::string> words{"resample", input, "out.wav"};
    words.insert(words.end(), how.begin(), how.end());
    const support::Outcome outcome = orvaRun(words, folder);
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

TEST(OrvaResample, WritesWhatTheLibraryMakesOfTheVoice)
{
    const support::Folder folder;
    const Samples voice = support::recording();
    writeSound(folder / "floats.wav", voice);
    const struct {
        std::vector<std::string> how;
        int rate;
        const char *config;
    } cases[] = {{{"--rate", "44100"}, 44100, ""},
                 {{"--rate=16k", "--order=10"}, 16000, "order=10"},
                 {{"-r", "96kHz", "--hold"}, 96000, "type=zoh"},
                 {{"--rate", "11.025kHz", "--order", "5"}, 11025, "order=5"},
                 {{"--rate", "8000Hz", "--hold"}, 8000, "type=zoh"}};
    for (const auto &[how, rate, config] : cases) {
        const Resampled result = resampled("floats.wav", how, folder);
        EXPECT_EQ(result.info.samplerate, rate);
        EXPECT_TRUE(support::sameBits(result.samples, converted(voice, 48000, rate, config)))
            << rate << config;
        EXPECT_THAT(result.line, testing::StartsWith("out.wav: " + std::to_string(voice.size()) +
                                                     " frames at 48000 Hz became " +
                                                     std::to_string(result.samples.size()) + " at " +
                                                     std::to_string(rate) + " Hz; "));
    }
}

TEST(OrvaResample, IsExactlyAsLongAsTheInput)
{
    const support::Folder folder;
    const struct {
        int from, to;
    } rates[] = {{48000, 44100}, {8000, 48000}, {48000, 8000}, {1, 100}, {1000, 1}, {7, 5}, {8000, 8000}};
    for (const size_t frames : {1, 2, 9000})
        for (const auto &[from, to] : rates) {
            writeSound(folder / "in.wav", Samples(frames, 0.25f), {.rate = from});
            const Resampled result =
                resampled("in.wav", {"--rate", std::to_string(to), "--order=12"}, folder);
            EXPECT_EQ(std::ssize(result.samples), lengthAt(static_cast<int64_t>(frames), from, to))
                << frames << " frames, " << from << " to " << to;
        }
}

TEST(OrvaResample, EveryChannelIsConvertedAsIfAlone)
{
    const support::Folder folder;
    const std::vector<Samples> channels{sine(220, 0.5, 9000), sine(555, 0.4, 9000), sine(70, 0.7, 9000)};
    Samples all;
    for (size_t i = 0; i < 9000; ++i)
        for (const auto &channel : channels)
            all.push_back(channel[i]);
    writeSound(folder / "three.wav", all, {.channels = 3});
    const Resampled result = resampled("three.wav", {"--rate=44100", "--order=20"}, folder);
    ASSERT_EQ(result.info.channels, 3);
    for (size_t c = 0; c < 3; ++c) {
        Samples one;
        for (size_t i = c; i < result.samples.size(); i += 3)
            one.push_back(result.samples[i]);
        EXPECT_TRUE(support::sameBits(one, converted(channels[c], 48000, 44100, "order=20"))) << c;
    }
}

// The figures of the library's header for order 30, and of its formula for the delay.
TEST(OrvaResample, StatesRippleRejectionAndDelay)
{
    const support::Folder folder;
    const struct {
        int from;
        std::vector<std::string> how;
        const char *says;
    } cases[] = {
        {48000,
         {"--rate=16000"},
         "; order 30, ripple 0.017 dB up to 6800 Hz, rejection 55 dB from 8400 Hz on, delay 0\n"},
        {48000, {"--rate=24000"}, "rejection 51 dB from 12600 Hz on, delay 0\n"},
        {44100, {"--rate=48000"}, "rejection 76 dB from 23152 Hz on, delay -0.347 samples\n"},
        {8000, {"--rate=8000"}, "up to 3400 Hz, delay 0\n"},
        {48000,
         {"--rate=8000", "--hold"},
         "; zero-order hold, ripple 1 dB, rejection 60 dB, delay not compensated\n"},
    };
    for (const auto &[from, how, says] : cases) {
        writeSound(folder / "in.wav", sine(440, 0.5, 1000), {.rate = from});
        EXPECT_THAT(resampled("in.wav", how, folder).line, testing::EndsWith(says));
    }
}

TEST(OrvaResample, LongFilesRunInConstantMemory)
{
    // The samples alone are 9600 kB.
    expectConstantMemory("orva", {"resample", "in.wav", "out.wav", "--rate=16k", "--order=1"}, 300, 2000);
}

TEST(OrvaResample, RefusesInOneLineAndWritesNothing)
{
    const support::Folder folder;
    writeSound(folder / "in.wav", {0.5f, 0.25f, 0.125f}, {.rate = 44100});
    const std::string begin = "orva resample: ";
    const std::string see = "; see 'orva resample --help'";
    const auto noRate = [&](const std::string &text) {
        return begin + "rate '" + text +
               "' is not a whole number of hertz from 1 to 1000000, such as 44100 or 44.1k";
    };
    const struct {
        std::vector<std::string> words;
        int status;
        std::string says;
    } cases[] = {
        {{"in.wav", "o.wav"}, 2, "--rate is required" + see},
        {{"in.wav", "--rate=8k"}, 2, "give an input and an output, or files and --into FOLDER" + see},
        {{"a", "b", "c", "--rate=8k"}, 2, "give an input and an output, or files and --into FOLDER" + see},
        {{"in.wav", "o.wav", "--rate=8k", "--order=0"},
         2,
         "--order: Value 0 not in range 1 to 1048576" + see},
        {{"in.wav", "o.wav", "--rate=8k", "--order=3", "--hold"}, 2, "--order excludes --hold" + see},
        {{"in.wav", "./in.wav", "--into=.", "--rate=8k"},
         2,
         "in.wav and ./in.wav would both become ./in.wav"},
        {{"-", "--into=.", "--rate=8k"}, 2, "standard input has no name to be written by into a folder"},
        {{"in.wav", "--into=in.wav", "--rate=8k"}, 1, "in.wav: Not a directory"},
        {{"missing.wav", "o.wav", "--rate=8k"}, 1, "missing.wav: No such file or directory"},
        {{"in.wav", "no/o.wav", "--rate=8k"}, 1, "no/o.wav: No such file or directory"},
        {{"in.wav", "o.wav", "--rate=44100", "--hold"},
         1,
         "in.wav: cannot go from 44100 to 44100 Hz: ORVA_ZOHResampleInit: Unsuported sample rate convertion: "
         "44100 to 44100"},
        {{"in.wav", "o.wav", "--rate=999999", "--order=1048576"},
         1,
         "in.wav: cannot go from 44100 to 999999 Hz: ORVA_ResampleInit: Parametros invalidos"},
    };
    for (const auto &[words, status, says] : cases) {
        std::vector<std::string> all{"resample"};
        all.insert(all.end(), words.begin(), words.end());
        expectRefused(all, folder, status, begin + says);
    }
    for (const char *text : {"0", "-8000", "1000001", "99999999999999999999", "8000x", "8000.5", "nan"})
        expectRefused({"resample", "in.wav", "o.wav", std::string("--rate=") + text}, folder, 2,
                      noRate(text));
}
