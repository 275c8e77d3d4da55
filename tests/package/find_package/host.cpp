// A host in C++ whose static object uses the library before main and after it, and that names the folder of the wisdom
// store inside its process only.
#include <kett/kett.h>
#include <orva/orva.h>

#include <iostream>
#include <memory>
#include <numeric>
#include <vector>

namespace
{

struct Transform {
    bool wasUp = KTVERSION_Find("liborva", nullptr, nullptr, nullptr, nullptr);
    ORVA_FFT *fft = ORVA_FFTProcCreate(256);

    ~Transform()
    {
        ORVA_FFTProcDestroy(fft);
    }
};

Transform transform;

struct Destroy {
    void operator()(_ORVA_FILTER *filter) const
    {
        ORVA_DestroyFilter(filter);
    }
};

} // namespace

int main(int argumentCount, char **arguments)
{
    if (argumentCount > 1)
        KTENV_SetEnvValue("KT_DATA_PATH", arguments[1]);
    // Reads the store, if there is one; the end of the process writes it.
    ORVA_FFTProcDestroy(ORVA_FFTProcCreate(512));

    const std::unique_ptr<_ORVA_FILTER, Destroy> filter(ORVA_CreateFilter("biquads=[0, 0, 0.5, 0.5, 0]"));
    std::vector<float> block = {1.0f, 0.0f, 1.0f, 1.0f};
    ORVA_Filter(filter.get(), block.data(), block.data(), static_cast<uint32_t>(block.size()));

    std::cout << (transform.wasUp ? "up" : "down") << " before main, filtered";
    for (const float sample : block)
        std::cout << ' ' << sample;
    std::cout << '\n';
}
