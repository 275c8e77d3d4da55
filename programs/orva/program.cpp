#include "program.h"

#include "command.h"

#include <orva/ORVAversion.h>

namespace orva
{

void addCommands(CLI::App &program)
{
    beginProgram(program, "Runs the routines of liborva on sound files.", ORVAVERSION_String());
    addInfo(program);
    addSpectrogram(program);
    addFilter(program);
    addResponse(program);
    addResample(program);
    addStretch(program);
    addDelay(program);
    addMeasures(program);
    addDenoise(program);
    addLapped(program);
    addCurve(program);
    addTwice(program);
    addNotes(
        program,
        "Each command has its own help, with examples: orva COMMAND --help\n"
        "A sound file named - is standard input or output. Exit status: 0, 1 if it did not work, 2 if it was "
        "used wrongly.");
}

} // namespace orva
