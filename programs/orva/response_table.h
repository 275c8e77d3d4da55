// The response of a filter as text.
#pragma once

#include "frequency_response.h"

#include <string>

namespace orva
{

// Prints the edges of half power, the gain at round frequencies and at the edges that the text of the filter names, and
// its poles and zeros.
void printResponse(const std::string &text, int rate, const std::vector<Section> &sections,
                   const std::vector<ResponseAt> &curve);

} // namespace orva
