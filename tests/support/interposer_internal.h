// What the parts of the interposer share.
#pragma once

#include "support/interposer.h"

#include <dlfcn.h>

namespace support::interposer
{

enum class Failure { none, allocation, fileCall, kill };

struct State {
    bool counting = false;
    bool silenced = false; // inside a log call: nothing counts and nothing fails
    Counts counts;
    Failure planned = Failure::none;
    uint64_t callsToFailure = 0; // 1: the next one
    int error = 0;               // errno of the planned failure
    bool failed = false;         // the planned failure has happened
    bool isLimited = false;
    uint64_t heapLeft = 0; // bytes, under a limit
};

// Initial-exec: looking at it allocates nothing, which would come back to us. Constant initialisation: nor
// does it call.
[[gnu::tls_model("initial-exec")]] extern constinit thread_local State state;

void count(uint64_t Counts::*kind);

// Counts one call and tells whether it is the one that has to fail; errno is then set.
bool allocationFails();
bool fileCallFails();

// The function of that name that would have been called without us.
template <auto *ours> [[gnu::visibility("hidden")]] auto next(const char *name)
{
    static const auto function = reinterpret_cast<decltype(ours)>(dlsym(RTLD_NEXT, name));
    return function;
}

} // namespace support::interposer
