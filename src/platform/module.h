// The start and the end of the library in its process, which the system's folder calls.
#pragma once

namespace orva
{

// When the library is loaded, before anything else of it runs.
void onLoad();

// When the library is unloaded, and at the end of the process.
void onUnload();

} // namespace orva
