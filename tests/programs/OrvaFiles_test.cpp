// What becomes of files: written whole or not at all, whatever their names, whatever ends the program.
#include "orva.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <thread>

#include <pty.h>
#include <sys/stat.h>

namespace
{

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

// What orva writes to its terminal while it reads a sound from a pipe in two halves, the second that much later; `between`
// is typed before it.
struct Session {
    std::string text;
    int status = 0; // as waitpid() gives it
};

using Words = std::vector<std::string>;

Session onTerminal(const support::Folder &folder, const Words &command, std::chrono::milliseconds later,
                   const std::string &between)
{
    const std::string sound = support::readFile(writeSound(folder / "sine.wav", sine(1000, 0.5, 96000)));
    const std::string pipe = folder / "pipe";
    mkfifo(pipe.c_str(), 0600);
    const Words words = programCommand("orva", command);
    std::vector<char *> arguments;
    for (const std::string &word : words)
        arguments.push_back(const_cast<char *>(word.c_str()));
    arguments.push_back(nullptr);
    const std::string place = folder.path;
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) {
        if (chdir(place.c_str()) == 0)
            execv(arguments[0], arguments.data());
        _exit(127);
    }
    std::signal(SIGPIPE, SIG_IGN); // the program may be gone
    std::thread feeder([&] {
        std::ofstream file(pipe, std::ios::binary);
        const auto half = static_cast<std::streamsize>(sound.size() / 2);
        file.write(sound.data(), half).flush();
        std::this_thread::sleep_for(later);
        if (write(terminal, between.data(), between.size()) >= 0)
            file.write(sound.data() + half, static_cast<std::streamsize>(sound.size()) - half);
    });
    Session session;
    char block[256];
    for (ssize_t got; (got = read(terminal, block, sizeof block)) > 0;)
        session.text.append(block, static_cast<size_t>(got));
    feeder.join();
    close(terminal);
    waitpid(child, &session.status, 0);
    return session;
}

} // namespace

TEST(OrvaFiles, LongRunShowsAPercentageAndTakesItAway)
{
    const support::Folder folder;
    const Session session =
        onTerminal(folder, {"resample", "pipe", "out.wav", "--rate=8k"}, std::chrono::milliseconds(600), "");
    EXPECT_TRUE(WIFEXITED(session.status) && WEXITSTATUS(session.status) == 0) << session.text;
    EXPECT_THAT(session.text,
                testing::MatchesRegex("\r +[0-9]+ %.*\r.*out.wav: 96000 frames at 48000 Hz became .*"));
}

TEST(OrvaFiles, ControlCLeavesNoHalfFile)
{
    const Words commands[] = {
        {"resample", "pipe", "out", "--format=wav", "--rate=8k"},
        {"filter", "pipe", "out", "--format=flac", "order=2; fpass=100"},
        {"stretch", "pipe", "out", "--format=ogg", "--speed=1.3", "--picture=p.png"},
        {"lapped", "pipe", "out", "--format=wav", "--picture=p.svg"},
        {"denoise", "pipe", "out", "--format=wav", "--picture=p.pdf"},
        {"measures", "pipe", "t.csv", "--picture=p.png"},
        {"measures", "pipe", "t.npy"},
        {"spectrogram", "pipe", "p.png"},
        {"curve", "pipe", "100 0; 5000 3", "p.svg"},
    };
    for (const Words &command : commands) {
        SCOPED_TRACE(testing::PrintToString(command));
        const support::Folder folder;
        const auto names = {"out", "p.png", "p.svg", "p.pdf", "t.csv", "t.npy"};
        for (const char *name : names)
            support::writeFile(folder / name, "older");
        const Session session = onTerminal(folder, command, std::chrono::milliseconds(150), "\x03");
        EXPECT_TRUE(WIFSIGNALED(session.status) && WTERMSIG(session.status) == SIGINT) << session.text;
        EXPECT_THAT(folder.entries(),
                    ElementsAre("out", "p.pdf", "p.png", "p.svg", "pipe", "sine.wav", "t.csv", "t.npy"));
        for (const char *name : names)
            EXPECT_EQ(support::readFile(folder / name), "older") << name;
    }
}

TEST(OrvaFiles, FullDiskLeavesNoHalfFile)
{
    for (const char *name : {"out.wav", "out.flac", "out.ogg"}) {
        const support::Folder folder;
        support::Random random;
        writeSound(folder / "in.wav", random.noise(48000));
        const support::Outcome outcome =
            runProgramOnFullDisk("orva", {"resample", "in.wav", name, "--rate=44100"}, folder);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, std::string("orva resample: ") + name + ": File too large\n");
        EXPECT_THAT(folder.entries(), ElementsAre("in.wav"));
    }
    const support::Folder folder;
    putVoice(folder);
    const support::Outcome outcome = orvaShell("orva resample voice.wav - --rate 8k >/dev/full", folder);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "orva resample: standard output: No space left on device\n");
}

TEST(OrvaFiles, FullDiskLeavesNothingOfPicturesAndTables)
{
    const support::Folder folder;
    support::Random random;
    writeSound(folder / "in.wav", random.noise(48000), {.channels = 2});
    writeSound(folder / "slow.wav", random.noise(3200),
               {.rate = 400, .format = SF_FORMAT_WAV | SF_FORMAT_PCM_U8});
    const auto before = folder.entries();
    const struct {
        Words command;
        const char *name; // of what there is no room for
    } cases[] = {
        {{"measures", "in.wav", "t.csv"}, "t.csv"},
        {{"measures", "in.wav", "t.npy"}, "t.npy"},
        {{"measures", "in.wav", "--picture=p.png"}, "p.png"},
        {{"delay", "in.wav", "--picture=p.svg"}, "p.svg"},
        {{"curve", "in.wav", "100 0; 5000 3", "p.pdf"}, "p.pdf"},
        {{"response", "order=2; fpass=100", "p.png"}, "p.png"},
        {{"stretch", "slow.wav", "o.wav", "--speed=1", "--map=m.csv"}, "m.csv"},
        {{"lapped", "slow.wav", "o.wav", "--picture=p.png"}, "p.png"},
        {{"denoise", "slow.wav", "/dev/null", "--format=wav", "--picture=p.png"}, "p.png"},
    };
    for (const auto &[command, name] : cases) {
        SCOPED_TRACE(testing::PrintToString(command));
        const support::Outcome outcome = runProgramOnFullDisk("orva", command, folder);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, "orva " + command[0] + ": " + name + ": File too large\n");
        EXPECT_EQ(folder.entries(), before);
    }
}

TEST(OrvaFiles, InputAndOutputMayBeTheSameFile)
{
    const support::Folder folder;
    putVoice(folder);
    EXPECT_EQ(
        orvaShell(
            "orva resample voice.wav new.wav --rate 8k && orva resample voice.wav ./voice.wav --rate 8k && "
            "cmp voice.wav new.wav",
            folder)
            .status,
        0);
}

TEST(OrvaFiles, AnOutputIsReplacedAsCpDoes)
{
    const support::Folder folder;
    putVoice(folder);
    fs::create_directory(folder.path / "deep");
    support::writeFile(folder / "deep/real.wav", "older");
    fs::permissions(folder / "deep/real.wav", fs::perms(0640));
    fs::create_symlink("deep/link.wav", folder.path / "link.wav");
    fs::create_symlink("real.wav", folder.path / "deep/link.wav");
    fs::create_symlink("loop.wav", folder.path / "loop.wav");
    EXPECT_EQ(orvaRun({"resample", "voice.wav", "link.wav", "--rate=8k"}, folder).status, 0);
    EXPECT_TRUE(fs::is_symlink(folder / "link.wav"));
    EXPECT_TRUE(fs::is_symlink(folder / "deep/link.wav"));
    EXPECT_GT(fs::file_size(folder / "deep/real.wav"), 10000u);
    EXPECT_EQ(fs::status(folder / "deep/real.wav").permissions(), fs::perms(0640));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder / "deep"), {}), 2) << "nothing else is left";

    EXPECT_EQ(orvaShell("umask 027 && orva resample voice.wav new.wav --rate 8k && stat -c %a new.wav >mode",
                        folder)
                  .status,
              0);
    EXPECT_EQ(support::readFile(folder / "mode"), "640\n");
    EXPECT_EQ(orvaShell("orva resample voice.wav /dev/null --format wav --rate 8k", folder).status, 0);
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    expectRefused({"resample", "voice.wav", "loop.wav", "--rate=8k"}, folder, 1,
                  "orva resample: loop.wav: Too many levels of symbolic links");
    expectRefused({"resample", "voice.wav", "deep", "--rate=8k", "--format=wav"}, folder, 1,
                  "orva resample: deep: Is a directory");
}

TEST(OrvaFiles, NamesMayHoldAnyBytes)
{
    const support::Folder folder;
    for (const std::string name :
         {"two words.wav", "line\nfeed.wav", "\xff\xfe.wav", "-dash.wav", "'\"$`.wav"}) {
        fs::copy_file(support::recordingPath(), folder.path / name);
        const std::string to = "to " + name;
        const support::Outcome outcome = orvaRun({"resample", "--rate=8k", "--", name, to}, folder);
        EXPECT_EQ(outcome.status, 0) << name << outcome.err;
        EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), 1) << name;
        EXPECT_TRUE(fs::exists(folder.path / to)) << name;
    }
}
