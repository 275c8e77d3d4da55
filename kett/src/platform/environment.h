// The environment that the system gives the process.
#pragma once

namespace kett
{

// The value of a variable as it stands now, or null. It stays valid until the library is unloaded or the
// variable is changed.
const char *findSystemVariable(const char *name);

} // namespace kett
