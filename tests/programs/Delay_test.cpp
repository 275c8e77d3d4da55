// The delay program and the maker of its input.
#include "picture.h"
#include "program.h"
#include "refusals.h"
#include "sounds.h"
#include "support/random.h"
#include "support/recording.h"

namespace
{

// What delay says of the recording beside itself, later by `delay` samples with noise at -20 dB.
std::string found(const support::Folder &folder, int delay, const std::string &config)
{
    const std::string made = "delay=" + std::to_string(delay) + "; noise=20";
    EXPECT_EQ(runProgram("twice", {support::recordingPath(), "twice.wav", made}, folder).status, 0);
    const auto outcome = runProgram("delay", {"twice.wav", "delay.png", config}, folder);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    return outcome.out;
}

} // namespace

TEST(DelayProgram, FindsExactlyTheDelayOfTheRecordingInNoise)
{
    const support::Folder folder;
    for (const int delay : {0, 1, 137, 480, 3000}) {
        const std::string said = found(folder, delay, "frame=16384");
        EXPECT_TRUE(said.starts_with("delay.png: lag " + std::to_string(delay) + " samples, ")) << said;
    }
    EXPECT_GT(colorsIn(readPicture(folder / "delay.png"), 84, 72, 804, 300), 10U);
}

TEST(DelayProgram, TwoFilesHaveTheirFirstChannelsCompared)
{
    const support::Folder folder;
    support::Random random;
    const auto noise = random.noise(40000);
    std::vector<float> later(200, 0.0f);
    later.insert(later.end(), noise.begin(), noise.end());
    writeSound(folder / "first.wav", noise);
    writeSound(folder / "second.wav", later);
    const auto there = runProgram("delay", {"first.wav", "second.wav", "delay.png"}, folder);
    EXPECT_TRUE(there.out.starts_with("delay.png: lag 200 samples, 4.167 ms, in ")) << there.out << there.err;
    const auto back = runProgram("delay", {"second.wav", "first.wav", "delay.png"}, folder);
    EXPECT_TRUE(back.out.starts_with("delay.png: lag -200 samples, -4.167 ms, in ")) << back.out << back.err;
}

TEST(DelayProgram, RefusesInOneLineAndWritesNothing)
{
    const auto prepare = [](const support::Folder &folder) {
        writeSound(folder / "silent.wav", std::vector<float>(40000, 0.0f), {.channels = 2});
    };
    const std::string usage = "usage: delay SOUND [SECOND] PICTURE.png [frame=N]";
    const std::vector<Refusal> cases = {
        {{}, usage},
        {{"voice.wav"}, usage},
        {{"missing.wav", "old.png"}, "missing.wav: No such file or directory"},
        {{"text.wav", "old.png"}, "text.wav: " + noSound()},
        {{"voice.wav", "old.png"}, "voice.wav: has 1 channel, so there is no channel 2"},
        {{"silent.wav", "old.png"}, "silent.wav: no frame in which both sounds are heard"},
        {{"voice.wav", "old.png", "frame=63"},
         "configuration: frame=63 is not a whole number from 64 to 16777216"},
        {{"voice.wav", "old.png", "frames=64"}, "configuration: unknown key \"frames\"; the keys are frame"},
    };
    expectRefusals("delay", cases, prepare);
}
