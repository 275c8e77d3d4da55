#include "KTlock.h"

namespace kett
{

namespace
{

// One for each value of Data.
constinit SystemLock locks[static_cast<int>(Data::threads) + 1] = {};

} // namespace

SystemLock &lockOf(Data data)
{
    return locks[static_cast<int>(data)];
}

} // namespace kett
