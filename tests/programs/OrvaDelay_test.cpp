// orva delay, and orva twice, the maker of its input.
#include "orva.h"
#include "picture.h"
#include "support/random.h"

#include <gtest/gtest.h>

namespace
{

// What delay says of the recording beside itself, later by `delay` samples with noise at -20 dB.
std::string found(const support::Folder &folder, int delay, const std::string &frame)
{
    const std::string made = "--delay=" + std::to_string(delay);
    const auto twice = orvaRun({"twice", support::recordingPath(), "twice.wav", made, "--noise=20"}, folder);
    EXPECT_EQ(twice.status, 0) << twice.err;
    EXPECT_EQ(twice.out, "twice.wav: the sound, and beside it the same " + std::to_string(delay) +
                             " samples later with noise at -20 dB\n");
    const auto outcome = orvaRun({"delay", "twice.wav", "--picture=delay.png", frame}, folder);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    return outcome.out;
}

} // namespace

TEST(OrvaDelay, FindsExactlyTheDelayOfTheRecordingInNoise)
{
    const support::Folder folder;
    for (const int delay : {0, 1, 137, 480, 3000}) {
        const std::string said = found(folder, delay, "--frame=16384");
        EXPECT_TRUE(said.starts_with("twice.wav: lag " + std::to_string(delay) + " samples, ")) << said;
    }
    EXPECT_GT(colorsIn(readPicture(folder / "delay.png"), 84, 72, 804, 300), 10U);
}

TEST(OrvaDelay, TwoFilesHaveTheirFirstChannelsCompared)
{
    const support::Folder folder;
    support::Random random;
    const auto noise = random.noise(40000);
    std::vector<float> later(200, 0.0f);
    later.insert(later.end(), noise.begin(), noise.end());
    writeSound(folder / "first.wav", noise);
    writeSound(folder / "second.wav", later);
    const auto there = orvaRun({"delay", "first.wav", "second.wav"}, folder);
    EXPECT_TRUE(there.out.starts_with("second.wav: lag 200 samples, 4.167 ms, in "))
        << there.out << there.err;
    const auto back = orvaRun({"delay", "second.wav", "first.wav"}, folder);
    EXPECT_TRUE(back.out.starts_with("first.wav: lag -200 samples, -4.167 ms, in ")) << back.out << back.err;
}

TEST(OrvaDelay, RefusesInOneLineAndWritesNothing)
{
    const support::Folder folder;
    putVoice(folder);
    writeSound(folder / "silent.wav", std::vector<float>(40000, 0.0f), {.channels = 2});
    writeSound(folder / "other.wav", sine(440, 0.5, 4000), {.rate = 44100});
    const struct {
        std::vector<std::string> words;
        int status;
        const char *says;
    } cases[] = {
        {{"delay"}, 2, "orva delay: first is required; see 'orva delay --help'"},
        {{"delay", "-", "-"}, 2, "orva delay: standard input cannot be read twice"},
        {{"delay", "missing.wav"}, 1, "orva delay: missing.wav: No such file or directory"},
        {{"delay", "voice.wav"}, 1, "orva delay: voice.wav: has 1 channel; name a second sound"},
        {{"delay", "voice.wav", "other.wav"},
         1,
         "orva delay: other.wav: has another rate, 44100 and not 48000 Hz"},
        {{"delay", "silent.wav"}, 1, "orva delay: silent.wav: no frame in which both sounds are heard"},
        {{"delay", "silent.wav", "--frame=63"},
         2,
         "orva delay: --frame: Value 63 not in range 64 to 16777216; see 'orva delay --help'"},
        {{"twice", "-", "o.wav"}, 2, "orva twice: standard input cannot be read twice"},
        {{"twice", "voice.wav", "o.wav", "--delay=-1"},
         2,
         "orva twice: --delay: Value -1 not in range 0 to 16777216; see 'orva twice --help'"},
    };
    for (const auto &[words, status, says] : cases)
        expectRefused(words, folder, status, says);
}
