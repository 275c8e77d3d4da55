#include "platform/module.h"

namespace kett
{

namespace
{

// Runs at dlclose and at the end of the process, after the destructors of all that depends on this library.
// Linked statically it stands in one list with them, where the lowest number that a program may take comes
// last.
__attribute__((destructor(101))) void unload()
{
    onUnload();
}

} // namespace

} // namespace kett
