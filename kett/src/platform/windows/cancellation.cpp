#include "platform/cancellation.h"

namespace kett
{

// A thread can only be killed here, against which nothing helps.

Uncancelled::Uncancelled() = default;

Uncancelled::~Uncancelled() = default;

} // namespace kett
