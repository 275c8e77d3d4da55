#include "KTlock.h"

#include "platform/lock.h"

namespace kett
{

namespace
{

// One for each value of Data.
constinit SystemLock locks[static_cast<int>(Data::threads) + 1] = {};

} // namespace

void lock(Data data)
{
    lock(locks[static_cast<int>(data)]);
}

void unlock(Data data)
{
    unlock(locks[static_cast<int>(data)]);
}

} // namespace kett
