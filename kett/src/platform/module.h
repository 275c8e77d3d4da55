// The end of the library in its process.
#pragma once

namespace kett
{

// Frees what the library holds. The system's folder calls it when the library is unloaded and when the
// process ends, after the last use by all that depends on the library.
void onUnload();

} // namespace kett
