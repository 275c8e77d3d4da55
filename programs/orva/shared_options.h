// Options that commands have in common, and values that they read.
#pragma once

#include "drawing/picture_file.h"
#include "options.h"
#include "sound_output.h"

namespace orva
{

// What commands that make a sound of another are told.
struct SoundOptions {
    std::string input, output;
    OutputOptions how;
};

// The sound that a command reads and the one that it writes.
void addInput(CLI::App &command, std::string &input);
void addOutput(CLI::App &command, std::string &output);
void addInputAndOutput(CLI::App &command, SoundOptions &options);

// --raw for commands that read sound.
void addInputOptions(CLI::App &command, RawFormat &raw);

// --format, --bits, --gain and --raw for commands that write it. The last is also that of standard input.
void addOutputOptions(CLI::App &command, OutputOptions &options);

// Reads a rate such as 44100, 44100Hz, 44.1k or 48kHz into `rate`; refuses, as used wrongly, what is none.
void addRateOption(CLI::App &command, int &rate, const std::string &description, Need need = Need::optional);

// --channel: "all" or the number of one, 1 for the first.
void addChannelOption(CLI::App &command, std::string &channel);

// Reads a time such as 90, 1:30 or 0:01:30.5 into `seconds`.
void addTimeOption(CLI::App &command, const std::string &name, double &seconds,
                   const std::string &description);

// --size and --dpi for commands that draw.
void addPictureOptions(CLI::App &command, PictureOptions &picture);

// --picture as well, where the picture is not what the command is for. It shows `what`.
void addPictureAsked(CLI::App &command, PictureOptions &picture, const std::string &what);

} // namespace orva
