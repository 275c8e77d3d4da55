// What holds for each command that reads a sound, whatever it does: names, files that are no sound, streams, full disks,
// and what the input tells of itself.
#include "orva.h"
#include "support/bits.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

namespace fs = std::filesystem;
using testing::HasSubstr;

struct Command {
    std::string name;
    std::vector<std::string> more; // after the input, or after input and output
    bool writes;                   // a sound
    bool readsTwice = false;
};

const Command commands[] = {
    {"info", {}, false},
    {"delay", {}, false},
    {"measures", {"--mels=0", "--hop=1000"}, false},
    {"curve", {"100 0; 5000 3"}, false},
    {"resample", {"--rate=16k"}, true},
    {"filter", {"type=hp; fpass=100; order=2"}, true},
    {"stretch", {"--speed=1.3"}, true},
    {"lapped", {"--block=64"}, true},
    {"denoise", {"--policy=1"}, true},
    {"twice", {"--delay=10"}, true, true},
};

std::vector<std::string> line(const Command &command, const std::string &input, const std::string &output)
{
    std::vector<std::string> words{command.name, input};
    if (command.writes)
        words.push_back(output);
    words.insert(words.end(), command.more.begin(), command.more.end());
    return words;
}

// Noise in two channels, of 16 bits, with a title.
void writeTitled(const std::string &path)
{
    SF_INFO info{};
    info.samplerate = 16000;
    info.channels = 2;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    support::Random random;
    const auto samples = random.noise(2 * 20000);
    SNDFILE *file = sf_open(path.c_str(), SFM_WRITE, &info);
    sf_set_string(file, SF_STR_TITLE, "A title");
    EXPECT_EQ(sf_write_float(file, samples.data(), std::ssize(samples)), std::ssize(samples));
    sf_close(file);
}

std::string titleOf(const std::string &path)
{
    SF_INFO info{};
    SNDFILE *file = sf_open(path.c_str(), SFM_READ, &info);
    const char *text = file != nullptr ? sf_get_string(file, SF_STR_TITLE) : nullptr;
    std::string title = text != nullptr ? text : "";
    sf_close(file);
    return title;
}

std::string quoted(const std::vector<std::string> &words)
{
    std::string text = "orva";
    for (const auto &word : words)
        text += " '" + word + "'";
    return text;
}

} // namespace

TEST(OrvaEveryCommand, TakesNamesOfAnyBytes)
{
    const support::Folder folder;
    for (const std::string name : {"two words.wav", "line\nfeed.wav", "\xff\xfe.wav"}) {
        writeTitled(folder / name);
        for (const Command &command : commands) {
            const auto outcome = orvaRun(line(command, name, "to " + name), folder);
            EXPECT_EQ(outcome.status, 0) << command.name << ' ' << outcome.err;
            EXPECT_EQ(fs::remove(folder.path / ("to " + name)), command.writes) << command.name;
            if (command.writes) {
                EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), 1) << command.name;
            }
        }
    }
}

TEST(OrvaEveryCommand, RefusesInOneLineWhatIsNoSound)
{
    const support::Folder folder;
    writeSound(folder / "none.wav", {});
    support::writeFile(folder / "text.wav", "This is a text, and no sound at all.\n");
    support::writeFile(folder / "empty.wav", "");
    fs::create_directory(folder.path / "folder.wav");
    const std::pair<const char *, std::string> inputs[] = {
        {"missing.wav", "No such file or directory"},
        {"none.wav", "holds no samples"},
        {"text.wav", sf_error_number(SF_ERR_UNRECOGNISED_FORMAT)},
        {"empty.wav", "is empty"},
        {"folder.wav", "Is a directory"},
    };
    for (const Command &command : commands)
        for (const auto &[name, reason] : inputs)
            expectRefused(line(command, name, "out.wav"), folder, 1,
                          "orva " + command.name + ": " + name + ": " + reason);
}

TEST(OrvaEveryCommand, TakesWhatIsThereOfASoundThatIsCutOff)
{
    const support::Folder folder;
    support::Random random;
    writeSound(folder / "half.flac", random.noise(200000),
               {.channels = 2, .format = SF_FORMAT_FLAC | SF_FORMAT_PCM_16});
    fs::resize_file(folder / "half.flac", fs::file_size(folder / "half.flac") / 2);
    for (const Command &command : commands) {
        const auto outcome = orvaRun(line(command, "half.flac", "out.wav"), folder);
        EXPECT_EQ(outcome.status, 0) << command.name;
        EXPECT_THAT(outcome.err, testing::ContainsRegex(
                                     "half.flac: ends after [0-9]+ of 100000 frames; the rest is missing"))
            << command.name;
    }
}

TEST(OrvaEveryCommand, ReadsAndWritesStreamsAsItDoesFiles)
{
    const support::Folder folder;
    writeTitled(folder / "in.wav");
    SF_INFO info{};
    for (const Command &command : commands) {
        const auto direct = orvaRun(line(command, "in.wav", "direct.wav"), folder);
        if (command.readsTwice) {
            EXPECT_EQ(orvaShell(quoted(line(command, "-", "-")) + " <in.wav", folder).status, 2);
            continue;
        }
        const auto piped =
            orvaShell("cat in.wav | " + quoted(line(command, "-", "-")) + " | cat >out", folder);
        EXPECT_EQ(piped.status, 0) << command.name << piped.err;
        if (!command.writes) {
            const std::string said = support::readFile(folder / "out");
            EXPECT_EQ(said.substr(0, said.find(':')) == "standard input",
                      direct.out.substr(0, direct.out.find(':')) == "in.wav")
                << command.name;
            EXPECT_EQ(said.substr(said.find(':') + 1), direct.out.substr(direct.out.find(':') + 1));
            continue;
        }
        const auto samples = support::readSamples(folder / "out", info);
        EXPECT_TRUE(support::sameBits(samples, support::readSamples(folder / "direct.wav", info)))
            << command.name;
        EXPECT_EQ(info.channels, 2);
    }
}

TEST(OrvaEveryCommand, CarriesOverWhatTheInputTellsOfItself)
{
    const support::Folder folder;
    writeTitled(folder / "in.wav");
    for (const Command &command : commands) {
        if (!command.writes)
            continue;
        for (const char *name : {"o.wav", "o.flac"}) {
            ASSERT_EQ(orvaRun(line(command, "in.wav", name), folder).status, 0) << command.name;
            EXPECT_EQ(titleOf(folder / name), "A title") << command.name << ' ' << name;
        }
        const auto piped = orvaShell(quoted(line(command, "in.wav", "-")) + " | cat >piped.wav", folder);
        ASSERT_EQ(piped.status, 0) << command.name << piped.err;
        EXPECT_EQ(titleOf(folder / "piped.wav"), "A title") << command.name;
    }
}

TEST(OrvaEveryCommand, LeavesNothingBehindWhereTheDiskIsFull)
{
    for (const Command &command : commands) {
        if (!command.writes)
            continue;
        const support::Folder folder;
        writeTitled(folder / "in.wav");
        const auto outcome = runProgramOnFullDisk("orva", line(command, "in.wav", "out.wav"), folder);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.out, "");
        EXPECT_THAT(outcome.err, HasSubstr("orva " + command.name + ": out.wav: File too large\n"));
        EXPECT_EQ(folder.entries(), std::vector<std::string>{"in.wav"});
    }
}
