#include "suggestion.h"

#include <algorithm>

namespace orva
{
namespace
{

// The distance of Damerau and Levenshtein without overlapping swaps: d[i][j] is that of the first i letters of `a` and
// the first j of `b`.
size_t distance(const std::string &a, const std::string &b)
{
    std::vector<std::vector<size_t>> d(a.size() + 1, std::vector<size_t>(b.size() + 1));
    for (size_t i = 0; i <= a.size(); ++i)
        for (size_t j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                d[i][j] = i + j;
                continue;
            }
            const size_t other = a[i - 1] == b[j - 1] ? 0 : 1;
            d[i][j] = std::min({d[i - 1][j] + 1, d[i][j - 1] + 1, d[i - 1][j - 1] + other});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
        }
    return d[a.size()][b.size()];
}

} // namespace

std::string nearest(const std::string &word, const std::vector<std::string> &words)
{
    std::string best;
    size_t least = word.size() / 3 + 2;
    if (word.size() > 64)
        return best;
    for (const auto &candidate : words) {
        const size_t far = distance(word, candidate);
        if (far < least && far * 3 <= candidate.size() + 1) {
            least = far;
            best = candidate;
        }
    }
    return best;
}

std::string suggestion(const std::string &word, const std::vector<std::string> &words)
{
    const std::string best = nearest(word, words);
    return best.empty() ? "" : ", did you mean '" + best + "'?";
}

} // namespace orva
