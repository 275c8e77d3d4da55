#include "noisesup/ORVAnoisesup_webrtc.h"

#include "platform/heap.h"

#include <cstring>

namespace orva
{

// Used without its analysis step, the suppressor reads parts of its instance that its initialisation leaves as the heap
// gave them. Cleared, they are the same in every run. The instance is one block of malloc, which knows its size.
int createNs(NsHandle **ns)
{
    *ns = WebRtcNs_Create();
    if (*ns == nullptr)
        return -1;
    std::memset(static_cast<void *>(*ns), 0, usableSize(*ns));
    return 0;
}

int freeNs(NsHandle *ns)
{
    WebRtcNs_Free(ns);
    return 0;
}

} // namespace orva
