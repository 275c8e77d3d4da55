#include "platform/path.h"

namespace orva
{

const char pathSeparator = '\\';

} // namespace orva
