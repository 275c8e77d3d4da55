#include "spectrum.h"

#include "failure.h"

#include <orva/ORVAcomplex.h>
#include <orva/ORVAwinfnc.h>

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

Spectrum::Spectrum(int32_t type, int32_t length)
    : size(length), window(static_cast<size_t>(length)), samples(window.size()),
      power(static_cast<size_t>(length / 2 + 1) + 3), decibels(power.size()), // computed by fours
      work(window.size() + 3), fft(ORVA_FFTProcCreate(length))
{
    if (fft == nullptr)
        throw std::bad_alloc();
    ORVA_CreateWindow(type, window.data(), static_cast<uint32_t>(size));
    norm = std::pow(ORVA_GetWindowNormFactor(window.data(), size), 4); // enters by its square root
    if (!(norm > 1e-24) || !std::isfinite(norm))
        failUse("the window has no gain with frames of " + std::to_string(size) + " samples");
}

const std::vector<float> &Spectrum::levels(double range)
{
    ORVA_ApplyWindow(window.data(), samples.data(), size);
    ORVA_FFTProcExecutePSDEx(fft.get(), samples.data(), power.data(), work.data());
    ORVA_PSDtoDB(size, power.data(), decibels.data(), nullptr, norm, range);
    return decibels;
}

} // namespace orva
