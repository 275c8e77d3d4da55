// The C numeric locale for the calling thread, whatever the host has set.
#pragma once

namespace kett
{

// In force as long as it lives.
class NumericLocaleC
{
public:
    NumericLocaleC();
    ~NumericLocaleC();

    // False when memory was out; the host's locale is then in force.
    bool isInForce() const
    {
        return here != nullptr;
    }

    NumericLocaleC(const NumericLocaleC &) = delete;
    NumericLocaleC &operator=(const NumericLocaleC &) = delete;

private:
    void *before;
    void *here;
};

} // namespace kett
