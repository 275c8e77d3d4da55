#include "spectrum.h"

#include "failure.h"

#include <orva/ORVAcomplex.h>
#include <orva/ORVAwinfnc.h>

#include <algorithm>
#include <cmath>
#include <new>

#include <strings.h>

namespace orva
{

int32_t windowNamed(const std::string &name)
{
    std::string names;
    for (int32_t type = 0; const char *known = ORVA_GetWindowName(type); ++type) {
        if (ORVA_GetWindowType(name.c_str()) == type && (type != 0 || strcasecmp(name.c_str(), known) == 0))
            return type; // 0 is the code of any other name, too
        names += (type > 0 ? ", " : "") + std::string(known);
    }
    failUse("there is no window '" + name + "'; the windows are " + names);
}

Spectrum::Spectrum(int32_t size, const std::string &name)
    : window(static_cast<size_t>(size)), samples(window.size()), powers(bins() + 3),
      decibels(powers.size()), // computed by fours
      work(window.size() + 3), fft(ORVA_FFTProcCreate(size))
{
    if (fft == nullptr)
        throw std::bad_alloc();
    ORVA_CreateWindow(windowNamed(name), window.data(), static_cast<uint32_t>(size));
    norm = std::pow(ORVA_GetWindowNormFactor(window.data(), size), 4); // enters by its square root
    if (!(norm > 1e-24) || !std::isfinite(norm))
        failUse("the window has no gain with frames of " + std::to_string(size) + " samples");
}

std::span<float> Spectrum::transform()
{
    ORVA_ApplyWindow(window.data(), samples.data(), static_cast<int32_t>(samples.size()));
    ORVA_FFTProcExecutePSDEx(fft.get(), samples.data(), powers.data(), work.data());
    return power();
}

void Spectrum::follow(std::span<float> past, std::span<const float> newer)
{
    std::copy(past.begin() + std::ssize(newer), past.end(), past.begin());
    std::copy(newer.begin(), newer.end(), past.end() - std::ssize(newer));
    std::copy(past.begin(), past.end(), samples.begin());
    transform();
}

std::span<const float> Spectrum::levels(double range, const float *gain)
{
    ORVA_PSDtoDB(static_cast<int32_t>(samples.size()), powers.data(), decibels.data(), gain, norm, range);
    return {decibels.data(), bins()};
}

} // namespace orva
