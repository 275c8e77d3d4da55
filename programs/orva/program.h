// The program as its commands and options make it.
#pragma once

namespace CLI
{
class App;
}

namespace orva
{

// Gives the program its description and all of its commands.
void addCommands(CLI::App &program);

} // namespace orva
