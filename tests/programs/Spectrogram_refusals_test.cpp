// What the spectrogram program refuses: one line on stderr, exit status 1, and nothing written.
#include "refusals.h"

namespace
{

const std::string windows = " is no window; the windows are Rectangular, Triangular, Half-Triangular, "
                            "Hanning, Hanning-Periodic, Hamming, Blackman, "
                            "Blackman-Harris, Blackman-Nuttall, Nuttal, Flat-Top";
const std::string keys = "; the keys are window, size, hop, range, channel";

void prepare(const support::Folder &folder)
{
    writeSound(folder / "two.wav", std::vector<float>(200), {.channels = 2});
}

} // namespace

TEST(SpectrogramRefusals, NameWhatIsWrongWithTheFiles)
{
    const std::string usage = "usage: spectrogram SOUND PICTURE.png [CONFIGURATION]";
    const std::vector<Refusal> cases = {
        {{}, usage},
        {{"voice.wav"}, usage},
        {{"voice.wav", "p.png", "", "x"}, usage},
        {{"missing.wav", "p.png"}, "missing.wav: No such file or directory"},
        {{"line\nfeed\x1b.wav", "p.png"}, "line?feed?.wav: No such file or directory"},
        {{"empty.wav", "p.png"}, "empty.wav: is empty"},
        {{"text.wav", "p.png"}, "text.wav: " + noSound()},
        {{"none.wav", "p.png"}, "none.wav: holds no samples"},
        {{"none.wav", "old.png"}, "none.wav: holds no samples"},
        {{".", "p.png"}, ".: Is a directory"},
        {{"voice.wav", "p.jpg"}, "p.jpg: the name of this file must end in .png"},
        {{"voice.wav", "voice.wav"}, "voice.wav: the name of this file must end in .png"},
        {{"voice.wav", "folder.png"}, "folder.png: is not an ordinary file"},
        {{"voice.wav", "nowhere/p.png"}, "nowhere/p.png: No such file or directory"},
        {{"voice.wav", "old.png", "channel=2"}, "voice.wav: has 1 channel, so there is no channel 2"},
        {{"two.wav", "old.png", "channel=3"}, "two.wav: has 2 channels, so there is no channel 3"},
    };
    expectRefusals("spectrogram", cases, prepare);
}

TEST(SpectrogramRefusals, NameWhatIsWrongWithTheConfiguration)
{
    const std::string size = " is not a whole number from 2 to 1048576";
    const std::string whole = " is not a whole number of 1 or more";
    const std::string above = " is not a number above 0, 1e30 at most";
    const struct {
        const char *config;
        std::string message;
    } cases[] = {
        {"widow=Hanning", "unknown key \"widow\"" + keys},
        {"Size=64", "unknown key \"Size\"" + keys},
        {"size=64; sizes=64", "unknown key \"sizes\"" + keys},
        {"size=64; siz=64", "unknown key \"siz\"" + keys},
        {"hop", "no key=value pair at \"hop\""},
        {"hop=; size=4", "no key=value pair at \"hop=; size=4\""},
        {"size=64 128", "no key=value pair at \"128\""},
        {"=5", "no key=value pair at \"=5\""},
        {"window=\"Hanning", "no key=value pair at \"window=\"Hanning\""},
        {"window=\"Hanning\"x", "no key=value pair at \"window=\"Hanning\"x\""},
        {"size=[64", "no key=value pair at \"size=[64\""},
        {"size=x", "size=x" + size},
        {"size=0x40", "size=0x40" + size},
        {"size=1", "size=1" + size},
        {"size=1.9", "size=1.9" + size},
        {"size=1048577", "size=1048577" + size},
        {"size=-1024", "size=-1024" + size},
        {"size=9999999999", "size=9999999999" + size},
        {"size=\"\"", "size=" + size},
        {"size=[64]", "size=[64]" + size},
        {"hop=0", "hop=0" + whole},
        {"hop=-1", "hop=-1" + whole},
        {"hop=many", "hop=many" + whole},
        {"range=0", "range=0" + above},
        {"range=-90", "range=-90" + above},
        {"range=nan", "range=nan" + above},
        {"range=inf", "range=inf" + above},
        {"range=1e31", "range=1e31" + above},
        {"range=90dB", "range=90dB" + above},
        {"channel=0", "channel=0" + whole},
        {"window=Hann", "window=Hann" + windows},
        {"window=Nuttall", "window=Nuttall" + windows},
        {"window=\"\"", "window=" + windows},
        {"window=3", "window=3" + windows},
        {"size=2", "the window has no gain at size=2"},
        {"size=2; window=Triangular", "the window has no gain at size=2"},
        {"size=3; window=Triangular", "the window has no gain at size=3"},
    };
    std::vector<Refusal> refusals;
    for (const auto &[config, message] : cases)
        refusals.push_back({{"voice.wav", "old.png", config}, "configuration: " + message});
    expectRefusals("spectrogram", refusals);
}

TEST(SpectrogramRefusals, DiskThatIsFullLeavesTheOldPicture)
{
    const support::Folder folder;
    support::writeFile(folder / "p.png", "an older picture");
    const support::Outcome outcome =
        runProgramOnFullDisk("spectrogram", {support::recordingPath(), "p.png"}, folder);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "p.png: error while writing to output stream\n");
    EXPECT_EQ(folder.entries(), std::vector<std::string>{"p.png"});
    EXPECT_EQ(support::readFile(folder / "p.png"), "an older picture");
}
