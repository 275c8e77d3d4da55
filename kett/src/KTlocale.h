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

    NumericLocaleC(const NumericLocaleC &) = delete;
    NumericLocaleC &operator=(const NumericLocaleC &) = delete;

private:
    void *before;
    void *here;
};

} // namespace kett
