// A program run as its user runs it: in a process and a working folder of its own.
#pragma once

#include "support/folder.h"

#include <cerrno>
#include <stdexcept>
#include <string>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace support
{

struct Outcome {
    int status = -1; // exit status, -1 after a signal
    std::string out;
    std::string err;
};

// Runs a program, looked up in PATH if its name has no slash, with `folder` as its current folder.
inline Outcome run(std::vector<std::string> words, const Folder &folder)
{
    const Folder streams;
    const std::string out = streams / "out";
    const std::string err = streams / "err";
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.c_str(), O_WRONLY | O_CREAT, 0600);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, err.c_str(), O_WRONLY | O_CREAT, 0600);
    posix_spawn_file_actions_addchdir_np(&actions, folder.path.c_str());

    std::vector<char *> arguments;
    arguments.reserve(words.size() + 1);
    for (auto &word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    pid_t child = 0;
    const int failure = posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failure != 0)
        throw std::runtime_error("cannot run " + words[0]);

    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, readFile(out), readFile(err)};
}

// The most memory that a program had at a time, in kilobytes. Throws where it fails.
inline long peakOf(std::vector<std::string> words, const Folder &folder)
{
    const Folder result;
    const std::string file = result / "peak";
    words.insert(words.begin(), {PEAK_PROGRAM, file});
    const Outcome outcome = run(words, folder);
    if (outcome.status != 0)
        throw std::runtime_error(words[2] + ": " + outcome.err);
    return std::stol(readFile(file));
}

} // namespace support
