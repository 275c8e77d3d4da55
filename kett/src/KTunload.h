// What the library frees when it is unloaded. Each part is empty afterwards and still works, since a thread
// of the host may run on while the process ends.
#pragma once

namespace kett
{

void discardEnvironment();
void discardSettings();
void discardThreads();
void discardVersions();

// Whether this is a child of fork, and a thread was at work in its parent: it may have held any lock, and
// the child holds it for ever. Takes none itself.
bool wereThreadsCaught();

} // namespace kett
