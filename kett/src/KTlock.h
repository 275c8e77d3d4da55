// The locks of libkett's own data. They need no set-up, so that every operation works from the first instant
// of a process to the last.
#pragma once

namespace kett
{

enum class Data { log, settings, environment, versions, descriptors, threads };

void lock(Data data);
void unlock(Data data);

// Holds the lock of `data` as long as it lives.
class Hold
{
public:
    explicit Hold(Data guarded) : data(guarded)
    {
        lock(data);
    }

    ~Hold()
    {
        unlock(data);
    }

    Hold(const Hold &) = delete;
    Hold &operator=(const Hold &) = delete;

private:
    const Data data;
};

} // namespace kett
