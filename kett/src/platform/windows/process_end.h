// The end of the process.
#pragma once

namespace kett
{

// The process ends: all threads but the calling one have been killed, wherever they were.
bool doesProcessEnd();

} // namespace kett
