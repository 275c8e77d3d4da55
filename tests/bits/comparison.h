// Results beside the table of hashes, printed as they come.
#pragma once

#include "common/cpu.h"
#include "families.h"

namespace bits
{

Digest resultsOf(const Family &family);

// Whether the hashes of a level are those of the table, but for what takes the mathematics library. A level that is not
// available is named, and differs in nothing.
bool compare(orva::Level level);

// Whether what passes through FFTW is as near to its definition as single precision allows.
bool compareDistances();

} // namespace bits
