// The start and the end of the library in its process, which the system's folder calls.
#pragma once

namespace orva
{

// When the library is loaded, before anything else of it runs.
void onLoad();

// When no thread is left in the process but the calling one, wherever the others were: in a child of fork, before fork
// returns there; on Windows, at the end of the process.
void onThreadsGone();

// When the library is unloaded, and at the end of the process.
void onUnload();

} // namespace orva
