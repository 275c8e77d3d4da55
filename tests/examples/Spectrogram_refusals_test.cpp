// What the spectrogram example refuses: one line on stderr, exit status 1, and nothing written.
#include "program.h"
#include "sounds.h"
#include "support/recording.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace
{

const std::string windows =
    "Rectangular, Triangular, Half-Triangular, Hanning, Hanning-Periodic, Hamming, Blackman, "
    "Blackman-Harris, Blackman-Nuttall, Nuttal, Flat-Top";
const std::string keys = "window, size, hop, range, channel";

// Runs the example in a folder that holds these files, and demands that it refuses and leaves them as they
// were.
std::string refusal(const std::vector<std::string> &arguments)
{
    const support::Folder folder;
    std::filesystem::create_symlink(support::recordingPath(), folder.path / "voice.wav");
    writeSound(folder / "none.wav", {});
    support::writeFile(folder / "empty.wav", "");
    support::writeFile(folder / "text.wav", "This is a text, and no sound at all.\n");
    support::writeFile(folder / "old.png", "an older picture");
    std::filesystem::create_directory(folder.path / "folder.png");
    const auto before = folder.entries();

    const support::Outcome outcome = runExample("spectrogram", arguments, folder);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    EXPECT_EQ(folder.entries(), before);
    EXPECT_EQ(support::readFile(folder / "old.png"), "an older picture");
    return outcome.err;
}

} // namespace

TEST(SpectrogramRefusals, NameWhatIsWrongWithTheFiles)
{
    const struct {
        std::vector<std::string> arguments;
        const char *message;
    } cases[] = {
        {{}, "usage: spectrogram SOUND PICTURE.png [CONFIGURATION]\n"},
        {{"voice.wav"}, "usage: spectrogram SOUND PICTURE.png [CONFIGURATION]\n"},
        {{"voice.wav", "p.png", "", "x"}, "usage: spectrogram SOUND PICTURE.png [CONFIGURATION]\n"},
        {{"missing.wav", "p.png"}, "missing.wav: No such file or directory\n"},
        {{"line\nfeed\x1b.wav", "p.png"}, "line?feed?.wav: No such file or directory\n"},
        {{"empty.wav", "p.png"}, "empty.wav: is empty\n"},
        {{"none.wav", "p.png"}, "none.wav: holds no samples\n"},
        {{"none.wav", "old.png"}, "none.wav: holds no samples\n"},
        {{".", "p.png"}, ".: Is a directory\n"},
        {{"voice.wav", "p.jpg"}, "p.jpg: the name of this file must end in .png\n"},
        {{"voice.wav", "voice.wav"}, "voice.wav: the name of this file must end in .png\n"},
        {{"voice.wav", "folder.png"}, "folder.png: is not an ordinary file\n"},
        {{"voice.wav", "nowhere/p.png"}, "nowhere/p.png: No such file or directory\n"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(refusal(c.arguments), c.message);
    EXPECT_TRUE(refusal({"text.wav", "p.png"}).starts_with("text.wav: ")); // the reason is libsndfile's
}

TEST(SpectrogramRefusals, NameWhatIsWrongWithTheConfiguration)
{
    const std::string size = " is not a whole number from 2 to 1048576\n";
    const std::string whole = " is not a whole number of 1 or more\n";
    const std::string above = " is not a number above 0, 1e30 at most\n";
    const struct {
        const char *config;
        std::string message;
    } cases[] = {
        {"widow=Hanning", "configuration: unknown key \"widow\"; the keys are " + keys + "\n"},
        {"Size=64", "configuration: unknown key \"Size\"; the keys are " + keys + "\n"},
        {"size=64; sizes=64", "configuration: unknown key \"sizes\"; the keys are " + keys + "\n"},
        {"size=64; siz=64", "configuration: unknown key \"siz\"; the keys are " + keys + "\n"},
        {"hop", "configuration: no key=value pair at \"hop\"\n"},
        {"hop=; size=4", "configuration: no key=value pair at \"hop=; size=4\"\n"},
        {"size=64 128", "configuration: no key=value pair at \"128\"\n"},
        {"=5", "configuration: no key=value pair at \"=5\"\n"},
        {"window=\"Hanning", "configuration: no key=value pair at \"window=\"Hanning\"\n"},
        {"window=\"Hanning\"x", "configuration: no key=value pair at \"window=\"Hanning\"x\"\n"},
        {"size=[64", "configuration: no key=value pair at \"size=[64\"\n"},
        {"size=x", "configuration: size=x" + size},
        {"size=0x40", "configuration: size=0x40" + size},
        {"size=1", "configuration: size=1" + size},
        {"size=1.9", "configuration: size=1.9" + size},
        {"size=1048577", "configuration: size=1048577" + size},
        {"size=-1024", "configuration: size=-1024" + size},
        {"size=9999999999", "configuration: size=9999999999" + size},
        {"size=\"\"", "configuration: size=" + size},
        {"size=[64]", "configuration: size=[64]" + size},
        {"hop=0", "configuration: hop=0" + whole},
        {"hop=-1", "configuration: hop=-1" + whole},
        {"hop=many", "configuration: hop=many" + whole},
        {"range=0", "configuration: range=0" + above},
        {"range=-90", "configuration: range=-90" + above},
        {"range=nan", "configuration: range=nan" + above},
        {"range=inf", "configuration: range=inf" + above},
        {"range=1e31", "configuration: range=1e31" + above},
        {"range=90dB", "configuration: range=90dB" + above},
        {"channel=0", "configuration: channel=0" + whole},
        {"channel=2", "voice.wav: has 1 channel, so there is no channel 2\n"},
        {"window=Hann", "configuration: window=Hann is no window; the windows are " + windows + "\n"},
        {"window=Nuttall", "configuration: window=Nuttall is no window; the windows are " + windows + "\n"},
        {"window=\"\"", "configuration: window= is no window; the windows are " + windows + "\n"},
        {"window=3", "configuration: window=3 is no window; the windows are " + windows + "\n"},
        {"size=2", "configuration: the window has no gain at size=2\n"},
        {"size=2; window=Triangular", "configuration: the window has no gain at size=2\n"},
        {"size=3; window=Triangular", "configuration: the window has no gain at size=3\n"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(refusal({"voice.wav", "old.png", c.config}), c.message) << c.config;
}

TEST(SpectrogramRefusals, ChannelBeyondSeveral)
{
    const support::Folder folder;
    writeSound(folder / "two.wav", std::vector<float>(200), {.channels = 2});
    const support::Outcome outcome = runExample("spectrogram", {"two.wav", "p.png", "channel=3"}, folder);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "two.wav: has 2 channels, so there is no channel 3\n");
    EXPECT_EQ(folder.entries(), std::vector<std::string>{"two.wav"});
}

TEST(SpectrogramRefusals, DiskThatIsFullLeavesTheOldPicture)
{
    const support::Folder folder;
    support::writeFile(folder / "p.png", "an older picture");
    // No file may grow beyond 8 blocks; without the signal, a write that would then fails as on a full disk.
    const std::string command = "trap '' XFSZ; ulimit -f 8; exec '" + programPath("spectrogram") + "' '" +
                                support::recordingPath() + "' p.png";
    const support::Outcome outcome = support::run({"/bin/sh", "-c", command}, folder);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "p.png: error while writing to output stream\n");
    EXPECT_EQ(folder.entries(), std::vector<std::string>{"p.png"});
    EXPECT_EQ(support::readFile(folder / "p.png"), "an older picture");
}
