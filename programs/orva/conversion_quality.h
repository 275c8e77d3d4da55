// How good a sample-rate conversion is, computed from the definition of its filter.
#pragma once

#include <string>

namespace orva
{

struct ConversionQuality {
    double rippleDb = 0;     // the greatest distance of the gain from 1, up to
    double passHertz = 0;    // here
    double rejectionDb = 0;  // the least attenuation, 0 where nothing is to be rejected, from
    double stopHertz = 0;    // here on
    double earlySamples = 0; // by which the output comes before its time; 0 is none
};

// Of the polyphase converter of an order.
ConversionQuality polyphaseQuality(int from, int to, int order);

// Such as "ripple 0.02 dB up to 18.7 kHz, rejection 75 dB from 23.2 kHz on, delay 0".
std::string describe(const ConversionQuality &quality);

} // namespace orva
