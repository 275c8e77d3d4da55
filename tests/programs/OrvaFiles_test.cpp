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

Session onTerminal(const support::Folder &folder, std::chrono::milliseconds later, const std::string &between)
{
    const std::string sound = support::readFile(writeSound(folder / "sine.wav", sine(1000, 0.5, 96000)));
    const std::string pipe = folder / "pipe";
    mkfifo(pipe.c_str(), 0600);
    const std::string program = programPath("orva");
    const std::string output = folder / "out.wav";
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) {
        execl(program.c_str(), "orva", "resample", pipe.c_str(), output.c_str(), "--rate=8k", nullptr);
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
    const Session session = onTerminal(folder, std::chrono::milliseconds(600), "");
    EXPECT_TRUE(WIFEXITED(session.status) && WEXITSTATUS(session.status) == 0) << session.text;
    EXPECT_THAT(session.text,
                testing::MatchesRegex("\r +[0-9]+ %.*\r.*/out.wav: 96000 frames at 48000 Hz became .*"));
}

TEST(OrvaFiles, ControlCLeavesNoHalfFile)
{
    const support::Folder folder;
    support::writeFile(folder / "out.wav", "older");
    const Session session = onTerminal(folder, std::chrono::milliseconds(300), "\x03");
    EXPECT_TRUE(WIFSIGNALED(session.status) && WTERMSIG(session.status) == SIGINT) << session.text;
    EXPECT_THAT(folder.entries(), ElementsAre("out.wav", "pipe", "sine.wav"));
    EXPECT_EQ(support::readFile(folder / "out.wav"), "older");
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
