// What an example refuses: one line on stderr, exit status 1, and nothing written.
#pragma once

#include "program.h"
#include "sounds.h"
#include "support/recording.h"

#include <gtest/gtest.h>

struct Refusal {
    std::vector<std::string> arguments;
    std::string message;
};

// Runs each case in a folder with a recording (voice.wav), a sound without samples (none.wav), a text
// (text.wav), an older output (old.wav, old.png) and a folder (folder.wav).
inline void expectRefusals(const std::string &program, const std::vector<Refusal> &cases)
{
    for (const auto &[arguments, message] : cases) {
        SCOPED_TRACE(message);
        const support::Folder folder;
        std::filesystem::create_symlink(support::recordingPath(), folder.path / "voice.wav");
        writeSound(folder / "none.wav", {});
        support::writeFile(folder / "text.wav", "This is a text, and no sound at all.\n");
        support::writeFile(folder / "old.wav", "an older sound");
        support::writeFile(folder / "old.png", "an older picture");
        std::filesystem::create_directory(folder.path / "folder.wav");
        const auto before = folder.entries();

        const support::Outcome outcome = runExample(program, arguments, folder);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, message + "\n");
        EXPECT_EQ(folder.entries(), before);
        EXPECT_EQ(support::readFile(folder / "old.wav"), "an older sound");
        EXPECT_EQ(support::readFile(folder / "old.png"), "an older picture");
    }
}
