// What the stretch example refuses: one line on stderr, exit status 1, and nothing written.
#include "program.h"
#include "sounds.h"
#include "support/recording.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <sstream>

namespace
{

std::string refusal(const std::vector<std::string> &arguments)
{
    const support::Folder folder;
    std::filesystem::create_symlink(support::recordingPath(), folder.path / "voice.wav");
    writeSound(folder / "none.wav", {});
    writeSound(folder / "low.wav", {0.5f, 0.25f}, {.rate = 399});
    writeSound(folder / "high.wav", {0.5f, 0.25f}, {.rate = 1000001});
    support::writeFile(folder / "text.wav", "This is a text, and no sound at all.\n");
    support::writeFile(folder / "old.wav", "an older sound");
    support::writeFile(folder / "old.png", "an older picture");
    std::filesystem::create_directory(folder.path / "folder.wav");
    const auto before = folder.entries();

    const support::Outcome outcome = runExample("stretch", arguments, folder);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    EXPECT_EQ(folder.entries(), before);
    EXPECT_EQ(support::readFile(folder / "old.wav"), "an older sound");
    EXPECT_EQ(support::readFile(folder / "old.png"), "an older picture");
    return outcome.err;
}

} // namespace

TEST(StretchRefusals, NameWhatIsWrongWithTheFiles)
{
    const std::string usage = "usage: stretch SOUND OUTPUT.wav PICTURE.png SPEED\n";
    const std::string rate = ": the rate must be from 400 to 1000000 Hz, the channels 1024 at most\n";
    const struct {
        std::vector<std::string> arguments;
        std::string message;
    } cases[] = {
        {{}, usage},
        {{"voice.wav", "old.wav", "old.png"}, usage},
        {{"voice.wav", "old.wav", "old.png", "1", "2"}, usage},
        {{"missing.wav", "old.wav", "old.png", "1"}, "missing.wav: No such file or directory\n"},
        {{"none.wav", "old.wav", "old.png", "1"}, "none.wav: holds no samples\n"},
        {{"low.wav", "old.wav", "old.png", "1"}, "low.wav" + rate},
        {{"high.wav", "old.wav", "old.png", "1"}, "high.wav" + rate},
        {{"voice.wav", "new.mp3", "new.png", "1"}, "new.mp3: the name of this file must end in .wav\n"},
        {{"voice.wav", "folder.wav", "new.png", "1"}, "folder.wav: is not an ordinary file\n"},
        {{"voice.wav", "nowhere/new.wav", "new.png", "1"}, "nowhere/new.wav: No such file or directory\n"},
        {{"voice.wav", "old.wav", "new.jpg", "1"}, "new.jpg: the name of this file must end in .png\n"},
        {{"voice.wav", "new.wav", "nowhere/new.png", "1"}, "nowhere/new.png: No such file or directory\n"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(refusal(c.arguments), c.message);
    EXPECT_TRUE(refusal({"text.wav", "old.wav", "old.png", "1"}).starts_with("text.wav: "));
}

TEST(StretchRefusals, NameWhatIsWrongWithTheSpeed)
{
    std::ostringstream many;
    many << 1;
    for (int i = 1; i <= 256; ++i)
        many << ' ' << i << ':' << 1 + i % 2;
    const std::string form = " is not seconds:speed\n";
    const struct {
        std::string speed;
        std::string message;
    } cases[] = {
        {"", "no value is given\n"},
        {" , ", "no value is given\n"},
        {"fast", "\"fast\"" + form},
        {"1.5x", "\"1.5x\"" + form},
        {"1e0", "\"1e0\"" + form},
        {"-1", "\"-1\"" + form},
        {"nan", "\"nan\"" + form},
        {"0x1", "\"0x1\"" + form},
        {".", "\".\"" + form},
        {"1.5.2", "\"1.5.2\"" + form},
        {"1 2", "\"2\"" + form},
        {"1 1:", "\"1:\"" + form},
        {"1 :2", "\":2\"" + form},
        {"1 1:2:3", "\"1:2:3\"" + form},
        {"1 1:2; 2:3", "\"1:2;\"" + form},
        {"0", "0 is not from 0.1 to 3\n"},
        {"0.099", "0.099 is not from 0.1 to 3\n"},
        {"1 2:3.01", "3.01 is not from 0.1 to 3\n"},
        {"1 0:2", "the time of \"0:2\" does not come after the one before\n"},
        {"1:2 1:3", "the time of \"1:3\" does not come after the one before\n"},
        {"2:2 1:3", "the time of \"1:3\" does not come after the one before\n"},
        {many.str(), "more than 256 values\n"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(refusal({"voice.wav", "old.wav", "old.png", c.speed}), "speed: " + c.message) << c.speed;
}
