// The first programs, and what the comments at their top and end say of them.
//
// At the top " *     cc NAME.c ... -o NAME" builds the program. The comment at the end has " * $ " and a command, and
// below it what the command writes.
#pragma once

#include "programs/sounds.h"
#include "support/folder.h"
#include "support/program.h"
#include "support/recording.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <sstream>

struct Example {
    std::string name;
    std::string build;   // the command that builds it
    std::string command; // the one that runs it
    std::string output;  // what that writes
};

inline Example readExample(const std::filesystem::path &path)
{
    Example example{path.stem().string(), "", "", ""};
    std::istringstream lines(support::readFile(path));
    bool atEnd = false;
    for (std::string line; std::getline(lines, line);) {
        const size_t dollar = line.find("* $ ");
        if (line.starts_with(" *     cc ")) {
            example.build = line.substr(7);
        } else if (dollar <= 1) {
            example.command = line.substr(dollar + 4);
            atEnd = true;
        } else if (atEnd && line.starts_with(" * ")) {
            example.output += line.substr(3) + "\n";
        }
    }
    return example;
}

inline std::vector<Example> examples()
{
    std::vector<Example> found;
    for (const auto &entry : std::filesystem::directory_iterator(PROJECT_SOURCE_DIR "/examples"))
        if (entry.path().extension() == ".c")
            found.push_back(readExample(entry.path()));
    std::sort(found.begin(), found.end(), [](const Example &a, const Example &b) { return a.name < b.name; });
    return found;
}

// A voice and the same 480 frames later, as the two channels of a sound.
inline std::vector<float> voiceTwice()
{
    const std::vector<float> voice = support::recording();
    std::vector<float> both(2 * voice.size());
    for (size_t i = 0; i < voice.size(); ++i) {
        both[2 * i] = voice[i];
        both[2 * i + 1] = i >= 480 ? voice[i - 480] : 0.0f;
    }
    return both;
}

// A tone of 443 Hz and a weaker one an octave above it.
inline std::vector<float> stringTone()
{
    std::vector<float> tone = sine(443, 0.5, 48000);
    const std::vector<float> octave = sine(886, 0.2, 48000);
    std::transform(tone.begin(), tone.end(), octave.begin(), tone.begin(), std::plus<>());
    return tone;
}

// Puts the sounds that the commands name into a folder.
inline void writeSounds(const support::Folder &folder)
{
    std::filesystem::copy(support::recordingPath(), folder / "Front_Center.wav");
    writeSound(folder / "pair.wav", voiceTwice(), {.channels = 2});
    writeSound(folder / "string.wav", stringTone());
}

// Lines end as the system ends them.
inline std::string lines(std::string text)
{
    std::erase(text, '\r');
    return text;
}

// Runs a command of a comment: programs in the folder of the examples, "./NAME ARGUMENT...", one after the other where
// " && " stands between.
inline support::Outcome runIn(const support::Folder &folder, const std::string &command)
{
    support::Outcome all{0, "", ""};
    std::istringstream words(command + " &&");
    std::vector<std::string> call;
    for (std::string word; words >> word && all.status == 0;) {
        if (word != "&&") {
            call.push_back(call.empty() ? PROGRAMS + word.substr(1) : word);
            continue;
        }
        const support::Outcome outcome = support::run(call, folder);
        all = {outcome.status, all.out + lines(outcome.out), all.err + lines(outcome.err)};
        call.clear();
    }
    return all;
}

inline void expectItsOutput(const Example &example)
{
    const support::Folder folder;
    writeSounds(folder);
    ASSERT_NE(example.command, "") << example.name;
    const support::Outcome outcome = runIn(folder, example.command);
    EXPECT_EQ(outcome.status, 0) << example.name;
    EXPECT_EQ(outcome.out, example.output) << example.name;
    EXPECT_EQ(outcome.err, "") << example.name;
}
