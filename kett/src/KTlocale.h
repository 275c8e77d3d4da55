// The C locale for the calling thread, whatever the host has set.
#pragma once

namespace kett
{

// In force as long as it lives.
class LocaleC
{
public:
    LocaleC();
    ~LocaleC();

    // False when memory was out; the host's locale is then in force.
    bool isInForce() const
    {
        return here != nullptr;
    }

    LocaleC(const LocaleC &) = delete;
    LocaleC &operator=(const LocaleC &) = delete;

private:
    void *here;
    void *before;
};

} // namespace kett
