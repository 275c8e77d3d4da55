// What a value costs here, by the main kernels: to be set beside the same of another system. bench/ says more, of this one.
#pragma once

namespace bits
{

// A row a kernel: its name, and the shortest nanoseconds for a value. At the level in force.
void printTimes();

} // namespace bits
