// What an program refuses: one line on stderr, exit status 1, and nothing written.
#pragma once

#include "program.h"
#include "sounds.h"
#include "support/recording.h"

#include <gtest/gtest.h>

struct Refusal {
    std::vector<std::string> arguments;
    std::string message;
};

// What libsndfile says of a file that is no sound.
inline std::string noSound()
{
    return sf_error_number(SF_ERR_UNRECOGNISED_FORMAT);
}

// Runs each case in a folder with a recording (voice.wav), a sound without samples (none.wav), a text
// (text.wav), nothing (empty.wav), an older output (old.wav, old.png), folders (folder.wav, folder.png), and
// what `prepare` puts there.
inline void expectRefusals(const std::string &program, const std::vector<Refusal> &cases,
                           void (*prepare)(const support::Folder &folder) = nullptr)
{
    for (const auto &[arguments, message] : cases) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        const support::Folder folder;
        std::filesystem::create_symlink(support::recordingPath(), folder.path / "voice.wav");
        writeSound(folder / "none.wav", {});
        support::writeFile(folder / "text.wav", "This is a text, and no sound at all.\n");
        support::writeFile(folder / "empty.wav", "");
        support::writeFile(folder / "old.wav", "an older sound");
        support::writeFile(folder / "old.png", "an older picture");
        std::filesystem::create_directory(folder.path / "folder.wav");
        std::filesystem::create_directory(folder.path / "folder.png");
        if (prepare != nullptr)
            prepare(folder);
        const auto before = folder.entries();

        const support::Outcome outcome = runProgram(program, arguments, folder);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, message + "\n");
        EXPECT_EQ(folder.entries(), before);
        EXPECT_EQ(support::readFile(folder / "old.wav"), "an older sound");
        EXPECT_EQ(support::readFile(folder / "old.png"), "an older picture");
    }
}
