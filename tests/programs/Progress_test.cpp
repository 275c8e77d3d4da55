// The progress line, on a terminal. The program reads from a pipe, which makes its run as long as the test likes.
#include "program.h"
#include "sounds.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include <pty.h>
#include <sys/stat.h>

namespace
{

// What the program writes to its terminal while it is given a sound in two halves, the second that much later.
std::string onTerminal(const support::Folder &folder, const char *config, std::chrono::milliseconds later)
{
    const std::string sound = support::readFile(writeSound(folder / "sine.wav", sine(1000, 0.5, 96000)));
    const std::string pipe = folder / "pipe";
    mkfifo(pipe.c_str(), 0600);

    const std::string program = programPath("orva");
    const std::string picture = folder / "p.png";
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) {
        execl(program.c_str(), program.c_str(), "spectrogram", pipe.c_str(), picture.c_str(), config,
              nullptr);
        _exit(127);
    }
    std::thread feeder([&] {
        std::ofstream file(pipe, std::ios::binary);
        const auto half = static_cast<std::streamsize>(sound.size() / 2);
        file.write(sound.data(), half).flush();
        std::this_thread::sleep_for(later);
        file.write(sound.data() + half, static_cast<std::streamsize>(sound.size()) - half);
    });
    std::string text;
    char block[256];
    for (ssize_t got; (got = read(terminal, block, sizeof block)) > 0;)
        text.append(block, static_cast<size_t>(got));
    feeder.join();
    close(terminal);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << text;
    return text;
}

} // namespace

TEST(Progress, LongRunShowsAPercentageAndTakesItAway)
{
    const support::Folder folder;
    const std::string text = onTerminal(folder, "--hop=256", std::chrono::milliseconds(600));
    ASSERT_TRUE(text.starts_with("\r ")) << text;
    const int percent = std::stoi(text.substr(1));
    EXPECT_GE(percent, 1); // a half, unless the program is slow
    EXPECT_LE(percent, 100);
    EXPECT_NE(text.find(" %\r\033[K" + (folder / "p.png") + ": "), std::string::npos) << text;
}

TEST(Progress, ShortRunShowsNone)
{
    const support::Folder folder;
    const std::string text = onTerminal(folder, "--hop=47999", std::chrono::milliseconds(0)); // three frames
    EXPECT_EQ(text.find('%'), std::string::npos) << text;
}
