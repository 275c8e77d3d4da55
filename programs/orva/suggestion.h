// The word that somebody may have wanted to write.
#pragma once

#include <string>
#include <vector>

namespace orva
{

// The one of `words` that takes the fewest letters inserted, left out, replaced or swapped with their neighbour to become
// `word`; empty if the nearest takes more than a third of its letters.
std::string nearest(const std::string &word, const std::vector<std::string> &words);

// ", did you mean 'x'?" for the nearest word, or nothing.
std::string suggestion(const std::string &word, const std::vector<std::string> &words);

} // namespace orva
