// What the stretch program refuses: one line on stderr, exit status 1, and nothing written.
#include "refusals.h"

#include <sstream>

namespace
{

void prepare(const support::Folder &folder)
{
    writeSound(folder / "low.wav", {0.5f, 0.25f}, {.rate = 399});
    writeSound(folder / "high.wav", {0.5f, 0.25f}, {.rate = 1000001});
}

} // namespace

TEST(StretchRefusals, NameWhatIsWrongWithTheFiles)
{
    const std::string usage = "usage: stretch SOUND OUTPUT.wav PICTURE.png SPEED";
    const std::string rate = ": the rate must be from 400 to 1000000 Hz, the channels 1024 at most";
    const std::vector<Refusal> cases = {
        {{}, usage},
        {{"voice.wav", "old.wav", "old.png"}, usage},
        {{"voice.wav", "old.wav", "old.png", "1", "2"}, usage},
        {{"missing.wav", "old.wav", "old.png", "1"}, "missing.wav: No such file or directory"},
        {{"none.wav", "old.wav", "old.png", "1"}, "none.wav: holds no samples"},
        {{"text.wav", "old.wav", "old.png", "1"}, "text.wav: " + noSound()},
        {{"low.wav", "old.wav", "old.png", "1"}, "low.wav" + rate},
        {{"high.wav", "old.wav", "old.png", "1"}, "high.wav" + rate},
        {{"voice.wav", "new.mp3", "new.png", "1"}, "new.mp3: the name of this file must end in .wav"},
        {{"voice.wav", "folder.wav", "new.png", "1"}, "folder.wav: is not an ordinary file"},
        {{"voice.wav", "nowhere/new.wav", "new.png", "1"}, "nowhere/new.wav: No such file or directory"},
        {{"voice.wav", "old.wav", "new.jpg", "1"}, "new.jpg: the name of this file must end in .png"},
        {{"voice.wav", "new.wav", "nowhere/new.png", "1"}, "nowhere/new.png: No such file or directory"},
    };
    expectRefusals("stretch", cases, prepare);
}

TEST(StretchRefusals, NameWhatIsWrongWithTheSpeed)
{
    std::ostringstream many;
    many << 1;
    for (int i = 1; i <= 256; ++i)
        many << ' ' << i << ':' << 1 + i % 2;
    const std::string form = " is not seconds:speed";
    const struct {
        std::string speed;
        std::string message;
    } cases[] = {
        {"", "no value is given"},
        {" , ", "no value is given"},
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
        {"0", "0 is not from 0.1 to 3"},
        {"0.099", "0.099 is not from 0.1 to 3"},
        {"1 2:3.01", "3.01 is not from 0.1 to 3"},
        {"1 0:2", "the time of \"0:2\" does not come after the one before"},
        {"1:2 1:3", "the time of \"1:3\" does not come after the one before"},
        {"2:2 1:3", "the time of \"1:3\" does not come after the one before"},
        {many.str(), "more than 256 values"},
    };
    std::vector<Refusal> refusals;
    for (const auto &[speed, message] : cases)
        refusals.push_back({{"voice.wav", "old.wav", "old.png", speed}, "speed: " + message});
    expectRefusals("stretch", refusals);
}
