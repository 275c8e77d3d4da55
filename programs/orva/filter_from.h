// Filters from text, as commands take them.
#pragma once

#include <orva/ORVAfilter.h>

#include <memory>
#include <string>
#include <vector>

namespace orva
{

struct DestroyFilter {
    void operator()(_ORVA_FILTER *filter) const
    {
        ORVA_DestroyFilter(filter);
    }
};
using Filter = std::unique_ptr<_ORVA_FILTER, DestroyFilter>;

// The filter for a rate and so many channels; refuses, as used wrongly, a text that is none.
Filter filterFrom(const std::string &text, int rate, int channels);

enum { answerSamples = 65536 };

// What the filter of one channel answers to a single 1, up to the last sample that counts. Refuses, as used wrongly, one
// that is not stable.
std::vector<float> answerOf(const std::string &text, int rate);

} // namespace orva
