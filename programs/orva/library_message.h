// What the library says of a call that it refuses, for the messages of the program.
#pragma once

#include <string>

namespace orva
{

// From now on the library's messages are kept and not written.
void keepLibraryMessages();

// The first line of the last message in this thread, and forgets it; `otherwise` if there was none.
std::string libraryMessage(const std::string &otherwise);

} // namespace orva
