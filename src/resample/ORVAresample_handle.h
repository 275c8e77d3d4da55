// The handle of both converters.
#pragma once

#include <orva/ORVAresample.h>

#include <cstdint>

namespace orva
{

enum ResampleMode : int32_t { resamplePolyphase = 0, resampleHold = 1 };

} // namespace orva

struct ORVA_RESAMPLER {
    int32_t mode; // a ResampleMode
    void *impl;   // owned: a PolyphaseResampler or a ZohResampler; null for a polyphase order below 1
};
