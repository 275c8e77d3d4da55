// Windows.
#include "families.h"
#include "numbers.h"

#include <orva/ORVAwinfnc.h>

namespace bits
{

// Application and gains, and the shapes of straight lines.
void windows(Digest &results)
{
    Numbers numbers(22);
    for (int32_t round = 0; round < 2500; ++round) {
        const size_t offset = numbers.size(0, 15), length = numbers.size(1, 400);
        const auto count = static_cast<int32_t>(length);
        auto window =
            numbers.vector(offset + length + 40, numbers.coin() ? &Numbers::mixed : &Numbers::finite);
        auto data = numbers.vector(offset + length, numbers.coin() ? &Numbers::mixed : &Numbers::finite);
        ORVA_ApplyWindow(window.data() + offset, data.data() + offset, count);
        results.add(data);
        ORVA_ApplyWindow(window.data() + offset, window.data() + offset + numbers.size(0, 40), count);
        results.add(window);
        results.add(ORVA_GetWindowNormFactor(data.data() + offset, count));
        results.add(ORVA_GetTwoWindowNormFactor(data.data() + offset, window.data(), count));
        for (const char *shape : {"Rectangular", "Triangular", "Half-Triangular"}) {
            ORVA_CreateWindow(ORVA_GetWindowType(shape), data.data() + offset, static_cast<uint32_t>(count));
            results.add(data);
        }
    }
}

void windowShapes(Digest &results)
{
    Numbers numbers(23);
    for (int32_t type = 0; ORVA_GetWindowName(type) != nullptr; ++type)
        for (int32_t length = 1; length < 3000; length += numbers.integer(1, 40)) {
            std::vector<float> window(static_cast<size_t>(length));
            ORVA_CreateWindow(type, window.data(), static_cast<uint32_t>(length));
            results.add(window);
        }
}

} // namespace bits
