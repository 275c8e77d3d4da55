// Rows of numbers in a value of a configuration string.
#pragma once

#include "KTconfig_scan.h"

#include <cstdint>

namespace kett
{

// The size of the matrix that `pair` holds, a bare number being one of 1 x 1; false, with nothing touched,
// when it holds none.
bool measureMatrix(const ConfigPair &pair, int32_t &rows, int32_t &columns);

// Writes the elements of a pair that has been measured, row by row, as many as there are and `room` allows,
// and gives their number.
int32_t storeMatrix(const ConfigPair &pair, double *output, int32_t room);

} // namespace kett
