// A program of a document: compiled as its reader would, against the libraries of this build, and run.
#pragma once

#include "document.h"
#include "expected.h"
#include "support/program.h"
#include "support/recording.h"

// The text of a program to compile; a fragment takes its place in the main of fragment.c. What the compiler says then
// names the document and its line.
inline std::string sourceOf(const Block &block)
{
    std::string text =
        "#line " + std::to_string(block.line + 1) + " \"" + block.document + "\"\n" + block.text;
    if (!block.isFragment())
        return text;
    std::string source = support::readFile(std::string(PROJECT_SOURCE_DIR) + "/tests/docs/fragment.c");
    const std::string place = "/* the fragment */\n";
    return source.replace(source.find(place), place.size(), text);
}

inline std::vector<std::string> wordsOf(const char *command)
{
    std::istringstream words(command);
    return {std::istream_iterator<std::string>(words), {}};
}

// Compiles and runs a program; the folder has the recorded voice as voice.wav. Gives what is wrong with it: an empty
// text where it compiles without a warning, ends well and writes what the document says, and nothing else.
inline std::string faultOfProgram(const Block &block)
{
    const support::Folder folder;
    const std::string source = folder / "program." + block.language;
    support::writeFile(source, sourceOf(block));
    std::filesystem::create_symlink(support::recordingPath(), folder / "voice.wav");

    std::vector<std::string> command = wordsOf(block.language == "c" ? C_COMMAND : CXX_COMMAND);
    command.insert(command.begin() + 1, {"-o", folder / "program", source});
    const support::Outcome compilation = support::run(command, folder);
    if (compilation.status != 0)
        return block.place() + ": does not compile:\n" + compilation.err;

    std::vector<std::string> start = wordsOf(EMULATOR);
    start.push_back(folder / "program");
    const support::Outcome outcome = support::run(start, folder);
    if (outcome.status != 0)
        return block.place() + ": ends with " + std::to_string(outcome.status) + ":\n" + outcome.err;
    if (!isAsExpected(outcome.out + outcome.err, block.output))
        return block.place() + ": writes\n" + outcome.out + outcome.err + "and not\n" + block.output;
    return "";
}
