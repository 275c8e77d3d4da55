#include "platform/cancellation.h"

#include <pthread.h>

namespace kett
{

Uncancelled::Uncancelled()
{
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &before);
}

Uncancelled::~Uncancelled()
{
    pthread_setcancelstate(before, nullptr);
}

} // namespace kett
