// The delay example and the maker of its input.
#include "picture.h"
#include "program.h"
#include "sounds.h"
#include "support/random.h"
#include "support/recording.h"

namespace
{

// What delay says of the recording beside itself, later by `delay` samples with noise at -20 dB.
std::string found(const support::Folder &folder, int delay, const std::string &config)
{
    const std::string made = "delay=" + std::to_string(delay) + "; noise=20";
    EXPECT_EQ(runExample("twice", {support::recordingPath(), "twice.wav", made}, folder).status, 0);
    const auto outcome = runExample("delay", {"twice.wav", "delay.png", config}, folder);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    return outcome.out;
}

} // namespace

TEST(DelayExample, FindsExactlyTheDelayOfTheRecordingInNoise)
{
    const support::Folder folder;
    for (const int delay : {0, 1, 137, 480, 3000}) {
        const std::string said = found(folder, delay, "frame=16384");
        EXPECT_TRUE(said.starts_with("delay.png: lag " + std::to_string(delay) + " samples, ")) << said;
    }
    EXPECT_GT(colorsIn(readPicture(folder / "delay.png"), 84, 72, 804, 300), 10U);
}

TEST(DelayExample, TwoFilesHaveTheirFirstChannelsCompared)
{
    const support::Folder folder;
    support::Random random;
    const auto noise = random.noise(40000);
    std::vector<float> later(200, 0.0f);
    later.insert(later.end(), noise.begin(), noise.end());
    writeSound(folder / "first.wav", noise);
    writeSound(folder / "second.wav", later);
    const auto there = runExample("delay", {"first.wav", "second.wav", "delay.png"}, folder);
    EXPECT_TRUE(there.out.starts_with("delay.png: lag 200 samples, 4.167 ms, in ")) << there.out << there.err;
    const auto back = runExample("delay", {"second.wav", "first.wav", "delay.png"}, folder);
    EXPECT_TRUE(back.out.starts_with("delay.png: lag -200 samples, -4.167 ms, in ")) << back.out << back.err;
}

TEST(DelayExample, RefusesInOneLineAndWritesNothing)
{
    const support::Folder folder;
    writeSound(folder / "mono.wav", sine(440, 0.5, 20000));
    writeSound(folder / "silent.wav", std::vector<float>(40000, 0.0f), {.channels = 2});
    support::writeFile(folder / "text.wav", "no sound");
    struct {
        std::vector<std::string> arguments;
        const char *message;
    } const cases[] = {
        {{}, "usage: delay SOUND [SECOND] PICTURE.png [frame=N]\n"},
        {{"mono.wav"}, "usage: delay SOUND [SECOND] PICTURE.png [frame=N]\n"},
        {{"missing.wav", "out.png"}, nullptr},
        {{"text.wav", "out.png"}, nullptr},
        {{"mono.wav", "out.png"}, "mono.wav: has 1 channel, so there is no channel 2\n"},
        {{"silent.wav", "out.png"}, "silent.wav: no frame in which both sounds are heard\n"},
        {{"mono.wav", "out.png", "frame=63"}, nullptr},
        {{"mono.wav", "out.png", "frames=64"}, nullptr},
    };
    for (const auto &[arguments, message] : cases) {
        const auto outcome = runExample("delay", arguments, folder);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
        if (message != nullptr) {
            EXPECT_EQ(outcome.err, message);
        }
    }
    EXPECT_EQ(folder.entries(), (std::vector<std::string>{"mono.wav", "silent.wav", "text.wav"}));
}
