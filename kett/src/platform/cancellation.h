// The cancellation of threads, where a system knows it.
#pragma once

namespace kett
{

// As long as it lives, the calling thread is not cancelled: a cancellation waits until it has gone. Stands around what
// would leave a lock held or a file open behind a thread that goes in the middle of it.
class Uncancelled
{
public:
    Uncancelled();
    ~Uncancelled();

    Uncancelled(const Uncancelled &) = delete;
    Uncancelled &operator=(const Uncancelled &) = delete;

private:
    int before = 0; // the system's number
};

} // namespace kett
