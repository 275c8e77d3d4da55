// What the library frees when it is unloaded. Each part is empty afterwards and still works, since a thread
// of the host may run on while the process ends.
#pragma once

namespace kett
{

void discardEnvironment();
void discardSettings();
void discardThreads();
void discardVersions();

} // namespace kett
